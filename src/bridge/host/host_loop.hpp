// The host's one thread: waits with poll(2) on the browser's input and on
// inotify watches of the bridge directory and its "Commands" folder, and hands
// what arrives to the relay. When the folders cannot be watched (the recorder
// never ran, or they were removed) it polls them every `pollInterval` and
// tries to watch them again. The status goes to the extension every
// `statusInterval` as well, so an extension that missed a change catches up.
#pragma once

#include <unistd.h>

#include <chrono>
#include <string_view>

#include "bridge/browser_bridge_store.hpp"
#include "bridge/host/browser_host_relay.hpp"

namespace lumenote::bridge::host {

struct HostLoopOptions {
    int input = STDIN_FILENO;
    std::chrono::milliseconds statusInterval{20'000};
    std::chrono::milliseconds pollInterval{1'000};
};

// Writes whole frames to a descriptor, retrying short writes.
class DescriptorFrameSink final : public FrameSink {
  public:
    explicit DescriptorFrameSink(int descriptor) : descriptor_(descriptor) {}
    bool send(std::string_view message) override;

  private:
    int descriptor_;
};

// Runs until the input ends or the browser stops reading; starts the relay
// first and tells it about the end of input last.
void runHostLoop(BrowserHostRelay& relay, const BrowserBridgeStore& store,
                 const HostLoopOptions& options = {});

}  // namespace lumenote::bridge::host
