// Fuzzes the validation of one raw browser event: bytes any web page can
// shape through the extension and the host. Every event the decoder accepts
// must be written back into a document that decodes to the same event, and
// validation must hand on the decoded event unchanged.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "bridge/browser_activity_event.hpp"
#include "bridge/browser_event_validator.hpp"
#include "round_trip.hpp"

namespace lumenote::fuzz {
namespace {

using bridge::BrowserActivityEvent;

// The "now" of every run. The seed events are stamped around it, so that the
// fuzzer starts inside the validator's window of accepted timestamps.
const Date kNow = *parseIso8601("2026-11-25T10:00:00Z");

void fuzzEvent(std::string_view bytes) {
    static const bridge::BrowserEventValidator validator;
    const auto validated = validator.validate(bytes, kNow);
    const auto decoded = bridge::decodeBrowserActivityEvent(bytes);
    if (!decoded) {
        check(!validated, "event", "validation accepted an event the decoder refuses", bytes);
        return;
    }
    if (validated) {
        check(validated.value() == decoded.value(), "event", "validation changed the decoded event",
              bytes);
    } else {
        check(!validated.error().message().empty(), "event", "a validation error has no message",
              bytes);
    }
    checkRoundTrip<BrowserActivityEvent>(
        "event", decoded.value(), bridge::encodeBrowserActivityEvent,
        bridge::decodeBrowserActivityEvent,
        [](BrowserActivityEvent& event) { return &event.timestamp; });
}

}  // namespace
}  // namespace lumenote::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lumenote::fuzz::fuzzEvent(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
