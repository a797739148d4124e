// `week` and `insights` over sessions recorded by the real session manager:
// the local day a session counts on, refused days, the locked insights and
// dismissals that hold until the evidence behind them changes.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

#include "cli/history_test_support.hpp"

namespace lumenote::cli::testing {
namespace {

using nlohmann::json;

// Sets TZ for the life of the object and puts the previous value back.
class ScopedTimeZone {
  public:
    explicit ScopedTimeZone(const char* zone) {
        if (const char* previous = std::getenv("TZ")) {
            saved_ = previous;
        }
        ::setenv("TZ", zone, 1);
    }
    ~ScopedTimeZone() {
        if (saved_) {
            ::setenv("TZ", saved_->c_str(), 1);
        } else {
            ::unsetenv("TZ");
        }
    }
    ScopedTimeZone(const ScopedTimeZone&) = delete;
    ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;

  private:
    std::optional<std::string> saved_;
};

// A ten-minute session in the editor starting at `iso` (UTC).
std::string tenMinutesAt(const std::string& iso, const std::string& subject = "Biology") {
    return R"({"at":0,"do":"wallClock","iso":")" + iso + R"("}
{"at":0,"do":"frontmost","bundle":"org.gnome.TextEditor","name":"Text Editor"}
{"at":0,"do":"classifyApp","bundle":"org.gnome.TextEditor","name":"Text Editor","classification":"focused"}
{"at":0,"do":"start","subject":")" +
           subject + R"(","duration":86400}
{"at":600,"do":"end"}
)";
}

class WeekCommandTest : public HistoryCommandTest {
  protected:
    // The study seconds `week --date` gives each day, by local day key.
    std::map<std::string, double> studyByDay(const std::string& date) {
        const CliRun shown = run({"week", "--date", date, "--json"});
        EXPECT_EQ(shown.status, 0) << shown.err;
        std::map<std::string, double> days;
        const json parsed = json::parse(shown.out);
        for (const json& day : parsed["days"]) {
            days[day["day"].get<std::string>()] = day["studySeconds"].get<double>();
        }
        return days;
    }

