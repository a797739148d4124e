// `record` and the commands that steer a running recorder from another
// terminal or a desktop shortcut: pause, resume, end, away, back, status.
#include <fmt/format.h>
#include <unistd.h>

#include <filesystem>

#include "cli/commands.hpp"
#include "cli/duration_argument.hpp"
#include "cli/history_environment.hpp"
#include "cli/recovery_state.hpp"
#include "platform/system/system_clocks.hpp"
#include "recording/no_input_prompt.hpp"
#include "runtime/recorder_control.hpp"
#include "runtime/setup_check.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
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

const std::map<std::string, recording::StudySessionMode> kModes{
    {"computer", recording::StudySessionMode::computerBased},
    {"mixed", recording::StudySessionMode::mixedStudy},
    {"offline", recording::StudySessionMode::offlineBookStudy},
};

void runRecord(CliContext& context, const RecordArguments& arguments) {
    terminal::RecorderOptions options;
    options.interactive = isatty(STDIN_FILENO) && isatty(STDOUT_FILENO);
    options.request.subject = arguments.subject;
    options.request.goal = arguments.goal;

    // Defaults come from the preferences: the default duration and study mode.
    platform::system::SystemWallClock clock;
    settings::JsonFileDefaultsDomain defaults(
        settings::JsonFileDefaultsDomain::pathFor(context.paths), [&clock] { return clock.now(); });
    settings::PreferencesStore preferences(defaults);
    options.request.plannedDuration = preferences.defaultDuration();
    options.request.studyMode = preferences.defaultStudyMode();
    if (!arguments.duration.empty()) {
        const auto seconds = parseDurationArgument(arguments.duration);
        if (!seconds.ok()) {
            context.refuse(message(seconds.error()));
            return;
        }
        options.request.plannedDuration = *seconds;
        options.durationGiven = true;
    }
    if (arguments.openEnded) {
        options.request.timingMode = recording::SessionTimingMode::openEnded;
        options.timingGiven = true;
    } else if (options.durationGiven) {
        options.timingGiven = true;
    }
    if (!arguments.mode.empty()) {
        options.request.studyMode = kModes.at(arguments.mode);
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
                       "What you study (asked for on a terminal when left out)");
    record->add_option("--goal,-g", arguments->goal, "Your goal for the session");
    auto* duration = record->add_option(
        "--duration,-d", arguments->duration,
        "Planned duration: 25m, 90m, 1h30m or seconds (default: the default duration setting)");
    record->add_flag("--open-ended", arguments->openEnded, "Run until you end it")
        ->excludes(duration);
    record
        ->add_option("--mode,-m", arguments->mode,
                     "computer, mixed (no-input time may be study away from the computer) or "
                     "offline (no-input time is study)")
        ->check(CLI::IsMember({"computer", "mixed", "offline"}));
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
