#include "platform/linux/x11_idle_time.hpp"

#include <X11/Xlib.h>
#include <X11/extensions/scrnsaver.h>

#include <utility>

namespace lumenote::platform::linux_desktop {

XScreenSaverIdleTimeProvider::XScreenSaverIdleTimeProvider(
    std::shared_ptr<X11Connection> connection)
    : connection_(std::move(connection)) {
    int eventBase = 0;
    int errorBase = 0;
    extensionAvailable_ =
        !connection_->lost() &&
        XScreenSaverQueryExtension(connection_->display(), &eventBase, &errorBase);
}

double XScreenSaverIdleTimeProvider::idleSeconds() {
    if (!extensionAvailable_ || connection_->lost()) {
        return 0.0;
    }
    XScreenSaverInfo info{};
    if (!XScreenSaverQueryInfo(connection_->display(), connection_->root(), &info) ||
        connection_->lost()) {
        return 0.0;
    }
    return static_cast<double>(info.idle) / 1000.0;
}

}  // namespace lumenote::platform::linux_desktop
