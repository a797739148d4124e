// Fuzzes what the command-line client reads from the recorder over the
// session bus, where any process of the user could answer in its place: the
// status document, the browser event log and the browsers' status texts.
// Whatever is read must be written back by the recorder's own writer into a
// document that reads back the same and writes the same bytes again, and the
// lines shown for the event log must be written.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "bridge/browser_event_log.hpp"
#include "round_trip.hpp"
#include "runtime/command_protocol.hpp"

namespace lumenote::fuzz {
namespace {

using runtime::RecorderStatus;

void fuzzStatus(std::string_view bytes) {
    const auto status = runtime::parseRecorderStatus(bytes);
    if (!status) {
        return;
    }
    const std::string written = runtime::recorderStatusJson(status.value());
    const auto reread = runtime::parseRecorderStatus(written);
    check(reread.ok(), "status", "a status read was written as one that does not read", written);
    check(runtime::recorderStatusJson(reread.value()) == written, "status",
          "writing the reread status changed it", written);
    const RecorderStatus& again = reread.value();
    check(again.sessionActive == status->sessionActive && again.subject == status->subject &&
              again.currentActivity == status->currentActivity &&
              again.browserWarning == status->browserWarning,
          "status", "the written status reads back with other texts", written);
    if (again.sessionActive) {
        check(
            again.elapsedSeconds >= 0.0 && std::floor(again.elapsedSeconds) == again.elapsedSeconds,
            "status", "the elapsed time is not whole non-negative seconds", written);
        check(again.remainingSeconds.has_value() == status->remainingSeconds.has_value(), "status",
              "the remaining time appeared or went away", written);
    }
}

void fuzzEventLog(std::string_view bytes) {
    const auto entries = bridge::parseBrowserEventLog(bytes);
    if (!entries) {
        check(!entries.error().empty(), "event log", "a refusal without a reason", bytes);
        return;
    }
    const std::deque<bridge::BrowserEventLogEntry> log(entries->begin(), entries->end());
    const std::string written = bridge::browserEventLogJson(log);
    const auto reread = bridge::parseBrowserEventLog(written);
    check(reread.ok() && reread->size() == log.size(), "event log",
          "a log read was written as one that reads as another", written);
    const std::deque<bridge::BrowserEventLogEntry> again(reread->begin(), reread->end());
    check(bridge::browserEventLogJson(again) == written, "event log",
          "writing the reread log changed it", written);
    const LocalCalendar calendar = LocalCalendar::utc();
    for (const bridge::BrowserEventLogEntry& entry : log) {
        const std::string line = bridge::browserEventLogLine(entry, calendar);
        check(line.size() >= 8 && line[2] == ':' && line[5] == ':', "event log",
              "a log line does not start with the time", line);
    }
}

void fuzzBrowserStatus(std::string_view bytes) {
    const auto texts = runtime::parseBrowserStatusTexts(bytes);
    if (texts) {
        for (const auto& [browser, text] : *texts) {
            check(!bytes.empty() && browser.size() <= bytes.size() && text.size() <= bytes.size(),
                  "browser status", "a text longer than the answer", bytes);
        }
    }
}

}  // namespace
}  // namespace lumenote::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    lumenote::fuzz::fuzzStatus(bytes);
    lumenote::fuzz::fuzzEventLog(bytes);
    lumenote::fuzz::fuzzBrowserStatus(bytes);
    return 0;
}
