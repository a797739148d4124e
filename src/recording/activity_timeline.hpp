// The activity timeline: turns a stream of observed states into closed,
// non-overlapping stretches measured on the monotonic clock.
#pragma once

#include <optional>
#include <string>

#include "foundation/dates.hpp"
#include "foundation/uuid.hpp"
#include "recording/enumerations.hpp"

namespace lumenote::recording {

// One moment read from both clocks at once.
struct TrackingInstant {
    Date wallDate;               // for the stored start and end dates
    double monotonicTime = 0.0;  // seconds on the monotonic clock, for durations

    friend bool operator==(const TrackingInstant&, const TrackingInstant&) = default;
};

// What is observed at one instant. Two states are the same stretch only when
// all twelve fields are equal.
struct ActivityState {
    std::string applicationName;
    std::string bundleIdentifier;
    classification::ActivityClassification classification =
        classification::ActivityClassification::unclassified;
    bool isInactive = false;
    ActivitySourceType activitySource = ActivitySourceType::application;
    std::optional<std::string> browserBundleIdentifier;
    std::optional<std::string> hostname;
    std::optional<Uuid> tabSessionIdentifier;
    std::optional<Uuid> pdfIdentifier;
    std::optional<std::string> pdfDisplayLabel;
    std::optional<classification::BrowserPDFLabelSource> pdfLabelSource;
    std::optional<BrowserFallbackReason> browserFallbackReason;

    friend bool operator==(const ActivityState&, const ActivityState&) = default;
};

// The stretch being observed.
struct OpenInterval {
    ActivityState state;
    TrackingInstant start;
};

// A closed stretch.
struct FinalizedActivityInterval {
    Date startDate;
    Date endDate;
    double duration = 0.0;  // monotonic seconds, never negative
    ActivityState state;
};

// Owned by the session manager; the only place where a stretch begins and
// ends. A stretch may be closed at an instant earlier than the last one
// observed (the recorder closes a stretch at the moment the idle time crossed
// the threshold, which lies in the past), but never before its own start: an
// earlier closing instant is taken as the start itself, so the closed stretch
// has zero length and the next one begins where it began.
class ActivityTimelineEngine {
  public:
    // Opens a stretch when none is open; does nothing while the state is
    // unchanged; otherwise closes the open stretch at `at`, returns it and
    // opens a new one with `state` at the same instant.
    std::optional<FinalizedActivityInterval> observe(const ActivityState& state,
                                                     TrackingInstant at);

    // Closes the open stretch (if any) at `at` and leaves nothing open; used on
    // pause, sleep, end and termination.
    std::optional<FinalizedActivityInterval> finalize(TrackingInstant at);

    // The stretch being observed, for live display and checkpoints.
    const std::optional<OpenInterval>& openInterval() const { return openInterval_; }

  private:
    // The instant at which the open stretch closes: `at`, or its start when
    // `at` lies before it.
    TrackingInstant closingInstant(TrackingInstant at) const;
    FinalizedActivityInterval close(TrackingInstant at) const;

    std::optional<OpenInterval> openInterval_;
};

}  // namespace lumenote::recording
