// `sessions`, `show`, `edit`, `delete` and `reset`: the recorded history.
// Changes go through the session manager, so that they are refused and
// reported with the same rules and sentences as in the application. The
// deletion undo offer of the application does not outlive this process, so
// the command line cannot undo a deletion.
#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands.hpp"
#include "cli/history_environment.hpp"
#include "cli/json_output.hpp"
#include "cli/recovery_state.hpp"
#include "cli/session_listing_query.hpp"
#include "cli/session_text.hpp"
#include "platform/system/system_clocks.hpp"
#include "recording/session_json.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preferences_store.hpp"

namespace lumenote::cli {

namespace {

constexpr std::string_view kResetConfirmation = "RESET";

// The user's thresholds, which decide which gaps were too short to be asked about.
NoInputThresholds noInputThresholds(const UserPaths& paths) {
    platform::system::SystemWallClock clock;
    settings::JsonFileDefaultsDomain defaults(settings::JsonFileDefaultsDomain::pathFor(paths),
                                              [&clock] { return clock.now(); });
    const settings::PreferencesStore preferences(defaults);
    return {preferences.passiveStudyPromptThreshold(), preferences.inactivityThreshold()};
}

// Refuses with the sentence of a history change that failed; the history
// itself refuses changes while the store holds a running or paused session.
void refuseWith(CliContext& context, const recording::SessionError& error) {
    context.refuse(error.message());
}

std::optional<recording::StudySession> loadResolved(HistoryEnvironment& environment,
                                                    CliContext& context,
                                                    const std::string& idText) {
    auto id = environment.resolveSessionID(idText);
    if (!id.ok()) {
        context.refuse(id.error());
        return std::nullopt;
    }
    auto loaded = environment.store().loadSession(*id);
    if (!loaded.ok()) {
        context.refuse(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                    loaded.error().description));
        return std::nullopt;
    }
    if (!loaded->has_value()) {
        context.refuse(
            recording::sessionFailureMessage(recording::SessionFailure::sessionNotFound));
        return std::nullopt;
    }
    return std::move(**loaded);
}

void installList(CLI::App& app, CliContext& context) {
    auto* command = app.add_subcommand("sessions", "List the recorded sessions, newest first");
    auto asJson = std::make_shared<bool>(false);
    auto listing = std::make_shared<SessionListingOptions>();
    command->add_flag("--json", *asJson, "Print the sessions as a JSON array");
    command->add_option("--limit", listing->limit, "List at most this many sessions");
    command->add_option("--since", listing->since,
                        "List only sessions started on this local day (YYYY-MM-DD) or later");
    command->callback([&context, asJson, listing] {
        const auto query = sessionListingQuery(*listing, LocalCalendar::current());
        if (!query.ok()) {
            context.refuse(query.error());
            return;
        }
        auto environment = openHistoryEnvironment(context);
        if (!environment) {
            return;
        }
        auto sessions = environment->store().listSessions(*query);
        if (!sessions.ok()) {
            context.refuse(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                        sessions.error().description));
            return;
        }
        if (*asJson) {
            nlohmann::json array = nlohmann::json::array();
            for (const recording::StudySession& session : *sessions) {
                array.push_back(recording::sessionJson(session, false));
            }
            printJson(context, array);
            return;
        }
        if (sessions->empty() && listing->since) {
            context.out << fmt::format("No sessions started on {} or later.\n", *listing->since);
            return;
        }
        const auto awaiting = sessionsAwaitingRecovery(*environment, context.paths);
        std::vector<Uuid> awaitingIds;
        for (const recording::StudySession& session : awaiting) {
            awaitingIds.push_back(session.id);
        }
        context.out << sessionTableText(*sessions, environment->calendar(), awaitingIds);
        for (const recording::StudySession& session : awaiting) {
            context.out << recoveryHint(session, environment->calendar()) << '\n';
        }
    });
}

