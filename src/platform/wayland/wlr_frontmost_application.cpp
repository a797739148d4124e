#include "platform/wayland/wlr_frontmost_application.hpp"

#include <wayland-client.h>

#include <cstring>
#include <utility>

#include "wlr-foreign-toplevel-management-unstable-v1-client-protocol.h"

namespace lumenote::platform::wayland {

namespace {

// Version 3 adds only the parent event, which says nothing about focus.
constexpr std::uint32_t kManagerVersion = 2;

ToplevelTracker::Handle handleOf(zwlr_foreign_toplevel_handle_v1* toplevel) {
    return reinterpret_cast<ToplevelTracker::Handle>(toplevel);
}

}  // namespace

struct ForeignToplevelListeners {
    static WlrFrontmostApplicationSource& source(void* data) {
        return *static_cast<WlrFrontmostApplicationSource*>(data);
    }

    static void title(void*, zwlr_foreign_toplevel_handle_v1*, const char*) {}

    static void appId(void* data, zwlr_foreign_toplevel_handle_v1* toplevel, const char* appId) {
        source(data).tracker_.appIdChanged(handleOf(toplevel), appId);
    }

    static void outputEnter(void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {}
    static void outputLeave(void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {}

    static void state(void* data, zwlr_foreign_toplevel_handle_v1* toplevel, wl_array* states) {
        // The array holds 32-bit state values; copied out since the array's
        // data need not be aligned for them.
        bool activated = false;
        const auto* bytes = static_cast<const char*>(states->data);
        for (std::size_t offset = 0; offset + sizeof(std::uint32_t) <= states->size;
             offset += sizeof(std::uint32_t)) {
            std::uint32_t value = 0;
            std::memcpy(&value, bytes + offset, sizeof value);
            activated = activated || value == ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED;
        }
        source(data).tracker_.stateChanged(handleOf(toplevel), activated);
    }

    static void done(void* data, zwlr_foreign_toplevel_handle_v1* toplevel) {
        auto& self = source(data);
        self.changed_ = self.tracker_.done(handleOf(toplevel)) || self.changed_;
    }

    static void closed(void* data, zwlr_foreign_toplevel_handle_v1* toplevel) {
        auto& self = source(data);
        self.changed_ = self.tracker_.closed(handleOf(toplevel)) || self.changed_;
        self.handles_.erase(toplevel);
        zwlr_foreign_toplevel_handle_v1_destroy(toplevel);
    }

    static void parent(void*, zwlr_foreign_toplevel_handle_v1*, zwlr_foreign_toplevel_handle_v1*) {}

    static constexpr zwlr_foreign_toplevel_handle_v1_listener kHandle{
        title, appId, outputEnter, outputLeave, state, done, closed, parent};

    static void toplevel(void* data, zwlr_foreign_toplevel_manager_v1*,
                         zwlr_foreign_toplevel_handle_v1* toplevel) {
        auto& self = source(data);
        self.handles_.insert(toplevel);
        self.tracker_.added(handleOf(toplevel));
        zwlr_foreign_toplevel_handle_v1_add_listener(toplevel, &kHandle, data);
    }

    static void finished(void* data, zwlr_foreign_toplevel_manager_v1* manager) {
        auto& self = source(data);
        self.changed_ = self.tracker_.finished() || self.changed_;
        for (auto* toplevel : self.handles_) {
            zwlr_foreign_toplevel_handle_v1_destroy(toplevel);
        }
        self.handles_.clear();
        zwlr_foreign_toplevel_manager_v1_destroy(manager);
        self.manager_ = nullptr;
    }

    static constexpr zwlr_foreign_toplevel_manager_v1_listener kManager{toplevel, finished};
};

Result<std::unique_ptr<WlrFrontmostApplicationSource>, WaylandError>
WlrFrontmostApplicationSource::open(std::shared_ptr<WaylandConnection> connection,
                                    linux_desktop::DesktopEntryIndex entries) {
    auto* manager = static_cast<zwlr_foreign_toplevel_manager_v1*>(
        connection->bind("zwlr_foreign_toplevel_manager_v1",
                         zwlr_foreign_toplevel_manager_v1_interface, kManagerVersion));
    if (manager == nullptr) {
        return fail(connection->lost() ? WaylandError::unreachable
                                       : WaylandError::noForeignToplevelManager);
    }
    std::unique_ptr<WlrFrontmostApplicationSource> source(
        new WlrFrontmostApplicationSource(std::move(connection), std::move(entries), manager));
    // The compositor announces every existing toplevel with its details
    // right after the bind, before it answers the round trip.
    if (!source->connection_->roundtrip()) {
        return fail(WaylandError::unreachable);
    }
    source->changed_ = false;
    return source;
}

WlrFrontmostApplicationSource::WlrFrontmostApplicationSource(
    std::shared_ptr<WaylandConnection> connection, linux_desktop::DesktopEntryIndex entries,
    zwlr_foreign_toplevel_manager_v1* manager)
    : connection_(std::move(connection)), entries_(std::move(entries)), manager_(manager) {
    zwlr_foreign_toplevel_manager_v1_add_listener(manager_, &ForeignToplevelListeners::kManager,
                                                  this);
}

WlrFrontmostApplicationSource::~WlrFrontmostApplicationSource() {
    for (auto* toplevel : handles_) {
        zwlr_foreign_toplevel_handle_v1_destroy(toplevel);
    }
    if (manager_ != nullptr) {
        zwlr_foreign_toplevel_manager_v1_stop(manager_);
        zwlr_foreign_toplevel_manager_v1_destroy(manager_);
    }
    if (!connection_->lost()) {
        wl_display_flush(connection_->display());
    }
}

std::optional<recording::FrontmostApplication>
WlrFrontmostApplicationSource::frontmostApplication() {
    if (!connection_->dispatchPending()) {
        return std::nullopt;
    }
    const auto appId = tracker_.frontmostAppId();
    if (!appId || appId->empty()) {
        return std::nullopt;
    }
    if (const auto cached = resolved_.find(*appId); cached != resolved_.end()) {
        return cached->second;
    }
    linux_desktop::WindowClassHints hints;
    hints.gtkApplicationId = *appId;
    hints.className = *appId;
    auto application = linux_desktop::resolveApplication(entries_, hints);
    resolved_.emplace(*appId, application);
    return application;
}

bool WlrFrontmostApplicationSource::processEvents() {
    connection_->dispatchPending();
    return std::exchange(changed_, false);
}

}  // namespace lumenote::platform::wayland