    json insightsJson(const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments{"insights", "--week", "2026-11-16", "--json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const CliRun shown = run(arguments);
        EXPECT_EQ(shown.status, 0) << shown.err;
        return json::parse(shown.out);
    }

    static std::optional<json> factWithID(const json& shown, const std::string& id) {
        for (const json& fact : shown["insights"]) {
            if (fact["id"] == id) {
                return fact;
            }
        }
        return std::nullopt;
    }
};

TEST_F(WeekCommandTest, ASessionCountsOnTheLocalDayItStarted) {
    // Started at 23:30 UTC on Monday the 16th.
    record(tenMinutesAt("2026-11-16T23:30:00Z"));
    const struct {
        const char* zone;
        const char* day;
        const char* otherDay;
    } cases[] = {
        {"UTC", "2026-11-16", "2026-11-17"},
        {"Europe/Berlin", "2026-11-17", "2026-11-16"},  // 00:30 on Tuesday
        {"America/New_York", "2026-11-16", "2026-11-17"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.zone);
        const ScopedTimeZone zone(c.zone);
        auto days = studyByDay("2026-11-18");
        EXPECT_EQ(days[c.day], 600);
        EXPECT_EQ(days[c.otherDay], 0);
        const CliRun text = run({"week", "--date", "2026-11-18"});
        ASSERT_EQ(text.status, 0) << text.err;
        const auto line = text.out.find(std::string(c.day) + "  ");
        ASSERT_NE(line, std::string::npos) << text.out;
        EXPECT_TRUE(contains(text.out.substr(line, text.out.find('\n', line) - line), "0:10:00"))
            << text.out;
    }
}

TEST_F(WeekCommandTest, ADayThatIsNoDayIsRefused) {
    const struct {
        std::vector<std::string> arguments;
        const char* text;
    } cases[] = {
        {{"week", "--date", "2026-02-30"}, "\"2026-02-30\" is not a day"},
        {{"week", "--date", "tomorrow"}, "\"tomorrow\" is not a day"},
        {{"week", "--date", "2026-11-16T09:00"}, "is not a day"},
        {{"insights", "--week", "2026-13-01"}, "\"2026-13-01\" is not a day"},
    };
    for (const auto& c : cases) {
        const CliRun refused = run(c.arguments);
        EXPECT_EQ(refused.status, 1) << c.arguments[2];
        EXPECT_TRUE(contains(refused.err, c.text)) << refused.err;
        EXPECT_TRUE(refused.out.empty()) << refused.out;
    }
}

TEST_F(WeekCommandTest, InsightsStayLockedBelowThreeActiveDays) {
    const struct {
        std::string script;
        int days;
        const char* phrase;
    } steps[] = {
        {tenMinutesAt("2026-11-16T09:00:00Z"), 1, "You have studied on 1 day."},
        // A second session on the same day adds no day.
        {tenMinutesAt("2026-11-16T15:00:00Z"), 1, "You have studied on 1 day."},
        {tenMinutesAt("2026-11-17T09:00:00Z"), 2, "You have studied on 2 days."},
    };
    for (const auto& step : steps) {
        record(step.script);
        const CliRun text = run({"insights", "--week", "2026-11-16"});
        ASSERT_EQ(text.status, 0) << text.err;
        EXPECT_TRUE(text.out.starts_with("Not enough study days yet\nInsights compare one week"))
            << text.out;
        EXPECT_TRUE(contains(text.out, step.phrase)) << text.out;
        const json shown = insightsJson();
        EXPECT_EQ(shown["availability"]["activeStudyDays"], step.days);
        EXPECT_EQ(shown["availability"]["title"], "Not enough study days yet");
        EXPECT_TRUE(shown["insights"].empty());
    }
}

TEST_F(WeekCommandTest, ADismissedInsightStaysHiddenUntilItsEvidenceChanges) {
    for (const char* day : {"16", "17", "18"}) {
        record(tenMinutesAt(std::string("2026-11-") + day + "T09:00:00Z"));
    }
    const std::string id = "averageSessionLength-2026-11-16";
    ASSERT_TRUE(factWithID(insightsJson(), id)) << insightsJson().dump();

    const CliRun dismissed = run({"insights", "dismiss", id});
    ASSERT_EQ(dismissed.status, 0) << dismissed.err;
    EXPECT_EQ(dismissed.out, "Insight " + id + " dismissed.\n");
    EXPECT_FALSE(factWithID(insightsJson(), id));
    const auto withAll = factWithID(insightsJson({"--all"}), id);
    ASSERT_TRUE(withAll);
    EXPECT_EQ((*withAll)["isDismissed"], true);
    const CliRun text = run({"insights", "--week", "2026-11-16"});
    EXPECT_TRUE(contains(text.out, "1 dismissed insight hidden; --all shows it.")) << text.out;

    // A fourth session changes the average: the fact is new evidence.
    record(tenMinutesAt("2026-11-19T09:00:00Z") +
           R"({"at":800,"do":"start","subject":"More","duration":1200}
{"at":2000,"do":"end"}
)");
    const auto changed = factWithID(insightsJson(), id);
    ASSERT_TRUE(changed);
    EXPECT_EQ((*changed)["isDismissed"], false);
}

TEST_F(WeekCommandTest, OnlyAShownInsightCanBeDismissed) {
    const struct {
        const char* id;
        const char* text;
    } cases[] = {
        {"nonsense", "\"nonsense\" is not an insight id"},
        // A well-formed id of a week whose insights are still locked.
        {"averageSessionLength-2026-11-16", "No insight averageSessionLength-2026-11-16 is shown"},
    };
    record(tenMinutesAt("2026-11-16T09:00:00Z"));
    for (const auto& c : cases) {
        const CliRun refused = run({"insights", "dismiss", c.id});
        EXPECT_EQ(refused.status, 1) << c.id;
        EXPECT_TRUE(contains(refused.err, c.text)) << refused.err;
    }
}

}  // namespace
}  // namespace lumenote::cli::testing
