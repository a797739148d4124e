// `week` and `insights`: the figures of a local-calendar week and the
// evidence-gated insights about it, read from the store through its streamed
// walk over the weeks concerned only; `insights dismiss ID` dismisses one.
//
// The week starts on the first weekday of the user's LC_TIME locale (Monday
// when it does not say). Dismissed insights are hidden unless --all is given,
// when they are listed marked "(dismissed)".
#include <fmt/format.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands.hpp"
#include "cli/history_environment.hpp"
#include "cli/json_output.hpp"
#include "foundation/numeric.hpp"
#include "insights/first_weekday.hpp"
#include "insights/insight_dismissal_store.hpp"
#include "insights/insight_text.hpp"
#include "insights/insights_availability.hpp"
#include "insights/local_insights.hpp"
#include "insights/study_streak.hpp"
#include "insights/weekly_figures.hpp"
#include "recording/focus_score_text.hpp"
#include "recording/session_figures.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preferences_store.hpp"

namespace lumenote::cli {

namespace {

using insights::SessionSnapshot;
using insights::WeekPeriod;

// The start of the local day `text` names, or today's; refuses a bad day.
std::optional<Date> chosenDay(CliContext& context, HistoryEnvironment& environment,
                              const std::optional<std::string>& text, std::string_view option) {
    if (!text) {
        return environment.now();
    }
    const auto start = environment.calendar().startOfDayKey(*text);
    if (!start) {
        context.refuse(
            fmt::format("\"{}\" is not a day. Give {} a day as YYYY-MM-DD, such as 2026-11-16.",
                        *text, option));
    }
    return start;
}

std::optional<std::vector<SessionSnapshot>> readWeek(CliContext& context,
                                                     HistoryEnvironment& environment,
                                                     const recording::SessionRange& range,
                                                     insights::SnapshotDetail detail) {
    auto snapshots = insights::readAnalyticsSnapshots(environment.historyReader(), range,
                                                      environment.now(), {}, detail);
    if (!snapshots.ok()) {
        context.refuse(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                    snapshots.error().description));
        return std::nullopt;
    }
    return std::move(*snapshots);
}

long long dailyGoalMinutes(const UserPaths& paths, Date now) {
    settings::JsonFileDefaultsDomain defaults(settings::JsonFileDefaultsDomain::pathFor(paths),
                                              [now] { return now; });
    return settings::PreferencesStore(defaults).dailyStudyGoalMinutes();
}

std::string scoreText(const std::optional<double>& score) {
    return score ? recording::TrackingCalculationService::formatFocusScore(score)
                 : std::string(recording::TrackingCalculationService::kFocusScoreNotAvailableText);
}

nlohmann::json labelled(const std::vector<insights::LabelledDuration>& list) {
    nlohmann::json array = nlohmann::json::array();
    for (const auto& item : list) {
        array.push_back({{"label", item.label}, {"seconds", item.seconds}});
    }
    return array;
}

nlohmann::json weekJson(const insights::WeeklyFigures& figures, const LocalCalendar& calendar,
                        int currentStreak) {
    nlohmann::json days = nlohmann::json::array();
    for (const insights::DayFigures& day : figures.days) {
        nlohmann::json json{{"day", day.dayKey},
                            {"weekday", insights::weekdayName(day.weekday)},
                            {"sessions", day.sessions},
                            {"studySeconds", day.studyTime},
                            {"focusedSeconds", day.focused},
                            {"goalMet", day.goalMet}};
        json["goalProgressPercent"] =
            day.goalProgressPercent ? nlohmann::json(*day.goalProgressPercent) : nlohmann::json();
        days.push_back(json);
    }
    nlohmann::json json{{"weekStart", calendar.formatIso8601(figures.period.start)},
                        {"weekEnd", calendar.formatIso8601(figures.period.end)},
                        {"days", days},
                        {"sessions", figures.sessions},
                        {"studySeconds", figures.studyTime},
                        {"computerStudySeconds", figures.computerStudy},
                        {"studyAwaySeconds", figures.passiveStudy},
                        {"focusedSeconds", figures.focused},
                        {"distractingSeconds", figures.distracted},
                        {"neutralSeconds", figures.neutral},
                        {"unclassifiedSeconds", figures.unclassified},
                        {"subjects", labelled(figures.subjects)},
                        {"topFocused", labelled(figures.topFocused)},
                        {"topDistracting", labelled(figures.topDistracting)},
                        {"activeDays", figures.activeDays},
                        {"currentStreakDays", currentStreak},
                        {"daysGoalMet", figures.daysGoalMet}};
    json["focusScore"] =
        figures.focusScore ? nlohmann::json(*figures.focusScore) : nlohmann::json();
    json["dailyGoalSeconds"] =
        figures.dailyGoalSeconds ? nlohmann::json(*figures.dailyGoalSeconds) : nlohmann::json();
    return json;
}

std::string weekText(const insights::WeeklyFigures& figures, int currentStreak) {
    using recording::clockDurationText;
    std::string text =
        fmt::format("Week of {} to {}\n", figures.days.front().dayKey, figures.days.back().dayKey);
    for (const insights::DayFigures& day : figures.days) {
        text += fmt::format("  {:<10} {}  {:>9}", insights::weekdayName(day.weekday), day.dayKey,
                            clockDurationText(day.studyTime));
        if (day.goalProgressPercent) {
            text +=
                fmt::format("  goal {:>3}%{}",
                            static_cast<long long>(roundHalfAwayFromZero(*day.goalProgressPercent)),
                            day.goalMet ? " met" : "");
        }
        text += '\n';
    }
    const auto line = [&text](std::string_view name, double seconds) {
        text += fmt::format("{:<28}{:>9}\n", name, clockDurationText(seconds));
    };
    line("Study time", figures.studyTime);
    line("  Computer study", figures.computerStudy);
    line("    Focused", figures.focused);
    line("    Distracting", figures.distracted);
    line("    Neutral", figures.neutral);
    line("    Unclassified", figures.unclassified);
    line("  Studying away", figures.passiveStudy);
    text += figures.focusScore ? fmt::format("Focus score: {}\n", scoreText(figures.focusScore))
                               : fmt::format("{}\n", scoreText(figures.focusScore));
    const auto list = [&text, &line](std::string_view heading,
                                     const std::vector<insights::LabelledDuration>& items) {
        if (items.empty()) {
            return;
        }
        text += fmt::format("{}\n", heading);
        for (const auto& item : items) {
            line("  " + item.label, item.seconds);
        }
    };
    list("Subjects", figures.subjects);
    list("Top Focused activities", figures.topFocused);
    list("Top Distracting activities", figures.topDistracting);
    text += fmt::format("Sessions: {}\nActive study days: {} of 7\n", figures.sessions,
                        figures.activeDays);
    text +=
        fmt::format("Current streak: {} {}\n", currentStreak, currentStreak == 1 ? "day" : "days");
    if (figures.dailyGoalSeconds) {
        text += fmt::format("Daily goal: {} met on {} of 7 days\n",
                            insights::insightDurationText(*figures.dailyGoalSeconds),
                            figures.daysGoalMet);
    } else {
        text += "Daily goal: none set\n";
    }
    return text;
}

void installWeek(CLI::App& app, CliContext& context) {
    auto* command = app.add_subcommand("week", "Show the figures of one local-calendar week");
    auto day = std::make_shared<std::optional<std::string>>();
    auto asJson = std::make_shared<bool>(false);
    command->add_option("--date", *day,
                        "Show the week containing this local day (YYYY-MM-DD); default today");
    command->add_flag("--json", *asJson, "Print the week's figures as JSON");
    command->callback([&context, day, asJson] {
        auto environment = openHistoryEnvironment(context);
        if (!environment) {
            return;
        }
        const auto date = chosenDay(context, *environment, *day, "--date");
        if (!date) {
            return;
        }
        const LocalCalendar& calendar = environment->calendar();
        const WeekPeriod week =
            insights::weekContaining(*date, calendar, insights::localeFirstWeekday());
        const auto sessions =
            readWeek(context, *environment, week.range(), insights::SnapshotDetail::full);
        if (!sessions) {
            return;
        }
        const auto currentStreak = insights::readCurrentStudyStreak(
            environment->historyReader(), calendar, environment->now(), {});
        if (!currentStreak) {
            context.refuse(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                        currentStreak.error().description));
            return;
        }
        const auto figures = insights::computeWeeklyFigures(
            *sessions, week, calendar, dailyGoalMinutes(context.paths, environment->now()));
        if (*asJson) {
            printJson(context, weekJson(figures, calendar, *currentStreak));
        } else {
            context.out << weekText(figures, *currentStreak);
        }
    });
}

