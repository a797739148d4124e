// Fuzzes the decoders of the bridge directory's documents: the inbox
// envelopes, commands and readiness files the host and the recorder read
// from a folder any process of the user can write to, and the state and
// preferences. Each input goes through every decoder; whatever one accepts
// must be written back into a document that decodes to the same value. The
// token file's reader takes the same bytes: a well-formed token is 64
// lower-case hexadecimal digits and matches exactly itself.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "bridge/bridge_documents.hpp"
#include "bridge/bridge_token.hpp"
#include "round_trip.hpp"

namespace lumenote::fuzz {
namespace {

using namespace bridge;

template <typename T, typename DateOf, typename Equal = std::equal_to<>>
void fuzzDecoder(std::string_view kind, std::string_view bytes,
                 Result<T, std::string> (*decode)(std::string_view),
                 std::string (*encode)(const T&), DateOf dateOf, Equal equal = {}) {
    if (auto decoded = decode(bytes)) {
        checkRoundTrip<T>(kind, std::move(decoded).value(), encode, decode, dateOf, equal);
    }
}

void fuzzToken(std::string_view bytes) {
    const bool hex = bytes.find_first_not_of("0123456789abcdef") == std::string_view::npos;
    check(bridge::isWellFormedBridgeToken(bytes) == (bytes.size() == 64 && hex), "token",
          "the token reader disagrees with the token's form", bytes);
    const std::string_view half = bytes.substr(0, bytes.size() / 2);
    const std::string_view other = bytes.substr(bytes.size() / 2);
    check(bridge::bridgeTokensMatch(half, other) == (!half.empty() && half == other), "token",
          "tokens match when they differ, or differ when they match", bytes);
    check(bridge::bridgeTokensMatch(bytes, bytes) == !bytes.empty(), "token",
          "a token does not match itself", bytes);
}

void fuzzDocuments(std::string_view bytes) {
    fuzzToken(bytes);
    fuzzDecoder<BrowserBridgeEnvelope>(
        "inbox envelope", bytes, decodeEnvelope, encodeEnvelope,
        [](BrowserBridgeEnvelope& envelope) { return &envelope.receivedAt; });
    fuzzDecoder<BrowserBridgeCommandEnvelope>(
        "command envelope", bytes, decodeCommandEnvelope, encodeCommandEnvelope,
        [](BrowserBridgeCommandEnvelope& envelope) { return &envelope.command.createdAt; },
        [](const BrowserBridgeCommandEnvelope& a, const BrowserBridgeCommandEnvelope& b) {
            return a.version == b.version && a.token == b.token && a.command == b.command;
        });
    fuzzDecoder<BrowserBridgeReadinessEnvelope>(
        "readiness envelope", bytes, decodeReadinessEnvelope, encodeReadinessEnvelope,
        [](BrowserBridgeReadinessEnvelope& envelope) { return &envelope.readiness.updatedAt; },
        [](const BrowserBridgeReadinessEnvelope& a, const BrowserBridgeReadinessEnvelope& b) {
            return a.version == b.version && a.token == b.token && a.readiness == b.readiness;
        });
    fuzzDecoder<BrowserBridgeState>("state", bytes, decodeState, encodeState,
                                    [](BrowserBridgeState& state) { return &state.updatedAt; });
    fuzzDecoder<BrowserBridgePreferencesEnvelope>(
        "preferences", bytes, decodePreferences, encodePreferences,
        [](BrowserBridgePreferencesEnvelope&) -> Date* { return nullptr; });
}

}  // namespace
}  // namespace lumenote::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lumenote::fuzz::fuzzDocuments(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
