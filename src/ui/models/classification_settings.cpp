#include "ui/models/classification_settings.hpp"

#include <algorithm>
#include <cctype>
#include <tuple>

namespace lumenote::ui::models {

namespace {

std::string folded(const std::string& text) {
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

}  // namespace

std::vector<RuleRow> applicationRuleRows(
    const std::vector<classification::AppClassification>& rules) {
    std::vector<RuleRow> rows;
    rows.reserve(rules.size());
    for (const auto& rule : rules) {
        const bool named = !rule.applicationName.empty();
        rows.push_back({rule.bundleIdentifier, named ? rule.applicationName : rule.bundleIdentifier,
                        named ? rule.bundleIdentifier : std::string(), rule.classification()});
    }
    std::sort(rows.begin(), rows.end(), [](const RuleRow& a, const RuleRow& b) {
        return std::tuple(folded(a.title), a.key) < std::tuple(folded(b.title), b.key);
    });
    return rows;
}

std::vector<RuleRow> websiteRuleRows(
    const std::vector<classification::WebsiteClassification>& rules) {
    std::vector<RuleRow> rows;
    rows.reserve(rules.size());
    for (const auto& rule : rules) {
        rows.push_back({rule.hostname, rule.hostname, {}, rule.classification()});
    }
    std::sort(rows.begin(), rows.end(),
              [](const RuleRow& a, const RuleRow& b) { return a.key < b.key; });
    return rows;
}

std::vector<classification::StarterClassificationRow> starterRows() {
    std::vector<classification::StarterClassificationRow> rows =
        classification::starterWebsiteRows();
    for (auto part : {classification::starterApplicationRows(),
                      classification::linuxStarterApplicationRows()}) {
        rows.insert(rows.end(), part.begin(), part.end());
    }
    return rows;
}

}  // namespace lumenote::ui::models
