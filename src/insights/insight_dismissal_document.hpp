// The dismissal records and their JSON document, "insight-dismissals-v1.json":
//   {"formatVersion": 1,
//    "records": [{"key": {"insightID": "...", "evidenceRevision": "..."},
//                 "dismissedAt": "2026-11-16T08:00:00.000Z"}]}
// Dates are ISO 8601 in UTC with milliseconds.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/dates.hpp"

namespace lumenote::insights {

inline constexpr long long kInsightDismissalFormatVersion = 1;

struct InsightDismissalKey {
    std::string insightID;
    std::string evidenceRevision;

    friend bool operator==(const InsightDismissalKey&, const InsightDismissalKey&) = default;
};

struct InsightDismissalRecord {
    InsightDismissalKey key;
    Date dismissedAt;

    friend bool operator==(const InsightDismissalRecord&, const InsightDismissalRecord&) = default;
};

struct InsightDismissalDocument {
    long long formatVersion = kInsightDismissalFormatVersion;
    std::vector<InsightDismissalRecord> records;

    friend bool operator==(const InsightDismissalDocument&,
                           const InsightDismissalDocument&) = default;
};

std::string encodeInsightDismissalDocument(const InsightDismissalDocument& document);

// The document in `text`, whose format version has already been read as 1;
// nullopt when it is not JSON, lacks a records array, or any record lacks a
// non-empty insightID or evidenceRevision string or a valid dismissedAt date.
std::optional<InsightDismissalDocument> decodeInsightDismissalDocument(std::string_view text);

// Whether `records` hold the key (id, revision).
bool containsDismissal(const std::vector<InsightDismissalRecord>& records,
                       std::string_view insightID, std::string_view evidenceRevision);

}  // namespace lumenote::insights
