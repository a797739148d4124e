// The recorder's own cost: one tick of the session manager (fake platform, real
// SQLite store) and the bytes written during an hour of recording.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/fake/fake_platform.hpp"
#include "recording/session_manager.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "store/sqlite_recording_store.hpp"

namespace lumenote {
namespace {

// Bytes this process has passed to write(2) and friends so far.
long long bytesWrittenByProcess() {
    std::ifstream io("/proc/self/io");
    std::string key;
    long long value = 0;
    while (io >> key >> value) {
        if (key == "wchar:") {
            return value;
        }
    }
    return 0;
}

// A recorder over a fresh store in a temporary folder.
class BenchRecorder {
  public:
    BenchRecorder() {
        char pattern[] = "/tmp/lumenote-bench-recorder.XXXXXX";
        folder_ = mkdtemp(pattern);
        store_ = std::move(SqliteRecordingStore::open(folder_ / "lumenote.sqlite")).value();
        checkpoints_ = std::make_unique<FileSessionCheckpointStore>(folder_, machine_.clock.wall());
        rules_ = std::make_unique<ClassificationRules>(machine_.rulesFor(*store_));
        history_ = std::make_unique<SessionHistory>(
            machine_.historyDependencies(*store_, *rules_, recordingPreferences_));
        manager_ = std::make_unique<SessionManager>(machine_.dependencies(
            *store_, recordingPreferences_, *checkpoints_, *rules_, *history_));
        manager_->startUp();
        (void)rules_->saveApplicationClassification("org.example.Editor", "Editor",
                                                    ActivityClassification::focused);
        machine_.frontmost.current = FrontmostApplication{"Editor", "org.example.Editor"};
        SessionStartRequest request;
        request.subject = "Benchmark";
        request.plannedDuration = 86400.0;
        request.timingMode = SessionTimingMode::openEnded;
        (void)manager_->start(request);
    }
    ~BenchRecorder() {
        manager_.reset();
        history_.reset();
        rules_.reset();
        store_.reset();
        std::filesystem::remove_all(folder_);
    }

    void tick() {
        machine_.clock.advance(1.0);
        manager_->tick();
    }
    void switchTo(const std::string& bundle) {
        machine_.frontmost.current = FrontmostApplication{bundle, bundle};
        manager_->applicationActivated();
    }

  private:
    std::filesystem::path folder_;
    fake::FakeMachine machine_{Date{800000000.0}};
    InMemoryDefaultsDomain domain_;
    PreferencesStore preferences_{domain_};
    PreferencesForRecording recordingPreferences_{preferences_};
    std::unique_ptr<SqliteRecordingStore> store_;
    std::unique_ptr<FileSessionCheckpointStore> checkpoints_;
    std::unique_ptr<ClassificationRules> rules_;
    std::unique_ptr<SessionHistory> history_;
    std::unique_ptr<SessionManager> manager_;
};

// One steady tick (same application, input present), the save cadence's
// writes included in the average. Target: under 20 microseconds of CPU.
void BM_SessionManagerTick(benchmark::State& state) {
    BenchRecorder recorder;
    for (auto _ : state) {
        recorder.tick();
    }
}
// A day of ticks, so that every iteration is a tick of a live session.
BENCHMARK(BM_SessionManagerTick)
    ->Iterations(86400)
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMicrosecond);

// An hour of recording with an application switch every two minutes: the
// bytes written (store and checkpoint). Target: under 1 MB per hour.
void BM_BytesWrittenPerHourOfRecording(benchmark::State& state) {
    double bytes = 0.0;
    for (auto _ : state) {
        BenchRecorder recorder;
        const long long before = bytesWrittenByProcess();
        for (int second = 1; second <= 3600; ++second) {
            if (second % 120 == 0) {
                recorder.switchTo(second % 240 == 0 ? "org.example.Editor" : "org.example.Browser");
            }
            recorder.tick();
        }
        bytes = static_cast<double>(bytesWrittenByProcess() - before);
    }
    state.counters["bytes_per_hour"] = bytes;
}
BENCHMARK(BM_BytesWrittenPerHourOfRecording)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumenote
