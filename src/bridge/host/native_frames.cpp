#include "bridge/host/native_frames.hpp"

#include <algorithm>
#include <cstring>

namespace lumenote::bridge::host {

void NativeFrameReader::feed(std::string_view bytes, std::vector<NativeFrameReading>& out) {
    while (!bytes.empty()) {
        switch (stage_) {
            case Stage::length: {
                const std::size_t taken = std::min(bytes.size(), 4 - lengthBytesRead_);
                std::memcpy(lengthBytes_ + lengthBytesRead_, bytes.data(), taken);
                lengthBytesRead_ += taken;
                bytes.remove_prefix(taken);
                if (lengthBytesRead_ < 4) {
                    return;
                }
                lengthBytesRead_ = 0;
                std::uint32_t length = 0;
                std::memcpy(&length, lengthBytes_, sizeof length);
                remaining_ = length;
                if (length > maximumPayloadBytes_) {
                    out.emplace_back(std::in_place_type<RefusedFrame>, RefusedFrame{length});
                    stage_ = Stage::skipping;
                } else if (length == 0) {
                    out.push_back(NativeFrame{});
                } else {
                    payload_.clear();
                    payload_.reserve(length);
                    stage_ = Stage::payload;
                }
                break;
            }
            case Stage::payload: {
                const std::size_t taken = std::min(bytes.size(), remaining_);
                payload_.append(bytes.data(), taken);
                remaining_ -= taken;
                bytes.remove_prefix(taken);
                if (remaining_ == 0) {
                    out.push_back(NativeFrame{std::move(payload_)});
                    payload_.clear();
                    stage_ = Stage::length;
                }
                break;
            }
            case Stage::skipping: {
                const std::size_t skipped = std::min(bytes.size(), remaining_);
                remaining_ -= skipped;
                bytes.remove_prefix(skipped);
                if (remaining_ == 0) {
                    stage_ = Stage::length;
                }
                break;
            }
        }
    }
}

bool NativeFrameReader::isMidFrame() const {
    return stage_ != Stage::length || lengthBytesRead_ > 0;
}

std::string encodeNativeFrame(std::string_view payload) {
    const auto length = static_cast<std::uint32_t>(payload.size());
    std::string frame(sizeof length, '\0');
    std::memcpy(frame.data(), &length, sizeof length);
    frame.append(payload);
    return frame;
}

}  // namespace lumenote::bridge::host
