#include "classification/hostname_validation.hpp"

#include <algorithm>
#include <array>
#include <optional>

#include "classification/rule_keys.hpp"

namespace lumenote::classification {
namespace {

using P = HostnameProblem;

struct HostnameSentence {
    P problem;
    std::string_view reason;
};

constexpr std::array<HostnameSentence, 10> kHostnameSentences{{
    {P::empty, "it names no website."},
    {P::hasScheme, "leave out the scheme, such as https://."},
    {P::hasUserInfo, "leave out the user name and the @ before the name."},
    {P::hasPath, "leave out the path, query or fragment after the name."},
    {P::hasPort, "leave out the port; a rule applies to every port."},
    {P::invalidCharacter,
     "use only letters a-z, digits, hyphens and dots (international names in their xn-- form)."},
    {P::emptyLabel, "it has an empty part between dots."},
    {P::labelTooLong, "a part between dots is longer than 63 characters."},
    {P::hyphenAtLabelEdge, "a part between dots starts or ends with a hyphen."},
    {P::nameTooLong, "it is longer than 253 characters."},
}};

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isHostnameCharacter(char character) {
    return (character >= 'a' && character <= 'z') || isDigit(character) || character == '-' ||
           character == '.';
}

// A port is a final ":" followed by nothing but digits. Other colons (an IPv6
// literal, say) are left for the character check, which names them better.
bool endsWithPort(std::string_view name) {
    const auto colon = name.rfind(':');
    return colon != std::string_view::npos &&
           std::all_of(name.begin() + static_cast<std::ptrdiff_t>(colon) + 1, name.end(), isDigit);
}

// The problems of the URL parts a hostname is often typed with.
std::optional<P> urlPartProblem(std::string_view name) {
    if (name.find("://") != std::string_view::npos) {
        return P::hasScheme;
    }
    if (name.find('@') != std::string_view::npos) {
        return P::hasUserInfo;
    }
    if (name.find_first_of("/?#") != std::string_view::npos) {
        return P::hasPath;
    }
    if (endsWithPort(name)) {
        return P::hasPort;
    }
    return std::nullopt;
}

std::optional<P> labelProblem(std::string_view label) {
    if (label.empty()) {
        return P::emptyLabel;
    }
    if (label.size() > kMaximumHostnameLabelLength) {
        return P::labelTooLong;
    }
    if (label.front() == '-' || label.back() == '-') {
        return P::hyphenAtLabelEdge;
    }
    return std::nullopt;
}

}  // namespace

Result<std::string, HostnameProblem> validatedHostname(std::string_view text) {
    std::string name = normalizedHostname(text);
    if (name.empty()) {
        return fail(P::empty);
    }
    if (const auto problem = urlPartProblem(name)) {
        return fail(*problem);
    }
    if (!std::all_of(name.begin(), name.end(), isHostnameCharacter)) {
        return fail(P::invalidCharacter);
    }
    std::string_view remaining = name;
    while (true) {
        const auto dot = remaining.find('.');
        if (const auto problem = labelProblem(remaining.substr(0, dot))) {
            return fail(*problem);
        }
        if (dot == std::string_view::npos) {
            break;
        }
        remaining.remove_prefix(dot + 1);
    }
    if (name.size() > kMaximumHostnameLength) {
        return fail(P::nameTooLong);
    }
    return name;
}

std::string hostnameProblemMessage(HostnameProblem problem, std::string_view text) {
    for (const HostnameSentence& sentence : kHostnameSentences) {
        if (sentence.problem == problem) {
            return "\"" + std::string(text) +
                   "\" is not a hostname: " + std::string(sentence.reason);
        }
    }
    return {};
}

}  // namespace lumenote::classification
