// The browsers whose activity the bridge accepts, each with the one canonical
// identifier the whole system uses for it (on Linux the desktop identities
// are mapped onto these identifiers by the platform layer).
#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "foundation/raw_enum.hpp"

namespace lumenote::bridge {

enum class SupportedBrowser {
    googleChrome,
    microsoftEdge,
    brave,
    arc,
    opera,
    vivaldi,
    safari,
    firefox,
    chromium,
};

// The browser's canonical bundle identifier ("com.google.Chrome").
std::string_view bundleIdentifier(SupportedBrowser browser);

// The browser whose identifier is exactly `identifier`; nullopt for any other
// text, including one that merely starts or ends like a supported identifier.
std::optional<SupportedBrowser> supportedBrowser(std::string_view identifier);

// The browser's name as the user knows it ("Google Chrome").
std::string_view displayName(SupportedBrowser browser);

}  // namespace lumenote::bridge

namespace lumenote {

template <>
struct RawValues<bridge::SupportedBrowser> {
    using E = bridge::SupportedBrowser;
    static constexpr std::array<std::pair<E, std::string_view>, 9> entries{{
        {E::googleChrome, "googleChrome"},
        {E::microsoftEdge, "microsoftEdge"},
        {E::brave, "brave"},
        {E::arc, "arc"},
        {E::opera, "opera"},
        {E::vivaldi, "vivaldi"},
        {E::safari, "safari"},
        {E::firefox, "firefox"},
        {E::chromium, "chromium"},
    }};
};

}  // namespace lumenote
