// What happens to an active session when the application is asked to stop.
// The user quitting (the tray's "Quit", a window's close with nothing else
// open) is asked about an active session; a logout, a shutdown or a
// termination signal never asks: the session is left for recovery, as the
// terminal recorder leaves it.
#pragma once

#include <array>
#include <string_view>

namespace lumenote::shell {

enum class QuitReason { userQuit, logout, terminationSignal };

enum class QuitDecision {
    quitNow,           // nothing is active: quit at once
    askAboutSession,   // show the quit question; wait for its answer
    leaveForRecovery,  // write the checkpoint, keep the session for the next start
    alreadyAsking      // the question is on screen: a second request changes nothing
};

// `sessionActive` is true for a running or paused session; `deciding` while
// the quit question is on screen.
QuitDecision quitDecision(QuitReason reason, bool sessionActive, bool deciding);

inline constexpr std::string_view kQuitQuestionTitle = "A study session is active";
inline constexpr std::string_view kQuitQuestionExplanation =
    "Choose how Lumenote should handle the active session before quitting.";

enum class QuitChoice { endSessionAndQuit, keepRunning, quitAndMarkInterrupted };

// The three choices in the order they are offered.
inline constexpr std::array<QuitChoice, 3> kQuitChoices{
    QuitChoice::endSessionAndQuit, QuitChoice::keepRunning, QuitChoice::quitAndMarkInterrupted};

// "End Session and Quit", "Keep Lumenote Running", "Quit and Mark Session
// Interrupted".
std::string_view quitChoiceTitle(QuitChoice choice);

}  // namespace lumenote::shell
