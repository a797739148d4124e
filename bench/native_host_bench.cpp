// The CPU the real TallywiseBrowserHost spends on one browser event: a host
// process relays a run of event frames into a real bridge directory while a
// session runs; its user and system time (from wait4) less that of a run
// with no frames (start-up and exit) is divided by the number of frames.
// Goal: under 50 µs a frame.
//
// It runs twice: with the bridge directory in memory (/dev/shm), which
// measures the host's own work, and on the disk that holds /tmp, where
// creating and renaming one file per event adds the file system's cost.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <benchmark/benchmark.h>

#include "bridge/browser_activity_event.hpp"
#include "bridge/browser_bridge_store.hpp"
#include "bridge/host/native_frames.hpp"

extern char** environ;

namespace lumenote::bench {
namespace {

namespace fs = std::filesystem;

// A scratch bridge directory with a running session of this process.
class ScratchBridge {
  public:
    explicit ScratchBridge(const fs::path& base) {
        std::string pattern = (base / "lumenote-host-bench-XXXXXX").string();
        root_ = ::mkdtemp(pattern.data());
        bridge::BrowserBridgeStore store(root_ / "bridge");
        (void)store.prepare();
        bridge::BrowserBridgeState state;
        state.appProcessIdentifier = static_cast<std::int32_t>(::getpid());
        state.sessionRunning = true;
        state.sessionIdentifier = Uuid::generate();
        state.updatedAt = Date::fromSystemClock(std::chrono::system_clock::now());
        (void)store.writeState(state);
    }
    ~ScratchBridge() {
        std::error_code ignored;
        fs::remove_all(root_, ignored);
    }
    fs::path bridge() const { return root_ / "bridge"; }
    fs::path file(const char* name) const { return root_ / name; }

  private:
    fs::path root_;
};

std::string eventFrames(std::int64_t count) {
    std::string frames = bridge::host::encodeNativeFrame(
        R"({"bridgeMessage":"hello","extensionVersion":"1.0.0","protocolVersion":1})");
    bridge::BrowserActivityEvent event;
    event.browserDisplayName = "Chromium";
    event.browserBundleIdentifier = "org.chromium.Chromium";
    event.temporaryTabIdentifier = "tab-42";
    event.eventType = bridge::BrowserActivityEventType::tabActivated;
    event.timestamp = Date::fromSystemClock(std::chrono::system_clock::now());
    for (std::int64_t i = 0; i < count; ++i) {
        event.id = Uuid::generate();
        event.hostname = "site" + std::to_string(i % 50) + ".example.org";
        frames += bridge::host::encodeNativeFrame(bridge::encodeBrowserActivityEvent(event));
    }
    return frames;
}

// Runs the host over the frames in `input`; its CPU seconds, or a negative
// value when it could not run.
double hostCpuSeconds(const ScratchBridge& scratch, const fs::path& input) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, input.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const std::string bridgeVariable = "TALLYWISE_BRIDGE_DIR=" + scratch.bridge().string();
    std::string program = LUMENOTE_HOST_EXECUTABLE;
    std::string browser = "--browser=org.chromium.Chromium";
    char* argv[] = {program.data(), browser.data(), nullptr};
    char* envp[] = {const_cast<char*>(bridgeVariable.c_str()), nullptr};
    pid_t child = 0;
    const int spawned = ::posix_spawn(&child, program.c_str(), &actions, nullptr, argv, envp);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        return -1;
    }
    int status = 0;
    rusage usage{};
    if (::wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) != 0) {
        return -1;
    }
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void BM_NativeHostCpuPerEventFrame(benchmark::State& state) {
    const std::int64_t frames = state.range(0);
    const bool inMemory = state.range(1) == 1;
    if (inMemory && !fs::is_directory("/dev/shm")) {
        state.SkipWithError("no /dev/shm");
        return;
    }
    state.SetLabel(inMemory ? "bridge in memory" : "bridge on disk");
    ScratchBridge scratch(inMemory ? "/dev/shm" : "/tmp");
    {
        std::ofstream(scratch.file("events.frames"), std::ios::binary) << eventFrames(frames);
        std::ofstream(scratch.file("empty.frames"), std::ios::binary) << eventFrames(0);
    }
    double perFrameTotal = 0;
    std::int64_t runs = 0;
    for (auto _ : state) {
        const double busy = hostCpuSeconds(scratch, scratch.file("events.frames"));
        const double idle = hostCpuSeconds(scratch, scratch.file("empty.frames"));
        if (busy < 0 || idle < 0) {
            state.SkipWithError("the host did not run to a clean exit");
            return;
        }
        const double perFrame = std::max(busy - idle, 0.0) / static_cast<double>(frames);
        state.SetIterationTime(perFrame);
        perFrameTotal += perFrame;
        ++runs;
        state.PauseTiming();
        std::error_code ignored;
        for (const auto& entry : fs::directory_iterator(scratch.bridge() / "Inbox", ignored)) {
            fs::remove(entry.path(), ignored);
        }
        state.ResumeTiming();
    }
    state.counters["cpu_us_per_frame"] = perFrameTotal / static_cast<double>(runs) * 1e6;
}
BENCHMARK(BM_NativeHostCpuPerEventFrame)
    ->Args({2000, 1})
    ->Args({2000, 0})
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(3);

}  // namespace
}  // namespace lumenote::bench