struct InsightsOfWeek {
    insights::InsightsAvailability availability;
    std::vector<insights::LocalInsightFact> facts;
};

std::optional<InsightsOfWeek> insightsOf(
    CliContext& context, HistoryEnvironment& environment, Date date,
    const std::vector<insights::InsightDismissalRecord>& dismissed) {
    const LocalCalendar& calendar = environment.calendar();
    const unsigned firstWeekday = insights::localeFirstWeekday();
    const WeekPeriod week = insights::weekContaining(date, calendar, firstWeekday);
    const WeekPeriod before = insights::previousWeek(week, calendar, firstWeekday);
    const auto selected =
        readWeek(context, environment, week.range(), insights::SnapshotDetail::full);
    const auto previous =
        selected ? readWeek(context, environment, before.range(), insights::SnapshotDetail::totals)
                 : std::nullopt;
    if (!previous) {
        return std::nullopt;
    }
    return InsightsOfWeek{
        insights::insightsAvailability(*selected, week),
        insights::buildLocalInsights(*selected, *previous, week, before, calendar, dismissed)};
}

std::string evidenceText(const insights::InsightEvidenceValue& value) {
    using insights::InsightEvidenceUnit;
    if (value.textValue) {
        return *value.textValue;
    }
    const double number = value.numericValue.value_or(0.0);
    switch (value.unit) {
        case InsightEvidenceUnit::seconds:
            return insights::insightDurationText(number);
        case InsightEvidenceUnit::percent:
            return fmt::format("{:.1f}%", number);
        case InsightEvidenceUnit::percentagePoints:
            return fmt::format("{:+.1f} points", number);
        case InsightEvidenceUnit::count:
        case InsightEvidenceUnit::text:
            break;
    }
    return fmt::format("{}", static_cast<long long>(roundHalfAwayFromZero(number)));
}

