// `recovery` and `relabel`: the unfinished session left by a recorder that
// ended without stopping, and relabelling time without input afterwards.
#include <fmt/format.h>

#include <cstdio>

#include "cli/commands.hpp"
#include "cli/history_environment.hpp"
#include "cli/session_text.hpp"
#include "recording/study_state_edit.hpp"
#include "store/recorder_lock.hpp"
#include "store/store_files.hpp"

namespace lumenote::cli {

namespace {

// Recovery touches the recorder's checkpoint, so no recorder may run meanwhile.
std::optional<store::RecorderLock> takeRecorderLock(CliContext& context) {
    auto lock = store::RecorderLock::acquire(store::recorderLockPath(context.paths));
    if (!lock.ok()) {
        context.refuse(store::recorderLockMessage(lock.error()));
        return std::nullopt;
    }
    return std::move(lock).value();
}

void runRecovery(CliContext& context, bool endIt) {
    const auto lock = takeRecorderLock(context);
    if (!lock) {
        return;
    }
    auto environment = openHistoryEnvironment(context, CheckpointAccess::recovery);
    if (!environment) {
        return;
    }
    recording::SessionManager& manager = environment->manager(context.err);
    const auto& session = manager.pendingRecoverySession();
    const auto& summary = manager.pendingRecoverySummary();
    if (!session || !summary) {
        context.out << "No unfinished session was found.\n";
        return;
    }
    if (!endIt) {
        context.out << recoveryStatusText(*summary, session->subject, environment->calendar());
        return;
    }
    const std::string subject = session->subject;
    if (auto ended = manager.endRecoveredSession(); !ended.ok()) {
        context.refuse(ended.error().message());
        return;
    }
    context.out << fmt::format("\"{}\" ended as interrupted after {} of confirmed time.\n", subject,
                               recording::clockDurationText(summary->confirmedDuration));
}

// "2026-11-16T09:30:00+01:00", "2026-11-16T09:30:00" (local time) or
// "09:30[:15]", the local time on the day the session started (a session
// that runs past midnight takes full dates for its later part).
std::optional<Date> parseMoment(std::string_view text, Date sessionStart,
                                const LocalCalendar& calendar) {
    if (auto exact = parseIso8601(text)) {
        if (text.find_first_of("Zz+", 19) != std::string_view::npos ||
            text.find('-', 19) != std::string_view::npos) {
            return exact;
        }
        // Without a zone the text names local time.
        return exact->addingSeconds(-calendar.utcOffsetSeconds(*exact));
    }
    unsigned hours = 0;
    unsigned minutes = 0;
    unsigned seconds = 0;
    const std::string copy(text);
    const int read = std::sscanf(copy.c_str(), "%2u:%2u:%2u", &hours, &minutes, &seconds);
    if (read < 2 || hours > 23 || minutes > 59 || seconds > 59) {
        return std::nullopt;
    }
    const Date midnight = calendar.startOfDay(sessionStart);
    const Date wall = midnight.addingSeconds(hours * 3600.0 + minutes * 60.0 + seconds);
    // Across a daylight-saving change the offset at that hour may differ
    // from the offset at midnight.
    return wall.addingSeconds(calendar.utcOffsetSeconds(midnight) -
                              calendar.utcOffsetSeconds(wall));
}

struct RelabelArguments {
    std::string session;
    std::string from;
    std::string to;
    std::string state;
};

void runRelabel(CliContext& context, const RelabelArguments& arguments) {
    auto environment = openHistoryEnvironment(context);
    if (!environment) {
        return;
    }
    const auto id = environment->resolveSessionID(arguments.session);
    if (!id.ok()) {
        context.refuse(id.error());
        return;
    }
    auto loaded = environment->store().loadSession(*id);
    if (!loaded.ok() || !loaded->has_value()) {
        context.refuse(
            recording::sessionFailureMessage(recording::SessionFailure::sessionNotFound));
        return;
    }
    if ((*loaded)->isLive()) {
        context.refuse(
            recording::sessionFailureMessage(recording::SessionFailure::editWhileActive));
        return;
    }
    const Date start = (*loaded)->startDate;
    const auto from = parseMoment(arguments.from, start, environment->calendar());
    const auto to = parseMoment(arguments.to, start, environment->calendar());
    if (!from || !to) {
        context.refuse("Give times as HH:MM, HH:MM:SS or an ISO 8601 date and time.");
        return;
    }
    std::optional<recording::ConfirmedStudyState> state;
    if (arguments.state == "passive") {
        state = recording::ConfirmedStudyState::passiveStudy;
    } else if (arguments.state == "break") {
        state = recording::ConfirmedStudyState::confirmedBreak;
    }
    auto edited =
        environment->history(context.err)
            .relabel(*id, *from, *to, state, recording::ConfirmedStudyStateSource::replayEdit);
    if (!edited.ok()) {
        context.refuse(edited.error().message());
        return;
    }
    context.out << recording::studyStateEditDescription(*edited) << '\n';
}

}  // namespace

void installRecoveryCommands(CLI::App& app, CliContext& context) {
    auto* recovery = app.add_subcommand(
        "recovery", "Show or end the unfinished session left by a recorder that stopped early");
    recovery->require_subcommand(0, 1);
    auto* status = recovery->add_subcommand("status", "Show the unfinished session, if any");
    auto* end = recovery->add_subcommand(
        "end", "End the unfinished session as interrupted at its last confirmed moment");
    status->callback([&context] { runRecovery(context, false); });
    end->callback([&context] { runRecovery(context, true); });
    recovery->callback([&context, recovery] {
        if (recovery->get_subcommands().empty()) {
            runRecovery(context, false);
        }
    });

    auto arguments = std::make_shared<RelabelArguments>();
    auto* relabel = app.add_subcommand(
        "relabel",
        "Mark time without computer input in a finished session as study away from the "
        "computer, as a break, or back to unconfirmed");
    relabel->add_option("SESSION", arguments->session, "The session's id or id prefix")->required();
    relabel->add_option("--from", arguments->from, "Start: HH:MM[:SS] or ISO 8601")->required();
    relabel->add_option("--to", arguments->to, "End: HH:MM[:SS] or ISO 8601")->required();
    relabel->add_option("--state", arguments->state, "passive, break or unconfirmed")
        ->required()
        ->check(CLI::IsMember({"passive", "break", "unconfirmed"}));
    relabel->callback([&context, arguments] { runRelabel(context, *arguments); });
}

}  // namespace lumenote::cli
