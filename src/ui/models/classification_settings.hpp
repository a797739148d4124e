// What the Classification section of the settings lists: the user's
// application and website rules as rows in a stable order, the classes a
// rule may give, and the starter suggestions that apply until a rule does.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "classification/classification_records.hpp"
#include "classification/starter_suggestions.hpp"

namespace lumenote::ui::models {

struct RuleRow {
    std::string key;  // the bundle identifier or the hostname
    std::string title;
    std::string detail;
    classification::ActivityClassification classification;

    friend bool operator==(const RuleRow&, const RuleRow&) = default;
};

// By name, ignoring letter case, then by identifier; an application stored
// without a name shows its identifier as its title and has no detail.
std::vector<RuleRow> applicationRuleRows(
    const std::vector<classification::AppClassification>& rules);

// By hostname.
std::vector<RuleRow> websiteRuleRows(
    const std::vector<classification::WebsiteClassification>& rules);

// What a rule may say, in the order offered; "Unclassified" is what no rule
// says, so it is not offered.
inline constexpr std::array<classification::ActivityClassification, 4> kRuleClassifications{
    classification::ActivityClassification::focused,
    classification::ActivityClassification::distracting,
    classification::ActivityClassification::neutral,
    classification::ActivityClassification::ignored};

// The refusal of an application rule without an identifier, which would
// match no application.
inline constexpr std::string_view kApplicationIdentifierRequired =
    "Enter the application's identifier, such as org.gnome.TextEditor.";

// The starter rows in the order listed: websites, then applications, then
// the applications of Linux desktops.
std::vector<classification::StarterClassificationRow> starterRows();

}  // namespace lumenote::ui::models
