// Fuzzes the reading of .desktop files, which any installed package or the
// user may put in an applications folder, and the naming of a window's
// application from them. A file read must give an entry that, written again
// as a desktop file with its values escaped, reads back the same (and the
// same after a byte-order mark); a window naming the entry by its GTK
// application id or its StartupWMClass must resolve to it.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/linux/desktop_entries.hpp"
#include "round_trip.hpp"

namespace lumenote::fuzz {
namespace {

using namespace platform::linux_desktop;

constexpr std::string_view kId = "org.example.Editor";

// `value` as a desktop-file string value: the escapes parseDesktopEntry
// resolves, with every space written \s so that trimming keeps it.
std::string escaped(std::string_view value) {
    std::string text;
    for (const char c : value) {
        switch (c) {
            case '\\':
                text += "\\\\";
                break;
            case '\n':
                text += "\\n";
                break;
            case '\t':
                text += "\\t";
                break;
            case '\r':
                text += "\\r";
                break;
            case ' ':
                text += "\\s";
                break;
            default:
                text += c;
        }
    }
    return text;
}

bool sameEntry(const DesktopEntry& a, const DesktopEntry& b) {
    return a.id == b.id && a.name == b.name && a.startupWMClass == b.startupWMClass &&
           a.noDisplay == b.noDisplay;
}

void checkResolves(const DesktopEntry& entry, const WindowClassHints& hints,
                   std::string_view document) {
    const auto application = resolveApplication(DesktopEntryIndex::fromEntries({entry}), hints);
    check(application.has_value(), "desktop entry", "a window naming the entry resolved to nothing",
          document);
    const auto browser = knownBrowser(entry.id);
    check(application->bundleIdentifier ==
              (browser ? std::string(browser->bundleIdentifier) : entry.id),
          "desktop entry", "a window resolved to another application", document);
    if (!entry.name.empty()) {
        check(application->localizedName == entry.name, "desktop entry",
              "the application is not named by its entry", document);
    }
}

void fuzzDesktopEntry(std::string_view bytes) {
    const auto entry = parseDesktopEntry(bytes, std::string(kId));
    // One byte-order mark is skipped; a text that has one already keeps it.
    if (!bytes.starts_with("\xEF\xBB\xBF")) {
        const auto withMark =
            parseDesktopEntry("\xEF\xBB\xBF" + std::string(bytes), std::string(kId));
        check(entry.has_value() == withMark.has_value() && (!entry || sameEntry(*entry, *withMark)),
              "desktop entry", "a byte-order mark changed the entry", bytes);
    }
    if (!entry) {
        return;
    }
    check(entry->id == kId, "desktop entry", "the entry lost its id", bytes);
    const std::string written = "[Desktop Entry]\nType=Application\nName=" + escaped(entry->name) +
                                "\nStartupWMClass=" + escaped(entry->startupWMClass) +
                                "\nNoDisplay=" + (entry->noDisplay ? "true" : "false") + "\n";
    const auto reread = parseDesktopEntry(written, std::string(kId));
    check(reread.has_value() && sameEntry(*reread, *entry), "desktop entry",
          "the entry written again reads back as another", written);
    checkResolves(*entry, {.gtkApplicationId = std::string(kId)}, bytes);
    if (!entry->startupWMClass.empty()) {
        checkResolves(*entry, {.className = entry->startupWMClass}, bytes);
    }
}

}  // namespace
}  // namespace lumenote::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lumenote::fuzz::fuzzDesktopEntry(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
