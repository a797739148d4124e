// Which toplevel window is active, worked out from the foreign-toplevel
// protocol's events as plain state, so that the rules are tested without a
// compositor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace lumenote::platform::wayland {

// The compositor describes each toplevel with a burst of events (app id,
// state) closed by `done`; nothing of a burst counts until its `done`, so a
// switch is never seen half-way. The frontmost toplevel is the one whose
// last completed state includes `activated`; should several say so (a
// compositor with several seats), the one activated most recently wins.
// Titles are not part of this state: they are never read or kept.
class ToplevelTracker {
  public:
    // Any value that names one toplevel while it exists (the handle's
    // address in the Wayland observer).
    using Handle = std::uintptr_t;

    void added(Handle toplevel);
    void appIdChanged(Handle toplevel, std::string_view appId);
    void stateChanged(Handle toplevel, bool activated);
    // Completes the toplevel's burst. True when the frontmost toplevel or
    // its app id changed.
    bool done(Handle toplevel);
    // The toplevel is gone. True when it was the frontmost one.
    bool closed(Handle toplevel);
    // The compositor stopped describing toplevels: all are forgotten. True
    // when one was frontmost.
    bool finished();

    // The app id of the frontmost toplevel ("" when it set none); nullopt
    // when none is active. Events for toplevels never added are ignored.
    std::optional<std::string> frontmostAppId() const;
    std::size_t size() const { return toplevels_.size(); }

  private:
    struct Toplevel {
        std::string appId;
        std::string pendingAppId;
        bool activated = false;
        bool pendingActivated = false;
        std::uint64_t activation = 0;  // order of the burst that activated it
    };
    struct Frontmost {
        std::optional<Handle> toplevel;
        std::optional<std::string> appId;
        friend bool operator==(const Frontmost&, const Frontmost&) = default;
    };

    Frontmost frontmost() const;

    std::unordered_map<Handle, Toplevel> toplevels_;
    std::uint64_t activations_ = 0;
};

}  // namespace lumenote::platform::wayland
