#include "bridge/native_host_registration.hpp"

#include <unistd.h>

#include <nlohmann/json.hpp>
#include <system_error>

#include "bridge/browser_installation.hpp"
#include "bridge/extension_identity.hpp"
#include "bridge/json_members.hpp"
#include "foundation/private_file.hpp"

namespace lumenote::bridge {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kHostExecutableName = "TallywiseBrowserHost";

bool isExecutableFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error) && ::access(path.c_str(), X_OK) == 0;
}

const char* allowedListKey(SupportedBrowser browser) {
    return usesAddonIdentifiers(browser) ? "allowed_extensions" : "allowed_origins";
}

bool isStringArray(const nlohmann::json& value) {
    if (!value.is_array()) {
        return false;
    }
    for (const auto& entry : value) {
        if (!entry.is_string()) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::string message(NativeHostRegistrationError error) {
    switch (error) {
        case NativeHostRegistrationError::bundledHostUnavailable:
            return "The bundled native host is unavailable";
        case NativeHostRegistrationError::noManifestFolder:
            return "This browser has no native messaging on Linux";
        case NativeHostRegistrationError::writeFailed:
            return "Could not write native host registration";
        case NativeHostRegistrationError::removeFailed:
            return "Could not remove native host registration";
    }
    return "Could not write native host registration";
}

bool usesAddonIdentifiers(SupportedBrowser browser) {
    return browser == SupportedBrowser::firefox;
}

std::optional<fs::path> NativeHostRegistrationChecker::manifestFolder(
    SupportedBrowser browser) const {
    if (browser == SupportedBrowser::firefox) {
        return configuration_.home / ".mozilla" / "native-messaging-hosts";
    }
    if (const auto userData = chromiumUserDataFolderName(browser)) {
        return configuration_.configHome / *userData / "NativeMessagingHosts";
    }
    return std::nullopt;
}

std::optional<fs::path> NativeHostRegistrationChecker::manifestPath(
    SupportedBrowser browser) const {
    auto folder = manifestFolder(browser);
    if (!folder) {
        return std::nullopt;
    }
    return *folder / kNativeHostManifestFileName;
}

std::string NativeHostRegistrationChecker::configuredOrigin(SupportedBrowser browser) const {
    if (usesAddonIdentifiers(browser)) {
        return configuration_.firefoxAddonIdentifier;
    }
    return "chrome-extension://" + configuration_.chromiumExtensionIdentifier + "/";
}

std::string NativeHostRegistrationChecker::manifestText(SupportedBrowser browser) const {
    nlohmann::ordered_json manifest;
    manifest["name"] = kNativeHostName;
    manifest["description"] = kNativeHostDescription;
    manifest["path"] = configuration_.helperPath.string();
    manifest["type"] = "stdio";
    manifest[allowedListKey(browser)] = nlohmann::ordered_json::array({configuredOrigin(browser)});
    return manifest.dump(2) + "\n";
}

NativeHostSetupSnapshot NativeHostRegistrationChecker::check(SupportedBrowser browser) const {
    NativeHostSetupSnapshot snapshot;
    const auto path = manifestPath(browser);
    if (!path) {
        return snapshot;
    }
    std::error_code error;
    snapshot.manifestPresent = fs::exists(*path, error);
    auto bytes = private_file::read(*path, kMaximumManifestBytes);
    if (!bytes) {
        return snapshot;
    }
    const auto manifest = readNativeHostManifest(bytes.value(), browser);
    if (!manifest) {
        return snapshot;
    }
    snapshot.manifestValid = manifest->valid;
    if (manifest->helperPath) {
        snapshot.helperPresent = fs::exists(*manifest->helperPath, error);
        snapshot.helperExecutable = isExecutableFile(*manifest->helperPath);
    }
    snapshot.exactConfiguredOriginAuthorised =
        manifest->valid && manifest->authorised.size() == 1 &&
        manifest->authorised.front() == configuredOrigin(browser);
    return snapshot;
}

std::optional<NativeHostManifestReading> readNativeHostManifest(std::string_view text,
                                                                SupportedBrowser browser) {
    auto parsed = parseJsonObject(text);
    if (!parsed) {
        return std::nullopt;
    }
    const nlohmann::json& manifest = parsed.value();
    const auto string = [&](const char* key) -> std::optional<std::string> {
        const auto found = manifest.find(key);
        return found != manifest.end() && found->is_string()
                   ? std::optional(found->get<std::string>())
                   : std::nullopt;
    };
    NativeHostManifestReading reading;
    if (const auto helper = string("path"); helper && fs::path(*helper).is_absolute()) {
        reading.helperPath = fs::path(*helper);
    }
    const auto allowed = manifest.find(allowedListKey(browser));
    reading.valid = string("name") == kNativeHostName && string("description") &&
                    reading.helperPath && string("type") == "stdio" && allowed != manifest.end() &&
                    isStringArray(*allowed);
    if (reading.valid) {
        for (const auto& entry : *allowed) {
            reading.authorised.push_back(entry.get<std::string>());
        }
    }
    return reading;
}

Result<void, NativeHostRegistrationError> NativeHostRegistrationChecker::repair(
    SupportedBrowser browser) const {
    const auto path = manifestPath(browser);
    if (!path) {
        return fail(NativeHostRegistrationError::noManifestFolder);
    }
    if (!configuration_.helperPath.is_absolute() || !isExecutableFile(configuration_.helperPath)) {
        return fail(NativeHostRegistrationError::bundledHostUnavailable);
    }
    if (!private_file::writeAtomically(*path, manifestText(browser))) {
        return fail(NativeHostRegistrationError::writeFailed);
    }
    return {};
}

Result<void, NativeHostRegistrationError> NativeHostRegistrationChecker::remove(
    SupportedBrowser browser) const {
    const auto path = manifestPath(browser);
    if (!path) {
        return {};
    }
    std::error_code error;
    fs::remove(*path, error);
    if (error) {
        return fail(NativeHostRegistrationError::removeFailed);
    }
    return {};
}

NativeHostConfiguration nativeHostConfiguration(const UserPaths& paths,
                                                const EnvironmentLookup& environment) {
    const char* home = environment("HOME");
    return {home && *home == '/' ? fs::path(home) : paths.configHome.parent_path(),
            paths.configHome, locateBundledHost(runningExecutableFolder()).value_or(fs::path()),
            std::string(chromiumExtensionIdentifier()), std::string(firefoxAddonIdentifier())};
}

fs::path runningExecutableFolder() {
    std::error_code error;
    const fs::path executable = fs::read_symlink("/proc/self/exe", error);
    return error ? fs::current_path(error) : executable.parent_path();
}

std::optional<fs::path> locateBundledHost(const fs::path& executableFolder) {
    for (const fs::path& candidate :
         {executableFolder.parent_path() / "libexec" / "lumenote" / kHostExecutableName,
          executableFolder / kHostExecutableName}) {
        if (isExecutableFile(candidate)) {
            return candidate;
        }
    }
    return std::nullopt;
}

std::vector<SupportedBrowser> registrableBrowsers() {
    std::vector<SupportedBrowser> browsers;
    for (const auto& [browser, name] : RawValues<SupportedBrowser>::entries) {
        if (browser != SupportedBrowser::arc && browser != SupportedBrowser::safari) {
            browsers.push_back(browser);
        }
    }
    return browsers;
}

std::optional<std::filesystem::path> extensionPackagesFolder(
    const std::filesystem::path& executableFolder) {
    std::error_code error;
    for (const std::filesystem::path& candidate :
         {executableFolder.parent_path() / "extension",
          executableFolder.parent_path() / "share/lumenote/extension"}) {
        if (std::filesystem::is_directory(candidate / "chromium", error)) {
            return candidate;
        }
    }
    return std::nullopt;
}

}  // namespace lumenote::bridge
