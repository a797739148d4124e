#include "manual/program_pages.hpp"

#include "bridge/browser_bridge_store.hpp"
#include "cli/cli_context.hpp"
#include "insights/file_insight_dismissal_repository.hpp"
#include "portability/automatic_backups.hpp"
#include "settings/file_session_template_repository.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "store/store_files.hpp"

namespace lumenote::manual {

namespace {

// The folders as the reader knows them: the same path functions the programs
// use, given the variables' names in place of their values.
const UserPaths kShownPaths{"$XDG_DATA_HOME", "$XDG_CONFIG_HOME"};

const char* noEnvironment(const char*) {
    return nullptr;
}

std::vector<ManualEntry> files() {
    return {
        {kShownPaths.applicationData().string(),
         "The application's folder: the history, the recovery checkpoint of a running session, "
         "the session templates and the insight dismissals. lumenote-cli paths shows it with "
         "the variables resolved."},
        {store::storePath(kShownPaths).string(), "The history of sessions (SQLite)."},
        {store::recorderLockPath(kShownPaths).string(),
         "Held while a recorder runs, so that only one process records at a time."},
        {settings::FileSessionTemplateRepository::pathFor(kShownPaths).string(),
         "The session templates."},
        {insights::FileInsightDismissalRepository::pathFor(kShownPaths).string(),
         "The insights that were dismissed."},
        {settings::JsonFileDefaultsDomain::pathFor(kShownPaths).string(), "The preferences."},
        {portability::automaticBackupFolder(kShownPaths).string(),
         "The automatic backups of the history."},
        {bridge::BrowserBridgeStore::defaultRoot(kShownPaths, noEnvironment).string(),
         "The folder shared with the browser extension's native host."},
    };
}

std::vector<ManualEntry> environment() {
    return {
        {"XDG_DATA_HOME", "Where the data folders are; ~/.local/share when unset or not absolute."},
        {"XDG_CONFIG_HOME", "Where the preferences are; ~/.config when unset or not absolute."},
        {"HOME", "The home folder the defaults above are under."},
        {"TALLYWISE_BRIDGE_DIR",
         "The folder shared with the browser extension, in place of the "
         "one under FILES."},
        {"TZ", "The time zone that days and weeks are counted in."},
    };
}

}  // namespace

ManPageContent terminalPageContent(std::string_view date) {
    ManPageContent content;
    content.summary = "record study sessions and work with their history from a terminal";
    content.source = "Lumenote " LUMENOTE_VERSION;
    content.date = date;
    content.description = {
        "Without a command it shows its help. Commands that change the history refuse while "
        "their change would conflict with a session being recorded; reading commands work at "
        "any time."};
    content.files = files();
    content.environment = environment();
    content.exitStatus = {
        {"0", "The command did what was asked (or --help or --version was given)."},
        {std::to_string(cli::kExitRefused),
         "The command refused or failed, and said why on standard error; for record, the "
         "recording could not start."},
        {std::to_string(cli::kExitUsage),
         "The command line was not understood: an unknown command or option, or a missing or "
         "malformed argument."},
    };
    content.seeAlso = {"lumenote(1)"};
    return content;
}

ManPageContent desktopPageContent(std::string_view date) {
    ManPageContent content;
    content.summary = "record study sessions from the desktop tray";
    content.source = "Lumenote " LUMENOTE_VERSION;
    content.date = date;
    content.description = {
        "A second start hands over to the running application, which opens its panel, and "
        "ends. Without a display the terminal recorder (lumenote-cli record) starts in its "
        "place."};
    content.files = files();
    content.environment = environment();
    content.environment.insert(
        content.environment.begin(),
        {{"DISPLAY", "The X display to show the tray and the windows on."},
         {"WAYLAND_DISPLAY", "A Wayland display; when set, no X display is needed."},
         {"QT_QPA_PLATFORM", "The Qt platform to use; when set, no X display is needed."}});
    content.exitStatus = {
        {"0",
         "The application quit, handed over to the one already running, or showed why it "
         "could not start until that window was closed; or --help or --version was given."},
        {"1",
         "There was no display and the terminal recorder could not be started in its place. "
         "When it did start, the status is that of lumenote-cli record."},
        {"100-127",
         "The command line was not understood: an unknown option or an unexpected "
         "argument."},
    };
    content.seeAlso = {"lumenote-cli(1)"};
    return content;
}

}  // namespace lumenote::manual
