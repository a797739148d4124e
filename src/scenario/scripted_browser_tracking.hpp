// The browser tracking of a scenario: the real coordinator over a real bridge
// directory, except for the browsers whose resolution a "browser" step set
// directly on the fake browser, which keep it.
#pragma once

#include "bridge/bridge_tracking_coordinator.hpp"
#include "platform/fake/fake_platform.hpp"

namespace lumenote::scenario {

class ScriptedBrowserTracking final : public recording::BrowserTrackingCoordinator {
  public:
    ScriptedBrowserTracking(platform::fake::FakeBrowser& scripted,
                            bridge::BridgeTrackingCoordinator& bridge)
        : scripted_(scripted), bridge_(bridge) {}

    std::optional<recording::BrowserResolution> resolution(const std::string& bundle, Date now,
                                                           double idleSeconds) override {
        if (scripted_.resolutions.contains(bundle)) {
            return scripted_.resolution(bundle, now, idleSeconds);
        }
        return bridge_.resolution(bundle, now, idleSeconds);
    }
    void setRunningSession(const std::optional<Uuid>& sessionID) override {
        scripted_.setRunningSession(sessionID);
        bridge_.setRunningSession(sessionID);
    }
    void setFrontmostBundleIdentifier(const std::string& bundle) override {
        scripted_.setFrontmostBundleIdentifier(bundle);
        bridge_.setFrontmostBundleIdentifier(bundle);
    }

  private:
    platform::fake::FakeBrowser& scripted_;
    bridge::BridgeTrackingCoordinator& bridge_;
};

}  // namespace lumenote::scenario
