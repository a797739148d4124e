// Seconds since the last keyboard or mouse input, from the X server's
// screen-saver extension.
#pragma once

#include <memory>

#include "platform/linux/x11_connection.hpp"
#include "recording/time_providers.hpp"

namespace lumenote::platform::linux_desktop {

// One round trip a reading. Synthetic events sent to a window (as
// `xdotool key --window` does) do not count as input; real and XTEST input
// do. When the server lacks the extension, or once the connection is lost,
// every reading is 0 (the user counts as present), so that a missing idle
// source never turns study into time away; extensionAvailable() tells the
// setup check.
class XScreenSaverIdleTimeProvider final : public recording::IdleTimeProvider {
  public:
    explicit XScreenSaverIdleTimeProvider(std::shared_ptr<X11Connection> connection);

    double idleSeconds() override;
    bool extensionAvailable() const { return extensionAvailable_; }

  private:
    std::shared_ptr<X11Connection> connection_;
    bool extensionAvailable_ = false;
};

}  // namespace lumenote::platform::linux_desktop
