// Fuzzes the host's side of native messaging: the frame reader over any byte
// stream a browser (or anything that starts the host) could write, and the
// reading of each frame as an extension message. The first byte chooses how
// the rest is chunked; the frames must not depend on the chunking, must stay
// within the limit, and (when none was refused) must encode back into the
// bytes they came from.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "bridge/host/extension_messages.hpp"
#include "bridge/host/native_frames.hpp"

namespace lumenote::fuzz {
namespace {

using namespace bridge::host;

bool sameReadings(const std::vector<NativeFrameReading>& a,
                  const std::vector<NativeFrameReading>& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i].index() != b[i].index()) {
            return false;
        }
        if (const auto* frame = std::get_if<NativeFrame>(&a[i])) {
            if (frame->payload != std::get<NativeFrame>(b[i]).payload) {
                return false;
            }
        } else if (std::get<RefusedFrame>(a[i]).announcedLength !=
                   std::get<RefusedFrame>(b[i]).announcedLength) {
            return false;
        }
    }
    return true;
}

}  // namespace
}  // namespace lumenote::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lumenote::fuzz;
    if (size == 0) {
        return 0;
    }
    const std::size_t chunk = std::size_t{data[0]} % 64 + 1;
    const std::string_view stream(reinterpret_cast<const char*>(data) + 1, size - 1);
    // A small limit, so that refusals and skipping are reached often.
    constexpr std::size_t kLimit = 512;

    NativeFrameReader whole(kLimit);
    std::vector<NativeFrameReading> wholeFrames;
    whole.feed(stream, wholeFrames);

    NativeFrameReader chunked(kLimit);
    std::vector<NativeFrameReading> chunkedFrames;
    for (std::size_t at = 0; at < stream.size(); at += chunk) {
        chunked.feed(stream.substr(at, chunk), chunkedFrames);
    }
    if (!sameReadings(wholeFrames, chunkedFrames) || whole.isMidFrame() != chunked.isMidFrame()) {
        std::abort();
    }

    std::string reencoded;
    bool refused = false;
    for (const NativeFrameReading& reading : wholeFrames) {
        if (const auto* frame = std::get_if<NativeFrame>(&reading)) {
            if (frame->payload.size() > kLimit) {
                std::abort();
            }
            reencoded += encodeNativeFrame(frame->payload);
            (void)readExtensionMessage(frame->payload);
        } else {
            refused = true;
        }
    }
    if (!refused && stream.substr(0, reencoded.size()) != reencoded) {
        std::abort();
    }
    if (!refused && !whole.isMidFrame() && reencoded.size() != stream.size()) {
        std::abort();
    }
    return 0;
}
