// A flood of browser events: 10,000 inbox files written into a real bridge
// directory as the native host writes them, then drained and validated by the
// recorder's bridge coordinator one tick at a time, as the recorder's loop
// does while tick() says more files wait. Targets: no tick over 20 ms and the
// whole inbox drained in under 2 s.
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "bridge/bridge_tracking_coordinator.hpp"

namespace lumenote::bench {
namespace {

constexpr int kFloodEvents = 10'000;
const Date kFloodStart = *parseIso8601("2026-11-25T10:00:00Z");

class FixedClock final : public recording::WallClock {
  public:
    Date now() override { return now_; }
    void set(Date now) { now_ = now; }

  private:
    Date now_ = kFloodStart;
};

// The host's writes without their fsyncs: on a shared disk 10,000 synced
// files take about a minute to write, which only slows the setup; the names,
// contents and folder the drain reads are the same.
class UnsyncedWrites final : public FileWriteOperations {
  public:
    int fsync(int) override { return 0; }
};

// A running session with a bridge directory whose inbox holds `events` valid
// events: three browsers, forty tabs each, one event a millisecond.
class InboxFlood {
  public:
    explicit InboxFlood(int events) {
        const char* base = std::getenv("TMPDIR");
        std::string pattern = std::string(base && *base ? base : "/tmp") + "/lumenote-inbox-XXXXXX";
        folder_ = ::mkdtemp(pattern.data());
        store_ = std::make_unique<bridge::BrowserBridgeStore>(folder_ / "bridge", writes_);
        coordinator_ = std::make_unique<bridge::BridgeTrackingCoordinator>(*store_, clock_, 4242);
        if (!coordinator_->start()) {
            return;
        }
        coordinator_->setRunningSession(session_);
        const std::string token = store_->readToken().value();
        for (int index = 0; index < events; ++index) {
            if (!store_->writeInboxEnvelope(envelope(index, token))) {
                return;
            }
        }
        clock_.set(kFloodStart.addingSeconds(events / 1000.0 + 1.0));
        ready_ = true;
    }
    ~InboxFlood() {
        coordinator_.reset();
        store_.reset();
        std::filesystem::remove_all(folder_);
    }
    InboxFlood(const InboxFlood&) = delete;
    InboxFlood& operator=(const InboxFlood&) = delete;

    bool ready() const { return ready_; }
    bridge::BridgeTrackingCoordinator& coordinator() { return *coordinator_; }
    bool inboxEmpty() const { return std::filesystem::is_empty(store_->inboxFolder()); }

  private:
    bridge::BrowserBridgeEnvelope envelope(int index, const std::string& token) const {
        static constexpr const char* kBrowsers[] = {"org.chromium.Chromium", "com.google.Chrome",
                                                    "org.mozilla.firefox"};
        const Date at = kFloodStart.addingSeconds(index / 1000.0);
        bridge::BrowserActivityEvent event;
        event.id = Uuid::generate();
        event.browserDisplayName = "Browser";
        event.browserBundleIdentifier = kBrowsers[index % 3];
        event.hostname = "site" + std::to_string(index % 97) + ".example.org";
        event.temporaryTabIdentifier = "tab-" + std::to_string(index % 40);
        event.timestamp = at;
        event.eventType = bridge::BrowserActivityEventType::tabNavigated;
        return {bridge::kBridgeDocumentVersion, token, session_, at,
                bridge::encodeBrowserActivityEvent(event)};
    }

    std::filesystem::path folder_;
    UnsyncedWrites writes_;
    FixedClock clock_;
    std::unique_ptr<bridge::BrowserBridgeStore> store_;
    std::unique_ptr<bridge::BridgeTrackingCoordinator> coordinator_;
    const Uuid session_ = Uuid::generate();
    bool ready_ = false;
};

void BM_BridgeInboxFlood(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    double slowestTick = 0.0;
    double total = 0.0;
    int ticks = 0;
    for (auto _ : state) {
        InboxFlood flood(kFloodEvents);
        if (!flood.ready()) {
            state.SkipWithError("writing the inbox failed");
            return;
        }
        total = 0.0;
        ticks = 0;
        bool more = true;
        while (more) {
            const auto start = Clock::now();
            more = flood.coordinator().tick();
            const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
            slowestTick = std::max(slowestTick, seconds);
            total += seconds;
            ++ticks;
        }
        state.SetIterationTime(total);
        const auto& log = flood.coordinator().eventLog();
        const bool allAccepted =
            std::all_of(log.begin(), log.end(), [](const auto& entry) { return entry.accepted; });
        if (!flood.inboxEmpty() || log.empty() || !allAccepted) {
            state.SkipWithError("the flood was not drained and accepted");
            return;
        }
    }
    state.counters["slowest_tick_ms"] = slowestTick * 1000.0;
    state.counters["drain_total_ms"] = total * 1000.0;
    state.counters["ticks"] = ticks;
    state.counters["events_per_s"] = kFloodEvents / total;
}
BENCHMARK(BM_BridgeInboxFlood)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumenote::bench
