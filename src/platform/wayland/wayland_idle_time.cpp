#include "platform/wayland/wayland_idle_time.hpp"

#include <wayland-client.h>

#include <utility>

#include "ext-idle-notify-v1-client-protocol.h"
#include "kde-idle-client-protocol.h"

namespace lumenote::platform::wayland {

struct IdleNotificationListeners {
    static void idled(void* data) {
        auto& self = *static_cast<WaylandIdleTimeProvider*>(data);
        self.estimate_.idled(self.clock_.now());
    }
    static void resumed(void* data) {
        static_cast<WaylandIdleTimeProvider*>(data)->estimate_.resumed();
    }

    static void extIdled(void* data, ext_idle_notification_v1*) { idled(data); }
    static void extResumed(void* data, ext_idle_notification_v1*) { resumed(data); }
    static constexpr ext_idle_notification_v1_listener kExt{extIdled, extResumed};

    static void kdeIdled(void* data, org_kde_kwin_idle_timeout*) { idled(data); }
    static void kdeResumed(void* data, org_kde_kwin_idle_timeout*) { resumed(data); }
    static constexpr org_kde_kwin_idle_timeout_listener kKde{kdeIdled, kdeResumed};
};

std::string_view protocolName(IdleProtocol protocol) {
    switch (protocol) {
        case IdleProtocol::extIdleNotify:
            return "ext_idle_notifier_v1";
        case IdleProtocol::kdeIdle:
            return "org_kde_kwin_idle";
    }
    return "";
}

Result<std::unique_ptr<WaylandIdleTimeProvider>, WaylandError> WaylandIdleTimeProvider::open(
    std::shared_ptr<WaylandConnection> connection, recording::MonotonicTimeProvider& clock,
    std::chrono::milliseconds threshold) {
    const bool hasExt = connection->hasGlobal("ext_idle_notifier_v1");
    if (!hasExt && !connection->hasGlobal("org_kde_kwin_idle")) {
        return fail(WaylandError::noIdleNotifier);
    }
    if (!connection->hasGlobal("wl_seat")) {
        return fail(WaylandError::noSeat);
    }
    std::unique_ptr<WaylandIdleTimeProvider> provider(new WaylandIdleTimeProvider(
        std::move(connection), clock, std::chrono::duration<double>(threshold).count()));
    WaylandConnection& wayland = *provider->connection_;
    provider->seat_ = static_cast<wl_seat*>(wayland.bind("wl_seat", wl_seat_interface, 1));
    const auto timeout = static_cast<std::uint32_t>(threshold.count());
    if (hasExt) {
        provider->notifier_ = static_cast<ext_idle_notifier_v1*>(
            wayland.bind("ext_idle_notifier_v1", ext_idle_notifier_v1_interface, 1));
        provider->notification_ = ext_idle_notifier_v1_get_idle_notification(
            provider->notifier_, timeout, provider->seat_);
        ext_idle_notification_v1_add_listener(provider->notification_,
                                              &IdleNotificationListeners::kExt, provider.get());
    } else {
        provider->protocol_ = IdleProtocol::kdeIdle;
        provider->kdeIdle_ = static_cast<org_kde_kwin_idle*>(
            wayland.bind("org_kde_kwin_idle", org_kde_kwin_idle_interface, 1));
        provider->kdeTimeout_ =
            org_kde_kwin_idle_get_idle_timeout(provider->kdeIdle_, provider->seat_, timeout);
        org_kde_kwin_idle_timeout_add_listener(provider->kdeTimeout_,
                                               &IdleNotificationListeners::kKde, provider.get());
    }
    if (!wayland.roundtrip()) {
        return fail(WaylandError::unreachable);
    }
    return provider;
}

WaylandIdleTimeProvider::WaylandIdleTimeProvider(std::shared_ptr<WaylandConnection> connection,
                                                 recording::MonotonicTimeProvider& clock,
                                                 double thresholdSeconds)
    : connection_(std::move(connection)), clock_(clock), estimate_(thresholdSeconds) {}

WaylandIdleTimeProvider::~WaylandIdleTimeProvider() {
    if (notification_ != nullptr) {
        ext_idle_notification_v1_destroy(notification_);
    }
    if (notifier_ != nullptr) {
        ext_idle_notifier_v1_destroy(notifier_);
    }
    if (kdeTimeout_ != nullptr) {
        org_kde_kwin_idle_timeout_release(kdeTimeout_);
    }
    if (kdeIdle_ != nullptr) {
        org_kde_kwin_idle_destroy(kdeIdle_);
    }
    if (seat_ != nullptr) {
        wl_seat_destroy(seat_);
    }
    if (!connection_->lost()) {
        wl_display_flush(connection_->display());
    }
}

double WaylandIdleTimeProvider::idleSeconds() {
    if (!connection_->dispatchPending()) {
        return 0.0;
    }
    return estimate_.idleSeconds(clock_.now());
}

}  // namespace lumenote::platform::wayland
