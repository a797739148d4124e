// `receipt`: a session's or a week's receipt saved as a PNG picture or a
// one-page PDF, from the same painting the desktop saves. The store is read
// through the history environment like `show` and `week`; the receipt
// options are the user's own (ui/models/receipt_options.hpp).
//
// A stored session does not keep the personal bests it set when it ended
// (they are judged against the history of that moment), so a receipt made
// here lists none; the desktop passes them from its post-session summary.
#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "cli/commands.hpp"
#include "cli/history_environment.hpp"
#include "insights/first_weekday.hpp"
#include "insights/study_streak.hpp"
#include "insights/weekly_figures.hpp"
#include "recording/session_messages.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "ui/models/receipt_options.hpp"
#include "ui/receipts/receipt_file.hpp"

namespace lumenote::cli {

namespace {

namespace fs = std::filesystem;
using ui::receipts::ReceiptFormat;

struct ReceiptArguments {
    std::optional<std::string> session;
    std::optional<std::string> week;
    std::string format;
    std::optional<std::string> output;
};

fs::path destination(const ReceiptArguments& arguments, fs::path fallback) {
    return arguments.output ? fs::path(*arguments.output) : std::move(fallback);
}

void report(CliContext& context, const Result<void, ui::receipts::ReceiptFileError>& written,
            const fs::path& path) {
    if (!written) {
        context.refuse(written.error().message());
        return;
    }
    context.out << fmt::format("Saved the receipt to {}.\n", path.string());
}

void saveSessionReceipt(CliContext& context, HistoryEnvironment& environment,
                        const ReceiptArguments& arguments, ReceiptFormat format,
                        const ui::models::ReceiptOptions& options) {
    const auto id = environment.resolveSessionID(*arguments.session);
    if (!id) {
        context.refuse(id.error());
        return;
    }
    auto loaded = environment.store().loadSession(*id);
    if (!loaded) {
        context.refuse(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                    loaded.error().description));
        return;
    }
    if (!loaded->has_value()) {
        context.refuse(
            recording::sessionFailureMessage(recording::SessionFailure::sessionNotFound));
        return;
    }
    const recording::StudySession& session = **loaded;
    if (session.isLive()) {
        context.refuse("This session is still being recorded. Save its receipt when it ends.");
        return;
    }
    const LocalCalendar& calendar = environment.calendar();
    const auto receipt = ui::models::makeSessionReceipt(session, {}, options, calendar);
    const fs::path path = destination(arguments, ui::receipts::defaultReceiptFileName(
                                                     ui::receipts::ReceiptKind::session,
                                                     calendar.dayKey(session.startDate), format));
    report(context, ui::receipts::writeSessionReceipt(receipt, path, format), path);
}

void saveWeeklyReceipt(CliContext& context, HistoryEnvironment& environment,
                       const ReceiptArguments& arguments, ReceiptFormat format,
                       const ui::models::ReceiptOptions& options, long long dailyGoalMinutes) {
    const LocalCalendar& calendar = environment.calendar();
    const auto day = calendar.startOfDayKey(*arguments.week);
    if (!day) {
        context.refuse(
            fmt::format("\"{}\" is not a day. Give --week a day as YYYY-MM-DD, such as 2026-11-16.",
                        *arguments.week));
        return;
    }
    const insights::WeekPeriod week =
        insights::weekContaining(*day, calendar, insights::localeFirstWeekday());
    auto sessions = insights::readAnalyticsSnapshots(environment.historyReader(), week.range(),
                                                     environment.now(), {});
    if (!sessions) {
        context.refuse(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                    sessions.error().description));
        return;
    }
    // Only the week that holds today may show today's streak.
    std::optional<int> streak;
    if (week.dayIndex(environment.now())) {
        auto read = insights::readCurrentStudyStreak(environment.historyReader(), calendar,
                                                     environment.now(), {});
        if (!read) {
            context.refuse(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                        read.error().description));
            return;
        }
        streak = *read;
    }
    const auto figures =
        insights::computeWeeklyFigures(*sessions, week, calendar, dailyGoalMinutes);
    const auto receipt = ui::models::makeWeeklyReceipt(figures, streak, options, calendar);
    const fs::path path = destination(
        arguments, ui::receipts::defaultReceiptFileName(ui::receipts::ReceiptKind::week,
                                                        calendar.dayKey(week.start), format));
    report(context, ui::receipts::writeWeeklyReceipt(receipt, path, format), path);
}

void runReceipt(CliContext& context, const ReceiptArguments& arguments) {
    if (arguments.session.has_value() == arguments.week.has_value()) {
        context.err << "receipt: give either a session id or --week DAY\n";
        context.exitCode = kExitUsage;
        return;
    }
    auto environment = openHistoryEnvironment(context);
    if (!environment) {
        return;
    }
    settings::JsonFileDefaultsDomain defaults(
        settings::JsonFileDefaultsDomain::pathFor(context.paths),
        [&environment] { return environment->now(); });
    const auto options = ui::models::readReceiptOptions(defaults);
    const ReceiptFormat format =
        arguments.format == "pdf" ? ReceiptFormat::pdf : ReceiptFormat::png;
    if (arguments.session) {
        saveSessionReceipt(context, *environment, arguments, format, options);
        return;
    }
    saveWeeklyReceipt(context, *environment, arguments, format, options,
                      settings::PreferencesStore(defaults).dailyStudyGoalMinutes());
}

}  // namespace

void installReceiptCommand(CLI::App& app, CliContext& context) {
    auto* command = app.add_subcommand(
        "receipt", "Save a session's or a week's receipt as a PNG picture or a PDF page");
    auto arguments = std::make_shared<ReceiptArguments>();
    command->add_option("ID", arguments->session,
                        "The session: its id, or at least its first 8 hex digits");
    command->add_option("--week", arguments->week,
                        "Instead of a session, the week containing this local day (YYYY-MM-DD)");
    command->add_option("--format,-f", arguments->format, "png: a picture; pdf: an A5 page")
        ->required()
        ->check(CLI::IsMember({"png", "pdf"}));
    command->add_option("--output,-o", arguments->output,
                        "The file to write (replaced if it exists, never a folder). By default "
                        "\"Lumenote Receipt DAY.png\" (or \"Lumenote Weekly Receipt DAY\" with "
                        "the week's first day) in the current folder");
    command->footer(
        "What a receipt shows beyond its figures follows the receipt options: the goal, exact "
        "start and end times, the branding line and the weekly subject summary. The file is "
        "written in one piece: a failed save leaves no file behind.");
    command->callback([&context, arguments] { runReceipt(context, *arguments); });
}

}  // namespace lumenote::cli
