#include "runtime/gnome_extension_setup.hpp"

#include "bridge/native_host_registration.hpp"
#include "platform/gnome/gnome_extension_installer.hpp"

namespace lumenote::runtime {

namespace gnome = platform::gnome;

GnomeExtensionSetup installShippedGnomeExtension(const UserPaths& paths) {
    const auto shipped = gnome::shippedExtensionsFolder(bridge::runningExecutableFolder());
    if (!shipped) {
        return {
            false,
            {std::string(gnome::describe(gnome::ExtensionInstallError::shippedExtensionMissing))}};
    }
    const auto installed =
        gnome::installGnomeShellExtension(*shipped, paths, gnome::processRunner());
    if (!installed) {
        return {false, {std::string(gnome::describe(installed.error()))}};
    }
    return {true, gnome::describe(*installed)};
}

}  // namespace lumenote::runtime
