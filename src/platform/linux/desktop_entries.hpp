// Desktop entries (the .desktop files of the XDG data folders) and how a
// window's class hints become an application identity and display name.
//
// Only the untranslated `Name` is read: `Name[locale]` keys are skipped, so an
// application is named the same way whatever the user's language, and the
// name stored with a session does not change when the locale does.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "foundation/user_paths.hpp"
#include "recording/platform_services.hpp"

namespace lumenote::platform::linux_desktop {

struct DesktopEntry {
    std::string id;              // desktop-file id without ".desktop", e.g. "org.gnome.Calculator"
    std::string name;            // `Name` with escapes resolved; empty when the file has none
    std::string startupWMClass;  // `StartupWMClass`; empty when absent
    bool noDisplay = false;      // `NoDisplay=true`: an application kept out of menus
};

// Parses the text of a .desktop file. Reads the keys of the [Desktop Entry]
// group only (comments, blank lines, other groups and localized keys are
// skipped; a key given twice keeps its first value). nullopt when the file has
// no [Desktop Entry] group, says `Hidden=true` (the entry counts as deleted),
// or has a `Type` other than "Application".
std::optional<DesktopEntry> parseDesktopEntry(std::string_view text, std::string id);

// The desktop-file id of `file` found under the applications folder `folder`:
// the relative path with "/" replaced by "-" and without the ".desktop"
// suffix ("apps/kde/editor.desktop" under "apps" is "kde-editor").
std::string desktopFileId(const std::filesystem::path& folder, const std::filesystem::path& file);

// The "applications" folders to search, most important first:
// $XDG_DATA_HOME (else ~/.local/share), then each folder of $XDG_DATA_DIRS
// (else /usr/local/share and /usr/share). Relative entries are ignored, as the
// base-directory rules require.
std::vector<std::filesystem::path> applicationFolders(const EnvironmentLookup& environment);

// The desktop entries of a set of folders, read once. A desktop-file id found
// in several folders is taken from the first; a hidden or unreadable file
// still hides the same id in later folders, as the XDG rules say. Installing
// an application while the index exists is not seen until it is rebuilt.
class DesktopEntryIndex {
  public:
    DesktopEntryIndex() = default;

    // Reads every "*.desktop" file under `folders` (subfolders included).
    // Folders that are missing or unreadable are skipped; files larger than
    // `maximumFileBytes` are skipped and hide their id.
    static DesktopEntryIndex load(const std::vector<std::filesystem::path>& folders,
                                  std::size_t maximumFileBytes = 1024 * 1024);
    static DesktopEntryIndex fromEntries(std::vector<DesktopEntry> entries);

    // The entry with desktop-file id `id` (without ".desktop"), if any.
    const DesktopEntry* find(std::string_view id) const;
    // The entry whose `StartupWMClass` equals `windowClass` exactly. A shown
    // entry wins over a `NoDisplay` one, then folder order decides.
    const DesktopEntry* findByStartupWMClass(std::string_view windowClass) const;
    // The entry whose id equals `windowClass` ignoring letter case, with the
    // same preferences as findByStartupWMClass.
    const DesktopEntry* findByFileName(std::string_view windowClass) const;

    std::size_t size() const { return entries_.size(); }

  private:
    void add(DesktopEntry entry);

    std::vector<DesktopEntry> entries_;
    std::unordered_map<std::string, std::size_t> byId_;
    std::unordered_map<std::string, std::size_t> byStartupWMClass_;
    std::unordered_map<std::string, std::size_t> byFoldedId_;
};

// What a window says about the application that owns it. Any field may be
// empty when the window does not set it.
struct WindowClassHints {
    std::string gtkApplicationId;  // `_GTK_APPLICATION_ID`
    std::string instanceName;      // first part of `WM_CLASS`
    std::string className;         // second part of `WM_CLASS`
    std::string processName;       // the owning process's executable name
};

// The window's application: an entry named by the GTK application id; else an
// entry whose `StartupWMClass` is the class or instance; else an entry whose
// id is the class or instance ignoring case; else the class itself (then the
// instance, the GTK application id, the process name). The display name is
// the entry's `Name`, else the browser's name for a known browser, else the
// identity found. Known browsers then get their canonical identifier. nullopt
// when the window gives nothing to go by.
std::optional<recording::FrontmostApplication> resolveApplication(const DesktopEntryIndex& entries,
                                                                  const WindowClassHints& hints);

// A browser's canonical identifier and name for a Linux application identity
// ("google-chrome", "firefox-esr", "org.chromium.Chromium", compared ignoring
// case); nullopt for anything else.
struct KnownBrowser {
    std::string_view bundleIdentifier;
    std::string_view displayName;
};
std::optional<KnownBrowser> knownBrowser(std::string_view identity);

}  // namespace lumenote::platform::linux_desktop
