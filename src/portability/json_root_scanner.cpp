#include "portability/json_root_scanner.hpp"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdint>
#include <cstring>

namespace lumenote::portability {

namespace {

// Deeper nesting than this is refused rather than tracked: no value of a
// backup comes near it.
constexpr std::size_t kMaximumDepth = 1024;

bool isWhiteSpace(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

// The bytes that matter inside an object or array: strings and brackets.
constexpr std::array<bool, 256> kStructural = [] {
    std::array<bool, 256> structural{};
    for (const char c : {'"', '{', '}', '[', ']'}) {
        structural[static_cast<unsigned char>(c)] = true;
    }
    return structural;
}();

bool endsScalar(char c) {
    return isWhiteSpace(c) || c == ',' || c == ']' || c == '}';
}

// The first byte of data[at, end) that is a quote or a backslash, or `end`.
// Strings make up most of a document, so eight bytes are tested at once:
// a byte equal to the one looked for becomes zero after the exclusive or,
// and (v - 0x01..) & ~v & 0x80.. is non-zero exactly when v has a zero byte.
std::size_t findQuoteOrBackslash(const char* data, std::size_t at, std::size_t end) {
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    constexpr std::uint64_t kHighBits = 0x8080808080808080;
    constexpr std::uint64_t kQuotes = kOnes * '"';
    constexpr std::uint64_t kBackslashes = kOnes * '\\';
    while (at + 8 <= end) {
        std::uint64_t word = 0;
        std::memcpy(&word, data + at, 8);
        const std::uint64_t quotes = word ^ kQuotes;
        const std::uint64_t backslashes = word ^ kBackslashes;
        if ((((quotes - kOnes) & ~quotes) | ((backslashes - kOnes) & ~backslashes)) & kHighBits) {
            break;
        }
        at += 8;
    }
    while (at < end && data[at] != '"' && data[at] != '\\') {
        ++at;
    }
    return at;
}

}  // namespace

std::optional<std::size_t> MemoryByteSource::read(char* into, std::size_t capacity) {
    const std::size_t count = std::min({capacity, pieceBytes_, bytes_.size()});
    std::memcpy(into, bytes_.data(), count);
    bytes_.remove_prefix(count);
    return count;
}

JsonRootScanner::JsonRootScanner(ByteSource& source, std::size_t maximumValueBytes,
                                 std::size_t blockBytes)
    : source_(source),
      maximumValueBytes_(maximumValueBytes),
      blockBytes_(std::max<std::size_t>(blockBytes, 1)),
      block_(blockBytes_ + kScannedTextPadding) {}

bool JsonRootScanner::fill() {
    if (position_ < end_) {
        return true;
    }
    if (keeping_) {
        held_.append(block_.data() + pendingStart_, end_ - pendingStart_);
        if (held_.size() > maximumValueBytes_) {
            heldTooLarge_ = true;
            return false;
        }
    }
    blockOffset_ += end_;
    position_ = 0;
    end_ = 0;
    pendingStart_ = 0;
    if (sourceFailed_) {
        return false;
    }
    const auto got = source_.read(block_.data(), blockBytes_);
    if (!got) {
        sourceFailed_ = true;
        return false;
    }
    end_ = *got;
    return end_ > 0;
}

ScanError JsonRootScanner::endError() const {
    if (heldTooLarge_) {
        return error(ScanFailure::tooLarge);
    }
    return error(sourceFailed_ ? ScanFailure::unreadable : ScanFailure::malformed);
}

std::optional<char> JsonRootScanner::peekSignificant() {
    while (fill()) {
        const char c = block_[position_];
        if (!isWhiteSpace(c)) {
            return c;
        }
        ++position_;
    }
    return std::nullopt;
}

std::optional<char> JsonRootScanner::nextSignificant() {
    const auto c = peekSignificant();
    if (c) {
        ++position_;
    }
    return c;
}

Result<void, ScanError> JsonRootScanner::expect(char wanted) {
    const auto c = nextSignificant();
    if (!c) {
        return fail(endError());
    }
    if (*c != wanted) {
        return fail(error(ScanFailure::malformed));
    }
    return {};
}

Result<void, ScanError> JsonRootScanner::walkString() {
    while (true) {
        if (!fill()) {
            return fail(endError());
        }
        const char* const data = block_.data();
        const std::size_t at = findQuoteOrBackslash(data, position_, end_);
        position_ = at;
        if (at == end_) {
            continue;
        }
        ++position_;
        if (data[at] == '"') {
            return {};
        }
        // A backslash: the byte after it is escaped, wherever it lies.
        if (!fill()) {
            return fail(endError());
        }
        ++position_;
    }
}

Result<void, ScanError> JsonRootScanner::walkContainer() {
    brackets_.clear();
    brackets_.push_back(block_[position_++]);
    while (true) {
        if (!fill()) {
            return fail(endError());
        }
        // Numbers, literals, separators and white space between the strings
        // and brackets change nothing here.
        const char* const data = block_.data();
        std::size_t at = position_;
        while (at < end_ && !kStructural[static_cast<unsigned char>(data[at])]) {
            ++at;
        }
        position_ = at;
        if (at == end_) {
            continue;
        }
        const char c = block_[position_++];
        switch (c) {
            case '"':
                if (auto walked = walkString(); !walked) {
                    return walked;
                }
                break;
            case '{':
            case '[':
                if (brackets_.size() == kMaximumDepth) {
                    return fail(error(ScanFailure::malformed));
                }
                brackets_.push_back(c);
                break;
            default:  // '}' or ']'
                if (brackets_.back() != (c == '}' ? '{' : '[')) {
                    return fail(error(ScanFailure::malformed));
                }
                brackets_.pop_back();
                if (brackets_.empty()) {
                    return {};
                }
                break;
        }
    }
}

Result<void, ScanError> JsonRootScanner::walkValue(bool keep) {
    const auto first = peekSignificant();
    if (!first) {
        return fail(endError());
    }
    held_.clear();
    keeping_ = keep;
    heldTooLarge_ = false;
    pendingStart_ = position_;
    Result<void, ScanError> walked;
    if (*first == '"') {
        ++position_;
        walked = walkString();
    } else if (*first == '{' || *first == '[') {
        walked = walkContainer();
    } else if (endsScalar(*first)) {
        walked = fail(error(ScanFailure::malformed));
    } else {
        // A number, true, false or null: its text is checked by the parser.
        while (fill() && !endsScalar(block_[position_])) {
            ++position_;
        }
        if (heldTooLarge_ || sourceFailed_) {
            walked = fail(endError());
        }
    }
    keeping_ = false;
    if (!keep || !walked) {
        return walked;
    }
    const std::string_view rest(block_.data() + pendingStart_, position_ - pendingStart_);
    if (held_.empty()) {
        // The whole value lies in the block, which is followed by
        // kScannedTextPadding bytes: it is handed out where it is.
        heldText_ = rest;
    } else {
        held_.append(rest);
        const std::size_t size = held_.size();
        held_.append(kScannedTextPadding, '\0');
        heldText_ = std::string_view(held_.data(), size);
    }
    if (heldText_.size() > maximumValueBytes_) {
        return fail(error(ScanFailure::tooLarge));
    }
    return walked;
}

Result<std::string, ScanError> JsonRootScanner::readKey() {
    // The opening quote is consumed; the key runs to the closing one.
    held_.clear();
    keeping_ = true;
    pendingStart_ = position_;
    auto walked = walkString();
    if (walked) {
        held_.append(block_.data() + pendingStart_, position_ - pendingStart_);
    }
    keeping_ = false;
    if (!walked) {
        return fail(walked.error());
    }
    if (held_.size() > maximumValueBytes_) {
        return fail(error(ScanFailure::tooLarge));
    }
    held_.pop_back();  // the closing quote
    if (auto colon = expect(':'); !colon) {
        return fail(colon.error());
    }
    state_ = State::atValue;
    return held_;
}

Result<std::optional<std::string>, ScanError> JsonRootScanner::rootEnd() {
    if (nextSignificant()) {
        return fail(error(ScanFailure::malformed));
    }
    if (sourceFailed_) {
        return fail(error(ScanFailure::unreadable));
    }
    state_ = State::ended;
    return std::optional<std::string>();
}

Result<std::optional<std::string>, ScanError> JsonRootScanner::nextMember() {
    switch (state_) {
        case State::ended:
            return std::optional<std::string>();
        case State::beforeRoot: {
            if (auto open = expect('{'); !open) {
                return fail(open.error());
            }
            const auto c = nextSignificant();
            if (!c) {
                return fail(endError());
            }
            if (*c == '}') {
                return rootEnd();
            }
            if (*c != '"') {
                return fail(error(ScanFailure::malformed));
            }
            auto key = readKey();
            if (!key) {
                return fail(key.error());
            }
            return std::optional<std::string>(std::move(*key));
        }
        case State::atValue:
            if (auto skipped = walkValue(false); !skipped) {
                return fail(skipped.error());
            }
            break;
        case State::afterElement:
            while (true) {
                auto skipped = element(false);
                if (!skipped) {
                    return fail(skipped.error());
                }
                if (!*skipped) {
                    break;
                }
            }
            break;
        case State::afterValue:
            break;
    }
    const auto c = nextSignificant();
    if (!c) {
        return fail(endError());
    }
    if (*c == '}') {
        return rootEnd();
    }
    if (*c != ',') {
        return fail(error(ScanFailure::malformed));
    }
    if (auto quote = expect('"'); !quote) {
        return fail(quote.error());
    }
    auto key = readKey();
    if (!key) {
        return fail(key.error());
    }
    return std::optional<std::string>(std::move(*key));
}

Result<ScannedText, ScanError> JsonRootScanner::memberValue() {
    assert(state_ == State::atValue);
    if (!peekSignificant()) {
        return fail(endError());
    }
    const std::size_t offset = consumed();
    if (auto walked = walkValue(true); !walked) {
        return fail(walked.error());
    }
    state_ = State::afterValue;
    return ScannedText{heldText_, offset};
}

Result<std::optional<ScannedText>, ScanError> JsonRootScanner::nextElement() {
    assert(state_ == State::atValue || state_ == State::afterElement);
    return element(true);
}

Result<std::optional<ScannedText>, ScanError> JsonRootScanner::element(bool keep) {
    if (state_ == State::atValue) {
        const auto first = peekSignificant();
        if (!first) {
            return fail(endError());
        }
        if (*first != '[') {
            // Only a byte that may begin a value makes it another value.
            return fail(error(endsScalar(*first) || *first == ':' ? ScanFailure::malformed
                                                                  : ScanFailure::notAnArray));
        }
        ++position_;
        const auto c = peekSignificant();
        if (!c) {
            return fail(endError());
        }
        if (*c == ']') {
            ++position_;
            state_ = State::afterValue;
            return std::optional<ScannedText>();
        }
    } else {
        const auto c = nextSignificant();
        if (!c) {
            return fail(endError());
        }
        if (*c == ']') {
            state_ = State::afterValue;
            return std::optional<ScannedText>();
        }
        if (*c != ',') {
            return fail(error(ScanFailure::malformed));
        }
        if (!peekSignificant()) {
            return fail(endError());
        }
    }
    const std::size_t offset = consumed();
    if (auto walked = walkValue(keep); !walked) {
        return fail(walked.error());
    }
    state_ = State::afterElement;
    return std::optional<ScannedText>(ScannedText{keep ? heldText_ : std::string_view(), offset});
}

}  // namespace lumenote::portability
