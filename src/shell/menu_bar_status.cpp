#include "shell/menu_bar_status.hpp"

#include <fmt/format.h>

#include <cmath>

#include "recording/no_input_prompt.hpp"
#include "recording/session_manager.hpp"
#include "shell/duration_text.hpp"

namespace lumenote::shell {

namespace {

long long wholeSeconds(double seconds) {
    return std::isfinite(seconds) && seconds > 0.0 ? static_cast<long long>(std::floor(seconds))
                                                   : 0;
}

std::string counted(long long count, std::string_view unit) {
    return fmt::format("{} {}{}", count, unit, count == 1 ? "" : "s");
}

}  // namespace

MenuBarStatus menuBarStatus(const std::optional<recording::StudySessionStatus>& sessionStatus,
                            double timerValue, recording::LiveStudyState studyState) {
    if (!sessionStatus || (*sessionStatus != recording::StudySessionStatus::running &&
                           *sessionStatus != recording::StudySessionStatus::paused)) {
        return {};
    }
    if (*sessionStatus == recording::StudySessionStatus::paused) {
        return {MenuBarStatus::Activity::paused, timerValue, std::nullopt};
    }
    return {MenuBarStatus::Activity::recording, timerValue, studyState};
}

MenuBarStatus menuBarStatus(recording::SessionManager& manager) {
    const auto& session = manager.activeSession();
    if (!session) {
        return {};
    }
    return menuBarStatus(session->status(), manager.currentTimerValue(), manager.liveStudyState());
}

MenuBarImage menuBarImage(const MenuBarStatus& status) {
    switch (status.activity) {
        case MenuBarStatus::Activity::idle:
            return MenuBarImage::applicationImage;
        case MenuBarStatus::Activity::recording:
            return status.studyState == recording::LiveStudyState::passiveStudy
                       ? MenuBarImage::bookClosedFill
                       : MenuBarImage::recordCircleFill;
        case MenuBarStatus::Activity::paused:
            return MenuBarImage::pauseCircleFill;
    }
    return MenuBarImage::applicationImage;
}

std::string_view menuBarImageName(MenuBarImage image) {
    switch (image) {
        case MenuBarImage::applicationImage:
            return "LumenoteMenuBarIcon";
        case MenuBarImage::recordCircleFill:
            return "record.circle.fill";
        case MenuBarImage::bookClosedFill:
            return "book.closed.fill";
        case MenuBarImage::pauseCircleFill:
            return "pause.circle.fill";
    }
    return "LumenoteMenuBarIcon";
}

std::string menuBarTitle(const MenuBarStatus& status) {
    if (status.activity == MenuBarStatus::Activity::idle) {
        return {};
    }
    return clockText(status.elapsed);
}

std::string spokenElapsedTime(double seconds) {
    const long long whole = wholeSeconds(seconds);
    if (whole == 0) {
        return "no time recorded";
    }
    if (whole < 60) {
        return counted(whole, "second");
    }
    const long long minutes = whole / 60;
    if (minutes < 60) {
        return counted(minutes, "minute");
    }
    if (minutes % 60 == 0) {
        return counted(minutes / 60, "hour");
    }
    return counted(minutes / 60, "hour") + " " + counted(minutes % 60, "minute");
}

std::string menuBarAccessibilityText(const MenuBarStatus& status) {
    switch (status.activity) {
        case MenuBarStatus::Activity::idle:
            return "Lumenote. No session running.";
        case MenuBarStatus::Activity::recording:
            if (status.studyState == recording::LiveStudyState::passiveStudy) {
                return fmt::format("Lumenote. Recording, {}, {}.", recording::kStudyingAwayFromMac,
                                   spokenElapsedTime(status.elapsed));
            }
            return fmt::format("Lumenote. Recording, {}.", spokenElapsedTime(status.elapsed));
        case MenuBarStatus::Activity::paused:
            return fmt::format("Lumenote. Paused at {}.", spokenElapsedTime(status.elapsed));
    }
    return {};
}

bool StatusItemRendering::needsRedraw(const MenuBarStatus& status) {
    if (lastRendered_ == status) {
        return false;
    }
    lastRendered_ = status;
    return true;
}

}  // namespace lumenote::shell
