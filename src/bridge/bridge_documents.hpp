// The JSON documents of the bridge directory, shared by the recorder and the
// native-messaging host: the recorder's state and preferences, commands for
// the extension, the host's readiness per browser and the envelope of one
// received browser event. Keys are the field names in this order; dates are
// ISO-8601 strings in UTC with milliseconds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/dates.hpp"
#include "foundation/raw_enum.hpp"
#include "foundation/result.hpp"
#include "foundation/uuid.hpp"

namespace lumenote::bridge {

// The format version of every bridge document, and the version of the
// protocol between the extension, the host and the recorder.
inline constexpr long long kBridgeDocumentVersion = 1;
inline constexpr long long kBridgeProtocolVersion = 1;

struct BrowserBridgeState {
    long long version = kBridgeDocumentVersion;
    std::int32_t appProcessIdentifier = 0;
    bool sessionRunning = false;
    std::optional<Uuid> sessionIdentifier;
    bool browserTrackingPaused = false;
    std::optional<std::string> frontmostBrowserBundleIdentifier;
    Date updatedAt;

    friend bool operator==(const BrowserBridgeState&, const BrowserBridgeState&) = default;
};

struct BrowserBridgePreferencesEnvelope {
    long long version = kBridgeDocumentVersion;
    std::string token;
    bool filenameLabelsEnabled = true;

    friend bool operator==(const BrowserBridgePreferencesEnvelope&,
                           const BrowserBridgePreferencesEnvelope&) = default;
};

enum class BrowserBridgeCommandType { showLocalPDF, setFilenameLabelsEnabled };

struct BrowserBridgeCommand {
    Uuid id;
    BrowserBridgeCommandType type = BrowserBridgeCommandType::showLocalPDF;
    std::string browserBundleIdentifier;
    std::optional<Uuid> sessionIdentifier;
    std::optional<Uuid> pdfIdentifier;
    std::optional<bool> filenameLabelsEnabled;
    Date createdAt;

    friend bool operator==(const BrowserBridgeCommand&, const BrowserBridgeCommand&) = default;
};

struct BrowserBridgeCommandEnvelope {
    long long version = kBridgeDocumentVersion;
    std::string token;
    BrowserBridgeCommand command;
};

struct BrowserBridgeReadiness {
    long long version = kBridgeDocumentVersion;
    std::string browserBundleIdentifier;
    std::string extensionVersion;
    std::string nativeHostVersion;
    long long protocolVersion = kBridgeProtocolVersion;
    bool connectionAvailable = false;
    Date updatedAt;

    friend bool operator==(const BrowserBridgeReadiness&, const BrowserBridgeReadiness&) = default;
};

struct BrowserBridgeReadinessEnvelope {
    long long version = kBridgeDocumentVersion;
    std::string token;
    BrowserBridgeReadiness readiness;
};

// One inbox file: a browser event as the host received it.
struct BrowserBridgeEnvelope {
    long long version = kBridgeDocumentVersion;
    std::string token;
    Uuid sessionIdentifier;
    Date receivedAt;
    std::string eventData;  // the raw bytes of one event document

    friend bool operator==(const BrowserBridgeEnvelope&, const BrowserBridgeEnvelope&) = default;
};

// Encoders: compact JSON, keys in field order, absent optionals left out.
std::string encodeState(const BrowserBridgeState& state);
std::string encodePreferences(const BrowserBridgePreferencesEnvelope& preferences);
std::string encodeCommandEnvelope(const BrowserBridgeCommandEnvelope& envelope);
// One command on its own, as the host hands it to the extension.
std::string encodeCommand(const BrowserBridgeCommand& command);
std::string encodeReadinessEnvelope(const BrowserBridgeReadinessEnvelope& envelope);
std::string encodeEnvelope(const BrowserBridgeEnvelope& envelope);

// Decoders: strict about types and required keys, ignoring keys they do not
// know; fail with a short description of the first problem. They check the
// shape only: the token is compared by the reader.
Result<BrowserBridgeState, std::string> decodeState(std::string_view json);
Result<BrowserBridgePreferencesEnvelope, std::string> decodePreferences(std::string_view json);
Result<BrowserBridgeCommandEnvelope, std::string> decodeCommandEnvelope(std::string_view json);
Result<BrowserBridgeReadinessEnvelope, std::string> decodeReadinessEnvelope(std::string_view json);
Result<BrowserBridgeEnvelope, std::string> decodeEnvelope(std::string_view json);

}  // namespace lumenote::bridge

namespace lumenote {

template <>
struct RawValues<bridge::BrowserBridgeCommandType> {
    using E = bridge::BrowserBridgeCommandType;
    static constexpr std::array<std::pair<E, std::string_view>, 2> entries{{
        {E::showLocalPDF, "showLocalPDF"},
        {E::setFilenameLabelsEnabled, "setFilenameLabelsEnabled"},
    }};
};

}  // namespace lumenote
