// Fuzzes the reading of native-messaging host manifests, which lie in the
// browsers' own folders where any program of the user may write. Whatever a
// manifest says, a valid one names an absolute helper, only a valid one
// authorises anything, and the manifest the checker writes itself reads as
// valid, naming its helper and authorising exactly its extension.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "bridge/native_host_registration.hpp"
#include "round_trip.hpp"

namespace lumenote::fuzz {
namespace {

using namespace bridge;

const NativeHostRegistrationChecker& checker() {
    static const NativeHostRegistrationChecker instance(NativeHostConfiguration{
        "/home/ada", "/home/ada/.config", "/usr/libexec/lumenote/TallywiseBrowserHost",
        "abcdefghijklmnopabcdefghijklmnop", "browser-bridge@lumenote.example"});
    return instance;
}

void checkReading(const NativeHostManifestReading& reading, std::string_view document) {
    check(!reading.helperPath || reading.helperPath->is_absolute(), "manifest",
          "a helper path that is not absolute was taken", document);
    check(!reading.valid || reading.helperPath.has_value(), "manifest",
          "a manifest without a helper is valid", document);
    check(reading.valid || reading.authorised.empty(), "manifest",
          "an invalid manifest authorises something", document);
}

void fuzzManifest(std::string_view bytes) {
    for (const SupportedBrowser browser : registrableBrowsers()) {
        if (const auto reading = readNativeHostManifest(bytes, browser)) {
            checkReading(*reading, bytes);
        }
    }
}

// The checker's own manifests, once: the property that does not depend on
// the input.
bool checkOwnManifests() {
    for (const SupportedBrowser browser : registrableBrowsers()) {
        const std::string text = checker().manifestText(browser);
        const auto reading = readNativeHostManifest(text, browser);
        check(reading.has_value() && reading->valid &&
                  reading->helperPath == checker().configuration().helperPath &&
                  reading->authorised ==
                      std::vector<std::string>{checker().configuredOrigin(browser)},
              "manifest", "the checker's own manifest does not read as ready", text);
    }
    return true;
}

}  // namespace
}  // namespace lumenote::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool ownManifestsRead = lumenote::fuzz::checkOwnManifests();
    (void)ownManifestsRead;
    lumenote::fuzz::fuzzManifest(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