nlohmann::json factJson(const insights::LocalInsightFact& fact, const LocalCalendar& calendar) {
    nlohmann::json evidence = nlohmann::json::array();
    for (const auto& value : fact.evidenceValues) {
        nlohmann::json json{{"key", value.key},
                            {"label", value.label},
                            {"unit", insights::rawValue(value.unit)},
                            {"privacy", insights::rawValue(value.privacy)}};
        json["numericValue"] =
            value.numericValue ? nlohmann::json(*value.numericValue) : nlohmann::json();
        json["textValue"] = value.textValue ? nlohmann::json(*value.textValue) : nlohmann::json();
        evidence.push_back(json);
    }
    nlohmann::json versions = nlohmann::json::array();
    for (const auto version : fact.calculationVersions) {
        versions.push_back(recording::rawValue(version));
    }
    return {{"id", fact.id},
            {"kind", insights::rawValue(fact.kind)},
            {"period",
             {{"start", calendar.formatIso8601(fact.period.start)},
              {"end", calendar.formatIso8601(fact.period.end)}}},
            {"sampleSize", fact.sampleSize},
            {"evidenceValues", evidence},
            {"minimumDataRule",
             {{"explanation", fact.minimumDataRule.explanation},
              {"requiredSampleSize", fact.minimumDataRule.requiredSampleSize},
              {"actualSampleSize", fact.minimumDataRule.actualSampleSize},
              {"requiredActiveDays", fact.minimumDataRule.requiredActiveDays},
              {"actualActiveDays", fact.minimumDataRule.actualActiveDays}}},
            {"evidenceQuality", insights::rawValue(fact.evidenceQuality)},
            {"title", fact.title},
            {"statement", fact.statement},
            {"explanation", fact.explanation},
            {"isDismissed", fact.isDismissed},
            {"calculationVersions", versions},
            {"privacyClassification", insights::rawValue(fact.privacyClassification)},
            {"evidenceRevision", fact.evidenceRevision},
            {"languageDirection", insights::rawValue(fact.languageDirection)}};
}

struct InsightsOptions {
    std::optional<std::string> week;
    bool json = false;
    bool all = false;
    std::string dismissID;
};

