// The values of a local insight: its kind, evidence, minimum-data rule and the
// produced statement (LocalInsightFact), with the raw names used in JSON.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/dates.hpp"
#include "recording/tracking_calculation_version.hpp"

namespace lumenote::insights {

// Also the order of evaluation and display.
enum class LocalInsightKind {
    focusTrend,
    averageSessionLength,
    strongestStudyDay,
    longestFocusBlock,
    topSubject,
    commonDistraction
};
inline constexpr LocalInsightKind kAllLocalInsightKinds[] = {
    LocalInsightKind::focusTrend,        LocalInsightKind::averageSessionLength,
    LocalInsightKind::strongestStudyDay, LocalInsightKind::longestFocusBlock,
    LocalInsightKind::topSubject,        LocalInsightKind::commonDistraction};

enum class InsightEvidenceQuality { limited, moderate, strong };
enum class InsightEvidenceUnit { seconds, percent, percentagePoints, count, text };
// `localLabel`: text the user typed or an activity's name, which stays on this
// computer; `aggregate`: numbers only.
enum class InsightEvidencePrivacy { aggregate, localLabel };
// Whether a statement shows only aggregates or also a local label.
enum class InsightPrivacyClassification { aggregateOnly, includesLocalLabel };
enum class InsightLanguageDirection { higher, lower, similar, neutral };

std::string_view rawValue(LocalInsightKind kind);
std::optional<LocalInsightKind> localInsightKindFromRaw(std::string_view raw);
std::string_view rawValue(InsightEvidenceQuality quality);
std::string_view rawValue(InsightEvidenceUnit unit);
std::string_view rawValue(InsightEvidencePrivacy privacy);
std::string_view rawValue(InsightPrivacyClassification privacy);
std::string_view rawValue(InsightLanguageDirection direction);

struct LocalInsightPeriod {
    Date start;  // first instant of the week
    Date end;    // first instant of the next week

    friend bool operator==(const LocalInsightPeriod&, const LocalInsightPeriod&) = default;
};

struct InsightEvidenceValue {
    std::string key;
    std::string label;
    std::optional<double> numericValue;
    std::optional<std::string> textValue;
    InsightEvidenceUnit unit = InsightEvidenceUnit::count;
    InsightEvidencePrivacy privacy = InsightEvidencePrivacy::aggregate;

    friend bool operator==(const InsightEvidenceValue&, const InsightEvidenceValue&) = default;
};

struct InsightMinimumDataRule {
    std::string explanation;
    int requiredSampleSize = 0;
    int actualSampleSize = 0;
    int requiredActiveDays = 0;
    int actualActiveDays = 0;

    friend bool operator==(const InsightMinimumDataRule&, const InsightMinimumDataRule&) = default;
};

struct LocalInsightFact {
    std::string id;
    LocalInsightKind kind = LocalInsightKind::focusTrend;
    LocalInsightPeriod period;
    int sampleSize = 0;
    std::vector<InsightEvidenceValue> evidenceValues;
    InsightMinimumDataRule minimumDataRule;
    InsightEvidenceQuality evidenceQuality = InsightEvidenceQuality::limited;
    std::string title;
    std::string statement;
    std::string explanation;
    bool isDismissed = false;
    std::set<recording::TrackingCalculationVersion> calculationVersions;
    InsightPrivacyClassification privacyClassification =
        InsightPrivacyClassification::aggregateOnly;
    std::string evidenceRevision;
    InsightLanguageDirection languageDirection = InsightLanguageDirection::neutral;

    friend bool operator==(const LocalInsightFact&, const LocalInsightFact&) = default;
};

// The stable id of a kind's statement for a week: the kind's raw name, "-",
// and the local day key of the week's first day ("focusTrend-2026-11-16").
std::string localInsightID(LocalInsightKind kind, std::string_view weekStartDayKey);

// The kind and week-start day key an id names; nullopt for any other text.
struct ParsedInsightID {
    LocalInsightKind kind;
    std::string weekStartDayKey;
};
std::optional<ParsedInsightID> parseLocalInsightID(std::string_view id);

// The fingerprint of the evidence: 16 lower-case hex digits of the 64-bit
// FNV-1a hash of a canonical text of every value, in order (key, label,
// number written with 17 significant digits, text, unit and privacy, with
// separators that cannot occur in a number and absent parts marked as
// such). Any change of any value changes the text and so, but for a hash
// collision, the fingerprint.
std::string evidenceRevision(const std::vector<InsightEvidenceValue>& values);

// Grading of how much data a statement rests on, from its sample size and the
// active study days of the selected week:
//   strong   at least 10 sessions on at least 5 days,
//   moderate at least 6 sessions on at least 3 days,
//   limited  otherwise (the minimum of each kind is below both).
InsightEvidenceQuality gradeEvidenceQuality(int sampleSize, int activeDays);

}  // namespace lumenote::insights
