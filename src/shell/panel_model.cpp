#include "shell/panel_model.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "recording/focus_score_text.hpp"
#include "recording/no_input_prompt.hpp"
#include "recording/session_figures.hpp"
#include "recording/study_time.hpp"
#include "shell/duration_text.hpp"

namespace lumenote::shell {

namespace {

using classification::ActivityClassification;

std::string activityText(const LiveSessionValues& values, bool paused) {
    if (paused) {
        return "Paused: nothing is recorded until you resume.";
    }
    if (values.asleep) {
        return "The computer is asleep or locked.";
    }
    if (values.studyState == recording::LiveStudyState::passiveStudy) {
        return std::string(recording::kStudyingAwayFromMac);
    }
    if (values.studyState == recording::LiveStudyState::unconfirmedNoInput) {
        return "No input for a while.";
    }
    if (values.activityName.empty()) {
        return "Waiting for the first activity…";
    }
    return values.activityName;
}

}  // namespace

std::string_view classificationChipText(ActivityClassification classification) {
    switch (classification) {
        case ActivityClassification::focused:
            return recording::kFocusedName;
        case ActivityClassification::distracting:
            return recording::kDistractingName;
        case ActivityClassification::neutral:
            return recording::kNeutralName;
        case ActivityClassification::unclassified:
            return recording::kUnclassifiedName;
        case ActivityClassification::ignored:
            return recording::kIgnoredName;
    }
    return recording::kUnclassifiedName;
}

std::optional<LiveClassificationTarget> liveClassificationTarget(
    const std::string& currentBundleIdentifier, const std::string& currentName,
    const std::optional<recording::ActivitySegment>& open, const std::string& ownBundleIdentifier) {
    if (currentBundleIdentifier.empty() || currentBundleIdentifier == ownBundleIdentifier) {
        return std::nullopt;
    }
    LiveClassificationTarget target{currentBundleIdentifier, std::nullopt, currentName};
    if (open && open->tabSessionIdentifier && !open->isInactive &&
        (open->bundleIdentifier == currentBundleIdentifier ||
         open->browserBundleIdentifier == currentBundleIdentifier)) {
        target.tab = open->tabSessionIdentifier;
    }
    return target;
}

LiveSessionPanel liveSessionPanel(const recording::StudySession& session,
                                  const LiveSessionValues& values) {
    LiveSessionPanel panel;
    panel.subject = session.subject;
    panel.goal = session.goal;
    panel.paused = session.status() == recording::StudySessionStatus::paused;
    panel.away = !panel.paused && values.studyState == recording::LiveStudyState::passiveStudy;
    panel.elapsedText = clockText(values.timerValue);
    if (session.timingMode() == recording::SessionTimingMode::timer) {
        panel.remainingText =
            clockText(std::max(0.0, session.plannedDuration - values.timerValue) + 0.999) + " left";
    }
    panel.activityText = activityText(values, panel.paused);
    const bool observing = !panel.paused && !values.asleep && !values.activityName.empty() &&
                           values.studyState == recording::LiveStudyState::computerActivity;
    if (observing) {
        panel.classification = values.classification;
    }
    panel.splitText =
        fmt::format("{} {} · {} {}", recording::kFocusedName, clockText(values.focusedSeconds),
                    recording::kDistractingName, clockText(values.distractingSeconds));
    panel.pauseTitle = panel.paused ? "Resume" : "Pause";
    panel.awayTitle =
        panel.away ? "Return to Computer Study" : std::string(recording::kStudyAwayControl);
    return panel;
}

std::pair<double, double> focusedAndDistractingSeconds(
    const std::vector<recording::ActivitySegment>& segments,
    const std::optional<recording::ActivitySegment>& open) {
    double focused = 0.0;
    double distracting = 0.0;
    const auto add = [&](const recording::ActivitySegment& segment) {
        if (segment.isInactive || !(segment.duration > 0.0)) {
            return;
        }
        if (segment.classification() == ActivityClassification::focused) {
            focused += segment.duration;
        } else if (segment.classification() == ActivityClassification::distracting) {
            distracting += segment.duration;
        }
    };
    for (const recording::ActivitySegment& segment : segments) {
        if (!open || segment.id != open->id) {
            add(segment);
        }
    }
    if (open) {
        add(*open);
    }
    return {focused, distracting};
}

PostSessionPanel postSessionPanel(const recording::StudySession& session,
                                  const std::vector<recording::PersonalBest>& bests,
                                  bool allowsCelebration) {
    using namespace recording::TrackingCalculationService;
    PostSessionPanel panel;
    panel.heading = session.subject;
    const std::string status =
        session.status() == recording::StudySessionStatus::completed ? "Completed" : "Interrupted";
    panel.subtitle =
        fmt::format("{} after {}", status, recording::clockDurationText(session.timerDuration));
    for (const recording::TotalsLine& line : recording::totalsBreakdown(session)) {
        if (line.depth > 0 && line.seconds < 0.5) {
            continue;
        }
        panel.totals.push_back(
            {std::string(line.name), recording::clockDurationText(line.seconds), line.depth});
    }
    const double evidence = session.focusedDuration + session.distractedDuration;
    if (const auto score = displayableFocusScore(session.focusScore, evidence)) {
        panel.focusScoreText = "Focus score " + formatFocusScore(score);
        panel.coverageText = formatScoreCoverage(recording::storedCoverage(session));
    } else {
        panel.focusScoreText = std::string(kNotEnoughEvidenceToShowScoreText);
    }
    for (const recording::PersonalBest& best : bests) {
        const std::string_view title = recording::personalBestTitle(best.kind);
        const std::string value = best.kind == recording::PersonalBestKind::highestFocusScore
                                      ? formatFocusScore(best.value)
                                      : recording::clockDurationText(best.value);
        panel.bests.push_back(fmt::format("{}: {}", title, value));
    }
    if (allowsCelebration && !bests.empty()) {
        panel.celebration =
            bests.size() == 1 ? "You set a personal best. Well done!"
                              : fmt::format("You set {} personal bests. Well done!", bests.size());
    }
    return panel;
}

}  // namespace lumenote::shell
