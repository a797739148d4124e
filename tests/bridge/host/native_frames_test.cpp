#include "bridge/host/native_frames.hpp"

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace lumenote::bridge::host {
namespace {

std::string lengthOnly(std::uint32_t length) {
    std::string bytes(4, '\0');
    std::memcpy(bytes.data(), &length, 4);
    return bytes;
}

std::vector<NativeFrameReading> readAll(NativeFrameReader& reader, const std::string& bytes,
                                        std::size_t chunk) {
    std::vector<NativeFrameReading> out;
    for (std::size_t at = 0; at < bytes.size(); at += chunk) {
        reader.feed(std::string_view(bytes).substr(at, chunk), out);
    }
    return out;
}

std::string payloadOf(const NativeFrameReading& reading) {
    return std::get<NativeFrame>(reading).payload;
}

TEST(NativeFrameReaderTest, FramesSurviveAnyChunking) {
    const std::string stream =
        encodeNativeFrame(R"({"a":1})") + encodeNativeFrame("") + encodeNativeFrame(R"(["é"])");
    for (const std::size_t chunk :
         {std::size_t{1}, std::size_t{3}, std::size_t{5}, stream.size()}) {
        NativeFrameReader reader;
        const auto frames = readAll(reader, stream, chunk);
        ASSERT_EQ(frames.size(), 3u) << "chunk " << chunk;
        EXPECT_EQ(payloadOf(frames[0]), R"({"a":1})");
        EXPECT_EQ(payloadOf(frames[1]), "");
        EXPECT_EQ(payloadOf(frames[2]), R"(["é"])");
        EXPECT_FALSE(reader.isMidFrame());
    }
}

TEST(NativeFrameReaderTest, TheLimitIsAcceptedAndOneByteMoreIsSkippedWithoutLosingTheNextFrame) {
    NativeFrameReader reader(16);
    const std::string atLimit(16, 'x');
    const std::string over(17, 'y');
    const auto frames = readAll(
        reader, encodeNativeFrame(atLimit) + encodeNativeFrame(over) + encodeNativeFrame("next"),
        4);
    ASSERT_EQ(frames.size(), 3u);
    EXPECT_EQ(payloadOf(frames[0]), atLimit);
    ASSERT_TRUE(std::holds_alternative<RefusedFrame>(frames[1]));
    EXPECT_EQ(std::get<RefusedFrame>(frames[1]).announcedLength, 17u);
    EXPECT_EQ(payloadOf(frames[2]), "next");
}

TEST(NativeFrameReaderTest, AHugeAnnouncedLengthIsRefusedAtOnceAndItsBytesAreNeverHeld) {
    NativeFrameReader reader;
    std::vector<NativeFrameReading> out;
    reader.feed(lengthOnly(0xFFFFFFFFu), out);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_TRUE(std::holds_alternative<RefusedFrame>(out[0]));
    // Megabytes of the refused frame go by without producing anything.
    const std::string megabyte(1 << 20, '{');
    for (int i = 0; i < 8; ++i) {
        reader.feed(megabyte, out);
    }
    EXPECT_EQ(out.size(), 1u);
    EXPECT_TRUE(reader.isMidFrame());
}

TEST(NativeFrameReaderTest, InputEndingInsideALengthOrAPayloadIsMidFrame) {
    NativeFrameReader reader;
    std::vector<NativeFrameReading> out;
    reader.feed(lengthOnly(10).substr(0, 2), out);
    EXPECT_TRUE(reader.isMidFrame());

    NativeFrameReader other;
    other.feed(lengthOnly(10) + "12345", out);
    EXPECT_TRUE(other.isMidFrame());
    EXPECT_TRUE(out.empty());
    other.feed("67890", out);
    EXPECT_FALSE(other.isMidFrame());
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(payloadOf(out[0]), "1234567890");
}

TEST(NativeFrameReaderTest, EncodedLengthIsInTheMachinesByteOrder) {
    const std::string frame = encodeNativeFrame("abc");
    std::uint32_t length = 0;
    std::memcpy(&length, frame.data(), 4);
    EXPECT_EQ(length, 3u);
    EXPECT_EQ(frame.substr(4), "abc");
}

}  // namespace
}  // namespace lumenote::bridge::host
