#include "bridge/host/browser_host_relay.hpp"

#include <sys/stat.h>

#include <csignal>
#include <cstdio>
#include <utility>
#include <variant>

namespace lumenote::bridge::host {

namespace {

template <class... Handlers>
struct Overloaded : Handlers... {
    using Handlers::operator()...;
};
template <class... Handlers>
Overloaded(Handlers...) -> Overloaded<Handlers...>;

}  // namespace

bool SystemProcessProbe::isAlive(std::int32_t processIdentifier) {
    if (processIdentifier <= 0) {
        return false;
    }
    return ::kill(static_cast<pid_t>(processIdentifier), 0) == 0 || errno == EPERM;
}

BrowserHostRelay::BrowserHostRelay(BrowserBridgeStore& store, recording::WallClock& clock,
                                   ProcessProbe& processes, FrameSink& sink,
                                   std::optional<SupportedBrowser> browser,
                                   std::string nativeHostVersion)
    : store_(store),
      clock_(clock),
      processes_(processes),
      sink_(sink),
      browser_(browser),
      nativeHostVersion_(std::move(nativeHostVersion)) {}

void BrowserHostRelay::start() {
    refreshBridgeFiles();
    sendStatus();
    forwardCommands();
}

void BrowserHostRelay::receive(std::span<const NativeFrameReading> readings) {
    refreshBridgeFiles();
    const bool recordingNow = recording();
    for (const NativeFrameReading& reading : readings) {
        if (const auto* refused = std::get_if<RefusedFrame>(&reading)) {
            ++counters_.messagesRefused;
            note("refused a message of " + std::to_string(refused->announcedLength) +
                 " bytes, over the limit of " + std::to_string(kMaximumIncomingFrameBytes));
            continue;
        }
        std::visit(Overloaded{
                       [this](const ExtensionHello& hello) { receiveHello(hello); },
                       [this, recordingNow](const ExtensionEvent& event) {
                           receiveEvent(event, recordingNow);
                       },
                       [this](const UnreadableMessage& unreadable) {
                           ++counters_.messagesRefused;
                           note("ignored an unreadable message: " + unreadable.reason);
                       },
                   },
                   readExtensionMessage(std::get<NativeFrame>(reading).payload));
    }
}

void BrowserHostRelay::receiveHello(const ExtensionHello& hello) {
    hello_ = hello;
    adoptBrowser(hello.browserBundleIdentifier);
    writeReadiness(true);
    sendStatus();
    forwardCommands();
}

void BrowserHostRelay::receiveEvent(const ExtensionEvent& event, bool recording) {
    const bool browserWasKnown = browser_.has_value();
    adoptBrowser(event.browserBundleIdentifier);
    if (event.isHeartbeat && hello_) {
        writeReadiness(true);
    }
    if (!recording) {
        ++counters_.eventsDropped;
    } else if (auto written = store_.writeInboxEnvelope({kBridgeDocumentVersion, *token_,
                                                         *state_->sessionIdentifier,
                                                         nextReceiveTime(), event.payload});
               written) {
        ++counters_.eventsWritten;
    } else {
        ++counters_.messagesRefused;
        note("could not write an event: " + describe(written.error()));
    }
    if (!browserWasKnown && browser_) {
        sendStatusIfChanged();
        forwardCommands();
    }
}

Date BrowserHostRelay::nextReceiveTime() {
    // Two microseconds, so that the step survives the rounding of a double.
    constexpr double kStep = 2e-6;
    Date now = clock_.now();
    if (lastReceivedAt_ && now.secondsSince(*lastReceivedAt_) < kStep) {
        now = lastReceivedAt_->addingSeconds(kStep);
    }
    lastReceivedAt_ = now;
    return now;
}

void BrowserHostRelay::adoptBrowser(const std::optional<std::string>& identifier) {
    if (!browser_ && identifier) {
        browser_ = supportedBrowser(*identifier);
    }
}

void BrowserHostRelay::bridgeChanged() {
    refreshBridgeFiles();
    sendStatusIfChanged();
    forwardCommands();
}

void BrowserHostRelay::sendStatus() {
    const HostStatus current = status();
    send(encodeStatusMessage(current, nativeHostVersion_));
    lastStatusSent_ = current;
}

void BrowserHostRelay::periodic() {
    refreshBridgeFiles();
    sendStatus();
    writeReadiness(true);
}

void BrowserHostRelay::sendStatusIfChanged() {
    if (status() != lastStatusSent_) {
        sendStatus();
    }
}

void BrowserHostRelay::endOfInput(bool midFrame) {
    if (midFrame) {
        ++counters_.messagesRefused;
        note("dropped a message cut off by the end of input");
    }
    if (hello_) {
        refreshBridgeFiles();
        writeReadiness(false);
    }
}

void BrowserHostRelay::refreshBridgeFiles() {
    const auto stampOf = [](const std::filesystem::path& path) {
        struct stat info {};
        if (::lstat(path.c_str(), &info) != 0) {
            return FileStamp{};
        }
        return FileStamp{
            info.st_ino,
            static_cast<std::int64_t>(info.st_mtim.tv_sec) * 1'000'000'000 + info.st_mtim.tv_nsec,
            static_cast<std::int64_t>(info.st_size)};
    };
    const FileStamp token = stampOf(store_.tokenPath());
    const FileStamp state = stampOf(store_.statePath());
    const FileStamp preferences = stampOf(store_.preferencesPath());
    const bool tokenChanged = token != tokenStamp_;
    if (tokenChanged) {
        tokenStamp_ = token;
        auto read = store_.readToken();
        token_ = read ? std::optional(std::move(read).value()) : std::nullopt;
    }
    if (state != stateStamp_) {
        stateStamp_ = state;
        state_ = store_.readState();
    }
    if (tokenChanged || preferences != preferencesStamp_) {
        preferencesStamp_ = preferences;
        preferences_ = store_.readPreferences();
    }
}

bool BrowserHostRelay::recording() const {
    return token_ && state_ && processes_.isAlive(state_->appProcessIdentifier) &&
           state_->sessionRunning && state_->sessionIdentifier && !state_->browserTrackingPaused;
}

HostStatus BrowserHostRelay::status() const {
    HostStatus status;
    status.applicationRunning =
        token_ && state_ && processes_.isAlive(state_->appProcessIdentifier);
    status.sessionRunning =
        status.applicationRunning && state_->sessionRunning && state_->sessionIdentifier;
    status.trackingPaused = status.sessionRunning && state_->browserTrackingPaused;
    status.filenameLabelsEnabled = preferences_ && preferences_->filenameLabelsEnabled;
    if (browser_) {
        status.browserBundleIdentifier = std::string(bundleIdentifier(*browser_));
    }
    return status;
}

void BrowserHostRelay::forwardCommands() {
    if (!browser_ || !token_) {
        return;
    }
    const std::string_view mine = bundleIdentifier(*browser_);
    for (const std::string& name : store_.queuedCommandNames()) {
        auto command = store_.readCommand(name);
        if (!command) {
            if (command.error() == BrowserBridgeStoreError::tokenUnavailable) {
                return;
            }
            note("deleted an unreadable command " + name + ": " + message(command.error()));
            store_.removeCommand(name);
            continue;
        }
        if (command->browserBundleIdentifier != mine) {
            continue;
        }
        send(encodeCommandMessage(command.value()));
        if (!outputOpen_) {
            return;
        }
        store_.removeCommand(name);
        ++counters_.commandsForwarded;
    }
}

void BrowserHostRelay::writeReadiness(bool connectionAvailable) {
    if (!browser_ || !hello_ || !token_) {
        return;
    }
    BrowserBridgeReadiness readiness;
    readiness.browserBundleIdentifier = std::string(bundleIdentifier(*browser_));
    readiness.extensionVersion = hello_->extensionVersion;
    readiness.nativeHostVersion = nativeHostVersion_;
    readiness.protocolVersion = hello_->protocolVersion;
    readiness.connectionAvailable = connectionAvailable;
    readiness.updatedAt = clock_.now();
    if (auto written = store_.writeReadiness(readiness); !written) {
        note("could not write the readiness: " + describe(written.error()));
    }
}

void BrowserHostRelay::send(std::string_view message) {
    if (outputOpen_) {
        outputOpen_ = sink_.send(message);
    }
}

void BrowserHostRelay::note(std::string_view what) const {
    std::fprintf(stderr, "TallywiseBrowserHost: %.*s\n", static_cast<int>(what.size()),
                 what.data());
}

}  // namespace lumenote::bridge::host
