// An application object for the duration of a check in a process that has
// none of its own (the command line): Qt's buses need one. In the desktop
// application, which has one, it does nothing.
#pragma once

#include <QCoreApplication>
#include <optional>

namespace lumenote::runtime {

class ScopedApplication {
  public:
    ScopedApplication() {
        if (QCoreApplication::instance() == nullptr) {
            application_.emplace(argc_, argv_);
        }
    }
    ScopedApplication(const ScopedApplication&) = delete;
    ScopedApplication& operator=(const ScopedApplication&) = delete;

  private:
    // QCoreApplication keeps references to both for its whole life.
    int argc_ = 1;
    char name_[13] = "lumenote-cli";
    char* argv_[2] = {name_, nullptr};
    std::optional<QCoreApplication> application_;
};

}  // namespace lumenote::runtime
