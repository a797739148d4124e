// Facts about the system the reports state: the operating system's name and
// whether the desktop shows notifications. Reads only.
#pragma once

#include <string>

#include "bridge/setup_test.hpp"

namespace lumenote::runtime {

// PRETTY_NAME of /etc/os-release (else "Linux") and the kernel's release:
// "Debian GNU/Linux 12 (bookworm), kernel 6.1.0-27-amd64".
std::string operatingSystemName();

// What the desktop's notification server says, asked over the session bus
// within a second; works with or without a Qt application in the process.
bridge::NotificationAuthorizationState desktopNotificationState();

}  // namespace lumenote::runtime
