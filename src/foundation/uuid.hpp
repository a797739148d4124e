// Uuid: a 128-bit identifier with its text forms and its 16-byte stored form.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace lumenote {
inline namespace foundation {

class Uuid {
  public:
    using Bytes = std::array<std::uint8_t, 16>;

    // The nil UUID (all zero bytes).
    Uuid() = default;
    explicit Uuid(const Bytes& bytes) : bytes_(bytes) {}

    // A random (version 4) UUID from the kernel's random source: one system
    // call, where libuuid makes five (it is the fallback when that fails).
    static Uuid generate();
    // Parses the 36-character hyphenated form in either case; nullopt otherwise.
    static std::optional<Uuid> parse(std::string_view text);
    // Reads the 16-byte form; nullopt unless exactly 16 bytes are given.
    static std::optional<Uuid> fromBytes(const void* data, std::size_t size);

    // "E621E1F8-C36C-495A-93FC-0C247A3E6E5F", the form stored in JSON files.
    std::string upperString() const;
    // "e621e1f8-c36c-495a-93fc-0c247a3e6e5f".
    std::string lowerString() const;
    const Bytes& bytes() const { return bytes_; }
    bool isNil() const;

    friend auto operator<=>(const Uuid&, const Uuid&) = default;

  private:
    Bytes bytes_{};
};

}  // namespace foundation
}  // namespace lumenote

template <>
struct std::hash<lumenote::Uuid> {
    std::size_t operator()(const lumenote::Uuid& uuid) const noexcept;
};
