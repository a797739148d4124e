// The frontmost application on wlroots compositors (sway, Hyprland, labwc,
// river...): the active toplevel of the foreign-toplevel protocol, named
// through its app id and the desktop entries as on X11.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "foundation/result.hpp"
#include "platform/linux/desktop_entries.hpp"
#include "platform/wayland/toplevel_tracker.hpp"
#include "platform/wayland/wayland_connection.hpp"
#include "recording/platform_services.hpp"

struct zwlr_foreign_toplevel_manager_v1;
struct zwlr_foreign_toplevel_handle_v1;

namespace lumenote::platform::wayland {

struct ForeignToplevelListeners;

// The app id is resolved as an X11 window whose `_GTK_APPLICATION_ID` and
// class are both the app id would be (desktop_entries.hpp): a desktop entry
// of that id, else one whose `StartupWMClass` or file name matches, else
// the app id itself; known browsers get their canonical identifier. Each app
// id is resolved once. Window titles are never read: the title event's text
// is dropped unseen.
//
// The protocol pushes every change, so a sample costs no round trip: it
// handles what the compositor has sent and reads the tracked state. Watch
// fileDescriptor() for readability and call processEvents(), which says
// whether the frontmost application changed. Not thread-safe.
class WlrFrontmostApplicationSource final : public recording::FrontmostApplicationSource {
  public:
    // Binds zwlr_foreign_toplevel_manager_v1 (version 2 at most) and waits
    // for the compositor to describe the toplevels that exist.
    static Result<std::unique_ptr<WlrFrontmostApplicationSource>, WaylandError> open(
        std::shared_ptr<WaylandConnection> connection, linux_desktop::DesktopEntryIndex entries);

    ~WlrFrontmostApplicationSource() override;
    WlrFrontmostApplicationSource(const WlrFrontmostApplicationSource&) = delete;
    WlrFrontmostApplicationSource& operator=(const WlrFrontmostApplicationSource&) = delete;

    // nullopt when no toplevel is active, when the active one has no app id,
    // once the compositor stopped describing toplevels, or once the
    // connection is lost.
    std::optional<recording::FrontmostApplication> frontmostApplication() override;

    int fileDescriptor() const { return connection_->fileDescriptor(); }
    // Handles what the compositor has sent without waiting; true when the
    // frontmost toplevel or its app id changed since the previous call.
    bool processEvents();

    const std::shared_ptr<WaylandConnection>& connection() const { return connection_; }

  private:
    friend struct ForeignToplevelListeners;

    WlrFrontmostApplicationSource(std::shared_ptr<WaylandConnection> connection,
                                  linux_desktop::DesktopEntryIndex entries,
                                  zwlr_foreign_toplevel_manager_v1* manager);

    std::shared_ptr<WaylandConnection> connection_;
    linux_desktop::DesktopEntryIndex entries_;
    zwlr_foreign_toplevel_manager_v1* manager_;
    std::unordered_set<zwlr_foreign_toplevel_handle_v1*> handles_;
    ToplevelTracker tracker_;
    bool changed_ = false;
    std::unordered_map<std::string, std::optional<recording::FrontmostApplication>> resolved_;
};

}  // namespace lumenote::platform::wayland
