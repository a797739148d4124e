// The hostname rule at its boundaries: label and name lengths one either side
// of the limit, the URL parts people paste with a hostname, and international
// names in and out of their ASCII form.
#include "classification/hostname_validation.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace lumenote::classification {
namespace {

using P = HostnameProblem;

std::string label(std::size_t length, char fill = 'a') {
    return std::string(length, fill);
}

// `total` characters: labels of 63 joined by dots, then a shorter last label,
// so that only the whole name's length can be wrong.
std::string nameOfLength(std::size_t total) {
    std::string name;
    while (name.size() + 64 < total) {
        name += label(63) + ".";
    }
    return name + label(total - name.size(), 'b');
}

struct Case {
    std::string text;
    std::optional<std::string> hostname;  // nullopt: refused
    std::optional<P> problem;
};

void PrintTo(const Case& test, std::ostream* stream) {
    *stream << '"' << test.text << '"';
}

Case accepted(std::string text, std::string hostname) {
    return {std::move(text), std::move(hostname), std::nullopt};
}

Case refused(std::string text, P problem) {
    return {std::move(text), std::nullopt, problem};
}

class ValidatedHostnameTest : public ::testing::TestWithParam<Case> {};

TEST_P(ValidatedHostnameTest, AcceptsAndNormalisesOrNamesTheProblem) {
    const Case& test = GetParam();
    const auto result = validatedHostname(test.text);
    if (test.hostname) {
        ASSERT_TRUE(result.ok()) << hostnameProblemMessage(result.error(), test.text);
        EXPECT_EQ(*result, *test.hostname);
    } else {
        ASSERT_FALSE(result.ok()) << *result;
        EXPECT_EQ(result.error(), *test.problem);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Normalising, ValidatedHostnameTest,
    ::testing::Values(accepted("example.com", "example.com"),
                      accepted(" Docs.Google.COM. ", "docs.google.com"),
                      accepted("localhost", "localhost"), accepted("192.168.1.20", "192.168.1.20"),
                      accepted("r3---sn-4g5e.googlevideo.com", "r3---sn-4g5e.googlevideo.com"),
                      accepted("www.example.com", "www.example.com"), accepted("a.b", "a.b")));

INSTANTIATE_TEST_SUITE_P(Lengths, ValidatedHostnameTest,
                         ::testing::Values(accepted(label(63) + ".com", label(63) + ".com"),
                                           refused(label(64) + ".com", P::labelTooLong),
                                           refused("www." + label(64), P::labelTooLong),
                                           accepted(nameOfLength(253), nameOfLength(253)),
                                           refused(nameOfLength(254), P::nameTooLong),
                                           // The final dot does not count toward the 253.
                                           accepted(nameOfLength(253) + ".", nameOfLength(253))));

INSTANTIATE_TEST_SUITE_P(UrlParts, ValidatedHostnameTest,
                         ::testing::Values(refused("https://example.com", P::hasScheme),
                                           refused("HTTP://Example.com/path", P::hasScheme),
                                           refused("me@example.com", P::hasUserInfo),
                                           refused("me:secret@example.com", P::hasUserInfo),
                                           refused("example.com/notes", P::hasPath),
                                           refused("example.com/", P::hasPath),
                                           refused("example.com?q=1", P::hasPath),
                                           refused("example.com#top", P::hasPath),
                                           refused("example.com:8080", P::hasPort),
                                           refused("localhost:", P::hasPort),
                                           refused("[::1]", P::invalidCharacter)));

INSTANTIATE_TEST_SUITE_P(Labels, ValidatedHostnameTest,
                         ::testing::Values(refused("", P::empty), refused(" \t\n", P::empty),
                                           refused(".", P::empty), refused("a..b", P::emptyLabel),
                                           refused(".example.com", P::emptyLabel),
                                           refused("example.com..", P::emptyLabel),
                                           refused("-example.com", P::hyphenAtLabelEdge),
                                           refused("example-.com", P::hyphenAtLabelEdge),
                                           refused("example.-com", P::hyphenAtLabelEdge),
                                           refused("not a host!!", P::invalidCharacter),
                                           refused("under_score.example.com", P::invalidCharacter),
                                           refused("exa mple.com", P::invalidCharacter)));

INSTANTIATE_TEST_SUITE_P(InternationalNames, ValidatedHostnameTest,
                         ::testing::Values(accepted("xn--bcher-kva.de", "xn--bcher-kva.de"),
                                           accepted("XN--BCHER-KVA.DE", "xn--bcher-kva.de"),
                                           accepted("www.xn--80ak6aa92e.com",
                                                    "www.xn--80ak6aa92e.com"),
                                           refused("bücher.de", P::invalidCharacter),
                                           refused("пример.рф", P::invalidCharacter),
                                           refused("xn--.de", P::hyphenAtLabelEdge)));

TEST(HostnameProblemMessageTest, EveryProblemHasASentenceNamingTheText) {
    for (const P problem :
         {P::empty, P::hasScheme, P::hasUserInfo, P::hasPath, P::hasPort, P::invalidCharacter,
          P::emptyLabel, P::labelTooLong, P::hyphenAtLabelEdge, P::nameTooLong}) {
        const std::string message = hostnameProblemMessage(problem, "bad host");
        EXPECT_TRUE(message.starts_with("\"bad host\" is not a hostname: ")) << message;
        EXPECT_TRUE(message.ends_with(".")) << message;
    }
    EXPECT_EQ(hostnameProblemMessage(P::hasPort, "example.com:8080"),
              "\"example.com:8080\" is not a hostname: leave out the port; a rule applies to "
              "every port.");
}

}  // namespace
}  // namespace lumenote::classification
