// BrowserEventReceiver: takes browser events out of the bridge inbox and
// decides which may influence tracking. Each event must pass the validator,
// be new (its id not seen before), belong to the running session (the one
// the host saw when it received it) and not be older than the last event
// accepted from the same browser. Every event handled, accepted or not, is
// kept in a short log for diagnostics.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "bridge/browser_activity_event.hpp"
#include "bridge/browser_bridge_store.hpp"
#include "bridge/browser_diagnostic_types.hpp"
#include "bridge/browser_event_validator.hpp"

namespace lumenote::bridge {

// An event that passed every check, with the time the host received it.
struct ReceivedBrowserEvent {
    BrowserActivityEvent event;
    Date receivedAt;
};

// One line of the receiver's log.
struct BrowserEventLogEntry {
    Date receivedAt;
    std::optional<std::string> browserBundleIdentifier;  // when the event could be read
    std::optional<BrowserActivityEventType> eventType;
    std::optional<BrowserActivityResourceType> resourceType;
    std::optional<std::string> hostname;
    bool isPrivate = false;
    bool accepted = false;
    // Why it was refused: the validator's or the bridge's sentence, or one of
    // the receiver's own ("The browser event was sent twice.").
    std::string reason;
    std::optional<BrowserDiagnosticIssue> issue;
};

class BrowserEventReceiver {
  public:
    // How many events the log keeps (the newest), and how many event ids are
    // remembered to drop a repeated event.
    static constexpr std::size_t kLogLength = 50;
    static constexpr std::size_t kRememberedEventIDs = 4096;

    BrowserEventReceiver(BrowserBridgeStore& store, BrowserEventValidator validator = {});

    // The session events must belong to; nullopt while none runs (every event
    // is then refused as belonging to another session). A new session
    // forgets the order of the previous one's events.
    void setSession(const std::optional<Uuid>& sessionID);

    // One event handled: its log entry and, when accepted, the event.
    struct Handled {
        BrowserEventLogEntry entry;
        std::optional<ReceivedBrowserEvent> accepted;
    };
    struct Drain {
        std::vector<Handled> handled;  // oldest first
        bool moreWaiting = false;
    };
    // Handles one bounded batch of the inbox at `now` (the validator's now).
    Drain drain(Date now, std::size_t maximumFiles = kInboxFilesPerDrain);

    // The newest events handled, oldest first.
    const std::deque<BrowserEventLogEntry>& log() const { return log_; }

  private:
    void handle(const BrowserBridgeQueuedPayload& payload, Date now, Drain& drain);
    bool rememberID(const Uuid& id);
    void note(Handled handled, Drain& drain);

    BrowserBridgeStore& store_;
    BrowserEventValidator validator_;
    std::optional<Uuid> session_;
    std::unordered_map<std::string, Date> lastAcceptedTimestamp_;  // per browser
    std::unordered_set<Uuid> seenIDs_;
    std::deque<Uuid> seenOrder_;
    std::deque<BrowserEventLogEntry> log_;
};

}  // namespace lumenote::bridge
