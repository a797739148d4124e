// JsonRootScanner: splits a JSON document whose root is an object into its
// members, and a member whose value is an array into its elements, reading
// the document in blocks. Only the member or element asked for is held (a
// copy of its text, for a full parser to decode); everything else passes
// through one block buffer. A document of any size is thus read with the
// memory of one block plus its largest element.
//
// The scanner checks the structure it walks (the root object, the member
// separators, strings, matching brackets and what follows the root) but not
// the content of values: that is the job of the parser the values are handed
// to. A value that is skipped is therefore only checked for its structure.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/result.hpp"

namespace lumenote::portability {

// The bytes of a document in order.
class ByteSource {
  public:
    virtual ~ByteSource() = default;
    // Reads up to `capacity` further bytes into `into`: how many were read, 0
    // at the end, nullopt when reading failed.
    virtual std::optional<std::size_t> read(char* into, std::size_t capacity) = 0;
};

// Bytes already in memory, handed out at most `pieceBytes` at a time (tests
// and fuzzing use small pieces to reach every block boundary).
class MemoryByteSource final : public ByteSource {
  public:
    explicit MemoryByteSource(std::string_view bytes, std::size_t pieceBytes = 1 << 20)
        : bytes_(bytes), pieceBytes_(pieceBytes) {}
    std::optional<std::size_t> read(char* into, std::size_t capacity) override;

  private:
    std::string_view bytes_;
    std::size_t pieceBytes_;
};

enum class ScanFailure {
    malformed,   // not an object at the root, a broken structure, or an early end
    notAnArray,  // nextElement() on a member whose value is no array
    tooLarge,    // a value held is longer than the scanner's maximum
    unreadable   // the source failed
};

struct ScanError {
    ScanFailure failure = ScanFailure::malformed;
    std::size_t offset = 0;  // bytes from the start of the document
};

// A value's JSON text, valid until the scanner's next call. At least
// kScannedTextPadding bytes of readable memory (of any content) follow its
// end, as parsers that read ahead need (simdjson's padding). A value within
// one block is not copied.
struct ScannedText {
    std::string_view text;
    std::size_t offset = 0;  // of its first byte in the document
};

inline constexpr std::size_t kScannedTextPadding = 64;

class JsonRootScanner {
  public:
    // Values (and keys) longer than `maximumValueBytes` are `tooLarge`.
    JsonRootScanner(ByteSource& source, std::size_t maximumValueBytes,
                    std::size_t blockBytes = 1 << 20);

    // The next member's key, as written between its quotes (escapes are not
    // resolved). A value not taken with memberValue() or nextElement() is
    // skipped first. nullopt once the root object has ended and nothing but
    // white space follows it.
    Result<std::optional<std::string>, ScanError> nextMember();
    // The whole value of the current member.
    Result<ScannedText, ScanError> memberValue();
    // The next element of the current member's value, which must be an
    // array (otherwise `notAnArray`); nullopt after the last one.
    Result<std::optional<ScannedText>, ScanError> nextElement();

  private:
    enum class State { beforeRoot, atValue, afterElement, afterValue, ended };

    // Makes the next byte available, reading a block when the current one
    // is used up (and first keeping its rest when a value is being held).
    // False at the end of the document, when the source failed, or when a
    // held value grew past the maximum.
    bool fill();
    // Why the document ended where it should not have.
    ScanError endError() const;
    // The next byte that is not white space, left in place / consumed;
    // nullopt at the end.
    std::optional<char> peekSignificant();
    std::optional<char> nextSignificant();
    Result<void, ScanError> expect(char wanted);
    // Reads a key whose opening quote is consumed, and the colon after it.
    Result<std::string, ScanError> readKey();
    // Checks that only white space follows the root object.
    Result<std::optional<std::string>, ScanError> rootEnd();
    Result<std::optional<ScannedText>, ScanError> element(bool keep);
    // Walks one value starting at the next significant byte, holding its
    // text in `held_` when `keep`.
    Result<void, ScanError> walkValue(bool keep);
    // The rest of a string whose opening quote is consumed.
    Result<void, ScanError> walkString();
    // An object or array starting at the current byte.
    Result<void, ScanError> walkContainer();
    ScanError error(ScanFailure failure) const { return {failure, consumed()}; }
    std::size_t consumed() const { return blockOffset_ + position_; }

    ByteSource& source_;
    std::size_t maximumValueBytes_;
    std::size_t blockBytes_;
    std::vector<char> block_;      // blockBytes_ of data, then kScannedTextPadding spare
    std::size_t blockOffset_ = 0;  // document offset of block_[0]
    std::size_t position_ = 0;
    std::size_t end_ = 0;
    bool sourceFailed_ = false;
    bool keeping_ = false;
    bool heldTooLarge_ = false;
    std::size_t pendingStart_ = 0;  // first byte of block_ not yet copied into held_
    std::string held_;              // a value that spans blocks, gathered
    std::string_view heldText_;
    std::vector<char> brackets_;
    State state_ = State::beforeRoot;
};

}  // namespace lumenote::portability
