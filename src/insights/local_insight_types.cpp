#include "insights/local_insight_types.hpp"

#include <fmt/format.h>

#include <cstdint>

namespace lumenote::insights {

std::string_view rawValue(LocalInsightKind kind) {
    switch (kind) {
        case LocalInsightKind::focusTrend:
            return "focusTrend";
        case LocalInsightKind::averageSessionLength:
            return "averageSessionLength";
        case LocalInsightKind::strongestStudyDay:
            return "strongestStudyDay";
        case LocalInsightKind::longestFocusBlock:
            return "longestFocusBlock";
        case LocalInsightKind::topSubject:
            return "topSubject";
        case LocalInsightKind::commonDistraction:
            return "commonDistraction";
    }
    return "focusTrend";
}

std::optional<LocalInsightKind> localInsightKindFromRaw(std::string_view raw) {
    for (const LocalInsightKind kind : kAllLocalInsightKinds) {
        if (rawValue(kind) == raw) {
            return kind;
        }
    }
    return std::nullopt;
}

std::string_view rawValue(InsightEvidenceQuality quality) {
    switch (quality) {
        case InsightEvidenceQuality::limited:
            return "limited";
        case InsightEvidenceQuality::moderate:
            return "moderate";
        case InsightEvidenceQuality::strong:
            return "strong";
    }
    return "limited";
}

std::string_view rawValue(InsightEvidenceUnit unit) {
    switch (unit) {
        case InsightEvidenceUnit::seconds:
            return "seconds";
        case InsightEvidenceUnit::percent:
            return "percent";
        case InsightEvidenceUnit::percentagePoints:
            return "percentagePoints";
        case InsightEvidenceUnit::count:
            return "count";
        case InsightEvidenceUnit::text:
            return "text";
    }
    return "text";
}

std::string_view rawValue(InsightEvidencePrivacy privacy) {
    return privacy == InsightEvidencePrivacy::aggregate ? "aggregate" : "localLabel";
}

std::string_view rawValue(InsightPrivacyClassification privacy) {
    return privacy == InsightPrivacyClassification::aggregateOnly ? "aggregateOnly"
                                                                  : "includesLocalLabel";
}

std::string_view rawValue(InsightLanguageDirection direction) {
    switch (direction) {
        case InsightLanguageDirection::higher:
            return "higher";
        case InsightLanguageDirection::lower:
            return "lower";
        case InsightLanguageDirection::similar:
            return "similar";
        case InsightLanguageDirection::neutral:
            return "neutral";
    }
    return "neutral";
}

std::string localInsightID(LocalInsightKind kind, std::string_view weekStartDayKey) {
    return fmt::format("{}-{}", rawValue(kind), weekStartDayKey);
}

std::optional<ParsedInsightID> parseLocalInsightID(std::string_view id) {
    const auto dash = id.find('-');
    if (dash == std::string_view::npos) {
        return std::nullopt;
    }
    const auto kind = localInsightKindFromRaw(id.substr(0, dash));
    if (!kind) {
        return std::nullopt;
    }
    return ParsedInsightID{*kind, std::string(id.substr(dash + 1))};
}

std::string evidenceRevision(const std::vector<InsightEvidenceValue>& values) {
    // Unit and record separators (0x1f, 0x1e) delimit the parts; "\x15" marks
    // an absent number or text, so "" and absent differ.
    std::string canonical;
    for (const InsightEvidenceValue& value : values) {
        canonical += value.key;
        canonical += '\x1f';
        canonical += value.label;
        canonical += '\x1f';
        canonical += value.numericValue ? fmt::format("{:.17g}", *value.numericValue) : "\x15";
        canonical += '\x1f';
        canonical += value.textValue ? *value.textValue : "\x15";
        canonical += '\x1f';
        canonical += rawValue(value.unit);
        canonical += '\x1f';
        canonical += rawValue(value.privacy);
        canonical += '\x1e';
    }
    std::uint64_t hash = 14695981039346656037ULL;
    for (const unsigned char byte : canonical) {
        hash ^= byte;
        hash *= 1099511628211ULL;
    }
    return fmt::format("{:016x}", hash);
}

InsightEvidenceQuality gradeEvidenceQuality(int sampleSize, int activeDays) {
    if (sampleSize >= 10 && activeDays >= 5) {
        return InsightEvidenceQuality::strong;
    }
    if (sampleSize >= 6 && activeDays >= 3) {
        return InsightEvidenceQuality::moderate;
    }
    return InsightEvidenceQuality::limited;
}

}  // namespace lumenote::insights
