#include "platform/linux/desktop_entries.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "classification/starter_suggestions.hpp"

namespace lumenote::platform::linux_desktop {
namespace {

namespace fs = std::filesystem;

struct ParseCase {
    const char* label;
    std::string text;
    std::optional<std::string> name;  // nullopt: no entry at all
    std::string startupWMClass;
    bool noDisplay = false;
};

void PrintTo(const ParseCase& test, std::ostream* stream) {
    *stream << test.label;
}

class ParseDesktopEntryTest : public testing::TestWithParam<ParseCase> {};

TEST_P(ParseDesktopEntryTest, ReadsTheDesktopEntryGroup) {
    const ParseCase& test = GetParam();
    const auto entry = parseDesktopEntry(test.text, "app");
    ASSERT_EQ(entry.has_value(), test.name.has_value());
    if (!entry) {
        return;
    }
    EXPECT_EQ(entry->id, "app");
    EXPECT_EQ(entry->name, *test.name);
    EXPECT_EQ(entry->startupWMClass, test.startupWMClass);
    EXPECT_EQ(entry->noDisplay, test.noDisplay);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ParseDesktopEntryTest,
    testing::Values(
        ParseCase{"comments_blank_lines_and_spaces_around_equals",
                  "# comment\n\n[Desktop Entry]\n  # indented comment\nName = Notes \n"
                  "StartupWMClass=NotesWindow\n",
                  "Notes", "NotesWindow"},
        ParseCase{"keys_of_other_groups_are_ignored",
                  "Name=Before\n[Desktop Action new]\nName=Action\n[Desktop Entry]\nType="
                  "Application\nName=Real\n[Desktop Action open]\nName=After\nStartupWMClass=X\n",
                  "Real", ""},
        ParseCase{"escapes", "[Desktop Entry]\nName=a\\sb\\tc\\nd\\re\\\\f\\;g\\\n",
                  "a b\tc\nd\re\\f\\;g\\", ""},
        ParseCase{"first_of_a_repeated_key_wins", "[Desktop Entry]\nName=First\nName=Second\n",
                  "First", ""},
        ParseCase{"localized_names_are_skipped",
                  "[Desktop Entry]\nName[fr]=Français\nName[de@euro]=Deutsch\nName=Plain\n",
                  "Plain", ""},
        ParseCase{"missing_name_keeps_the_entry", "[Desktop Entry]\nStartupWMClass=Bare\n", "",
                  "Bare"},
        ParseCase{"non_ascii_name_survives", "[Desktop Entry]\nName=Écrire Ünïcode 日本語\n",
                  "Écrire Ünïcode 日本語", ""},
        ParseCase{"crlf_and_byte_order_mark", "\xEF\xBB\xBF[Desktop Entry]\r\nName=Windows\r\n",
                  "Windows", ""},
        ParseCase{"no_display_is_still_an_application",
                  "[Desktop Entry]\nName=Helper\nNoDisplay=true\n", "Helper", "", true},
        ParseCase{"no_display_other_than_true_is_false",
                  "[Desktop Entry]\nName=Helper\nNoDisplay=True\n", "Helper", "", false},
        ParseCase{"lines_without_equals_are_skipped", "[Desktop Entry]\ngarbage\nName=Kept\n",
                  "Kept", ""},
        ParseCase{"hidden_means_deleted", "[Desktop Entry]\nName=Gone\nHidden=true\n",
                  std::nullopt},
        ParseCase{"links_are_not_applications", "[Desktop Entry]\nType=Link\nName=Site\n",
                  std::nullopt},
        ParseCase{"no_desktop_entry_group", "[Desktop Action x]\nName=Orphan\n", std::nullopt},
        ParseCase{"group_name_must_match_exactly", "[desktop entry]\nName=Lower\n", std::nullopt},
        ParseCase{"empty_file", "", std::nullopt}),
    [](const testing::TestParamInfo<ParseCase>& test) { return std::string(test.param.label); });

TEST(DesktopFileIdTest, SubfoldersBecomeDashes) {
    EXPECT_EQ(desktopFileId("/apps", "/apps/editor.desktop"), "editor");
    EXPECT_EQ(desktopFileId("/apps", "/apps/kde/office/writer.desktop"), "kde-office-writer");
    EXPECT_EQ(desktopFileId("/apps", "/apps/org.example.App.desktop"), "org.example.App");
}

std::vector<fs::path> foldersFor(const std::map<std::string, std::string>& environment) {
    return applicationFolders([&](const char* name) -> const char* {
        const auto found = environment.find(name);
        return found == environment.end() ? nullptr : found->second.c_str();
    });
}

TEST(ApplicationFoldersTest, DefaultsAndOverrides) {
    EXPECT_EQ(foldersFor({{"HOME", "/home/ada"}}),
              (std::vector<fs::path>{"/home/ada/.local/share/applications",
                                     "/usr/local/share/applications", "/usr/share/applications"}));
    EXPECT_EQ(foldersFor({{"HOME", "/home/ada"},
                          {"XDG_DATA_HOME", "/data"},
                          {"XDG_DATA_DIRS", "/opt/share::relative:/flatpak/exports/share"}}),
              (std::vector<fs::path>{"/data/applications", "/opt/share/applications",
                                     "/flatpak/exports/share/applications"}));
    EXPECT_EQ(foldersFor({{"HOME", "/home/ada"}, {"XDG_DATA_DIRS", ""}}).size(), 3U);
}

class DesktopEntryIndexTest : public testing::Test {
  protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "lumenote-desktop-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        root_ = pattern;
    }
    void TearDown() override { fs::remove_all(root_); }

