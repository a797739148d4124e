// The enumerations of the classification rules, with the raw text each case
// is stored and exchanged as: an activity's class and how a PDF got its label.
#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "foundation/raw_enum.hpp"

namespace lumenote {

enum class ActivityClassification { focused, distracting, neutral, unclassified, ignored };
// How the label of a local PDF was obtained.
enum class BrowserPDFLabelSource { filename, manual };

template <>
struct RawValues<ActivityClassification> {
    using E = ActivityClassification;
    static constexpr std::array<std::pair<E, std::string_view>, 5> entries{{
        {E::focused, "focused"},
        {E::distracting, "distracting"},
        {E::neutral, "neutral"},
        {E::unclassified, "unclassified"},
        {E::ignored, "ignored"},
    }};
};

// The class a stored text names; text of a later release reads as
// unclassified, so an unknown value never counts as evidence or decides a rule.
inline ActivityClassification classificationFromRawValue(std::string_view raw) {
    return fromRawValue<ActivityClassification>(raw).value_or(ActivityClassification::unclassified);
}

template <>
struct RawValues<BrowserPDFLabelSource> {
    using E = BrowserPDFLabelSource;
    static constexpr std::array<std::pair<E, std::string_view>, 2> entries{{
        {E::filename, "filename"},
        {E::manual, "manual"},
    }};
};

}  // namespace lumenote
