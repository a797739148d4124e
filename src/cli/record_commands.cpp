// `record` and the commands that steer a running recorder from another
// terminal or a desktop shortcut: pause, resume, end, away, back, status.
#include <fmt/format.h>
#include <unistd.h>

#include <filesystem>

#include "cli/commands.hpp"
#include "cli/duration_argument.hpp"
#include "cli/history_environment.hpp"
#include "cli/recovery_state.hpp"
#include "foundation/result.hpp"
#include "platform/system/system_clocks.hpp"
#include "recording/no_input_prompt.hpp"
#include "recording/session_messages.hpp"
#include "runtime/recorder_control.hpp"
#include "runtime/setup_check.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "settings/study_mode_names.hpp"
#include "store/store_files.hpp"
#include "terminal/run_terminal_recorder.hpp"

namespace lumenote::cli {

namespace {

struct RecordArguments {
    std::string subject;
    std::string goal;
    std::string duration;
    bool openEnded = false;
    std::string mode;
    std::string templateName;
    std::string recovery;
};

// The planned duration typed with -d in seconds; fails with the sentence to
// show when it cannot be read or lies outside what a session may last.
Result<double, std::string> plannedDurationArgument(std::string_view text) {
    const auto seconds = parseDurationArgument(text);
    if (!seconds.ok()) {
        return fail(std::string(message(seconds.error())));
    }
    if (*seconds <= 0.0 || *seconds > recording::kMaximumPlannedDuration) {
        return fail(fmt::format(
            "{} A session lasts from {} to {}.",
            recording::sessionFailureMessage(recording::SessionFailure::invalidDuration),
            readableDuration(1.0), readableDuration(recording::kMaximumPlannedDuration)));
    }
    return *seconds;
}

void runRecord(CliContext& context, const RecordArguments& arguments) {
    terminal::RecorderOptions options;
    options.interactive = isatty(STDIN_FILENO) && isatty(STDOUT_FILENO);
    options.request.subject = arguments.subject;
    options.request.goal = arguments.goal;

    // The arguments are checked before anything is opened: a refusal must not
    // follow a recovery settled or a file read on the way.
    if (const auto tooLong = recording::subjectLengthRefusal(arguments.subject)) {
        context.refuse(tooLong->message());
        return;
    }
    std::optional<double> plannedDuration;
    if (!arguments.duration.empty()) {
        auto seconds = plannedDurationArgument(arguments.duration);
        if (!seconds.ok()) {
            context.refuse(seconds.error());
            return;
        }
        plannedDuration = *seconds;
    }

    // Defaults come from the preferences: the default duration and study mode.
    platform::system::SystemWallClock clock;
    settings::JsonFileDefaultsDomain defaults(
        settings::JsonFileDefaultsDomain::pathFor(context.paths), [&clock] { return clock.now(); });
    settings::PreferencesStore preferences(defaults);
    options.request.plannedDuration = plannedDuration.value_or(preferences.defaultDuration());
    options.request.studyMode = preferences.defaultStudyMode();
    options.durationGiven = plannedDuration.has_value();
    if (arguments.openEnded) {
        options.request.timingMode = recording::SessionTimingMode::openEnded;
        options.timingGiven = true;
    } else if (options.durationGiven) {
        options.timingGiven = true;
    }
    if (!arguments.mode.empty()) {
        // The option's check has accepted the name.
        options.request.studyMode = *settings::studyModeNamed(arguments.mode);
    }
    if (!arguments.templateName.empty()) {
        options.templateName = arguments.templateName;
    }
    if (arguments.recovery == "continue") {
        options.recovery = terminal::RecoveryChoice::continueSession;
    } else if (arguments.recovery == "end") {
        options.recovery = terminal::RecoveryChoice::endSession;
    }
    context.exitCode = terminal::runRecorder(options, context.paths, context.out, context.err);
}

// When nothing records, `status` also tells of a session left waiting for
// recovery by a recorder that stopped early.
std::string withRecoveryHints(CliContext& context, std::string text) {
    // Nothing was ever recorded without a store: none is created to find out.
    if (!std::filesystem::exists(store::storePath(context.paths))) {
        return text;
    }
    auto environment = HistoryEnvironment::open(context.paths);
    if (!environment.ok()) {
        return text;
    }
    for (const auto& session : sessionsAwaitingRecovery(**environment, context.paths)) {
        text += "\n" + recoveryHint(session, (*environment)->calendar());
    }
    return text;
}

void runControl(CliContext& context, runtime::RecorderControl control) {
    auto answer = runtime::controlRecorder(control);
    const bool idle = !answer.ok() || *answer == "No study session is active.";
    if (control == runtime::RecorderControl::status && idle) {
        if (!answer.ok()) {
            context.refuse(withRecoveryHints(context, answer.error()));
        } else {
            context.out << withRecoveryHints(context, *answer) << '\n';
        }
        return;
    }
    if (!answer.ok()) {
        context.refuse(answer.error());
        return;
    }
    context.out << *answer << '\n';
}

}  // namespace

void installRecordCommands(CLI::App& app, CliContext& context) {
    auto arguments = std::make_shared<RecordArguments>();
    auto* record = app.add_subcommand(
        "record",
        "Record a study session: samples the frontmost application and your input once a "
        "second until the session ends");
    record->add_option("--subject,-s", arguments->subject,
                       "What you study, at most 200 characters (asked for on a terminal when "
                       "left out)");
    record->add_option("--goal,-g", arguments->goal, "Your goal for the session");
    auto* duration = record->add_option(
        "--duration,-d", arguments->duration,
        "Planned duration up to 24 hours: 25m, 90m, 1h30m or seconds (default: the default "
        "duration setting)");
    record->add_flag("--open-ended", arguments->openEnded, "Run until you end it")
        ->excludes(duration);
    record
        ->add_option("--mode,-m", arguments->mode,
                     "computer, mixed (no-input time may be study away from the computer) or "
                     "offline (no-input time is study); computerBased, mixedStudy and "
                     "offlineBookStudy are accepted too")
        ->check(CLI::Validator(
            [](const std::string& name) -> std::string {
                return settings::studyModeNamed(name)
                           ? std::string()
                           : "Choose computer, mixed or offline (or computerBased, mixedStudy "
                             "or offlineBookStudy).";
            },
            "MODE"));
    record
        ->add_option("--recovery", arguments->recovery,
                     "What to do with a session left unfinished by a recorder that stopped "
                     "early: continue it, or end it as interrupted and start this one (asked "
                     "on a terminal; without one, nothing starts until you choose)")
        ->check(CLI::IsMember({"continue", "end"}));
    record->add_option("--template,-t", arguments->templateName,
                       "Start from a session template (its name or id)");
    record->footer(
        "Keys on a terminal: p pause/resume, a Study away from Mac / Back to Computer Study, "
        "e end, q quit.\nFrom elsewhere: lumenote-cli pause|resume|end|away|back|status.");
    record->callback([&context, arguments] { runRecord(context, *arguments); });

    const std::pair<const char*, std::pair<runtime::RecorderControl, std::string_view>> controls[] =
        {
            {"pause", {runtime::RecorderControl::pause, "Pause the session being recorded"}},
            {"resume", {runtime::RecorderControl::resume, "Resume the paused session"}},
            {"end", {runtime::RecorderControl::end, "End the session being recorded"}},
            {"away", {runtime::RecorderControl::away, recording::kStudyAwayControlHelp}},
            {"back", {runtime::RecorderControl::back, recording::kBackToComputerStudyHelp}},
            {"status", {runtime::RecorderControl::status, "Show what the recorder is doing"}},
        };
    app.add_subcommand("check",
                       "Check what this desktop lets Lumenote observe: the X display, input idle "
                       "time, sleep and lock notices, notifications")
        ->callback([&context] {
            const runtime::SetupCheck check = runtime::checkSetup();
            context.out << check.report;
            if (!check.complete) {
                context.exitCode = kExitRefused;
            }
        });
    for (const auto& [name, entry] : controls) {
        const auto control = entry.first;
        app.add_subcommand(name, std::string(entry.second))->callback([&context, control] {
            runControl(context, control);
        });
    }
}

}  // namespace lumenote::cli
