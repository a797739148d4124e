// Platform services for a process that observes nothing (the command line
// acting on stored history, or a recorder without a display): the real clocks
// and no frontmost application, no idle time, no notifications.
#pragma once

#include <optional>
#include <string>

#include "platform/system/system_clocks.hpp"
#include "recording/platform_services.hpp"

namespace lumenote::platform::system {

// No application is ever frontmost.
class NoFrontmostApplication final : public recording::FrontmostApplicationSource {
  public:
    std::optional<recording::FrontmostApplication> frontmostApplication() override {
        return std::nullopt;
    }
};

// Input is always fresh: the idle time is 0 seconds.
class NoIdleTime final : public recording::IdleTimeProvider {
  public:
    double idleSeconds() override { return 0.0; }
};

// Notifications cannot be shown: posts are dropped, as a desktop without a
// notification server would drop them.
class UnavailableNotifications final : public recording::NotificationService {
  public:
    void post(const std::string&, const std::string&) override {}
    recording::NotificationAuthorization authorization() override {
        return recording::NotificationAuthorization::unavailable;
    }
};

// Every service a session manager needs, with the real clocks. Not movable:
// the manager keeps references to the members.
struct HeadlessPlatform {
    HeadlessPlatform() = default;
    HeadlessPlatform(const HeadlessPlatform&) = delete;
    HeadlessPlatform& operator=(const HeadlessPlatform&) = delete;

    NoFrontmostApplication frontmostApplication;
    NoIdleTime idleTime;
    UnavailableNotifications notifications;
    recording::NoBrowserTracking browserTracking;
    SystemMonotonicTimeProvider monotonicClock;
    SystemWallClock wallClock;
};

}  // namespace lumenote::platform::system
