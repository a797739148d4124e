// Native-messaging framing, as browsers speak it over a helper's standard
// input and output: each message is a 32-bit length in the machine's own byte
// order followed by that many bytes of UTF-8 JSON.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace lumenote::bridge::host {

// The longest incoming frame the host accepts: no browser event may be longer
// than the validator's payload limit, and a control message is far shorter.
inline constexpr std::size_t kMaximumIncomingFrameBytes = 8192;

struct NativeFrame {
    std::string payload;
};

// A frame whose announced length is over the limit. Its bytes are skipped as
// they arrive, never held.
struct RefusedFrame {
    std::uint32_t announcedLength = 0;
};

using NativeFrameReading = std::variant<NativeFrame, RefusedFrame>;

// Splits a byte stream into frames. Bytes may arrive in any chunking; a frame
// is handed on once its last byte has arrived. Memory stays bounded by the
// limit whatever lengths the stream announces.
class NativeFrameReader {
  public:
    explicit NativeFrameReader(std::size_t maximumPayloadBytes = kMaximumIncomingFrameBytes)
        : maximumPayloadBytes_(maximumPayloadBytes) {}

    // Consumes all of `bytes`, appending each frame they complete to `out`.
    void feed(std::string_view bytes, std::vector<NativeFrameReading>& out);

    // True when the stream stopped part-way through a frame's length or its
    // payload: a truncated frame, which is dropped.
    bool isMidFrame() const;

  private:
    enum class Stage { length, payload, skipping };

    std::size_t maximumPayloadBytes_;
    Stage stage_ = Stage::length;
    unsigned char lengthBytes_[4] = {};
    std::size_t lengthBytesRead_ = 0;
    std::string payload_;
    std::size_t remaining_ = 0;  // payload or skipped bytes still to come
};

// One frame carrying `payload`.
std::string encodeNativeFrame(std::string_view payload);

}  // namespace lumenote::bridge::host
