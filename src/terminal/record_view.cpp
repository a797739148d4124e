#include "terminal/record_view.hpp"

#include <fmt/format.h>

#include <cmath>

#include "foundation/text.hpp"
#include "recording/focus_score_text.hpp"
#include "recording/session_figures.hpp"
#include "recording/study_time.hpp"
#include "shell/quit_decision.hpp"

namespace lumenote::terminal {

namespace {

std::string classificationName(classification::ActivityClassification classification) {
    switch (classification) {
        case classification::ActivityClassification::focused:
            return std::string(recording::kFocusedName);
        case classification::ActivityClassification::distracting:
            return std::string(recording::kDistractingName);
        case classification::ActivityClassification::neutral:
            return std::string(recording::kNeutralName);
        case classification::ActivityClassification::unclassified:
            return std::string(recording::kUnclassifiedName);
        case classification::ActivityClassification::ignored:
            return std::string(recording::kIgnoredName);
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

namespace {

constexpr std::string_view kEllipsis = "…";
constexpr std::size_t kShortestActivityName = 12;

// `text` cut to `width` characters, the last of them an ellipsis.
std::string cutToWidth(const std::string& text, std::size_t width) {
    if (text::characterCount(text) <= width) {
        return text;
    }
    if (width == 0) {
        return {};
    }
    return text::prefixCharacters(text, width - 1) + std::string(kEllipsis);
}

// The line without its goal, the activity named as `activityName`.
std::string lineWithout(const RecordingSnapshot& snapshot, const std::string& activityName) {
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
            return line + "No input · " + activityName;
        case recording::LiveStudyState::computerActivity:
            break;
    }
    line += activityName + " · " + classificationName(snapshot.classification);
    if (!snapshot.browserWarning.empty()) {
        line += " · " + snapshot.browserWarning;
    }
    return line;
}

}  // namespace

std::string statusLine(const RecordingSnapshot& snapshot, std::size_t width) {
    std::string line = lineWithout(snapshot, snapshot.activityName);
    const std::string withGoal =
        snapshot.goal.empty() ? line
                              : line + " · Goal: " + text::collapsingWhiteSpace(snapshot.goal);
    if (width == 0 || text::characterCount(withGoal) <= width) {
        return withGoal;
    }
    if (text::characterCount(line) > width) {
        const std::size_t excess = text::characterCount(line) - width;
        const std::size_t nameLength = text::characterCount(snapshot.activityName);
        if (nameLength > kShortestActivityName) {
            const std::size_t kept =
                std::max(kShortestActivityName, excess < nameLength ? nameLength - excess : 0);
            line = lineWithout(snapshot, cutToWidth(snapshot.activityName, kept));
        }
    }
    return cutToWidth(line, width);
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
    using shell::QuitChoice;
    return fmt::format("{}\n{}\n[e] {}  [k] {}  [i] {}", shell::kQuitQuestionTitle,
                       shell::kQuitQuestionExplanation,
                       shell::quitChoiceTitle(QuitChoice::endSessionAndQuit),
                       shell::quitChoiceTitle(QuitChoice::keepRunning),
                       shell::quitChoiceTitle(QuitChoice::quitAndMarkInterrupted));
}

std::string personalBestLine(const recording::PersonalBest& best) {
    const std::string_view title = recording::personalBestTitle(best.kind);
    switch (best.kind) {
        case recording::PersonalBestKind::dailyGoalComplete:
            return fmt::format("★ {}: {} of study today", title,
                               recording::clockDurationText(best.value));
        case recording::PersonalBestKind::highestFocusScore:
            return fmt::format("★ {}: {}", title,
                               recording::TrackingCalculationService::formatFocusScore(best.value));
        case recording::PersonalBestKind::longestFocus:
        case recording::PersonalBestKind::longestSession:
            break;
    }
    return fmt::format("★ {}: {}", title, recording::clockDurationText(best.value));
}

std::string sessionSummary(const recording::StudySession& session,
                           const std::vector<recording::PersonalBest>& bests) {
    using namespace recording::TrackingCalculationService;
    std::string text = fmt::format("{} — {} after {}\n", session.subject, session.statusRawValue,
                                   recording::clockDurationText(session.timerDuration));
    text += recording::totalsBreakdownText(session, {.skipEmpty = true, .indent = 2});
    const double evidence = session.focusedDuration + session.distractedDuration;
    const auto score = displayableFocusScore(session.focusScore, evidence);
    if (score) {
        text += fmt::format("Focus score {} · {}\n", formatFocusScore(score),
                            formatScoreCoverage(recording::storedCoverage(session)));
    } else {
        text += std::string(kNotEnoughEvidenceToShowScoreText) + "\n";
    }
    for (const recording::PersonalBest& best : bests) {
        text += personalBestLine(best) + "\n";
    }
    return text;
}

}  // namespace lumenote::terminal
