// Puts a terminal into single-key mode (no line buffering, no echo) for as
// long as the object lives, and restores it afterwards.
#pragma once

#include <termios.h>

namespace lumenote::terminal {

class RawTerminal {
  public:
    explicit RawTerminal(int descriptor);
    ~RawTerminal();
    RawTerminal(const RawTerminal&) = delete;
    RawTerminal& operator=(const RawTerminal&) = delete;

    bool active() const { return active_; }

  private:
    int descriptor_;
    termios saved_{};
    bool active_ = false;
};

}  // namespace lumenote::terminal
