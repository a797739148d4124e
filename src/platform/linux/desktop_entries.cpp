#include "platform/linux/desktop_entries.hpp"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <set>
#include <system_error>

#include "foundation/text.hpp"

namespace lumenote::platform::linux_desktop {

namespace {

constexpr std::string_view kDesktopSuffix = ".desktop";

// One row per browser: the canonical identifier, its name, and the Linux
// identities (desktop-file ids of distribution packages, Flatpak and Snap,
// which are also their windows' classes) that stand for it.
struct BrowserRow {
    KnownBrowser browser;
    std::array<std::string_view, 6> identities;
};

constexpr std::array<BrowserRow, 7> kBrowsers{{
    {{"com.google.Chrome", "Google Chrome"},
     {"google-chrome", "google-chrome-stable", "google-chrome-beta", "google-chrome-unstable",
      "com.google.Chrome"}},
    {{"com.microsoft.edgemac", "Microsoft Edge"},
     {"microsoft-edge", "microsoft-edge-stable", "microsoft-edge-beta", "microsoft-edge-dev",
      "com.microsoft.Edge"}},
    {{"com.brave.Browser", "Brave"},
     {"brave-browser", "brave-browser-stable", "brave-browser-beta", "brave-browser-nightly",
      "com.brave.Browser", "brave_brave"}},
    {{"com.operasoftware.Opera", "Opera"},
     {"opera", "opera-beta", "opera-developer", "com.opera.Opera", "opera_opera"}},
    {{"com.vivaldi.Vivaldi", "Vivaldi"},
     {"vivaldi", "vivaldi-stable", "vivaldi-snapshot", "com.vivaldi.Vivaldi"}},
    {{"org.mozilla.firefox", "Firefox"},
     {"firefox", "firefox-esr", "firefox-developer-edition", "org.mozilla.firefox",
      "firefox_firefox"}},
    {{"org.chromium.Chromium", "Chromium"},
     {"chromium", "chromium-browser", "org.chromium.Chromium", "chromium_chromium"}},
}};

bool equalIgnoringCase(std::string_view left, std::string_view right) {
    return text::caseFolded(left) == text::caseFolded(right);
}

std::string_view trimmedAscii(std::string_view text) {
    constexpr std::string_view kSpace = " \t\r";
    const auto first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

// Resolves the escapes of a string value: \s, \n, \t, \r and \\. Any other
// backslash is kept with the character after it.
std::string unescaped(std::string_view value) {
    std::string result;
    result.reserve(value.size());
    for (std::size_t index = 0; index < value.size(); ++index) {
        if (value[index] != '\\' || index + 1 == value.size()) {
            result += value[index];
            continue;
        }
        const char next = value[++index];
        switch (next) {
            case 's':
                result += ' ';
                break;
            case 'n':
                result += '\n';
                break;
            case 't':
                result += '\t';
                break;
            case 'r':
                result += '\r';
                break;
            case '\\':
                result += '\\';
                break;
            default:
                result += '\\';
                result += next;
        }
    }
    return result;
}

std::optional<std::string> readSmallFile(const std::filesystem::path& path,
                                         std::size_t maximumBytes) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error || size > maximumBytes) {
        return std::nullopt;
    }
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        return std::nullopt;
    }
    std::string contents((std::istreambuf_iterator<char>(stream)),
                         std::istreambuf_iterator<char>());
    if (stream.bad() || contents.size() > maximumBytes) {
        return std::nullopt;
    }
    return contents;
}

