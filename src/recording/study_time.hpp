// Study time and the one breakdown of a session's totals that every front end
// shows, in the same words.
//
// Study time is what the session counts as studied: time at the computer
// with input (Focused, Distracting, Neutral and Unclassified activity) plus
// time confirmed as study away from the computer. Unconfirmed time without
// input, Break time, the recorder's own activity (Ignored) and time the
// computer slept or was locked are never study time. The confirmed states
// are labels on time without input, so the no-input total is shown split
// into what was confirmed and what was not; the parts never add up to more
// than the session.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "recording/session_records.hpp"

namespace lumenote::recording {

// The names of the totals, one per state, used by every command.
inline constexpr std::string_view kStudyTimeName = "Study time";
inline constexpr std::string_view kComputerStudyName = "Computer study";
inline constexpr std::string_view kFocusedName = "Focused";
inline constexpr std::string_view kDistractingName = "Distracting";
inline constexpr std::string_view kNeutralName = "Neutral";
inline constexpr std::string_view kUnclassifiedName = "Unclassified";
inline constexpr std::string_view kNotCountedName = "Not counted as study";
inline constexpr std::string_view kUnconfirmedNoInputName = "No input, unconfirmed";
inline constexpr std::string_view kIgnoredName = "Ignored";
inline constexpr std::string_view kAsleepOrLockedName = "Computer asleep or locked";

// Focused, Distracting, Neutral and Unclassified time.
double computerStudyTime(const StudySession& session);
// Time without input that was confirmed neither as study nor as a break.
double unconfirmedNoInputTime(const StudySession& session);
// Computer study plus confirmed study away from the computer.
double studyTime(const StudySession& session);

// One line of the breakdown: its name, its seconds and its depth under the
// line it belongs to (0 for a heading).
struct TotalsLine {
    std::string_view name;
    double seconds = 0.0;
    int depth = 0;
};

// Study time first, then what it is made of, then what is not counted:
//   Study time
//     Computer study
//       Focused, Distracting, Neutral, Unclassified
//     Studying away from Mac
//   Not counted as study
//     Break, No input (unconfirmed), Ignored, Computer asleep or locked
// Every line is present, zero or not, so that columns stay in place.
std::vector<TotalsLine> totalsBreakdown(const StudySession& session);

struct TotalsTextOptions {
    // Leaves out the lines under half a second, headings excepted.
    bool skipEmpty = false;
    // Follows Studying away from Mac, Break and the asleep time, when there
    // is some, with the sentence that says what the state means.
    bool explain = false;
    // Spaces before every line.
    std::size_t indent = 0;
};

// The width of the name column, indentation included: figures printed
// beside the breakdown line up with it.
inline constexpr std::size_t kTotalsNameColumn = 28;

// The breakdown as indented lines of a name and a clock duration, the
// durations right-aligned in one column.
std::string totalsBreakdownText(const StudySession& session, TotalsTextOptions options = {});

}  // namespace lumenote::recording
