// What `lumenote-cli record` shows: the live status line, the questions it
// asks and the summary at the end. Pure text over plain values, so that the
// terminal host only decides when to draw.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "recording/active_session_checkpoint.hpp"
#include "recording/enumerations.hpp"
#include "recording/no_input_prompt.hpp"
#include "recording/personal_best.hpp"
#include "recording/session_records.hpp"

namespace lumenote::terminal {

// What the live line is drawn from.
struct RecordingSnapshot {
    std::string subject;
    std::string goal;  // empty when the session has none
    recording::StudySessionStatus status = recording::StudySessionStatus::running;
    recording::SessionTimingMode timingMode = recording::SessionTimingMode::timer;
    double plannedDuration = 0.0;  // seconds
    double timerValue = 0.0;       // seconds counted so far
    double pauseDuration = 0.0;    // seconds of the current pause
    recording::LiveStudyState liveState = recording::LiveStudyState::computerActivity;
    std::string activityName;  // application, website or PDF label
    classification::ActivityClassification classification =
        classification::ActivityClassification::unclassified;
    bool sleeping = false;
    // Why the browser in front has its websites unrecorded; empty when
    // nothing is amiss. Shown after the classification.
    std::string browserWarning;
};

// "Biology · 12:34 left · Text Editor · Focused · Goal: chapter 3",
// "Biology · Paused 3:02 · 10:00 done", "Biology · 25:00 · Studying away from
// Mac" ... The timer reads as time left in timer mode and time elapsed when
// open-ended.
//
// A line wider than `width` characters (0: no limit) is fitted, so that a
// narrow terminal never wraps it: the goal goes first, then the activity
// name is shortened (to no less than 12 characters, with an ellipsis), and
// what is still too wide is cut with an ellipsis.
std::string statusLine(const RecordingSnapshot& snapshot, std::size_t width = 0);

// The keys offered on a terminal, for the line under the status.
std::string keyHelp(bool paused, bool away);

// The no-input question with its answer keys.
std::string promptQuestion(const recording::NoInputClassificationPrompt& prompt,
                           const LocalCalendar& calendar);

// The recovery offer at start with its choices.
std::string recoveryOffer(const recording::ActiveSessionRecoverySummary& summary,
                          const std::string& subject, const LocalCalendar& calendar);

// The question asked when quitting while a session is active.
std::string quitQuestion();

// The end-of-session summary: subject, status, duration, every total that is
// not zero, the focus score (or why there is none) and its coverage, then a
// line per personal best.
std::string sessionSummary(const recording::StudySession& session,
                           const std::vector<recording::PersonalBest>& bests = {});

// One line of the summary per best the session set, e.g.
// "★ New longest focus: 42:10".
std::string personalBestLine(const recording::PersonalBest& best);

}  // namespace lumenote::terminal