void installShow(CLI::App& app, CliContext& context) {
    auto* command = app.add_subcommand("show", "Show one session with its segments");
    auto id = std::make_shared<std::string>();
    auto asJson = std::make_shared<bool>(false);
    command->add_option("ID", *id, "The session's id, or at least its first 8 hex digits")
        ->required();
    auto rows = std::make_shared<bool>(false);
    command->add_flag("--json", *asJson, "Print the session and its segments as JSON");
    command->add_flag("--rows", *rows,
                      "Print the replay rows instead: neighbouring segments of one activity as "
                      "one row, browser activity nested under its browser");
    command->callback([&context, id, asJson, rows] {
        auto environment = openHistoryEnvironment(context);
        if (!environment) {
            return;
        }
        const auto session = loadResolved(*environment, context, *id);
        if (!session) {
            return;
        }
        if (*rows) {
            const auto replay = recording::replayRows(session->segments);
            if (*asJson) {
                printJson(context, replayRowsJson(replay));
            } else {
                context.out << replayRowsText(replay, environment->calendar());
            }
            return;
        }
        if (*asJson) {
            printJson(context, recording::sessionJson(*session, true));
            return;
        }
        context.out << sessionDetailText(*session, environment->calendar(),
                                         noInputThresholds(context.paths));
    });
}

struct EditOptions {
    std::string id;
    std::optional<std::string> subject;
    std::optional<std::string> goal;
    std::optional<std::string> notes;
};

void installEdit(CLI::App& app, CliContext& context) {
    auto* command =
        app.add_subcommand("edit", "Change the subject, goal or notes of a finished session");
    auto options = std::make_shared<EditOptions>();
    command->add_option("ID", options->id, "The session's id, or at least its first 8 hex digits")
        ->required();
    command->add_option("--subject", options->subject, "The new subject (at most 200 characters)");
    command->add_option("--goal", options->goal, "The new goal (at most 500 characters)");
    command->add_option("--notes", options->notes,
                        "The new notes (at most 5,000 characters; empty removes them)");
    command->callback([&context, options] {
        if (!options->subject && !options->goal && !options->notes) {
            context.err << "edit: give --subject, --goal or --notes\n";
            context.exitCode = kExitUsage;
            return;
        }
        auto environment = openHistoryEnvironment(context);
        if (!environment) {
            return;
        }
        const auto session = loadResolved(*environment, context, options->id);
        if (!session) {
            return;
        }
        const auto edited =
            environment->history(context.err)
                .editSession(session->id, options->subject.value_or(session->subject),
                             options->goal.value_or(session->goal),
                             options->notes ? options->notes : session->notes());
        if (!edited.ok()) {
            refuseWith(context, edited.error());
            return;
        }
        context.out << fmt::format("Session {} updated.\n", session->id.upperString());
    });
}

struct DeleteOptions {
    std::vector<std::string> ids;
    bool all = false;
};

// Deletes the sessions the ids name. An id that names none (unknown,
// malformed or ambiguous) is reported and refused, but does not keep the
// others from being deleted; each deleted session is listed by its full id.
void deleteSelected(HistoryEnvironment& environment, CliContext& context,
                    const std::vector<std::string>& idTexts) {
    std::vector<Uuid> ids;
    std::vector<std::string> notFound;
    for (const std::string& text : idTexts) {
        auto id = environment.resolveSessionID(text);
        if (!id.ok()) {
            notFound.push_back(id.error());
        } else if (std::find(ids.begin(), ids.end(), *id) == ids.end()) {
            ids.push_back(*id);
        }
    }
    for (const std::string& message : notFound) {
        context.refuse(message);
    }
    if (ids.empty()) {
        context.refuse("No session was deleted.");
        return;
    }
    if (auto deleted = environment.history(context.err).deleteSessions(ids); !deleted.ok()) {
        refuseWith(context, deleted.error());
        return;
    }
    context.out << countText(ids.size(), "session", "sessions") << " deleted:\n";
    for (const Uuid& id : ids) {
        context.out << "  " << id.upperString() << '\n';
    }
}

