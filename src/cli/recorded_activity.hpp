// What the recorded history says about applications and websites, so that
// rules can be written for what is really recorded: the applications and
// hostnames recorded lately, and whether an application id was ever recorded.
// Segments are read one at a time through the store's history walks.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "foundation/store_error.hpp"
#include "recording/session_history_reader.hpp"
#include "recording/session_records.hpp"

namespace lumenote::cli {

// An application as recorded: its id (the key application rules match
// exactly), the name its latest segment was recorded with, and when that
// segment ended (UTC).
struct RecordedApplication {
    std::string bundleIdentifier;
    std::string applicationName;
    Date lastSeen;

    friend bool operator==(const RecordedApplication&, const RecordedApplication&) = default;
};

// A website as recorded: its hostname as stored on the segment.
struct RecordedWebsite {
    std::string hostname;
    Date lastSeen;

    friend bool operator==(const RecordedWebsite&, const RecordedWebsite&) = default;
};

// Applications and websites, the most recently seen first (equal times in
// key order), cut to a cap; the counts are how many there were before the cut.
struct RecordedActivity {
    std::vector<RecordedApplication> applications;
    std::size_t applicationCount = 0;
    std::vector<RecordedWebsite> websites;
    std::size_t websiteCount = 0;
};

// Folds segments, in any order, into the applications and websites they were
// recorded for. Every segment with an application id counts for that
// application (a browser counts for the time its websites were in front, as
// it was the application in front); website segments also count for their
// hostname. System stretches (the computer asleep) are not applications.
class RecordedActivityCollector {
  public:
    void add(const recording::ActivitySegment& segment);
    // At most `cap` applications and `cap` websites.
    RecordedActivity mostRecent(std::size_t cap) const;

  private:
    std::map<std::string, RecordedApplication, std::less<>> applications_;
    std::map<std::string, RecordedWebsite, std::less<>> websites_;
};

// Whether `segment` was recorded for an application a rule could name.
bool isApplicationSegment(const recording::ActivitySegment& segment);

// "Lately" for `rules recent`: the sessions that started in the last 30 days
// (30 times 24 hours before now, not calendar days, so the time zone does not
// matter), which covers the applications of a few weeks of study without
// reaching back to what was used once long ago; at most 50 of each kind, so
// the list fits a terminal and still holds more than most people use in a
// month.
inline constexpr int kRecentActivityDays = 30;
inline constexpr std::size_t kRecentActivityCap = 50;

// The applications and websites of the sessions that started at or after
// `now` minus kRecentActivityDays, cut to kRecentActivityCap. Fails with the
// store's error.
Result<RecordedActivity, StoreError> readRecentActivity(recording::SessionHistoryReader& reader,
                                                        Date now);

// At most this many similar applications are named.
inline constexpr std::size_t kSimilarApplicationCap = 5;

// Whether any segment of the whole history was recorded under exactly
// `bundleIdentifier` (letter case included, as rules match). When none was:
// the recorded applications whose id or name equals it ignoring letter case
// ("XTerm" is recorded as debian-xterm, named XTerm), most recent first. The
// walk ends at the first segment with the id, so only an id that was never
// recorded costs a read of every segment, as an export does.
struct ApplicationIdentifierCheck {
    bool recorded = false;
    std::vector<RecordedApplication> similar;
};
Result<ApplicationIdentifierCheck, StoreError> checkRecordedApplication(
    recording::SessionHistoryReader& reader, std::string_view bundleIdentifier);

}  // namespace lumenote::cli
