#include "terminal/record_view.hpp"

#include <fmt/format.h>

#include <cmath>

#include "recording/focus_score_text.hpp"
#include "recording/session_figures.hpp"

namespace lumenote::terminal {

namespace {

std::string classificationName(classification::ActivityClassification classification) {
    switch (classification) {
        case classification::ActivityClassification::focused:
            return "Focused";
        case classification::ActivityClassification::distracting:
            return "Distracting";
        case classification::ActivityClassification::neutral:
            return "Neutral";
        case classification::ActivityClassification::unclassified:
            return "Unclassified";
        case classification::ActivityClassification::ignored:
            return "Ignored";
    }
    return {};
}

std::string timerText(const RecordingSnapshot& snapshot) {
    if (snapshot.timingMode == recording::SessionTimingMode::timer) {
        const double left = std::max(0.0, snapshot.plannedDuration - snapshot.timerValue);
        return recording::clockDurationText(std::ceil(left)) + " left";
    }
    return recording::clockDurationText(snapshot.timerValue);
}

// "2026-11-16 09:30" in the user's time zone.
std::string localMinuteText(Date date, const LocalCalendar& calendar) {
    std::string text = calendar.formatIso8601(date).substr(0, 16);
    text[10] = ' ';
    return text;
}

}  // namespace

std::string statusLine(const RecordingSnapshot& snapshot) {
    std::string line = snapshot.subject + " · ";
    if (snapshot.status == recording::StudySessionStatus::paused) {
        return line + fmt::format("Paused {} · {} done",
                                  recording::clockDurationText(snapshot.pauseDuration),
                                  recording::clockDurationText(snapshot.timerValue));
    }
    line += timerText(snapshot) + " · ";
    if (snapshot.sleeping) {
        return line + "Computer asleep or locked";
    }
    switch (snapshot.liveState) {
        case recording::LiveStudyState::passiveStudy:
            return line + std::string(recording::kStudyingAwayFromMac);
        case recording::LiveStudyState::unconfirmedNoInput:
            return line + "No input · " + snapshot.activityName;
        case recording::LiveStudyState::computerActivity:
            break;
    }
    return line + snapshot.activityName + " · " + classificationName(snapshot.classification);
}

std::string keyHelp(bool paused, bool away) {
    return fmt::format(
        "[p] {}  [a] {}  [e] end  [q] quit", paused ? "resume" : "pause",
        away ? recording::kBackToComputerStudyControl : recording::kStudyAwayControl);
}

std::string promptQuestion(const recording::NoInputClassificationPrompt& prompt,
                           const LocalCalendar& calendar) {
    std::string text = fmt::format("{}\n{}\n", recording::kNoInputSheetTitle,
                                   recording::noInputPromptText(prompt, calendar));
    if (recording::asksToEndSession(prompt)) {
        text += fmt::format("{}\n[x] {}  ", recording::kLeftRunningExplanation,
                            recording::kEndSessionThereAnswer);
    }
    return text + fmt::format("[s] {}  [b] {}  [l] {}", recording::kStudyingAwayFromMac,
                              recording::kBreakAnswer, recording::kLeaveUnconfirmedAnswer);
}

std::string recoveryOffer(const recording::ActiveSessionRecoverySummary& summary,
                          const std::string& subject, const LocalCalendar& calendar) {
    return fmt::format(
        "{}\n{}\n\"{}\" started {}; {} confirmed, {} after the last confirmed moment left "
        "out.\n[c] {}  [e] end it as interrupted",
        recording::kRecoveryPromptTitle, recording::kRecoveryPromptDetail, subject,
        localMinuteText(summary.startTime, calendar),
        recording::clockDurationText(summary.confirmedDuration),
        recording::clockDurationText(summary.uncertainDuration), recording::kContinueFromNowAction);
}

std::string quitQuestion() {
    return "A study session is active\n"
           "Choose how Lumenote should handle the active session before quitting.\n"
           "[e] End Session and Quit  [k] Keep Lumenote Running  [i] Quit and Mark Session "
           "Interrupted";
}

std::string sessionSummary(const recording::StudySession& session) {
    using namespace recording::TrackingCalculationService;
    std::string text = fmt::format("{} — {} after {}\n", session.subject, session.statusRawValue,
                                   recording::clockDurationText(session.timerDuration));
    const std::pair<std::string_view, double> totals[] = {
        {"Focused", session.focusedDuration},
        {"Distracting", session.distractedDuration},
        {"Neutral", session.neutralDuration},
        {"Unclassified", session.unclassifiedDuration()},
        {"No input", session.inactiveDuration},
        {"Ignored", session.ignoredDuration()},
        {recording::kStudyingAwayFromMac, session.passiveStudyDuration()},
        {"Break", session.confirmedBreakDuration()},
        {"Computer asleep or locked", session.systemExcludedDuration()},
    };
    for (const auto& [name, seconds] : totals) {
        if (seconds >= 0.5) {
            text += fmt::format("  {:<32}{}\n", name, recording::clockDurationText(seconds));
        }
    }
    const double evidence = session.focusedDuration + session.distractedDuration;
    const auto score = displayableFocusScore(session.focusScore, evidence);
    if (score) {
        text += fmt::format("Focus score {} · {}\n", formatFocusScore(score),
                            formatScoreCoverage(recording::storedCoverage(session)));
    } else {
        text += std::string(kNotEnoughEvidenceToShowScoreText) + "\n";
    }
    return text;
}

}  // namespace lumenote::terminal
