#include "platform/wayland/wayland_connection.hpp"

#include <poll.h>
#include <wayland-client.h>

#include <algorithm>
#include <cerrno>
#include <string>

namespace lumenote::platform::wayland {

namespace {

const wl_registry_listener kRegistryListener{&WaylandConnection::onGlobalEvent,
                                             &WaylandConnection::onGlobalRemoveEvent};

}  // namespace

std::string_view describe(WaylandError error) {
    switch (error) {
        case WaylandError::noDisplay:
            return "WAYLAND_DISPLAY is not set: Lumenote is not running in a Wayland session.";
        case WaylandError::noRuntimeFolder:
            return "XDG_RUNTIME_DIR is not set, so Lumenote cannot find the Wayland display named "
                   "by WAYLAND_DISPLAY.";
        case WaylandError::unreachable:
            return "The Wayland compositor named by WAYLAND_DISPLAY does not accept a connection.";
        case WaylandError::noForeignToplevelManager:
            return "The Wayland compositor does not offer the foreign-toplevel protocol, so "
                   "Lumenote cannot see which application is in front.";
        case WaylandError::noIdleNotifier:
            return "The Wayland compositor offers no idle notification, so Lumenote cannot tell "
                   "when you step away.";
        case WaylandError::noSeat:
            return "The Wayland compositor has no seat, so Lumenote cannot watch for input.";
    }
    return "";
}

Result<std::shared_ptr<WaylandConnection>, WaylandError> WaylandConnection::open(
    const EnvironmentLookup& environment) {
    const char* name = environment("WAYLAND_DISPLAY");
    if (name == nullptr || *name == '\0') {
        return fail(WaylandError::noDisplay);
    }
    // libwayland would read XDG_RUNTIME_DIR from the process's environment;
    // the socket path is built here so that only `environment` counts.
    std::string path = name;
    if (path.front() != '/') {
        const char* runtime = environment("XDG_RUNTIME_DIR");
        if (runtime == nullptr || *runtime != '/') {
            return fail(WaylandError::noRuntimeFolder);
        }
        path = std::string(runtime) + "/" + path;
    }
    wl_display* display = wl_display_connect(path.c_str());
    if (display == nullptr) {
        return fail(WaylandError::unreachable);
    }
    std::shared_ptr<WaylandConnection> connection(new WaylandConnection(display));
    if (!connection->roundtrip()) {
        return fail(WaylandError::unreachable);
    }
    return connection;
}

WaylandConnection::WaylandConnection(wl_display* display) : display_(display) {
    registry_ = wl_display_get_registry(display_);
    wl_registry_add_listener(registry_, &kRegistryListener, this);
}

WaylandConnection::~WaylandConnection() {
    wl_registry_destroy(registry_);
    wl_display_disconnect(display_);
}

std::vector<std::string> WaylandConnection::globalInterfaces() const {
    std::vector<std::string> interfaces;
    interfaces.reserve(globals_.size());
    for (const auto& global : globals_) {
        interfaces.push_back(global.interface);
    }
    return interfaces;
}

bool WaylandConnection::hasGlobal(std::string_view interface) const {
    return std::any_of(globals_.begin(), globals_.end(),
                       [&](const WaylandGlobal& global) { return global.interface == interface; });
}

void* WaylandConnection::bind(std::string_view interface, const wl_interface& type,
                              std::uint32_t maximumVersion) {
    const auto global = std::find_if(
        globals_.begin(), globals_.end(),
        [&](const WaylandGlobal& candidate) { return candidate.interface == interface; });
    if (global == globals_.end() || lost_) {
        return nullptr;
    }
    return wl_registry_bind(registry_, global->name, &type,
                            std::min(global->version, maximumVersion));
}

int WaylandConnection::fileDescriptor() const {
    return wl_display_get_fd(display_);
}

bool WaylandConnection::dispatchPending() {
    if (lost_) {
        return false;
    }
    // The reading protocol of libwayland: events already queued are
    // dispatched first, then the socket is read only if it has data, so that
    // this never waits.
    while (wl_display_prepare_read(display_) != 0) {
        if (!checkLost(wl_display_dispatch_pending(display_))) {
            return false;
        }
    }
    if (wl_display_flush(display_) < 0 && errno != EAGAIN) {
        wl_display_cancel_read(display_);
        return checkLost(-1);
    }
    pollfd descriptor{fileDescriptor(), POLLIN, 0};
    if (poll(&descriptor, 1, 0) > 0) {
        if (!checkLost(wl_display_read_events(display_))) {
            return false;
        }
    } else {
        wl_display_cancel_read(display_);
    }
    return checkLost(wl_display_dispatch_pending(display_));
}

bool WaylandConnection::roundtrip() {
    return !lost_ && checkLost(wl_display_roundtrip(display_));
}

bool WaylandConnection::checkLost(int status) {
    lost_ = lost_ || status < 0 || wl_display_get_error(display_) != 0;
    return !lost_;
}

void WaylandConnection::onGlobalEvent(void* data, wl_registry*, std::uint32_t name,
                                      const char* interface, std::uint32_t version) {
    static_cast<WaylandConnection*>(data)->globals_.push_back({name, interface, version});
}

void WaylandConnection::onGlobalRemoveEvent(void* data, wl_registry*, std::uint32_t name) {
    auto& globals = static_cast<WaylandConnection*>(data)->globals_;
    globals.erase(std::remove_if(globals.begin(), globals.end(),
                                 [&](const WaylandGlobal& global) { return global.name == name; }),
                  globals.end());
}

}  // namespace lumenote::platform::wayland
