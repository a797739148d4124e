#include "portability/json_root_scanner.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace lumenote::portability {
namespace {

// What a scan found: "key=value" for members taken whole, "key[...]" with
// the elements of members walked as arrays, skipping what `skip` names.
struct Walked {
    std::vector<std::string> parts;
    std::optional<ScanError> error;
};

Walked walk(std::string_view document, std::size_t blockBytes, std::size_t pieceBytes,
            const std::vector<std::string>& arrays, const std::vector<std::string>& skip = {}) {
    MemoryByteSource source(document, pieceBytes);
    JsonRootScanner scanner(source, 1 << 20, blockBytes);
    Walked walked;
    while (true) {
        auto key = scanner.nextMember();
        if (!key) {
            walked.error = key.error();
            return walked;
        }
        if (!*key) {
            return walked;
        }
        if (std::find(skip.begin(), skip.end(), **key) != skip.end()) {
            continue;
        }
        if (std::find(arrays.begin(), arrays.end(), **key) == arrays.end()) {
            auto value = scanner.memberValue();
            if (!value) {
                walked.error = value.error();
                return walked;
            }
            walked.parts.push_back(**key + "=" + std::string(value->text));
            continue;
        }
        std::string elements = **key + "[";
        while (true) {
            auto element = scanner.nextElement();
            if (!element) {
                walked.error = element.error();
                return walked;
            }
            if (!*element) {
                break;
            }
            elements += std::string((*element)->text) + "|";
            // The text is followed by readable padding for the parser.
            EXPECT_GE(document.size() + kScannedTextPadding,
                      (*element)->offset + (*element)->text.size());
        }
        walked.parts.push_back(elements + "]");
    }
}

constexpr std::string_view kDocument = R"( {
  "formatVersion" : 1,
  "odd\"key" : "a } ] \\\" [ { , string",
  "sessions": [ {"id":"x","list":[1,[2,{"k":"]"}]]} ,
                "plain",  -12.5e3 , true,null, [ ] , {} ],
  "after": {"nested": [ "}" ]}
} )";

TEST(JsonRootScannerTest, MembersAndElementsAreTheSameForEveryBlockAndPieceSize) {
    const std::vector<std::string> expected{
        "formatVersion=1",
        R"(odd\"key="a } ] \\\" [ { , string")",
        R"(sessions[{"id":"x","list":[1,[2,{"k":"]"}]]}|"plain"|-12.5e3|true|null|[ ]|{}|])",
        R"(after={"nested": [ "}" ]})",
    };
    for (const std::size_t block : {1, 2, 3, 7, 64, 4096}) {
        for (const std::size_t piece : {1, 5, 1000}) {
            SCOPED_TRACE(::testing::Message() << "block " << block << ", piece " << piece);
            const Walked walked = walk(kDocument, block, piece, {"sessions"});
            ASSERT_FALSE(walked.error) << walked.error->offset;
            EXPECT_EQ(walked.parts, expected);
        }
    }
}

TEST(JsonRootScannerTest, ValuesNotTakenAreSkippedWithTheirWholeStructure) {
    const Walked walked = walk(kDocument, 7, 3, {}, {"odd\\\"key", "sessions"});
    ASSERT_FALSE(walked.error);
    EXPECT_EQ(walked.parts,
              (std::vector<std::string>{"formatVersion=1", R"(after={"nested": [ "}" ]})"}));
    // Elements left unread when the next member is asked for.
    MemoryByteSource source(R"({"list":[{"a":1},{"b":2}],"last":3})");
    JsonRootScanner scanner(source, 1 << 20, 4);
    ASSERT_EQ(**scanner.nextMember(), "list");
    ASSERT_EQ((*scanner.nextElement())->text, R"({"a":1})");
    ASSERT_EQ(**scanner.nextMember(), "last");
    EXPECT_EQ(scanner.memberValue()->text, "3");
    EXPECT_FALSE(*scanner.nextMember());
}

TEST(JsonRootScannerTest, EveryTruncationOfADocumentIsMalformed) {
    const std::string document(kDocument);
    // Cut just before the closing brace and everything shorter.
    const std::size_t closing = document.rfind('}');
    for (std::size_t length = 0; length <= closing; ++length) {
        SCOPED_TRACE(length);
        const Walked walked = walk(document.substr(0, length), 5, 3, {"sessions"});
        ASSERT_TRUE(walked.error);
        EXPECT_EQ(walked.error->failure, ScanFailure::malformed);
        EXPECT_LE(walked.error->offset, length);
    }
}

TEST(JsonRootScannerTest, BrokenStructuresAreMalformed) {
    const std::string_view cases[] = {
        R"([1,2])",                         // not an object at the root
        R"("text")",                        //
        R"({"a":1} {"b":2})",               // something after the root
        R"({"a":1}x)",                      //
        R"({"a":1,})",                      // a comma before the end
        R"({"a" 1})",                       // no colon
        R"({a:1})",                         // a key without quotes
        R"({"a":1 "b":2})",                 // no comma
        R"({"s":[1,]})",                    // a comma before the end of a list
        R"({"s":[1 2]})",                   // no comma between elements
        R"({"skipped":[1}, "b":2})",        // brackets that do not match
        R"({"skipped":{"k":[}]}, "b":2})",  //
        R"({"s":,})",                       // no value
    };
    for (const std::string_view document : cases) {
        SCOPED_TRACE(document);
        const Walked walked = walk(document, 4, 2, {"s"}, {"skipped"});
        ASSERT_TRUE(walked.error);
        EXPECT_EQ(walked.error->failure, ScanFailure::malformed);
    }
}

TEST(JsonRootScannerTest, AValueLongerThanTheMaximumIsTooLargeWithoutBeingHeld) {
    const std::string big =
        R"({"s":[")" + std::string(100, 'x') + R"("],"t":")" + std::string(100, 'y') + R"("})";
    for (const std::size_t block : {16, 4096}) {
        MemoryByteSource source(big);
        JsonRootScanner scanner(source, 101, block);
        ASSERT_EQ(**scanner.nextMember(), "s");
        auto element = scanner.nextElement();
        ASSERT_FALSE(element);
        EXPECT_EQ(element.error().failure, ScanFailure::tooLarge);
    }
    // Exactly at the maximum (the string with its quotes) is held.
    MemoryByteSource source(big);
    JsonRootScanner scanner(source, 102, 16);
    ASSERT_EQ(**scanner.nextMember(), "s");
    EXPECT_EQ((*scanner.nextElement())->text.size(), 102u);
    // A value that is skipped is never too large.
    ASSERT_EQ(**scanner.nextMember(), "t");
    EXPECT_FALSE(*scanner.nextMember());
}

// Hands out its bytes, then fails.
class FailingSource final : public ByteSource {
  public:
    std::optional<std::size_t> read(char* into, std::size_t capacity) override {
        if (handedOut_) {
            return std::nullopt;
        }
        handedOut_ = true;
        const std::string_view start = R"({"s":[{"a":)";
        const std::size_t count = std::min(capacity, start.size());
        std::copy_n(start.data(), count, into);
        return count;
    }

  private:
    bool handedOut_ = false;
};

TEST(JsonRootScannerTest, AFailingSourceIsUnreadableNotMalformed) {
    FailingSource source;
    JsonRootScanner scanner(source, 1 << 20, 64);
    ASSERT_EQ(**scanner.nextMember(), "s");
    auto element = scanner.nextElement();
    ASSERT_FALSE(element);
    EXPECT_EQ(element.error().failure, ScanFailure::unreadable);
}

}  // namespace
}  // namespace lumenote::portability
