// InsightDismissalStore: the user's dismissed insights, each tied to the exact
// evidence it was dismissed with, kept in the dismissal file.
//
// - A version other than 1 makes the store read-only with its message; the
//   file is never written then, and dismissals are refused.
// - A file with a record that cannot be decoded is moved aside; the store
//   starts empty (and may save again) with its message.
// - A file that cannot be read at all (a link, not a regular file, too
//   large, unreadable) also makes the store read-only, so that a file the
//   store never read is never replaced.
// - Dismissing keeps one record per insight id: a new dismissal of the same
//   statement replaces the record of its older evidence, which could never
//   match again.
// - At most 1000 records are kept: beyond that the oldest by dismissedAt are
//   dropped (on load and on dismissal), since the oldest belong to weeks the
//   user is least likely to look at again.
// - A failed save leaves the records as they were before the dismissal
//   (matching the file) and sets the save message.
// Observers are told after every change of records or lastError.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/observer_list.hpp"
#include "insights/file_insight_dismissal_repository.hpp"
#include "insights/local_insight_types.hpp"

namespace lumenote::insights {

inline constexpr std::size_t kMaximumInsightDismissals = 1000;

inline constexpr std::string_view kInvalidDismissalRecordMessage =
    "The insight dismissal file contained an invalid record.";

// "Insight dismissals use unsupported format version 2. The file was left unchanged."
std::string unsupportedDismissalVersionMessage(long long version);
// "Insight dismissal could not be saved: " + description.
std::string dismissalNotSavedMessage(std::string_view description);
// Said when the file could not be read at all and is therefore left alone.
std::string dismissalFileUnreadableMessage(std::string_view description);

class InsightDismissalStore {
  public:
    using Clock = std::function<Date()>;

    // Loads the records at once. `now` dates new dismissals.
    InsightDismissalStore(InsightDismissalPersisting& repository, Clock now);

    const std::vector<InsightDismissalRecord>& records() const { return records_; }
    const std::optional<std::string>& lastError() const { return lastError_; }
    bool isReadOnly() const { return isReadOnly_; }

    // Adds a record for the fact's id and current evidence revision dated now
    // and saves the whole document. Returns whether it was saved; read-only
    // stores refuse (lastError keeps saying why).
    bool dismiss(const LocalInsightFact& fact);

    bool isDismissed(std::string_view insightID, std::string_view evidenceRevision) const;

    ObserverList<>& changed() { return changed_; }

  private:
    void keepNewest();

    InsightDismissalPersisting& repository_;
    Clock now_;
    std::vector<InsightDismissalRecord> records_;
    std::optional<std::string> lastError_;
    bool isReadOnly_ = false;
    ObserverList<> changed_;
};

}  // namespace lumenote::insights
