#include "platform/gnome/gnome_extension_installer.hpp"

#include <QProcess>
#include <QString>
#include <QStringList>

#include <charconv>
#include <system_error>

namespace lumenote::platform::gnome {

namespace {

constexpr std::string_view kVersionPrefix = "GNOME Shell ";
// The first shell version that loads ES-module extensions only.
constexpr int kFirstModulesVersion = 45;

std::filesystem::path sibling(const std::filesystem::path& destination, std::string_view suffix) {
    return destination.parent_path() /
           ("." + destination.filename().string() + std::string(suffix));
}

// The copy of `source` moved into place at `destination`; false when a step
// failed (the earlier copy may then be gone, the partial one is removed).
bool replaceFolder(const std::filesystem::path& source, const std::filesystem::path& destination,
                   bool replacing) {
    std::error_code error;
    const auto staging = sibling(destination, ".installing");
    const auto previous = sibling(destination, ".previous");
    std::filesystem::create_directories(destination.parent_path(), error);
    if (error) {
        return false;
    }
    // Leftovers of an interrupted install are this installer's own.
    std::filesystem::remove_all(staging, error);
    std::filesystem::remove_all(previous, error);
    std::filesystem::copy(source, staging, std::filesystem::copy_options::recursive, error);
    if (error) {
        std::filesystem::remove_all(staging, error);
        return false;
    }
    if (replacing) {
        std::filesystem::rename(destination, previous, error);
        if (error) {
            std::filesystem::remove_all(staging, error);
            return false;
        }
    }
    std::filesystem::rename(staging, destination, error);
    if (error) {
        std::filesystem::remove_all(staging, error);
        return false;
    }
    std::filesystem::remove_all(previous, error);
    return true;
}

}  // namespace

std::string_view formatFolder(ExtensionFormat format) {
    return format == ExtensionFormat::legacy ? "legacy" : "modules";
}

std::optional<int> parseGnomeShellVersion(std::string_view versionOutput) {
    if (!versionOutput.starts_with(kVersionPrefix)) {
        return std::nullopt;
    }
    versionOutput.remove_prefix(kVersionPrefix.size());
    int major = 0;
    const auto [end, error] =
        std::from_chars(versionOutput.data(), versionOutput.data() + versionOutput.size(), major);
    const std::string_view rest(end, versionOutput.data() + versionOutput.size() - end);
    const bool endsWell =
        rest.empty() || rest.front() == '.' || rest.front() == '\n' || rest.front() == ' ';
    if (error != std::errc() || end == versionOutput.data() || major <= 0 || !endsWell) {
        return std::nullopt;
    }
    return major;
}

ExtensionFormat extensionFormatFor(int major) {
    return major < kFirstModulesVersion ? ExtensionFormat::legacy : ExtensionFormat::modules;
}

std::optional<std::filesystem::path> shippedExtensionsFolder(
    const std::filesystem::path& executableFolder) {
    std::error_code error;
    for (const std::filesystem::path& candidate :
         {executableFolder.parent_path() / "gnome-shell",
          executableFolder.parent_path() / "share/lumenote/gnome-shell"}) {
        if (std::filesystem::is_regular_file(candidate / formatFolder(ExtensionFormat::legacy) /
                                                 kExtensionUuid / "metadata.json",
                                             error)) {
            return candidate;
        }
    }
    return std::nullopt;
}

std::filesystem::path installedExtensionFolder(const UserPaths& paths) {
    return paths.dataHome / "gnome-shell" / "extensions" / kExtensionUuid;
}

ProgramRunner processRunner(std::chrono::milliseconds timeout) {
    return [timeout](const std::string& program,
                     const std::vector<std::string>& arguments) -> std::optional<ProgramOutput> {
        QStringList list;
        for (const auto& argument : arguments) {
            list << QString::fromStdString(argument);
        }
        QProcess process;
        process.setProcessChannelMode(QProcess::SeparateChannels);
        process.setStandardInputFile(QProcess::nullDevice());
        process.start(QString::fromStdString(program), list);
        const int milliseconds = static_cast<int>(timeout.count());
        if (!process.waitForStarted(milliseconds)) {
            return std::nullopt;
        }
        if (!process.waitForFinished(milliseconds)) {
            process.kill();
            process.waitForFinished(milliseconds);
            return std::nullopt;
        }
        const int exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        return ProgramOutput{exitCode, process.readAllStandardOutput().toStdString()};
    };
}

std::string_view describe(ExtensionInstallError error) {
    switch (error) {
        case ExtensionInstallError::gnomeShellNotFound:
            return "GNOME Shell is not installed, so its extension was not installed.";
        case ExtensionInstallError::unknownShellVersion:
            return "The version of GNOME Shell could not be read, so its extension was not "
                   "installed.";
        case ExtensionInstallError::shippedExtensionMissing:
            return "The GNOME Shell extension is missing from this installation of Lumenote; "
                   "reinstall Lumenote.";
        case ExtensionInstallError::destinationNotReplaceable:
            return "The GNOME Shell extension folder lumenote@tallywise.com is a file or a "
                   "symbolic link; Lumenote left it as it is.";
        case ExtensionInstallError::copyFailed:
            return "The GNOME Shell extension could not be copied into your data folder.";
    }
    return {};
}

std::vector<std::string> describe(const ExtensionInstallReport& report) {
    std::vector<std::string> sentences;
    switch (report.enabling) {
        case ExtensionEnabling::enabled:
            sentences.emplace_back("The GNOME Shell extension is installed and enabled.");
            sentences.emplace_back(
                "Log out and log in again: GNOME Shell on Wayland loads new extensions only at "
                "login.");
            break;
        case ExtensionEnabling::toolMissing:
        case ExtensionEnabling::toolFailed:
            sentences.emplace_back(report.enabling == ExtensionEnabling::toolMissing
                                       ? "The GNOME Shell extension is installed; "
                                         "gnome-extensions is not installed to enable it."
                                       : "The GNOME Shell extension is installed; "
                                         "gnome-extensions could not enable it.");
            sentences.emplace_back(
                "Log out and log in again (GNOME Shell on Wayland loads new extensions only at "
                "login), then turn on \"Lumenote focus reporter\" in the Extensions "
                "application.");
            break;
    }
    return sentences;
}

Result<ExtensionInstallReport, ExtensionInstallError> installGnomeShellExtension(
    const std::filesystem::path& shippedFolder, const UserPaths& paths, const ProgramRunner& run) {
    const auto version = run("gnome-shell", {"--version"});
    if (!version) {
        return fail(ExtensionInstallError::gnomeShellNotFound);
    }
    const auto major =
        version->exitCode == 0 ? parseGnomeShellVersion(version->standardOutput) : std::nullopt;
    if (!major) {
        return fail(ExtensionInstallError::unknownShellVersion);
    }
    ExtensionInstallReport report;
    report.format = extensionFormatFor(*major);
    report.folder = installedExtensionFolder(paths);
    const auto source = shippedFolder / formatFolder(report.format) / kExtensionUuid;
    std::error_code error;
    if (!std::filesystem::is_regular_file(source / "metadata.json", error)) {
        return fail(ExtensionInstallError::shippedExtensionMissing);
    }
    const auto existing = std::filesystem::symlink_status(report.folder, error);
    report.replacedPrevious = std::filesystem::exists(existing);
    if (report.replacedPrevious && !std::filesystem::is_directory(existing)) {
        return fail(ExtensionInstallError::destinationNotReplaceable);
    }
    if (!replaceFolder(source, report.folder, report.replacedPrevious)) {
        return fail(ExtensionInstallError::copyFailed);
    }
    const auto enabling = run("gnome-extensions", {"enable", std::string(kExtensionUuid)});
    report.enabling = !enabling                 ? ExtensionEnabling::toolMissing
                      : enabling->exitCode == 0 ? ExtensionEnabling::enabled
                                                : ExtensionEnabling::toolFailed;
    return report;
}

}  // namespace lumenote::platform::gnome
