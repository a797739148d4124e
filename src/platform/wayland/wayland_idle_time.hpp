// Seconds since the last input on Wayland, from the compositor's idle
// notification: ext-idle-notify where advertised, else KDE's older idle
// protocol (the only one the sway of Debian 12 offers).
#pragma once

#include <chrono>
#include <memory>
#include <string_view>

#include "foundation/result.hpp"
#include "platform/wayland/idle_estimate.hpp"
#include "platform/wayland/wayland_connection.hpp"
#include "recording/time_providers.hpp"

struct wl_seat;
struct ext_idle_notifier_v1;
struct ext_idle_notification_v1;
struct org_kde_kwin_idle;
struct org_kde_kwin_idle_timeout;

namespace lumenote::platform::wayland {

struct IdleNotificationListeners;

enum class IdleProtocol { extIdleNotify, kdeIdle };

std::string_view protocolName(IdleProtocol protocol);

// The default timeout of the idle notification, and so the resolution of
// the readings (idle_estimate.hpp): readings are 0 until a second without
// input has passed. Each pause of a second or more costs the compositor two
// small events.
inline constexpr std::chrono::milliseconds kDefaultIdleThreshold{1000};

// Asks for one idle notification on the first seat and keeps the state in an
// IdleEstimate. Readings are as prompt as the events are handled: each
// reading handles what the compositor has sent first, and a host loop may
// watch fileDescriptor(). Both protocols honour idle inhibitors: while a
// program inhibits idling (a playing video), the reading stays 0. Once the
// connection is lost every reading is 0 (the user counts as present, as on
// X11, so that a missing idle source never turns study into time away). Not
// thread-safe.
class WaylandIdleTimeProvider final : public recording::IdleTimeProvider {
  public:
    static Result<std::unique_ptr<WaylandIdleTimeProvider>, WaylandError> open(
        std::shared_ptr<WaylandConnection> connection, recording::MonotonicTimeProvider& clock,
        std::chrono::milliseconds threshold = kDefaultIdleThreshold);

    ~WaylandIdleTimeProvider() override;
    WaylandIdleTimeProvider(const WaylandIdleTimeProvider&) = delete;
    WaylandIdleTimeProvider& operator=(const WaylandIdleTimeProvider&) = delete;

    double idleSeconds() override;
    IdleProtocol protocol() const { return protocol_; }
    int fileDescriptor() const { return connection_->fileDescriptor(); }
    const std::shared_ptr<WaylandConnection>& connection() const { return connection_; }

  private:
    friend struct IdleNotificationListeners;

    WaylandIdleTimeProvider(std::shared_ptr<WaylandConnection> connection,
                            recording::MonotonicTimeProvider& clock, double thresholdSeconds);

    std::shared_ptr<WaylandConnection> connection_;
    recording::MonotonicTimeProvider& clock_;
    IdleEstimate estimate_;
    IdleProtocol protocol_ = IdleProtocol::extIdleNotify;
    wl_seat* seat_ = nullptr;
    ext_idle_notifier_v1* notifier_ = nullptr;
    ext_idle_notification_v1* notification_ = nullptr;
    org_kde_kwin_idle* kdeIdle_ = nullptr;
    org_kde_kwin_idle_timeout* kdeTimeout_ = nullptr;
};

}  // namespace lumenote::platform::wayland