void showInsights(CliContext& context, const InsightsOptions& options) {
    auto environment = openHistoryEnvironment(context);
    if (!environment) {
        return;
    }
    const auto date = chosenDay(context, *environment, options.week, "--week");
    if (!date) {
        return;
    }
    insights::FileInsightDismissalRepository repository(
        insights::FileInsightDismissalRepository::pathFor(context.paths),
        [&environment] { return environment->now(); });
    const insights::InsightDismissalStore dismissals(repository,
                                                     [&environment] { return environment->now(); });
    if (dismissals.lastError()) {
        context.err << *dismissals.lastError() << '\n';
    }
    const auto result = insightsOf(context, *environment, *date, dismissals.records());
    if (!result) {
        return;
    }
    const LocalCalendar& calendar = environment->calendar();
    if (options.json) {
        nlohmann::json facts = nlohmann::json::array();
        if (result->availability.isReady()) {
            for (const auto& fact : result->facts) {
                if (options.all || !fact.isDismissed) {
                    facts.push_back(factJson(fact, calendar));
                }
            }
        }
        printJson(context, {{"availability",
                             {{"activeStudyDays", result->availability.activeStudyDays},
                              {"completedSessions", result->availability.completedSessions},
                              {"title", result->availability.title()},
                              {"message", result->availability.message()}}},
                            {"insights", facts}});
        return;
    }
    context.out << result->availability.title() << '\n' << result->availability.message() << '\n';
    if (!result->availability.isReady()) {
        return;
    }
    int hidden = 0;
    for (const auto& fact : result->facts) {
        if (fact.isDismissed && !options.all) {
            ++hidden;
            continue;
        }
        context.out << fmt::format("\n{}{}\n  {}\n  {}\n", fact.title,
                                   fact.isDismissed ? " (dismissed)" : "", fact.statement,
                                   fact.explanation);
        for (const auto& value : fact.evidenceValues) {
            context.out << fmt::format("    {}: {}\n", value.label, evidenceText(value));
        }
        context.out << fmt::format("  Evidence: {}, {} sessions. Id: {}\n",
                                   insights::rawValue(fact.evidenceQuality), fact.sampleSize,
                                   fact.id);
    }
    if (result->facts.empty()) {
        context.out << "\nNo insight has enough data this week yet.\n";
    }
    if (hidden > 0) {
        context.out << fmt::format("\n{} dismissed {} hidden; --all shows {}.\n", hidden,
                                   hidden == 1 ? "insight" : "insights",
                                   hidden == 1 ? "it" : "them");
    }
}

void dismissInsight(CliContext& context, const std::string& id) {
    const auto parsed = insights::parseLocalInsightID(id);
    auto environment = parsed ? openHistoryEnvironment(context) : nullptr;
    if (!parsed) {
        context.refuse(
            fmt::format("\"{}\" is not an insight id. `lumenote-cli insights` lists them.", id));
        return;
    }
    if (!environment) {
        return;
    }
    const auto weekStart = environment->calendar().startOfDayKey(parsed->weekStartDayKey);
    if (!weekStart) {
        context.refuse(
            fmt::format("\"{}\" is not an insight id. `lumenote-cli insights` lists them.", id));
        return;
    }
    insights::FileInsightDismissalRepository repository(
        insights::FileInsightDismissalRepository::pathFor(context.paths),
        [&environment] { return environment->now(); });
    insights::InsightDismissalStore dismissals(repository,
                                               [&environment] { return environment->now(); });
    const auto result = insightsOf(context, *environment, *weekStart, dismissals.records());
    if (!result) {
        return;
    }
    for (const auto& fact : result->facts) {
        if (fact.id != id) {
            continue;
        }
        if (!result->availability.isReady()) {
            break;
        }
        if (!dismissals.dismiss(fact)) {
            context.refuse(dismissals.lastError().value_or(""));
            return;
        }
        context.out << fmt::format("Insight {} dismissed.\n", id);
        return;
    }
    context.refuse(fmt::format("No insight {} is shown for that week now.", id));
}

void installInsights(CLI::App& app, CliContext& context) {
    auto* command = app.add_subcommand(
        "insights", "Show the evidence-gated insights about one local-calendar week");
    auto options = std::make_shared<InsightsOptions>();
    command->add_option("--week", options->week,
                        "Describe the week containing this local day (YYYY-MM-DD); default today");
    command->add_flag("--json", options->json, "Print the availability and insights as JSON");
    command->add_flag("--all", options->all, "Also list dismissed insights, marked as such");
    auto* dismiss =
        command->add_subcommand("dismiss", "Dismiss an insight until its evidence changes");
    dismiss->add_option("ID", options->dismissID, "The insight's id, as `insights` prints it")
        ->required();
    dismiss->callback([&context, options] { dismissInsight(context, options->dismissID); });
    command->callback([&context, options, dismiss] {
        if (!dismiss->parsed()) {
            showInsights(context, *options);
        }
    });
}

}  // namespace

void installWeekCommands(CLI::App& app, CliContext& context) {
    installWeek(app, context);
    installInsights(app, context);
}

}  // namespace lumenote::cli
