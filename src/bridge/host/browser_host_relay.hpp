// BrowserHostRelay: what the host does with each message of the extension and
// each change of the bridge directory, without the input and output loop
// around it (host_loop.hpp).
//
// - A browser event becomes one inbox envelope carrying the bridge token, the
//   running session's id from "state.json" and the receive time, but only
//   while the token can be read, the recorder's process is alive, a session
//   runs and browser tracking is not paused; otherwise it is dropped, so the
//   host never writes into a bridge directory whose token it cannot read and
//   never keeps activity nobody is recording.
// - The extension's hello, every heartbeat after it and every periodic
//   status write this browser's readiness (connection available), so that a
//   connected extension stays visibly connected when no session runs; the
//   end of input writes it once more with the connection gone.
// - Commands queued for this browser are sent to the extension in queue order
//   and deleted once sent; commands for other browsers are left for their
//   hosts; a command file that cannot be decoded or carries another token is
//   deleted unsent.
// - The status message goes out when the host starts, whenever what it says
//   changes, and when the loop asks for it periodically.
//
// Inbox files are named by receive time, and the recorder takes them in name
// order: receive times are kept strictly increasing, so that two events of the
// same microsecond keep the order they arrived in.
//
// The bridge files are read again only when their size, modification time or
// inode changed, and are looked at once for each batch of frames the browser
// wrote at once, so that a burst of events costs a few stats, not reads.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "bridge/browser_bridge_store.hpp"
#include "bridge/host/extension_messages.hpp"
#include "bridge/host/native_frames.hpp"
#include "bridge/supported_browser.hpp"
#include "recording/time_providers.hpp"

namespace lumenote::bridge::host {

// Where the host's messages to the extension go. `send` returns false once
// the browser stopped reading.
class FrameSink {
  public:
    virtual ~FrameSink() = default;
    virtual bool send(std::string_view message) = 0;
};

// Whether the process that wrote "state.json" still runs.
class ProcessProbe {
  public:
    virtual ~ProcessProbe() = default;
    virtual bool isAlive(std::int32_t processIdentifier) = 0;
};

// kill(pid, 0): alive when it succeeds or when the process exists but belongs
// to someone else.
class SystemProcessProbe final : public ProcessProbe {
  public:
    bool isAlive(std::int32_t processIdentifier) override;
};

// What happened to the messages so far, for the host's log line at exit and
// for the tests.
struct RelayCounters {
    std::size_t eventsWritten = 0;
    std::size_t eventsDropped = 0;    // nothing recording, or no token
    std::size_t messagesRefused = 0;  // oversized, unreadable or failed to write
    std::size_t commandsForwarded = 0;
};

class BrowserHostRelay {
  public:
    BrowserHostRelay(BrowserBridgeStore& store, recording::WallClock& clock,
                     ProcessProbe& processes, FrameSink& sink,
                     std::optional<SupportedBrowser> browser, std::string nativeHostVersion);

    // Sends the first status message and any commands already queued.
    void start();
    // Handles the frames of one read from the browser. The bridge files and
    // the recorder's process are looked at once for the whole batch.
    void receive(std::span<const NativeFrameReading> readings);
    // The bridge directory changed (or the loop polls): re-reads what changed,
    // sends the status when it changed and forwards queued commands.
    void bridgeChanged();
    // Sends the status whether or not it changed.
    void sendStatus();
    // The periodic beat: the status, and the readiness while connected.
    void periodic();
    // Input ended, `midFrame` when part-way through a message (which is
    // dropped): the connection is gone.
    void endOfInput(bool midFrame);

    // False once the browser stopped reading the host's output.
    bool outputOpen() const { return outputOpen_; }
    const RelayCounters& counters() const { return counters_; }
    std::optional<SupportedBrowser> browser() const { return browser_; }

  private:
    struct FileStamp {
        ino_t inode = 0;
        std::int64_t modifiedNanoseconds = 0;
        std::int64_t size = -1;
        friend bool operator==(const FileStamp&, const FileStamp&) = default;
    };

    void receiveHello(const ExtensionHello& hello);
    void receiveEvent(const ExtensionEvent& event, bool recording);
    void adoptBrowser(const std::optional<std::string>& identifier);
    void refreshBridgeFiles();
    bool recording() const;
    HostStatus status() const;
    void sendStatusIfChanged();
    void forwardCommands();
    void writeReadiness(bool connectionAvailable);
    Date nextReceiveTime();
    void send(std::string_view message);
    void note(std::string_view what) const;

    BrowserBridgeStore& store_;
    recording::WallClock& clock_;
    ProcessProbe& processes_;
    FrameSink& sink_;
    std::optional<SupportedBrowser> browser_;
    std::string nativeHostVersion_;

    FileStamp tokenStamp_, stateStamp_, preferencesStamp_;
    std::optional<std::string> token_;
    std::optional<BrowserBridgeState> state_;
    std::optional<BrowserBridgePreferencesEnvelope> preferences_;

    std::optional<Date> lastReceivedAt_;
    std::optional<ExtensionHello> hello_;
    std::optional<HostStatus> lastStatusSent_;
    bool outputOpen_ = true;
    RelayCounters counters_;
};

}  // namespace lumenote::bridge::host
