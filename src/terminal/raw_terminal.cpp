#include "terminal/raw_terminal.hpp"

#include <unistd.h>

namespace lumenote::terminal {

RawTerminal::RawTerminal(int descriptor) : descriptor_(descriptor) {
    if (!isatty(descriptor_) || tcgetattr(descriptor_, &saved_) != 0) {
        return;
    }
    termios raw = saved_;
    // Keys arrive one at a time and are not echoed; Ctrl-C still raises
    // SIGINT, which the recorder handles like a quit request from the system.
    raw.c_lflag &= static_cast<tcflag_t>(~(ICANON | ECHO));
    raw.c_cc[VMIN] = 1;
    raw.c_cc[VTIME] = 0;
    active_ = tcsetattr(descriptor_, TCSANOW, &raw) == 0;
}

RawTerminal::~RawTerminal() {
    if (active_) {
        tcsetattr(descriptor_, TCSANOW, &saved_);
    }
}

}  // namespace lumenote::terminal
