// NativeHostRegistrationChecker: the native-messaging host manifests that let
// a browser start TallywiseBrowserHost. One manifest,
// "com.tallywise.browser_host.json", lies in each browser's own folder:
//
//   googleChrome   $XDG_CONFIG_HOME/google-chrome/NativeMessagingHosts
//   chromium       $XDG_CONFIG_HOME/chromium/NativeMessagingHosts
//   microsoftEdge  $XDG_CONFIG_HOME/microsoft-edge/NativeMessagingHosts
//   brave          $XDG_CONFIG_HOME/BraveSoftware/Brave-Browser/NativeMessagingHosts
//   vivaldi        $XDG_CONFIG_HOME/vivaldi/NativeMessagingHosts
//   opera          $XDG_CONFIG_HOME/opera/NativeMessagingHosts
//   firefox        ~/.mozilla/native-messaging-hosts
//   arc, safari    none: there is no such browser on Linux, never registered
//
// ($XDG_CONFIG_HOME defaults to ~/.config: the Chromium family keeps its user
// data there and reads the user's manifests from the data folder.)
//
// The Chromium family's manifest authorises the extension by origin
// ("allowed_origins": ["chrome-extension://<id>/"]); Firefox's by add-on id
// ("allowed_extensions": ["<add-on id>"]). A manifest is *valid* when it has
// the form this checker writes: the host's name, a description, an absolute
// "path", type "stdio" and the browser's authorisation list as an array of
// strings. Whether that list names exactly our extension, and whether the
// helper at "path" exists and runs, are the snapshot's other fields.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/supported_browser.hpp"
#include "foundation/result.hpp"
#include "foundation/user_paths.hpp"

namespace lumenote::bridge {

inline constexpr std::string_view kNativeHostName = "com.tallywise.browser_host";
inline constexpr std::string_view kNativeHostManifestFileName = "com.tallywise.browser_host.json";
// The largest manifest read, in bytes: a larger file is never opened for reading.
inline constexpr std::size_t kMaximumManifestBytes = 64 * 1024;
inline constexpr std::string_view kNativeHostDescription =
    "Lumenote privacy-first browser activity bridge";

struct NativeHostSetupSnapshot {
    bool manifestPresent = false;
    bool manifestValid = false;
    bool helperPresent = false;
    bool helperExecutable = false;
    bool exactConfiguredOriginAuthorised = false;

    // Everything in place: the browser can start our helper for our extension.
    bool isReady() const {
        return manifestPresent && manifestValid && helperPresent && helperExecutable &&
               exactConfiguredOriginAuthorised;
    }
    friend bool operator==(const NativeHostSetupSnapshot&,
                           const NativeHostSetupSnapshot&) = default;
};

enum class NativeHostRegistrationError {
    bundledHostUnavailable,
    noManifestFolder,
    writeFailed,
    removeFailed
};

// "The bundled native host is unavailable", "This browser has no native
// messaging on Linux", "Could not write native host registration", "Could
// not remove native host registration".
std::string message(NativeHostRegistrationError error);

// The success sentences of repair and removal.
inline constexpr std::string_view kRegistrationRepairedMessage =
    "Native host registration repaired";
inline constexpr std::string_view kRegistrationRemovedMessage = "Native host registration removed";

// Where the manifests go and what they authorise.
struct NativeHostConfiguration {
    std::filesystem::path home;        // the user's home folder
    std::filesystem::path configHome;  // $XDG_CONFIG_HOME, else ~/.config
    std::filesystem::path helperPath;  // the bundled TallywiseBrowserHost, absolute
    std::string chromiumExtensionIdentifier;
    std::string firefoxAddonIdentifier;
};

// The configuration of this user and this installation: the home folder
// from HOME (the folder above the configuration folder without it), the
// configuration folder of `paths`, the helper bundled with the running
// executable (an empty path when none is found) and the extension's
// compiled-in identities.
NativeHostConfiguration nativeHostConfiguration(const UserPaths& paths,
                                                const EnvironmentLookup& environment);

// The folder of the running executable, from /proc/self/exe; the current
// folder when that cannot be read.
std::filesystem::path runningExecutableFolder();

class NativeHostRegistrationChecker {
  public:
    explicit NativeHostRegistrationChecker(NativeHostConfiguration configuration)
        : configuration_(std::move(configuration)) {}

    // The manifest's folder; nullopt for a browser that is never registered.
    std::optional<std::filesystem::path> manifestFolder(SupportedBrowser browser) const;
    std::optional<std::filesystem::path> manifestPath(SupportedBrowser browser) const;

    // The one entry the browser's authorisation list must hold:
    // "chrome-extension://<id>/" or the Firefox add-on id.
    std::string configuredOrigin(SupportedBrowser browser) const;

    NativeHostSetupSnapshot check(SupportedBrowser browser) const;
    // Writes (or overwrites) the manifest, creating its folder. Fails before
    // touching anything with noManifestFolder for a browser that is never
    // registered and with bundledHostUnavailable when the helper is missing or
    // cannot run.
    Result<void, NativeHostRegistrationError> repair(SupportedBrowser browser) const;
    // Deletes the manifest; a manifest already gone is success.
    Result<void, NativeHostRegistrationError> remove(SupportedBrowser browser) const;

    // The manifest this checker writes for `browser`.
    std::string manifestText(SupportedBrowser browser) const;

    const NativeHostConfiguration& configuration() const { return configuration_; }

  private:
    NativeHostConfiguration configuration_;
};

// What the text of a manifest says, before the file system is asked about the
// helper it names.
struct NativeHostManifestReading {
    bool valid = false;  // the form this checker writes (see the top of this file)
    // "path" when it is a string holding an absolute path.
    std::optional<std::filesystem::path> helperPath;
    // The browser's authorisation list, in order; empty unless `valid`.
    std::vector<std::string> authorised;
};

// Reads a manifest's text for `browser`; nullopt when it is not a JSON object.
std::optional<NativeHostManifestReading> readNativeHostManifest(std::string_view text,
                                                                SupportedBrowser browser);

// Whether Firefox-style manifests ("allowed_extensions") apply to `browser`.
bool usesAddonIdentifiers(SupportedBrowser browser);

// The bundled helper for an executable in `executableFolder`: installed, it
// lies in <prefix>/libexec/lumenote/ beside <prefix>/bin/; in the build tree,
// beside the executable. nullopt when neither exists.
std::optional<std::filesystem::path> locateBundledHost(
    const std::filesystem::path& executableFolder);

// The browsers that have a native-messaging folder on Linux (all but Arc and
// Safari), in table order.
std::vector<SupportedBrowser> registrableBrowsers();

// The folder of the built extension packages for an executable in
// `executableFolder`: beside the build tree's bin/ (build/extension) or
// installed under <prefix>/share/lumenote/extension. nullopt when neither
// holds them.
std::optional<std::filesystem::path> extensionPackagesFolder(
    const std::filesystem::path& executableFolder);

}  // namespace lumenote::bridge
