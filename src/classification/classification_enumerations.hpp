// The enumerations of the classification rules, with the raw text each case
// is stored and exchanged as: an activity's class and how a PDF got its label.
#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "foundation/raw_enum.hpp"

namespace lumenote::classification {

enum class ActivityClassification { focused, distracting, neutral, unclassified, ignored };
// How the label of a local PDF was obtained.
enum class BrowserPDFLabelSource { filename, manual };

}  // namespace lumenote::classification

// Raw values are specialised where the template lives.
namespace lumenote {

template <>
struct RawValues<classification::ActivityClassification> {
    using E = classification::ActivityClassification;
    static constexpr std::array<std::pair<E, std::string_view>, 5> entries{{
        {E::focused, "focused"},
        {E::distracting, "distracting"},
        {E::neutral, "neutral"},
        {E::unclassified, "unclassified"},
        {E::ignored, "ignored"},
    }};
};

}  // namespace lumenote

namespace lumenote::classification {

// The class a stored text names; text of a later release reads as
// unclassified, so an unknown value never counts as evidence or decides a rule.
inline ActivityClassification classificationFromRawValue(std::string_view raw) {
    return fromRawValue<ActivityClassification>(raw).value_or(ActivityClassification::unclassified);
}

}  // namespace lumenote::classification

// Raw values are specialised where the template lives.
namespace lumenote {

template <>
struct RawValues<classification::BrowserPDFLabelSource> {
    using E = classification::BrowserPDFLabelSource;
    static constexpr std::array<std::pair<E, std::string_view>, 2> entries{{
        {E::filename, "filename"},
        {E::manual, "manual"},
    }};
};

}  // namespace lumenote

namespace lumenote::classification {}  // namespace lumenote::classification