    void write(const fs::path& relative, const std::string& contents) {
        fs::create_directories((root_ / relative).parent_path());
        std::ofstream(root_ / relative, std::ios::binary) << contents;
    }

    fs::path root_;
};

TEST_F(DesktopEntryIndexTest, FirstFolderWinsAndHiddenEntriesMaskLaterOnes) {
    write("user/applications/editor.desktop", "[Desktop Entry]\nName=User Editor\n");
    write("user/applications/removed.desktop", "[Desktop Entry]\nName=x\nHidden=true\n");
    write("system/applications/editor.desktop", "[Desktop Entry]\nName=System Editor\n");
    write("system/applications/removed.desktop", "[Desktop Entry]\nName=Removed\n");
    write("system/applications/kde/office/writer.desktop",
          "[Desktop Entry]\nName=Rédacteur\nStartupWMClass=Writer\n");
    write("system/applications/readme.txt", "[Desktop Entry]\nName=Not an entry\n");

    const auto index =
        DesktopEntryIndex::load({root_ / "user/applications", root_ / "missing/applications",
                                 root_ / "system/applications"});

    ASSERT_NE(index.find("editor"), nullptr);
    EXPECT_EQ(index.find("editor")->name, "User Editor");
    EXPECT_EQ(index.find("removed"), nullptr);
    ASSERT_NE(index.find("kde-office-writer"), nullptr);
    EXPECT_EQ(index.findByStartupWMClass("Writer"), index.find("kde-office-writer"));
    EXPECT_EQ(index.find("kde-office-writer")->name, "Rédacteur");
    EXPECT_EQ(index.find("readme"), nullptr);
    EXPECT_EQ(index.size(), 2U);
}

TEST_F(DesktopEntryIndexTest, OversizedFilesAreSkippedAndMaskTheirId) {
    write("a/big.desktop", "[Desktop Entry]\nName=" + std::string(200, 'x') + "\n");
    write("a/small.desktop", "[Desktop Entry]\nName=Small\n");
    write("b/big.desktop", "[Desktop Entry]\nName=Fallback\n");

    const auto index = DesktopEntryIndex::load({root_ / "a", root_ / "b"}, 100);

    EXPECT_EQ(index.find("big"), nullptr);
    ASSERT_NE(index.find("small"), nullptr);
}

TEST_F(DesktopEntryIndexTest, ShownEntriesWinOverNoDisplayOnesForTheSameClass) {
    write("a/helper.desktop",
          "[Desktop Entry]\nName=Helper\nNoDisplay=true\nStartupWMClass=Tool\n");
    write("b/tool.desktop", "[Desktop Entry]\nName=Tool\nStartupWMClass=Tool\n");
    write("b/zz-second.desktop", "[Desktop Entry]\nName=Second\nStartupWMClass=Tool\n");

    const auto index = DesktopEntryIndex::load({root_ / "a", root_ / "b"});

    ASSERT_NE(index.findByStartupWMClass("Tool"), nullptr);
    EXPECT_EQ(index.findByStartupWMClass("Tool")->id, "tool");
    EXPECT_EQ(index.findByStartupWMClass("tool"), nullptr);
}

// Windows of well-known applications, with the class hints they really set,
// against desktop files laid out as distribution packages, Flatpak and snapd
// install them: the id each resolves to is the key of its Linux starter row.
TEST_F(DesktopEntryIndexTest, WellKnownWindowsResolveToLinuxStarterKeys) {
    write("usr/share/applications/org.gnome.Evince.desktop",
          "[Desktop Entry]\nName=Document Viewer\nType=Application\n");
    write("usr/share/applications/libreoffice-writer.desktop",
          "[Desktop Entry]\nName=LibreOffice Writer\nStartupWMClass=libreoffice-writer\n");
    write("usr/share/applications/code.desktop",
          "[Desktop Entry]\nName=Visual Studio Code\nStartupWMClass=Code\n");
    write("usr/share/applications/debian-xterm.desktop",
          "[Desktop Entry]\nName=XTerm\nStartupWMClass=XTerm\n");
    write("flatpak/exports/share/applications/com.spotify.Client.desktop",
          "[Desktop Entry]\nName=Spotify\nStartupWMClass=Spotify\n");
    write("flatpak/exports/share/applications/org.mozilla.Thunderbird.desktop",
          "[Desktop Entry]\nName=Thunderbird\nStartupWMClass=thunderbird\n");
    write("flatpak/exports/share/applications/org.telegram.desktop.desktop",
          "[Desktop Entry]\nName=Telegram\nStartupWMClass=TelegramDesktop\n");
    write("snapd/desktop/applications/slack_slack.desktop",
          "[Desktop Entry]\nName=Slack\nStartupWMClass=Slack\n");

    const auto index = DesktopEntryIndex::load(
        foldersFor({{"XDG_DATA_HOME", (root_ / "home").string()},
                    {"XDG_DATA_DIRS", (root_ / "usr/share").string() + ":" +
                                          (root_ / "flatpak/exports/share").string() + ":" +
                                          (root_ / "snapd/desktop").string()}}));

    struct Case {
        WindowClassHints hints;
        const char* id;
        std::optional<classification::ActivityClassification> suggestion;
    };
    using C = classification::ActivityClassification;
    const Case cases[] = {
        {{"org.gnome.Evince", "evince", "Evince", "evince"}, "org.gnome.Evince", C::focused},
        {{"", "libreoffice", "libreoffice-writer", "soffice.bin"},
         "libreoffice-writer",
         C::focused},
        {{"", "code", "Code", "code"}, "code", C::focused},
        {{"", "spotify", "Spotify", "spotify"}, "com.spotify.Client", C::distracting},
        {{"", "Mail", "thunderbird", "thunderbird"}, "org.mozilla.Thunderbird", C::neutral},
        {{"", "slack", "Slack", "slack"}, "slack_slack", C::neutral},
        {{"", "telegram-desktop", "TelegramDesktop", "telegram-desktop"},
         "org.telegram.desktop",
         C::neutral},
        {{"", "xterm", "XTerm", "xterm"}, "debian-xterm", std::nullopt},
    };
    for (const Case& c : cases) {
        const auto application = resolveApplication(index, c.hints);
        ASSERT_TRUE(application.has_value()) << c.id;
        EXPECT_EQ(application->bundleIdentifier, c.id);
        EXPECT_EQ(classification::starterApplicationClassification(application->bundleIdentifier),
                  c.suggestion)
            << c.id;
    }
}

DesktopEntry entry(std::string id, std::string name, std::string startupWMClass = "") {
    return DesktopEntry{std::move(id), std::move(name), std::move(startupWMClass), false};
}

const DesktopEntryIndex& sampleIndex() {
    static const DesktopEntryIndex index = DesktopEntryIndex::fromEntries({
        entry("org.example.Editor", "Éditeur"),
        entry("notes", "Notes", "NotesWindow"),
        entry("Terminal", "Terminal Emulator"),
        entry("nameless", "", "NoNameWindow"),
        entry("firefox-esr", "Firefox ESR"),
        entry("Ärger", "Ärger App"),
    });
    return index;
}

struct ResolveCase {
    const char* label;
    WindowClassHints hints;
    std::optional<recording::FrontmostApplication> expected;
};

void PrintTo(const ResolveCase& test, std::ostream* stream) {
    *stream << test.label;
}

class ResolveApplicationTest : public testing::TestWithParam<ResolveCase> {};

TEST_P(ResolveApplicationTest, FollowsTheLookupOrder) {
    EXPECT_EQ(resolveApplication(sampleIndex(), GetParam().hints), GetParam().expected);
}

recording::FrontmostApplication named(std::string name, std::string identifier) {
    return recording::FrontmostApplication{std::move(name), std::move(identifier)};
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ResolveApplicationTest,
    testing::Values(
        ResolveCase{"gtk_application_id_wins_over_class",
                    {"org.example.Editor", "notes", "NotesWindow", ""},
                    named("Éditeur", "org.example.Editor")},
        ResolveCase{"unknown_gtk_id_falls_through_to_startup_class",
                    {"org.example.Unknown", "x", "NotesWindow", ""},
                    named("Notes", "notes")},
        ResolveCase{"instance_matches_startup_class",
                    {"", "NotesWindow", "Other", ""},
                    named("Notes", "notes")},
        ResolveCase{"startup_class_beats_file_name",
                    {"", "NotesWindow", "terminal", ""},
                    named("Notes", "notes")},
        ResolveCase{"startup_class_is_case_sensitive",
                    {"", "", "noteswindow", ""},
                    named("noteswindow", "noteswindow")},
        ResolveCase{"file_name_ignores_case",
                    {"", "xterm", "TERMINAL", ""},
                    named("Terminal Emulator", "Terminal")},
        ResolveCase{
            "file_name_ignores_non_ascii_case", {"", "", "äRGER", ""}, named("Ärger App", "Ärger")},
        ResolveCase{"file_name_from_instance",
                    {"", "terminal", "Xterm", ""},
                    named("Terminal Emulator", "Terminal")},
        ResolveCase{"entry_without_name_shows_the_class",
                    {"", "", "NoNameWindow", ""},
                    named("NoNameWindow", "nameless")},
        ResolveCase{"no_entry_uses_the_class",
                    {"", "lumenote-beta", "LumenoteBeta", ""},
                    named("LumenoteBeta", "LumenoteBeta")},
        ResolveCase{"no_class_uses_the_instance", {"", "solo", "", ""}, named("solo", "solo")},
        ResolveCase{"unknown_gtk_id_without_class",
                    {"org.example.Unknown", "", "", ""},
                    named("org.example.Unknown", "org.example.Unknown")},
        ResolveCase{"process_name_finds_an_entry",
                    {"", "", "", "terminal"},
                    named("Terminal Emulator", "Terminal")},
        ResolveCase{
            "process_name_alone", {"", "", "", "python3.11"}, named("python3.11", "python3.11")},
        ResolveCase{"process_name_ignored_when_a_class_exists",
                    {"", "", "Tool", "notes"},
                    named("Tool", "Tool")},
        ResolveCase{"nothing_to_go_by", {"", "", "", ""}, std::nullopt},
        ResolveCase{"browser_class_without_entry",
                    {"", "google-chrome", "Google-chrome", ""},
                    named("Google Chrome", "com.google.Chrome")},
        ResolveCase{"browser_entry_keeps_its_name",
                    {"", "firefox-esr", "Firefox-esr", ""},
                    named("Firefox ESR", "org.mozilla.firefox")},
        ResolveCase{"flatpak_browser_by_gtk_id",
                    {"org.chromium.Chromium", "", "", ""},
                    named("Chromium", "org.chromium.Chromium")}),
    [](const testing::TestParamInfo<ResolveCase>& test) { return std::string(test.param.label); });

TEST(KnownBrowserTest, LinuxIdentitiesMapToCanonicalIdentifiers) {
    const std::map<std::string, std::string> expected{
        {"google-chrome", "com.google.Chrome"},
        {"google-chrome-beta", "com.google.Chrome"},
        {"com.google.Chrome", "com.google.Chrome"},
        {"chromium", "org.chromium.Chromium"},
        {"Chromium-browser", "org.chromium.Chromium"},
        {"org.chromium.Chromium", "org.chromium.Chromium"},
        {"firefox", "org.mozilla.firefox"},
        {"FIREFOX-ESR", "org.mozilla.firefox"},
        {"org.mozilla.firefox", "org.mozilla.firefox"},
        {"microsoft-edge", "com.microsoft.edgemac"},
        {"brave-browser", "com.brave.Browser"},
        {"vivaldi-stable", "com.vivaldi.Vivaldi"},
        {"opera", "com.operasoftware.Opera"},
    };
    for (const auto& [identity, identifier] : expected) {
        const auto browser = knownBrowser(identity);
        ASSERT_TRUE(browser.has_value()) << identity;
        EXPECT_EQ(browser->bundleIdentifier, identifier) << identity;
    }
    for (const char* other : {"", "chrome-abcdef-Default", "firefox-profile-manager", "epiphany",
                              "operator", "LumenoteAlpha"}) {
        EXPECT_FALSE(knownBrowser(other).has_value()) << other;
    }
}

}  // namespace
}  // namespace lumenote::platform::linux_desktop
