#include "bridge/browser_event_receiver.hpp"

namespace lumenote::bridge {

namespace {

constexpr std::string_view kDuplicateEvent = "The browser event was sent twice.";

BrowserEventLogEntry entryFor(const BrowserActivityEvent& event, Date receivedAt) {
    return {receivedAt,      event.browserBundleIdentifier,
            event.eventType, event.resourceType,
            event.hostname,  event.isPrivate};
}

BrowserDiagnosticIssue issueFor(const BrowserEventValidationError& error) {
    return error.failure == BrowserEventValidationFailure::timestampTooOld
               ? BrowserDiagnosticIssue::eventStale
               : BrowserDiagnosticIssue::invalidEvent;
}

}  // namespace

BrowserEventReceiver::BrowserEventReceiver(BrowserBridgeStore& store,
                                           BrowserEventValidator validator)
    : store_(store), validator_(validator) {}

void BrowserEventReceiver::setSession(const std::optional<Uuid>& sessionID) {
    if (sessionID != session_) {
        lastAcceptedTimestamp_.clear();
    }
    session_ = sessionID;
}

BrowserEventReceiver::Drain BrowserEventReceiver::drain(Date now, std::size_t maximumFiles) {
    Drain drain;
    BrowserBridgeInboxDrain taken = store_.drainInbox(maximumFiles);
    drain.moreWaiting = taken.moreWaiting;
    for (const BrowserBridgeInboxRejection& rejection : taken.rejected) {
        BrowserEventLogEntry entry{now};
        entry.reason = message(rejection.error);
        entry.issue = BrowserDiagnosticIssue::invalidEvent;
        note({std::move(entry)}, drain);
    }
    for (const BrowserBridgeQueuedPayload& payload : taken.accepted) {
        handle(payload, now, drain);
    }
    return drain;
}

void BrowserEventReceiver::handle(const BrowserBridgeQueuedPayload& payload, Date now,
                                  Drain& drain) {
    auto validated = validator_.validate(payload.eventData, now);
    if (!validated) {
        BrowserEventLogEntry entry{payload.receivedAt};
        entry.reason = validated.error().message();
        entry.issue = issueFor(validated.error());
        note({std::move(entry)}, drain);
        return;
    }
    BrowserActivityEvent& event = validated.value();
    BrowserEventLogEntry entry = entryFor(event, payload.receivedAt);
    std::optional<ReceivedBrowserEvent> accepted;
    if (!rememberID(event.id)) {
        entry.reason = kDuplicateEvent;
        entry.issue = BrowserDiagnosticIssue::invalidEvent;
    } else if (!session_ || payload.sessionIdentifier != *session_) {
        entry.reason = displayText(BrowserDiagnosticIssue::sessionMismatch);
        entry.issue = BrowserDiagnosticIssue::sessionMismatch;
    } else if (const auto last = lastAcceptedTimestamp_.find(event.browserBundleIdentifier);
               last != lastAcceptedTimestamp_.end() && event.timestamp < last->second) {
        entry.reason = displayText(BrowserDiagnosticIssue::eventOutOfOrder);
        entry.issue = BrowserDiagnosticIssue::eventOutOfOrder;
    } else {
        entry.accepted = true;
        lastAcceptedTimestamp_[event.browserBundleIdentifier] = event.timestamp;
        accepted = ReceivedBrowserEvent{std::move(event), payload.receivedAt};
    }
    note({std::move(entry), std::move(accepted)}, drain);
}

bool BrowserEventReceiver::rememberID(const Uuid& id) {
    if (!seenIDs_.insert(id).second) {
        return false;
    }
    seenOrder_.push_back(id);
    if (seenOrder_.size() > kRememberedEventIDs) {
        seenIDs_.erase(seenOrder_.front());
        seenOrder_.pop_front();
    }
    return true;
}

void BrowserEventReceiver::note(Handled handled, Drain& drain) {
    log_.push_back(handled.entry);
    drain.handled.push_back(std::move(handled));
    if (log_.size() > kLogLength) {
        log_.pop_front();
    }
}

}  // namespace lumenote::bridge
