#include "bridge/host/host_loop.hpp"

#include <poll.h>
#include <sys/inotify.h>

#include <array>
#include <cerrno>
#include <vector>

#include "bridge/host/native_frames.hpp"

namespace lumenote::bridge::host {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kInputChunkBytes = 64 * 1024;

// The inotify watches of the bridge folder and its command queue.
class BridgeWatch {
  public:
    explicit BridgeWatch(const BrowserBridgeStore& store)
        : store_(store), descriptor_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        watch();
    }
    ~BridgeWatch() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }
    BridgeWatch(const BridgeWatch&) = delete;
    BridgeWatch& operator=(const BridgeWatch&) = delete;

    int descriptor() const { return descriptor_; }
    bool watching() const { return watching_; }

    // Adds both watches when they are not in place; true when they are.
    bool watch() {
        if (watching_ || descriptor_ < 0) {
            return watching_;
        }
        constexpr std::uint32_t kChanges =
            IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_CREATE | IN_DELETE | IN_DELETE_SELF;
        const int root = ::inotify_add_watch(descriptor_, store_.rootURL().c_str(), kChanges);
        const int commands =
            ::inotify_add_watch(descriptor_, store_.commandsFolder().c_str(), kChanges);
        watching_ = root >= 0 && commands >= 0;
        if (!watching_) {
            forget(root);
            forget(commands);
        }
        return watching_;
    }

    // Reads the pending notifications; a watched folder that went away ends
    // the watching until watch() succeeds again.
    void drain() {
        alignas(inotify_event) std::array<char, 4096> buffer{};
        for (;;) {
            const ssize_t length = ::read(descriptor_, buffer.data(), buffer.size());
            if (length <= 0) {
                return;
            }
            for (ssize_t offset = 0; offset < length;) {
                const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + offset);
                if (event->mask & (IN_IGNORED | IN_DELETE_SELF)) {
                    watching_ = false;
                    forget(event->wd);
                }
                offset += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            }
        }
    }

  private:
    void forget(int watch) {
        if (watch >= 0) {
            ::inotify_rm_watch(descriptor_, watch);
        }
    }

    const BrowserBridgeStore& store_;
    int descriptor_;
    bool watching_ = false;
};

int millisecondsUntil(Clock::time_point deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
}

}  // namespace

bool DescriptorFrameSink::send(std::string_view message) {
    const std::string frame = encodeNativeFrame(message);
    std::string_view left = frame;
    while (!left.empty()) {
        const ssize_t written = ::write(descriptor_, left.data(), left.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        left.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

void runHostLoop(BrowserHostRelay& relay, const BrowserBridgeStore& store,
                 const HostLoopOptions& options) {
    BridgeWatch watch(store);
    NativeFrameReader reader;
    std::vector<NativeFrameReading> frames;
    std::vector<char> chunk(kInputChunkBytes);
    relay.start();
    auto nextStatus = Clock::now() + options.statusInterval;
    auto nextPoll = Clock::now() + options.pollInterval;
    while (relay.outputOpen()) {
        const auto wakeAt = watch.watching() ? nextStatus : std::min(nextStatus, nextPoll);
        std::array<pollfd, 2> waits{{{options.input, POLLIN, 0}, {watch.descriptor(), POLLIN, 0}}};
        const nfds_t count = watch.descriptor() >= 0 ? 2 : 1;
        if (::poll(waits.data(), count, millisecondsUntil(wakeAt)) < 0 && errno != EINTR) {
            break;
        }
        if (count == 2 && (waits[1].revents & POLLIN)) {
            watch.drain();
            watch.watch();
            relay.bridgeChanged();
        }
        if (waits[0].revents & (POLLIN | POLLHUP | POLLERR)) {
            const ssize_t length = ::read(options.input, chunk.data(), chunk.size());
            if (length < 0 && (errno == EINTR || errno == EAGAIN)) {
                continue;
            }
            if (length <= 0) {
                break;
            }
            frames.clear();
            reader.feed({chunk.data(), static_cast<std::size_t>(length)}, frames);
            relay.receive(frames);
        }
        const auto now = Clock::now();
        if (now >= nextStatus) {
            relay.periodic();
            nextStatus = now + options.statusInterval;
        }
        if (!watch.watching() && now >= nextPoll) {
            watch.watch();
            relay.bridgeChanged();
            nextPoll = now + options.pollInterval;
        }
    }
    relay.endOfInput(reader.isMidFrame());
}

}  // namespace lumenote::bridge::host
