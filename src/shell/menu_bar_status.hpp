// MenuBarStatus: what the tray's status item shows, built from the session
// manager's state, and the image, title and accessibility text drawn from
// it. The tray redraws only when the status differs from the one it last
// drew (StatusItemRendering).
#pragma once

#include <optional>
#include <string>

#include "recording/enumerations.hpp"
#include "recording/session_records.hpp"

namespace lumenote::recording {
class SessionManager;
}

namespace lumenote::shell {

struct MenuBarStatus {
    enum class Activity { idle, recording, paused };

    Activity activity = Activity::idle;
    double elapsed = 0.0;  // seconds on the session's timer
    // Present while a session is running.
    std::optional<recording::LiveStudyState> studyState;

    friend bool operator==(const MenuBarStatus&, const MenuBarStatus&) = default;
};

// `idle` without an active session, `recording` while it runs (with its live
// study state), `paused` while it is paused; `elapsed` is the timer value.
MenuBarStatus menuBarStatus(const std::optional<recording::StudySessionStatus>& sessionStatus,
                            double timerValue, recording::LiveStudyState studyState);
MenuBarStatus menuBarStatus(recording::SessionManager& manager);

// The image drawn for a status. The three system symbols stand for the
// recorder's activity; where the desktop's icon theme has no stand-in for one
// the application's own image is drawn instead.
enum class MenuBarImage {
    applicationImage,  // "LumenoteMenuBarIcon"
    recordCircleFill,  // "record.circle.fill"
    bookClosedFill,    // "book.closed.fill": studying away from the computer
    pauseCircleFill    // "pause.circle.fill"
};
MenuBarImage menuBarImage(const MenuBarStatus& status);
// The symbol's name as the image is known on every platform.
std::string_view menuBarImageName(MenuBarImage image);

// The elapsed time as the tray's title shows it: "" while idle, otherwise
// "4:05" under an hour and "1:04:05" from an hour, whole seconds.
std::string menuBarTitle(const MenuBarStatus& status);

// The elapsed time in words for the accessibility text: "no time recorded"
// under one whole second, "45 seconds" and "1 second" under a minute, then
// whole minutes as "1 minute", "25 minutes", "1 hour", "1 hour 5 minutes",
// "26 hours 40 minutes" (seconds are dropped from a minute on, so the text a
// screen reader speaks changes once a minute).
std::string spokenElapsedTime(double seconds);

// "Lumenote. No session running.", "Lumenote. Recording, 25 minutes.",
// "Lumenote. Recording, Studying away from Mac, 25 minutes." or
// "Lumenote. Paused at 25 minutes."; also the tray icon's tooltip.
std::string menuBarAccessibilityText(const MenuBarStatus& status);

// Remembers the last status drawn, so that nothing is redrawn while nothing
// observable changed (same activity, same study state, equal elapsed value).
class StatusItemRendering {
  public:
    // True, and remembered, when `status` differs from the last one drawn.
    bool needsRedraw(const MenuBarStatus& status);
    const std::optional<MenuBarStatus>& lastRendered() const { return lastRendered_; }
    // The next status is drawn whatever it is (the tray host came back).
    void forget() { lastRendered_.reset(); }

  private:
    std::optional<MenuBarStatus> lastRendered_;
};

}  // namespace lumenote::shell
