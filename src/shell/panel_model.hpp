// What the tray panel shows during and after a session, as plain text built
// from the recorder's values, so that the panel's widgets only lay it out and
// every figure comes from the core's own calculations.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "classification/classification_enumerations.hpp"
#include "recording/enumerations.hpp"
#include "recording/personal_best.hpp"
#include "recording/session_records.hpp"

namespace lumenote::shell {

// The live values the session panel is drawn from.
struct LiveSessionValues {
    double timerValue = 0.0;  // seconds counted so far
    recording::LiveStudyState studyState = recording::LiveStudyState::computerActivity;
    std::string activityName;  // empty while nothing is observed
    classification::ActivityClassification classification =
        classification::ActivityClassification::unclassified;
    bool asleep = false;
    // Focused and Distracting seconds of the stretches recorded so far.
    double focusedSeconds = 0.0;
    double distractingSeconds = 0.0;
};

struct LiveSessionPanel {
    std::string subject;
    std::string goal;  // empty when the session has none
    bool paused = false;
    bool away = false;
    std::string elapsedText;                   // "12:34" or "1:02:03"
    std::optional<std::string> remainingText;  // "12:26 left", timer mode only
    std::string activityText;                  // what is in front, or why nothing is
    // The chip beside the activity; absent while nothing is observed.
    std::optional<classification::ActivityClassification> classification;
    std::string splitText;   // "Focused 10:02 · Distracting 1:15"
    std::string pauseTitle;  // "Pause" or "Resume"
    std::string awayTitle;   // "Study away from Mac" or "Return to Computer Study"
};

LiveSessionPanel liveSessionPanel(const recording::StudySession& session,
                                  const LiveSessionValues& values);

// The Focused and Distracting seconds of the stretches recorded so far, the
// open one as far as it was last saved; stretches without input count as
// neither.
std::pair<double, double> focusedAndDistractingSeconds(
    const std::vector<recording::ActivitySegment>& segments,
    const std::optional<recording::ActivitySegment>& open);

struct SummaryLine {
    std::string name;
    std::string value;
    int depth = 0;
};

struct PostSessionPanel {
    std::string heading;   // "Biology"
    std::string subtitle;  // "Completed after 25:00"
    std::vector<SummaryLine> totals;
    std::string focusScoreText;      // "Focus score 82%" or why there is none
    std::string coverageText;        // empty when no score is shown
    std::vector<std::string> bests;  // "New longest focus: 42:10"
    // A line of praise, only when the session may be celebrated and set a best.
    std::optional<std::string> celebration;
};

PostSessionPanel postSessionPanel(const recording::StudySession& session,
                                  const std::vector<recording::PersonalBest>& bests,
                                  bool allowsCelebration);

// What "Classify for this session" changes for the activity in front: the
// browser tab of a website or PDF recorded in it, else the application.
struct LiveClassificationTarget {
    std::string bundleIdentifier;  // the application, or the browser of the tab
    std::optional<Uuid> tab;       // set for a website or PDF in a browser tab
    std::string name;              // as the panel names it

    friend bool operator==(const LiveClassificationTarget&,
                           const LiveClassificationTarget&) = default;
};

// Nothing while nothing is observed, and never Lumenote itself (always
// Ignored). `open` is the stretch being recorded, which tells a tab.
std::optional<LiveClassificationTarget> liveClassificationTarget(
    const std::string& currentBundleIdentifier, const std::string& currentName,
    const std::optional<recording::ActivitySegment>& open, const std::string& ownBundleIdentifier);

// The classes offered for the session, in the order of the menu.
inline constexpr classification::ActivityClassification kSessionClassChoices[] = {
    classification::ActivityClassification::focused,
    classification::ActivityClassification::neutral,
    classification::ActivityClassification::distracting,
    classification::ActivityClassification::ignored};

// The words of a classification as its chip shows them ("Focused",
// "Distracting", "Neutral", "Unclassified", "Ignored").
std::string_view classificationChipText(classification::ActivityClassification classification);

}  // namespace lumenote::shell