// The .desktop files under `folder`, in a fixed order so that two files with
// the same id ("a/b.desktop" and "a-b.desktop") always resolve the same way.
std::vector<std::filesystem::path> desktopFilesUnder(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    std::error_code error;
    std::filesystem::recursive_directory_iterator walker(
        folder, std::filesystem::directory_options::skip_permission_denied, error);
    for (const std::filesystem::recursive_directory_iterator end; !error && walker != end;
         walker.increment(error)) {
        const auto& path = walker->path();
        if (path.extension() == kDesktopSuffix && walker->is_regular_file(error)) {
            files.push_back(path);
        }
        error.clear();
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string withoutDesktopSuffix(std::string name) {
    if (name.size() > kDesktopSuffix.size() && name.ends_with(kDesktopSuffix)) {
        name.resize(name.size() - kDesktopSuffix.size());
    }
    return name;
}

}  // namespace

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text, std::string id) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(kByteOrderMark)) {
        text.remove_prefix(kByteOrderMark.size());
    }
    DesktopEntry entry;
    entry.id = std::move(id);
    bool foundGroup = false;
    bool inGroup = false;
    bool hidden = false;
    std::string type;
    std::set<std::string, std::less<>> seenKeys;
    while (!text.empty()) {
        const auto lineEnd = text.find('\n');
        const std::string_view line = trimmedAscii(text.substr(0, lineEnd));
        text.remove_prefix(lineEnd == std::string_view::npos ? text.size() : lineEnd + 1);
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (line.front() == '[') {
            inGroup = line == "[Desktop Entry]";
            foundGroup = foundGroup || inGroup;
            continue;
        }
        const auto equals = line.find('=');
        if (!inGroup || equals == std::string_view::npos) {
            continue;
        }
        const std::string_view key = trimmedAscii(line.substr(0, equals));
        const std::string_view value = trimmedAscii(line.substr(equals + 1));
        if (!seenKeys.emplace(key).second) {
            continue;
        }
        if (key == "Name") {
            entry.name = unescaped(value);
        } else if (key == "StartupWMClass") {
            entry.startupWMClass = unescaped(value);
        } else if (key == "NoDisplay") {
            entry.noDisplay = value == "true";
        } else if (key == "Hidden") {
            hidden = value == "true";
        } else if (key == "Type") {
            type = unescaped(value);
        }
    }
    if (!foundGroup || hidden || (!type.empty() && type != "Application")) {
        return std::nullopt;
    }
    return entry;
}

std::string desktopFileId(const std::filesystem::path& folder, const std::filesystem::path& file) {
    std::string id;
    for (const auto& part : file.lexically_relative(folder)) {
        if (!id.empty()) {
            id += '-';
        }
        id += part.string();
    }
    return withoutDesktopSuffix(std::move(id));
}

std::vector<std::filesystem::path> applicationFolders(const EnvironmentLookup& environment) {
    std::vector<std::filesystem::path> folders{UserPaths::fromEnvironment(environment).dataHome};
    const char* dataDirs = environment("XDG_DATA_DIRS");
    std::string_view remaining =
        (dataDirs != nullptr && *dataDirs != '\0') ? dataDirs : "/usr/local/share:/usr/share";
    while (true) {
        const auto colon = remaining.find(':');
        const std::filesystem::path folder(remaining.substr(0, colon));
        if (folder.is_absolute()) {
            folders.push_back(folder);
        }
        if (colon == std::string_view::npos) {
            break;
        }
        remaining.remove_prefix(colon + 1);
    }
    for (auto& folder : folders) {
        folder /= "applications";
    }
    return folders;
}

DesktopEntryIndex DesktopEntryIndex::load(const std::vector<std::filesystem::path>& folders,
                                          std::size_t maximumFileBytes) {
    DesktopEntryIndex index;
    std::set<std::string, std::less<>> seenIds;
    for (const auto& folder : folders) {
        for (const auto& file : desktopFilesUnder(folder)) {
            std::string id = desktopFileId(folder, file);
            if (!seenIds.insert(id).second) {
                continue;
            }
            const auto contents = readSmallFile(file, maximumFileBytes);
            if (!contents) {
                continue;
            }
            if (auto entry = parseDesktopEntry(*contents, std::move(id))) {
                index.add(std::move(*entry));
            }
        }
    }
    return index;
}