void deleteEverySession(HistoryEnvironment& environment, CliContext& context) {
    auto count = environment.store().sessionCount();
    if (!count.ok()) {
        context.refuse(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                    count.error().description));
        return;
    }
    if (auto deleted = environment.history(context.err).deleteAllSessions(); !deleted.ok()) {
        refuseWith(context, deleted.error());
        return;
    }
    context.out << countText(*count, "session", "sessions") << " deleted.\n";
}

void installDelete(CLI::App& app, CliContext& context) {
    auto* command = app.add_subcommand(
        "delete", "Delete sessions with their segments (the command line cannot undo this)");
    auto options = std::make_shared<DeleteOptions>();
    auto* ids = command->add_option("ID", options->ids,
                                    "Ids of the sessions, or at least their first 8 hex digits");
    command->add_flag("--all", options->all, "Delete every session")->excludes(ids);
    command->callback([&context, options] {
        if (options->ids.empty() && !options->all) {
            context.err << "delete: give the ids of the sessions to delete, or --all\n";
            context.exitCode = kExitUsage;
            return;
        }
        auto environment = openHistoryEnvironment(context);
        if (!environment) {
            return;
        }
        if (options->all) {
            deleteEverySession(*environment, context);
        } else {
            deleteSelected(*environment, context, options->ids);
        }
    });
}

// Counts what a reset removes, for the report printed after it.
struct ResetCounts {
    std::size_t sessions = 0;
    std::size_t applicationRules = 0;
    std::size_t websiteRules = 0;
};

std::optional<ResetCounts> countResettable(recording::RecordingStore& store, CliContext& context) {
    auto sessions = store.sessionCount();
    auto applications = store.appClassifications();
    auto websites = store.websiteClassifications();
    for (const StoreError* error : {sessions.ok() ? nullptr : &sessions.error(),
                                    applications.ok() ? nullptr : &applications.error(),
                                    websites.ok() ? nullptr : &websites.error()}) {
        if (error != nullptr) {
            context.refuse(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                        error->description));
            return std::nullopt;
        }
    }
    return ResetCounts{*sessions, applications->size(), websites->size()};
}

void installReset(CLI::App& app, CliContext& context) {
    auto* command =
        app.add_subcommand("reset", "Remove the recorded history and rules (--confirm RESET)");
    command->footer(
        "Removes session history, classification rules, local PDF labels, and app and receipt "
        "preferences. Templates, automatic backups, recovery files, and Chrome setup stay.");
    auto confirmation = std::make_shared<std::string>();
    command->add_option("--confirm", *confirmation, "Type RESET to confirm");
    command->callback([&context, confirmation] {
        if (*confirmation != kResetConfirmation) {
            context.refuse(historyCommandFailureMessage(HistoryCommandFailure::resetNotConfirmed));
            return;
        }
        auto environment = openHistoryEnvironment(context);
        if (!environment) {
            return;
        }
        const auto counts = countResettable(environment->store(), context);
        if (!counts) {
            return;
        }
        if (auto reset = environment->history(context.err).resetAllData(); !reset.ok()) {
            refuseWith(context, reset.error());
            return;
        }
        context.out << "Lumenote was reset.\n"
                    << fmt::format(
                           "Removed: {}, {}, {}, local PDF labels, and app and receipt "
                           "preferences.\n",
                           countText(counts->sessions, "session", "sessions"),
                           countText(counts->applicationRules, "application rule",
                                     "application rules"),
                           countText(counts->websiteRules, "website rule", "website rules"))
                    << "Kept: templates, automatic backups, recovery files, and Chrome setup.\n";
    });
}

}  // namespace

void installSessionCommands(CLI::App& app, CliContext& context) {
    installList(app, context);
    installShow(app, context);
    installEdit(app, context);
    installDelete(app, context);
    installReset(app, context);
}

}  // namespace lumenote::cli
