// Scripted stand-ins for the platform: a clock that moves only when told, an
// idle source, a frontmost application, a notification sink and a browser.
// Used by the tests and the scenario runner.
#pragma once

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "recording/platform_services.hpp"
#include "recording/session_manager.hpp"
#include "recording/time_providers.hpp"

namespace lumenote::platform::fake {

// Both clocks of a simulated machine. The monotonic clock advances with
// advance(); the wall clock follows it and can also be set or jumped on its
// own, as a user changing the system time would.
class FakeClock {
  public:
    explicit FakeClock(Date wallStart = Date{0}) : wallNow_(wallStart) {}
    FakeClock(const FakeClock&) = delete;
    FakeClock& operator=(const FakeClock&) = delete;

    recording::MonotonicTimeProvider& monotonic() { return monotonicView_; }
    recording::WallClock& wall() { return wallView_; }
    double monotonicNow() const { return monotonicNow_; }
    Date wallNow() const { return wallNow_; }

    void advance(double seconds) {
        monotonicNow_ += seconds;
        wallNow_ = wallNow_.addingSeconds(seconds);
    }
    void jumpWallClock(double seconds) { wallNow_ = wallNow_.addingSeconds(seconds); }
    void setWallClock(Date date) { wallNow_ = date; }

  private:
    struct MonotonicView final : recording::MonotonicTimeProvider {
        explicit MonotonicView(FakeClock& owner) : clock(owner) {}
        double now() override { return clock.monotonicNow_; }
        FakeClock& clock;
    };
    struct WallView final : recording::WallClock {
        explicit WallView(FakeClock& owner) : clock(owner) {}
        Date now() override { return clock.wallNow_; }
        FakeClock& clock;
    };

    double monotonicNow_ = 0.0;
    Date wallNow_;
    MonotonicView monotonicView_{*this};
    WallView wallView_{*this};
};

// Idle seconds follow the clock from the moment input stops.
class FakeIdle final : public recording::IdleTimeProvider {
  public:
    explicit FakeIdle(FakeClock& clock) : clock_(clock) {}
    double idleSeconds() override {
        return lastInput_ ? std::max(0.0, clock_.monotonicNow() - *lastInput_) : 0.0;
    }
    // Input stops now: idle grows from here.
    void stopInput() { lastInput_ = clock_.monotonicNow(); }
    // Input resumes now: idle stays 0 until stopInput().
    void resumeInput() { lastInput_.reset(); }
    void setIdle(double seconds) { lastInput_ = clock_.monotonicNow() - seconds; }

  private:
    FakeClock& clock_;
    std::optional<double> lastInput_;
};

class FakeFrontmost final : public recording::FrontmostApplicationSource {
  public:
    std::optional<recording::FrontmostApplication> frontmostApplication() override {
        return current;
    }
    std::optional<recording::FrontmostApplication> current;
};

class FakeNotifications final : public recording::NotificationService {
  public:
    void post(const std::string& title, const std::string& body) override {
        posted.emplace_back(title, body);
    }
    recording::NotificationAuthorization authorization() override { return state; }

    std::vector<std::pair<std::string, std::string>> posted;
    recording::NotificationAuthorization state = recording::NotificationAuthorization::authorized;
};

// A browser whose resolution per bundle identifier is set by the test.
class FakeBrowser final : public recording::BrowserTrackingCoordinator {
  public:
    std::optional<recording::BrowserResolution> resolution(const std::string& bundle, Date,
                                                           double) override {
        const auto found = resolutions.find(bundle);
        return found == resolutions.end()
                   ? std::nullopt
                   : std::optional<recording::BrowserResolution>(found->second);
    }
    void setRunningSession(const std::optional<Uuid>& id) override { runningSession = id; }
    void setFrontmostBundleIdentifier(const std::string& bundle) override { frontmost = bundle; }

    std::map<std::string, recording::BrowserResolution> resolutions;
    std::optional<Uuid> runningSession;
    std::string frontmost;
};

// A whole simulated machine: both clocks, input, the frontmost application,
// notifications and the browser.
struct FakeMachine {
    explicit FakeMachine(Date wallStart = Date{0}) : clock(wallStart), idle(clock) {}
    FakeMachine(const FakeMachine&) = delete;
    FakeMachine& operator=(const FakeMachine&) = delete;

    // The session manager's dependencies on this machine; the store, the
    // preferences, the checkpoint store, the rules and the history must
    // outlive the manager.
    recording::SessionManagerDependencies dependencies(
        recording::RecordingStore& store, recording::RecordingPreferences& preferences,
        recording::SessionCheckpointStore& checkpoints, classification::ClassificationRules& rules,
        recording::SessionHistory& history, recording::StoreSaveOperation save = {}) {
        return recording::SessionManagerDependencies{
            store,        preferences, idle,          clock.monotonic(),
            clock.wall(), frontmost,   notifications, browserTracking ? *browserTracking : browser,
            checkpoints,  rules,       history,       std::move(save)};
    }
    // The history over `store` on this machine's clocks.
    recording::SessionHistoryDependencies historyDependencies(
        recording::RecordingStore& store, classification::ClassificationRules& rules,
        recording::RecordingPreferences& preferences, recording::StoreSaveOperation save = {}) {
        return recording::SessionHistoryDependencies{
            store, rules, preferences, clock.monotonic(), clock.wall(), std::move(save)};
    }
    // Rules over `store` stamped with this machine's wall clock.
    classification::ClassificationRules rulesFor(
        classification::ClassificationRuleStore& store,
        std::string ownBundleIdentifier = recording::kOwnBundleIdentifier) {
        return classification::ClassificationRules(
            store, [this] { return clock.wallNow(); }, std::move(ownBundleIdentifier));
    }

    FakeClock clock;
    FakeIdle idle;
    FakeFrontmost frontmost;
    FakeNotifications notifications;
    FakeBrowser browser;
    // When set, the recorder's browser tracking instead of `browser`.
    recording::BrowserTrackingCoordinator* browserTracking = nullptr;
};

}  // namespace lumenote::platform::fake
