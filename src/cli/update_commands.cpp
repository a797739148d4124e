// `update check [--feed URL]`: the signed update check, started by the user
// only. Builds without the update check (LUMENOTE_UPDATE_CHECKS off, as for
// the distribution's package) say that the package manager brings updates.
#include <fmt/format.h>

#include <optional>

#include "cli/commands.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "shell/app_commands.hpp"

#if LUMENOTE_UPDATE_CHECKS
#include "platform/network/https_feed_fetcher.hpp"
#include "updates/release_channel.hpp"
#include "updates/update_check.hpp"
#endif

namespace lumenote::cli {

namespace {

constexpr const char* kCheckHelp =
    "Ask the update address whether a newer Lumenote is available (only when allowed by the "
    "updates.checkEnabled preference). Nothing is downloaded. Exit status: 0 up to date or a "
    "newer version offered; 1 not allowed, no address, an address that is not https://, or a "
    "build updated by the package manager; 3 the address could not be reached; 4 the answer "
    "could not be verified or read.";

#if LUMENOTE_UPDATE_CHECKS
constexpr int kExitUnreachable = 3;
constexpr int kExitNotVerified = 4;

int exitStatusOf(updates::UpdateCheckStatus status) {
    switch (status) {
        case updates::UpdateCheckStatus::upToDate:
        case updates::UpdateCheckStatus::newerAvailable:
            return 0;
        case updates::UpdateCheckStatus::unreachable:
            return kExitUnreachable;
        case updates::UpdateCheckStatus::malformedFeed:
        case updates::UpdateCheckStatus::notVerified:
            return kExitNotVerified;
        case updates::UpdateCheckStatus::checksOff:
        case updates::UpdateCheckStatus::noFeedAddress:
        case updates::UpdateCheckStatus::insecureAddress:
            return kExitRefused;
    }
    return kExitRefused;
}

void checkForUpdates(CliContext& context, const std::optional<std::string>& feed) {
    settings::JsonFileDefaultsDomain domain(
        settings::JsonFileDefaultsDomain::pathFor(context.paths), systemNow);
    const settings::PreferencesStore preferences(domain);
    const updates::UpdateCheckRequest request = updates::updateCheckRequest(
        preferences.updatesCheckEnabled(), feed.value_or(preferences.updatesFeedAddress()));
    platform::network::HttpsFeedFetcher fetcher(
        {.userAgent = std::string(updates::updateUserAgent())});
    const updates::UpdateCheckOutcome outcome =
        updates::checkForUpdates(request, fetcher, updates::kReleasePublicKey);
    const std::string sentence = updates::updateCheckSentence(outcome);
    if (!outcome.succeeded()) {
        context.err << sentence << '\n';
        context.exitCode = exitStatusOf(outcome.status);
        return;
    }
    context.out << sentence << '\n';
    if (outcome.offer) {
        context.out << fmt::format("\n{}\n\nDownload: {}\n", outcome.offer->releaseNotes,
                                   outcome.offer->downloadAddress);
    }
}
#else
void checkForUpdates(CliContext& context, const std::optional<std::string>&) {
    context.refuse(shell::kUpdatesFromPackageManager);
}
#endif

}  // namespace

void installUpdateCommands(CLI::App& app, CliContext& context) {
    auto* update = app.add_subcommand("update", "Whether a newer Lumenote is available");
    update->require_subcommand(1);
    auto* check = update->add_subcommand("check", kCheckHelp);
    auto feed = std::make_shared<std::optional<std::string>>();
    check->add_option("--feed", *feed,
                      "Check this https:// address instead of the updates.feedAddress preference "
                      "or the address built in");
    check->callback([&context, feed] { checkForUpdates(context, *feed); });
}

}  // namespace lumenote::cli
