// One connection to the Wayland compositor shared by the Wayland observers:
// the globals it advertises, binding them, and dispatch that never blocks and
// marks the connection lost instead of ending the process.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/result.hpp"
#include "foundation/user_paths.hpp"

struct wl_display;
struct wl_registry;
struct wl_interface;

namespace lumenote::platform::wayland {

enum class WaylandError {
    noDisplay,                 // WAYLAND_DISPLAY is not set
    noRuntimeFolder,           // WAYLAND_DISPLAY is a name but XDG_RUNTIME_DIR is not set
    unreachable,               // the compositor does not accept the connection
    noForeignToplevelManager,  // zwlr_foreign_toplevel_manager_v1 is not advertised
    noIdleNotifier,            // neither ext_idle_notifier_v1 nor org_kde_kwin_idle is
    noSeat                     // no wl_seat to watch for input
};

// The sentence shown at start and in the setup check.
std::string_view describe(WaylandError error);

struct WaylandGlobal {
    std::uint32_t name;  // the registry's id of the global
    std::string interface;
    std::uint32_t version;
};

class WaylandConnection {
  public:
    // Connects to $WAYLAND_DISPLAY of `environment`: an absolute path, or a
    // socket name in $XDG_RUNTIME_DIR. Reads the advertised globals with one
    // round trip.
    static Result<std::shared_ptr<WaylandConnection>, WaylandError> open(
        const EnvironmentLookup& environment);

    ~WaylandConnection();
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;

    wl_display* display() const { return display_; }
    // The interface names of the globals advertised now, in the order the
    // compositor announced them.
    std::vector<std::string> globalInterfaces() const;
    bool hasGlobal(std::string_view interface) const;
    // Binds the first global of `interface` at its advertised version or
    // `maximumVersion`, whichever is lower; nullptr when none is advertised.
    // The caller owns the proxy.
    void* bind(std::string_view interface, const wl_interface& type, std::uint32_t maximumVersion);

    // The socket to watch for readability.
    int fileDescriptor() const;
    // Sends what is queued, reads what the compositor has sent without
    // waiting, and runs the listeners. False once the connection is lost.
    bool dispatchPending();
    // Sends what is queued and waits until the compositor has answered all
    // of it, running the listeners. False once the connection is lost.
    bool roundtrip();
    // True once the compositor has gone away or closed the connection for a
    // protocol error. The observers then report nothing frontmost and no
    // idle time.
    bool lost() const { return lost_; }

    // The registry's listener (public only so that the listener table can
    // name them).
    static void onGlobalEvent(void* data, wl_registry* registry, std::uint32_t name,
                              const char* interface, std::uint32_t version);
    static void onGlobalRemoveEvent(void* data, wl_registry* registry, std::uint32_t name);

  private:
    explicit WaylandConnection(wl_display* display);
    bool checkLost(int status);

    wl_display* display_;
    wl_registry* registry_ = nullptr;
    std::vector<WaylandGlobal> globals_;
    bool lost_ = false;
};

}  // namespace lumenote::platform::wayland
