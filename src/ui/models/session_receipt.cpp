#include "ui/models/session_receipt.hpp"

#include <algorithm>
#include <map>
#include <unordered_map>

#include "recording/focus_score_text.hpp"
#include "recording/replay_rows.hpp"
#include "recording/study_time.hpp"
#include "recording/tracking_calculation.hpp"
#include "shell/duration_text.hpp"
#include "ui/models/receipt_dates.hpp"

namespace lumenote::ui::models {

namespace {

namespace Tracking = recording::TrackingCalculationService;
using Tracking::AccountedState;

// The session's end: its end date, or its start plus its timer time while
// it has none.
Date endOf(const recording::StudySession& session) {
    return session.endDate.value_or(session.startDate.addingSeconds(session.timerDuration));
}

bool isComputerStudy(AccountedState state) {
    return state == AccountedState::focused || state == AccountedState::distracting ||
           state == AccountedState::neutral || state == AccountedState::unclassified;
}

// Seconds of computer study per activity, under the session's own version,
// each activity named by the first segment that carries its identifier, as
// the replay titles it. A piece whose segment cannot be found is left out
// rather than shown by its raw identifier (a hostname or a PDF identity).
std::vector<ReceiptLine> topActivities(const recording::StudySession& session) {
    const auto calculation = Tracking::calculateSessionTotals(
        session, endOf(session), Tracking::effectiveCalculationVersion(session));
    std::unordered_map<std::string, const recording::ActivitySegment*> namers;
    for (const recording::ActivitySegment& segment : session.segments) {
        namers.try_emplace(Tracking::makeAccountingSample(segment).stableIdentifier, &segment);
    }
    std::map<std::string, double> secondsByTitle;
    for (const auto& piece : calculation.contributions) {
        const auto namer = namers.find(piece.stableIdentifier);
        if (!isComputerStudy(piece.classification) || !(piece.duration > 0.0) ||
            namer == namers.end()) {
            continue;
        }
        secondsByTitle[recording::segmentTitle(*namer->second)] += piece.duration;
    }
    std::vector<ReceiptLine> lines;
    for (const auto& [title, seconds] : secondsByTitle) {
        lines.push_back(receiptLine(title, seconds));
    }
    // Largest first; equal times keep the titles' order.
    std::stable_sort(lines.begin(), lines.end(), [](const ReceiptLine& a, const ReceiptLine& b) {
        return a.seconds > b.seconds;
    });
    if (lines.size() > kReceiptActivityCount) {
        lines.resize(kReceiptActivityCount);
    }
    return lines;
}

std::string bestText(const recording::PersonalBest& best) {
    const std::string value = best.kind == recording::PersonalBestKind::highestFocusScore
                                  ? Tracking::formatFocusScore(best.value)
                                  : shell::durationText(best.value);
    return std::string(recording::personalBestTitle(best.kind)) + ": " + value;
}

}  // namespace

SessionReceipt makeSessionReceipt(const recording::StudySession& session,
                                  const std::vector<recording::PersonalBest>& bests,
                                  const ReceiptOptions& options, const LocalCalendar& calendar) {
    SessionReceipt receipt;
    receipt.subject = session.subject;
    if (options.includeGoal && !session.goal.empty()) {
        receipt.goal = session.goal;
    }
    receipt.dayText = receiptDayText(session.startDate, calendar);
    if (options.includeExactTimes) {
        receipt.timesText = receiptTimeText(session.startDate, calendar) + " – " +
                            receiptTimeText(endOf(session), calendar);
    }
    receipt.duration = shell::durationText(session.timerDuration);
    receipt.studyTime = shell::durationText(recording::studyTime(session));

    const double evidence = session.focusedDuration + session.distractedDuration;
    if (const auto score = Tracking::displayableFocusScore(session.focusScore, evidence)) {
        receipt.focusScore = Tracking::formatFocusScore(score);
    } else {
        receipt.focusScoreAbsence = std::string(Tracking::kNotEnoughEvidenceToShowScoreText);
    }
    receipt.split = {.focused = session.focusedDuration,
                     .distracting = session.distractedDuration,
                     .neutral = session.neutralDuration,
                     .unclassified = session.unclassifiedDuration()};
    receipt.topActivities = topActivities(session);
    for (const recording::PersonalBest& best : bests) {
        receipt.personalBests.push_back(bestText(best));
    }
    if (options.includeBranding) {
        receipt.branding = std::string(kReceiptBrandingText);
    }
    return receipt;
}

}  // namespace lumenote::ui::models
