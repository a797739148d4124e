// Sampling: what the manager observes on each tick and how it becomes stretches.
#include <algorithm>

#include "classification/local_pdf_classification.hpp"
#include "classification/rule_keys.hpp"
#include "recording/recording_preferences.hpp"
#include "recording/session_manager.hpp"

namespace lumenote::recording {

void SessionManager::beginObservation(TrackingInstant instant) {
    observedSince_ = instant;
    frontmostMemory_ = FrontmostMemory{};
}

ActivityState SessionManager::sampleState(const std::optional<FrontmostApplication>& frontmost,
                                          double idleSeconds, Date wallNow) {
    ActivityState state;
    state.bundleIdentifier = frontmost ? frontmost->bundleIdentifier : std::string();
    state.applicationName = (frontmost && !frontmost->localizedName.empty())
                                ? frontmost->localizedName
                                : std::string(kUnknownApplicationName);
    browserTrackingCoordinator_.setFrontmostBundleIdentifier(state.bundleIdentifier);
    state.isInactive = idleSeconds >= preferences_.inactivityThreshold();

    const bool ownApplication = state.bundleIdentifier == rules_.lookup().ownBundleIdentifier();
    const auto browser = ownApplication ? std::nullopt
                                        : browserTrackingCoordinator_.resolution(
                                              state.bundleIdentifier, wallNow, idleSeconds);
    if (!browser) {
        state.classification = rules_.lookup().applicationClassification(state.bundleIdentifier,
                                                                         state.applicationName);
        return state;
    }

    state.browserBundleIdentifier = browser->browserBundleIdentifier;
    state.tabSessionIdentifier = browser->tabSessionIdentifier;
    if (browser->isPrivate) {
        // Private activity is never attributed to a site or file.
        state.activitySource = ActivitySourceType::browserFallback;
        state.browserFallbackReason = BrowserFallbackReason::privateOrRestricted;
        state.tabSessionIdentifier.reset();
        state.classification = rules_.lookup().applicationClassification(state.bundleIdentifier,
                                                                         state.applicationName);
        return state;
    }
    switch (browser->kind) {
        case BrowserResolution::Kind::website:
            state.activitySource = ActivitySourceType::website;
            // The lookup normalises the name itself (normalising is not
            // idempotent for names ending in two dots), so it gets the raw one.
            state.hostname = classification::normalizedHostname(browser->hostname.value_or(""));
            state.classification = rules_.lookup().websiteClassification(
                browser->hostname.value_or(""), state.tabSessionIdentifier);
            break;
        case BrowserResolution::Kind::localPDF:
            state.activitySource = ActivitySourceType::localPDF;
            state.pdfIdentifier = browser->pdfIdentifier;
            state.pdfDisplayLabel = browser->pdfDisplayLabel;
            state.pdfLabelSource = browser->pdfLabelSource;
            state.classification = pdfClassification(*browser);
            break;
        case BrowserResolution::Kind::fallback:
            state.activitySource = ActivitySourceType::browserFallback;
            state.browserFallbackReason =
                browser->fallbackReason.value_or(BrowserFallbackReason::unknown);
            state.classification = rules_.lookup().applicationClassification(state.bundleIdentifier,
                                                                             state.applicationName);
            break;
    }
    return state;
}

classification::ActivityClassification SessionManager::pdfClassification(
    const BrowserResolution& pdf) {
    std::optional<classification::NewLocalPDF> sampled;
    if (pdf.pdfIdentifier) {
        sampled = classification::NewLocalPDF{*pdf.pdfIdentifier,
                                              pdf.browserBundleIdentifier,
                                              pdf.pdfDisplayLabel,
                                              pdf.pdfLabelSource,
                                              {},
                                              {}};
    }
    // Identity records of the sample are saved with it, in one transaction.
    auto sample = rules_.classifyPDFSample(sampled);
    for (classification::LocalPDFIdentity& identity : sample.identitiesToSave) {
        pendingChanges_.pdfIdentities.push_back(std::move(identity));
    }
    return sample.classification;
}

TrackingInstant SessionManager::boundaryFor(const ActivityState& next, TrackingInstant instant,
                                            double idleSeconds) const {
    const auto& open = timelineEngine_.openInterval();
    // A system stretch (sleep) ends when observation resumes, however long
    // the machine then reports no input.
    if (!open || open->state.isInactive == next.isInactive ||
        open->state.activitySource == ActivitySourceType::system) {
        return instant;
    }
    // Going quiet: the active stretch ended when the idle time reached the
    // threshold. Input returning: the quiet stretch ended when it returned.
    const double threshold = preferences_.inactivityThreshold();
    const double backdate =
        next.isInactive ? std::max(0.0, idleSeconds - threshold) : std::max(0.0, idleSeconds);
    const double earliest = open->start.monotonicTime;
    const double monotonic = std::max(earliest, instant.monotonicTime - backdate);
    const double shift = instant.monotonicTime - monotonic;
    return TrackingInstant{instant.wallDate.addingSeconds(-shift), monotonic};
}

void SessionManager::sampleAndRecord(TrackingInstant instant) {
    const double idle = idleTimeProvider_.idleSeconds();
    const FrontmostReading frontmost =
        readFrontmost(frontmostMemory_, frontmostApplication_.frontmostApplication(), instant);
    frontmostMemory_ = frontmost.memory;
    const ActivityState state = sampleState(frontmost.application, idle, instant.wallDate);
    trackNoInputRun(state, instant, idle);
    TrackingInstant boundary = boundaryFor(state, instant, idle);
    // A switch through a moment with nothing in front happened where that
    // moment began (the engine never closes a stretch before its start).
    if (frontmost.inFrontSince && frontmost.inFrontSince->monotonicTime < boundary.monotonicTime) {
        boundary = *frontmost.inFrontSince;
    }
    if (auto closed = timelineEngine_.observe(state, boundary)) {
        recordClosedInterval(*closed);
    }
    mirrorOpenInterval();
    publishCurrent(state);
}

ActivitySegment SessionManager::segmentFor(const ActivityState& state, Date start) const {
    ActivitySegment segment(Uuid::generate(), start, start, 0.0, state.applicationName,
                            state.bundleIdentifier, state.classification, state.isInactive);
    segment.setActivitySource(state.activitySource);
    segment.browserBundleIdentifier = state.browserBundleIdentifier;
    segment.hostname = state.hostname;
    segment.tabSessionIdentifier = state.tabSessionIdentifier;
    segment.pdfIdentifier = state.pdfIdentifier;
    segment.setPdfDisplayLabel(state.pdfDisplayLabel);
    segment.setPdfLabelSource(state.pdfLabelSource);
    segment.setBrowserFallbackReason(state.browserFallbackReason);
    segment.session = activeSession_->id;
    return segment;
}

// Every close resets the mirror, so a missing mirror means the engine's open
// stretch is new.
void SessionManager::mirrorOpenInterval() {
    const auto& open = timelineEngine_.openInterval();
    if (!open) {
        openPersistedSegment_.reset();
        openSegmentWritten_ = false;
    } else if (!openPersistedSegment_) {
        openPersistedSegment_ = segmentFor(open->state, open->start.wallDate);
        openSegmentWritten_ = false;
        openStretchStartMonotonic_ = open->start.monotonicTime;
    }
}

void SessionManager::recordClosedInterval(const FinalizedActivityInterval& interval) {
    ActivitySegment segment = openPersistedSegment_
                                  ? *openPersistedSegment_
                                  : segmentFor(interval.state, interval.startDate);
    const bool written = openSegmentWritten_;
    openPersistedSegment_.reset();
    openSegmentWritten_ = false;
    if (interval.duration <= 0.0 && !written) {
        return;
    }
    if (openStretchStartMonotonic_) {
        noteQueuedBoundary({interval.endDate, *openStretchStartMonotonic_ + interval.duration});
    }
    if (interval.duration <= 0.0) {
        // The save cadence wrote this stretch while it was growing, but its end
        // has since been placed back at its start (where input stopped or
        // nothing came to the front): it holds no time, so its row goes.
        pendingChanges_.deletedSegments.push_back(segment.id);
    } else {
        segment.endDate = interval.endDate;
        segment.duration = interval.duration;
        declareOfflineStudy(interval);
        sessionSegments_.push_back(segment);
        pendingChanges_.segments.push_back(std::move(segment));
    }
    activeSession_->timerDuration = timerValueAt(monotonicTimeProvider_.now());
    queueSession();
    save();
}

void SessionManager::publishCurrent(const ActivityState& state) {
    // A website or PDF is shown by its hostname or label, anything else by
    // the application's name.
    std::string name = state.hostname          ? *state.hostname
                       : state.pdfDisplayLabel ? *state.pdfDisplayLabel
                                               : state.applicationName;
    if (name == currentApplicationName_ && state.bundleIdentifier == currentBundleIdentifier_ &&
        state.classification == currentClassification_ && state.isInactive == currentIsInactive_) {
        return;
    }
    currentApplicationName_ = std::move(name);
    currentBundleIdentifier_ = state.bundleIdentifier;
    currentClassification_ = state.classification;
    currentIsInactive_ = state.isInactive;
    publish(ObservedField::currentActivity);
}

}  // namespace lumenote::recording
