// Test support: holds the calling thread to the file permission bits even
// when the tests run as root, so that a read-only folder is read-only for
// them too.
#pragma once

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>

namespace lumenote::testing {

// While alive, the capabilities that bypass permission bits
// (CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH) are out of the calling thread's
// effective set; they stay permitted and are put back at the end.
// Capabilities belong to a thread: code under test must run on this one.
// Without those capabilities (an ordinary user) nothing changes.
class PermissionChecksEnforced {
  public:
    PermissionChecksEnforced() {
        if (::syscall(SYS_capget, &header_, saved_) != 0) {
            std::abort();
        }
        __user_cap_data_struct reduced[2] = {saved_[0], saved_[1]};
        reduced[0].effective &= ~((1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH));
        if (::syscall(SYS_capset, &header_, reduced) != 0) {
            std::abort();
        }
    }
    ~PermissionChecksEnforced() { ::syscall(SYS_capset, &header_, saved_); }
    PermissionChecksEnforced(const PermissionChecksEnforced&) = delete;
    PermissionChecksEnforced& operator=(const PermissionChecksEnforced&) = delete;

  private:
    __user_cap_header_struct header_{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct saved_[2] = {};
};

}  // namespace lumenote::testing