DesktopEntryIndex DesktopEntryIndex::fromEntries(std::vector<DesktopEntry> entries) {
    DesktopEntryIndex index;
    for (auto& entry : entries) {
        if (!index.find(entry.id)) {
            index.add(std::move(entry));
        }
    }
    return index;
}

void DesktopEntryIndex::add(DesktopEntry entry) {
    const std::size_t position = entries_.size();
    entries_.push_back(std::move(entry));
    const DesktopEntry& added = entries_.back();
    // A shown entry replaces a NoDisplay one found earlier under the same key:
    // helpers and handlers often share a class with the application itself.
    const auto remember = [&](std::unordered_map<std::string, std::size_t>& map, std::string key) {
        const auto [existing, inserted] = map.emplace(std::move(key), position);
        if (!inserted && entries_[existing->second].noDisplay && !added.noDisplay) {
            existing->second = position;
        }
    };
    byId_.emplace(added.id, position);
    if (!added.startupWMClass.empty()) {
        remember(byStartupWMClass_, added.startupWMClass);
    }
    remember(byFoldedId_, text::caseFolded(added.id));
}

const DesktopEntry* DesktopEntryIndex::find(std::string_view id) const {
    const auto found = byId_.find(std::string(id));
    return found == byId_.end() ? nullptr : &entries_[found->second];
}

const DesktopEntry* DesktopEntryIndex::findByStartupWMClass(std::string_view windowClass) const {
    const auto found = byStartupWMClass_.find(std::string(windowClass));
    return found == byStartupWMClass_.end() ? nullptr : &entries_[found->second];
}

const DesktopEntry* DesktopEntryIndex::findByFileName(std::string_view windowClass) const {
    const auto found = byFoldedId_.find(text::caseFolded(windowClass));
    return found == byFoldedId_.end() ? nullptr : &entries_[found->second];
}

std::optional<KnownBrowser> knownBrowser(std::string_view identity) {
    for (const auto& row : kBrowsers) {
        for (const auto candidate : row.identities) {
            if (!candidate.empty() && equalIgnoringCase(candidate, identity)) {
                return row.browser;
            }
        }
    }
    return std::nullopt;
}

std::optional<recording::FrontmostApplication> resolveApplication(const DesktopEntryIndex& entries,
                                                                  const WindowClassHints& hints) {
    const DesktopEntry* entry =
        hints.gtkApplicationId.empty() ? nullptr : entries.find(hints.gtkApplicationId);
    const std::array<const std::string*, 2> classes{&hints.className, &hints.instanceName};
    for (const auto* windowClass : classes) {
        if (!entry && !windowClass->empty()) {
            entry = entries.findByStartupWMClass(*windowClass);
        }
    }
    for (const auto* windowClass : classes) {
        if (!entry && !windowClass->empty()) {
            entry = entries.findByFileName(*windowClass);
        }
    }
    if (!entry && hints.className.empty() && hints.instanceName.empty() &&
        hints.gtkApplicationId.empty() && !hints.processName.empty()) {
        entry = entries.findByFileName(hints.processName);
    }

    std::string identity;
    if (entry) {
        identity = entry->id;
    } else {
        for (const auto* candidate :
             {&hints.className, &hints.instanceName, &hints.gtkApplicationId, &hints.processName}) {
            if (!candidate->empty()) {
                identity = *candidate;
                break;
            }
        }
    }
    if (identity.empty()) {
        return std::nullopt;
    }
    recording::FrontmostApplication application{entry ? entry->name : std::string(), identity};
    const auto browser = knownBrowser(identity);
    if (browser) {
        application.bundleIdentifier = browser->bundleIdentifier;
    }
    if (application.localizedName.empty()) {
        application.localizedName = browser                    ? std::string(browser->displayName)
                                    : !hints.className.empty() ? hints.className
                                                               : identity;
    }
    return application;
}

}  // namespace lumenote::platform::linux_desktop
