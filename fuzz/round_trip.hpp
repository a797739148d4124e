// The checks the fuzz targets make beyond "no crash": a document a decoder
// accepts must survive being written and read again. A failed check aborts,
// so that libFuzzer keeps the input that caused it like any other crash.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <string_view>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"

namespace lumenote::fuzz {

// Prints what went wrong and the document involved, then aborts.
[[noreturn]] inline void failCheck(std::string_view kind, std::string_view problem,
                                   std::string_view document) {
    std::fprintf(stderr, "fuzz check failed: %.*s: %.*s\ndocument: %.*s\n",
                 static_cast<int>(kind.size()), kind.data(), static_cast<int>(problem.size()),
                 problem.data(), static_cast<int>(document.size()), document.data());
    std::abort();
}

inline void check(bool condition, std::string_view kind, std::string_view problem,
                  std::string_view document) {
    if (!condition) {
        failCheck(kind, problem, document);
    }
}

// Writes `decoded` with `encode` and reads the text back with `decode`. The
// text must decode, write the same bytes again, and give back `decoded`
// except for dates, which documents carry to the millisecond: `dateOf` names
// the value's one date (nullptr when it has none), and the reread value takes
// the original date before `equal` compares the two.
template <typename T, typename DateOf, typename Equal = std::equal_to<>>
void checkRoundTrip(std::string_view kind, T decoded, std::string (*encode)(const T&),
                    Result<T, std::string> (*decode)(std::string_view), DateOf dateOf,
                    Equal equal = {}) {
    const std::string written = encode(decoded);
    auto reread = decode(written);
    if (!reread) {
        failCheck(kind,
                  "a decoded value was written as a document that does not decode (" +
                      reread.error() + ")",
                  written);
    }
    T again = std::move(reread).value();
    check(encode(again) == written, kind, "writing the reread value changed the document", written);
    if (Date* date = dateOf(again)) {
        *date = *dateOf(decoded);
    }
    check(equal(again, decoded), kind, "the written document reads back as another value", written);
}

}  // namespace lumenote::fuzz
