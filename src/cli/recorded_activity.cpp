#include "cli/recorded_activity.hpp"

#include <algorithm>

#include "foundation/text.hpp"

namespace lumenote::cli {
namespace {

constexpr double kSecondsPerDay = 24 * 60 * 60;

// The newest first; equal times in key order, so that the list is the same on
// every run. Entries come in key order, and the sort keeps that order among equals.
template <typename Entry>
std::vector<Entry> newestFirst(const std::map<std::string, Entry, std::less<>>& entries,
                               std::size_t cap) {
    std::vector<Entry> sorted;
    sorted.reserve(entries.size());
    for (const auto& [key, entry] : entries) {
        sorted.push_back(entry);
    }
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Entry& a, const Entry& b) { return a.lastSeen > b.lastSeen; });
    if (sorted.size() > cap) {
        sorted.resize(cap);
    }
    return sorted;
}

}  // namespace

bool isApplicationSegment(const recording::ActivitySegment& segment) {
    return !segment.bundleIdentifier.empty() &&
           segment.activitySource() != recording::ActivitySourceType::system;
}

void RecordedActivityCollector::add(const recording::ActivitySegment& segment) {
    if (!isApplicationSegment(segment)) {
        return;
    }
    const auto [application, added] = applications_.try_emplace(
        segment.bundleIdentifier,
        RecordedApplication{segment.bundleIdentifier, segment.applicationName, segment.endDate});
    if (!added && segment.endDate >= application->second.lastSeen) {
        application->second.applicationName = segment.applicationName;
        application->second.lastSeen = segment.endDate;
    }
    if (segment.activitySource() != recording::ActivitySourceType::website || !segment.hostname ||
        segment.hostname->empty()) {
        return;
    }
    const auto [website, websiteAdded] = websites_.try_emplace(
        *segment.hostname, RecordedWebsite{*segment.hostname, segment.endDate});
    if (!websiteAdded) {
        website->second.lastSeen = std::max(website->second.lastSeen, segment.endDate);
    }
}

RecordedActivity RecordedActivityCollector::mostRecent(std::size_t cap) const {
    return RecordedActivity{newestFirst(applications_, cap), applications_.size(),
                            newestFirst(websites_, cap), websites_.size()};
}

Result<RecordedActivity, StoreError> readRecentActivity(recording::SessionHistoryReader& reader,
                                                        Date now) {
    recording::SegmentWalkQuery query;
    query.range.startingAtOrAfter = now.addingSeconds(-kRecentActivityDays * kSecondsPerDay);
    RecordedActivityCollector collector;
    auto walked = reader.forEachSegment(
        query,
        [&collector](const recording::StudySession&, const recording::ActivitySegment& segment) {
            collector.add(segment);
            return true;
        });
    if (!walked.ok()) {
        return fail(walked.error());
    }
    return collector.mostRecent(kRecentActivityCap);
}

Result<ApplicationIdentifierCheck, StoreError> checkRecordedApplication(
    recording::SessionHistoryReader& reader, std::string_view bundleIdentifier) {
    const std::string folded = text::caseFolded(bundleIdentifier);
    ApplicationIdentifierCheck check;
    RecordedActivityCollector similar;
    auto walked = reader.forEachSegment(
        {}, [&](const recording::StudySession&, const recording::ActivitySegment& segment) {
            if (!isApplicationSegment(segment)) {
                return true;
            }
            if (segment.bundleIdentifier == bundleIdentifier) {
                check.recorded = true;
                return false;
            }
            if (text::caseFolded(segment.bundleIdentifier) == folded ||
                text::caseFolded(segment.applicationName) == folded) {
                similar.add(segment);
            }
            return true;
        });
    if (!walked.ok()) {
        return fail(walked.error());
    }
    if (!check.recorded) {
        check.similar = similar.mostRecent(kSimilarApplicationCap).applications;
    }
    return check;
}

}  // namespace lumenote::cli
