// Whether an X display can be opened, asked before a toolkit that cannot run
// without one is started.
#pragma once

namespace lumenote::platform::linux_desktop {

// True when the X display named by DISPLAY answers a connection.
bool x11DisplayCanBeOpened();

}  // namespace lumenote::platform::linux_desktop
