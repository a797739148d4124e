#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "cli/history_test_support.hpp"

namespace lumenote::cli::testing {
namespace {

using nlohmann::json;

// Three sessions recorded out of date order: Wednesday first, then Monday,
// then Tuesday. Wednesday has 120 s Focused and 60 s Unclassified (a score of
// 100% at 67% coverage); Monday has 30 s of evidence-free time (no score).
constexpr std::string_view kThreeDays = R"(
{"at":0,"do":"wallClock","iso":"2026-11-18T09:00:00Z"}
{"at":0,"do":"frontmost","bundle":"org.gnome.TextEditor","name":"Text Editor"}
{"at":0,"do":"classifyApp","bundle":"org.gnome.TextEditor","name":"Text Editor","classification":"focused"}
{"at":0,"do":"classifyWebsite","hostname":"youtube.com","classification":"distracting"}
{"at":0,"do":"start","subject":"Wednesday","goal":"Chapter 3","duration":600}
{"at":120,"do":"frontmost","bundle":"org.mozilla.firefox","name":"Firefox"}
{"at":180,"do":"end"}
{"at":200,"do":"wallClock","iso":"2026-11-16T09:00:00Z"}
{"at":200,"do":"start","subject":"Monday","duration":600}
{"at":230,"do":"end"}
{"at":300,"do":"wallClock","iso":"2026-11-17T09:00:00Z"}
{"at":300,"do":"start","subject":"Tuesday","duration":600}
{"at":400,"do":"end"}
)";

// A finished session, then one left paused as a recorder in another process
// would leave it while it records.
constexpr std::string_view kFinishedThenLive = R"(
{"at":0,"do":"frontmost","bundle":"org.gnome.TextEditor","name":"Text Editor"}
{"at":0,"do":"start","subject":"Finished","duration":600}
{"at":60,"do":"end"}
{"at":100,"do":"start","subject":"Live","duration":600}
{"at":130,"do":"pause"}
)";

std::string lowercased(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string repeated(std::string_view piece, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += piece;
    }
    return text;
}

class SessionsCommandTest : public HistoryCommandTest {
  protected:
    recording::StudySession stored(const std::string& id) {
        auto store = openStore();
        auto loaded = store->loadSession(*Uuid::parse(id));
        EXPECT_TRUE(loaded.ok() && loaded->has_value()) << id;
        return loaded.ok() && loaded->has_value() ? **loaded : recording::StudySession{};
    }
    std::size_t storedCount() {
        auto count = openStore()->sessionCount();
        return count.ok() ? *count : 0;
    }
};

TEST_F(SessionsCommandTest, ListsNewestStartFirstInTheTableAndAsJson) {
    const json recorded = record(kThreeDays);  // Monday, Tuesday, Wednesday by start
    ASSERT_EQ(recorded.size(), 3u);

    const CliRun listed = run({"sessions", "--json"});
    ASSERT_EQ(listed.status, 0) << listed.err;
    const json sessions = json::parse(listed.out);
    ASSERT_EQ(sessions.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(sessions[i]["id"], recorded[2 - i]["id"]);
        EXPECT_EQ(sessions[i]["timerDuration"], recorded[2 - i]["timerDuration"]);
        EXPECT_FALSE(sessions[i].contains("segments"));
    }

    const CliRun table = run({"sessions"});
    ASSERT_EQ(table.status, 0) << table.err;
    const auto wednesday = table.out.find("Wednesday");
    const auto tuesday = table.out.find("Tuesday");
    const auto monday = table.out.find("Monday");
    ASSERT_NE(monday, std::string::npos);
    EXPECT_LT(table.out.find("Started"), wednesday);
    EXPECT_LT(wednesday, tuesday);
    EXPECT_LT(tuesday, monday);
    const std::string wednesdayLine =
        table.out.substr(wednesday, table.out.find('\n', wednesday) - wednesday);
    EXPECT_TRUE(contains(wednesdayLine, "0:03:00")) << wednesdayLine;
    EXPECT_TRUE(contains(wednesdayLine, "100%")) << wednesdayLine;
    EXPECT_TRUE(contains(wednesdayLine, recorded[2]["id"].get<std::string>())) << wednesdayLine;
    const std::string mondayLine = table.out.substr(monday, table.out.find('\n', monday) - monday);
    EXPECT_TRUE(contains(mondayLine, "—")) << mondayLine;
}

TEST_F(SessionsCommandTest, LimitAndSinceChooseTheNewestSessionsFromALocalDay) {
    const char* previous = std::getenv("TZ");
    const std::string saved = previous ? previous : "";
    // In Berlin the session started at 23:30 UTC on the 16th belongs to the 17th.
    setenv("TZ", "Europe/Berlin", 1);
    const json recorded = record(std::string(kThreeDays) + R"(
{"at":500,"do":"wallClock","iso":"2026-11-16T23:30:00Z"}
{"at":500,"do":"start","subject":"Late Monday","duration":600}
{"at":530,"do":"end"}
)");
    ASSERT_EQ(recorded.size(), 4u);
    const auto subjects = [this](const std::vector<std::string>& options) {
        std::vector<std::string> arguments{"sessions", "--json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const CliRun listed = run(arguments);
        EXPECT_EQ(listed.status, 0) << listed.err;
        std::vector<std::string> names;
        for (const json& session : json::parse(listed.out)) {
            names.push_back(session["subject"]);
        }
        return names;
    };
    using Names = std::vector<std::string>;
    EXPECT_EQ(subjects({"--limit", "2"}), (Names{"Wednesday", "Tuesday"}));
    EXPECT_EQ(subjects({"--since", "2026-11-17"}), (Names{"Wednesday", "Tuesday", "Late Monday"}));
    EXPECT_EQ(subjects({"--since", "2026-11-17", "--limit", "1"}), (Names{"Wednesday"}));
    EXPECT_EQ(subjects({"--since", "2026-11-19"}), Names{});
    EXPECT_EQ(subjects({"--limit", "10"}).size(), 4u);
    EXPECT_EQ(run({"sessions", "--since", "2026-11-19"}).out,
              "No sessions started on 2026-11-19 or later.\n");
    if (previous) {
        setenv("TZ", saved.c_str(), 1);
    } else {
        unsetenv("TZ");
    }
}

TEST_F(SessionsCommandTest, BadLimitsAndDaysAreRefusedBeforeTheStoreIsOpened) {
    struct Case {
        std::vector<std::string> options;
        std::string message;
    };
    const std::string limit =
        "is not a number of sessions. Give --limit a whole number, 1 or more.";
    const std::string day = "is not a day. Give --since a day as YYYY-MM-DD, such as 2026-11-16.";
    const Case cases[] = {
        {{"--limit", "0"}, "\"0\" " + limit},
        {{"--limit", "-3"}, "\"-3\" " + limit},
        {{"--limit", "ten"}, "\"ten\" " + limit},
        {{"--limit", "99999999999999999999999"}, "\"99999999999999999999999\" " + limit},
        {{"--since", "2026-02-30"}, "\"2026-02-30\" " + day},
        {{"--since", "yesterday"}, "\"yesterday\" " + day},
    };
    for (const Case& c : cases) {
        std::vector<std::string> arguments{"sessions"};
        arguments.insert(arguments.end(), c.options.begin(), c.options.end());
        const CliRun refused = run(arguments);
        EXPECT_EQ(refused.status, 1) << c.options[1];
        EXPECT_EQ(refused.err, c.message + "\n");
        EXPECT_EQ(refused.out, "");
    }
    EXPECT_FALSE(std::filesystem::exists(store::storePath(home_.paths())));
}

TEST_F(SessionsCommandTest, AnEmptyHistoryListsNothing) {
    EXPECT_EQ(run({"sessions"}).out, "No sessions recorded yet.\n");
    EXPECT_EQ(run({"sessions", "--json"}).out, "[]\n");
}

TEST_F(SessionsCommandTest, ShowFindsASessionByItsIdInEitherCaseOrByAPrefix) {
    const json recorded = record(kThreeDays);
    const std::string id = recorded[2]["id"];
    for (const std::string& form :
         {id, lowercased(id), id.substr(0, 8), lowercased(id.substr(0, 8)), id.substr(0, 13)}) {
        const CliRun shown = run({"show", form, "--json"});
        ASSERT_EQ(shown.status, 0) << form << ": " << shown.err;
        const json session = json::parse(shown.out);
        EXPECT_EQ(session["id"], id);
        ASSERT_EQ(session["segments"].size(), 2u) << form;
        EXPECT_EQ(session["segments"][0]["classification"], "focused");
        EXPECT_EQ(session["segments"][1]["classification"], "unclassified");
    }

    const CliRun readable = run({"show", id.substr(0, 8)});
    ASSERT_EQ(readable.status, 0) << readable.err;
    for (const char* part :
         {"Wednesday", "Chapter 3", "Focus score:  100%", "Coverage:     67% score coverage",
          "Segments (2)", "0:02:00  focused       Text Editor (org.gnome.TextEditor)",
          "0:01:00  unclassified  Firefox (org.mozilla.firefox)"}) {
        EXPECT_TRUE(contains(readable.out, part)) << part << "\n" << readable.out;
    }
}

TEST_F(SessionsCommandTest, ShowSaysWhenASessionHasNoScoreToShow) {
    const json recorded = record(kThreeDays);
    const CliRun shown = run({"show", recorded[0]["id"]});
    ASSERT_EQ(shown.status, 0) << shown.err;
    EXPECT_TRUE(contains(shown.out, "\nFocus score not available\n")) << shown.out;
    EXPECT_FALSE(contains(shown.out, "Coverage:")) << shown.out;
}

TEST_F(SessionsCommandTest, ShowExplainsSystemTimeAwayStudyAndFocusRuns) {
    const json recorded = record(
        R"({"at":0,"do":"classifyApp","bundle":"org.gnome.Notes","name":"Notes","classification":"focused"}
{"at":0,"do":"classifyApp","bundle":"org.example.Video","name":"Video","classification":"distracting"}
{"at":0,"do":"frontmost","bundle":"org.gnome.Notes","name":"Notes"}
{"at":0,"do":"start","subject":"Physics","duration":86400}
{"at":300,"do":"frontmost","bundle":"org.example.Video","name":"Video"}
{"at":360,"do":"frontmost","bundle":"org.gnome.Notes","name":"Notes"}
{"at":1000,"do":"sleep"}
{"at":1100,"do":"wake"}
{"at":1100,"do":"awayStart"}
{"at":1400,"do":"awayEnd"}
{"at":1500,"do":"end"}
)");
    const CliRun shown = run({"show", recorded[0]["id"]});
    ASSERT_EQ(shown.status, 0) << shown.err;
    for (const char* part :
         {"    Computer asleep or locked   0:01:40\n"
          "      Your Mac was asleep, locked, or switched to another user, so nothing could be "
          "observed.\n",
          "    Studying away from Mac      0:05:00\n"
          "      Studying away from your Mac while the session continues.\n",
          "  Longest Focused run           0:10:40\n",
          "  Interruptions                       1\n"}) {
        EXPECT_TRUE(contains(shown.out, part)) << part << "\n" << shown.out;
    }
    // Totals without time are not explained.
    EXPECT_FALSE(contains(shown.out, "Time you intentionally were not studying.")) << shown.out;
}

// One study time leads: computer study plus confirmed away study, never the
// unconfirmed or Break time, which are listed apart as not counted.
TEST_F(SessionsCommandTest, StudyTimeComesFirstAndCountsNothingUnconfirmed) {
    const json recorded = record(
        R"({"at":0,"do":"classifyApp","bundle":"org.gnome.Notes","name":"Notes","classification":"focused"}
{"at":0,"do":"frontmost","bundle":"org.gnome.Notes","name":"Notes"}
{"at":0,"do":"start","subject":"Physics","duration":86400}
{"at":600,"do":"noInput"}
{"at":1800,"do":"input"}
{"at":2400,"do":"end"}
)");
    const CliRun shown = run({"show", recorded[0]["id"]});
    ASSERT_EQ(shown.status, 0) << shown.err;
    const auto study = shown.out.find("  Study time ");
    ASSERT_NE(study, std::string::npos) << shown.out;
    EXPECT_LT(study, shown.out.find("Focused")) << shown.out;
    EXPECT_TRUE(contains(shown.out, "    No input, unconfirmed       0:18:30\n")) << shown.out;
    EXPECT_FALSE(contains(shown.out, "\n  No input ")) << shown.out;

    const CliRun listed = run({"sessions"});
    EXPECT_TRUE(contains(listed.out, "  Study  ")) << listed.out;
}

TEST_F(SessionsCommandTest, IdsThatAreAmbiguousUnknownOrMalformedAreRefused) {
    {
        auto store = openStore();
        recording::StoreChangeSet changes;
        double start = 800000000;
        for (const char* text :
             {"12345678-AAAA-4000-8000-000000000001", "12345678-BBBB-4000-8000-000000000002"}) {
            start += 1000;
            recording::StudySession session(*Uuid::parse(text), "Stored", "", 600, Date{start});
            session.setStatus(recording::StudySessionStatus::completed);
            session.endDate = session.startDate.addingSeconds(600);
            changes.sessions.push_back(session);
        }
        ASSERT_TRUE(store->apply(changes).ok());
    }
    struct Case {
        std::string id;
        int status;
        std::string message;
    };
    const Case cases[] = {
        {"12345678", 1,
         "More than one session has an id starting with 12345678:\n"
         "  12345678-BBBB-4000-8000-000000000002\n"
         "  12345678-AAAA-4000-8000-000000000001\n"},
        {"12345678-b", 0, ""},
        {" 12345678AAAA ", 0, ""},
        {"1234567", 1,
         "\"1234567\" is not a session id. Give the whole id or at least its first 8 hex "
         "digits.\n"},
        {"1234567g", 1,
         "\"1234567g\" is not a session id. Give the whole id or at least its first 8 hex "
         "digits.\n"},
        {"87654321", 1, "No session has the id 87654321.\n"},
        {"87654321-0000-4000-8000-000000000000", 1,
         "No session has the id 87654321-0000-4000-8000-000000000000.\n"},
    };
    for (const Case& c : cases) {
        const CliRun shown = run({"show", c.id});
        EXPECT_EQ(shown.status, c.status) << c.id;
        EXPECT_EQ(shown.err, c.message) << c.id;
    }
}

TEST_F(SessionsCommandTest, EditKeepsTheLimitsOfTheApplication) {
    struct Case {
        std::vector<std::string> options;
        std::string error;  // empty when the edit is accepted
        std::string subject;
        std::string goal;
        std::optional<std::string> notes;
    };
    const std::string subject200 = repeated("é", 200);
    const Case cases[] = {
        {{"--subject", subject200}, "", subject200, "Goal", std::nullopt},
        {{"--subject", repeated("é", 201)},
         "Subject must be 200 characters or fewer.",
         "Original",
         "Goal",
         std::nullopt},
        {{"--subject", " \n\t "}, "Subject cannot be empty.", "Original", "Goal", std::nullopt},
        {{"--subject", "  Padded\n"}, "", "Padded", "Goal", std::nullopt},
        {{"--goal", repeated("g", 500)}, "", "Original", repeated("g", 500), std::nullopt},
        {{"--goal", repeated("g", 501)},
         "Goal must be 500 characters or fewer.",
         "Original",
         "Goal",
         std::nullopt},
        {{"--notes", "Line one\nLine two"}, "", "Original", "Goal", "Line one\nLine two"},
        {{"--notes", repeated("n", 5001)},
         "Notes must be 5000 characters or fewer.",
         "Original",
         "Goal",
         std::nullopt},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(openStore()->deleteAllSessions().ok());
        const json recorded = record(R"(
{"at":0,"do":"frontmost","bundle":"org.gnome.TextEditor","name":"Text Editor"}
{"at":0,"do":"start","subject":"Original","goal":"Goal","duration":600}
{"at":30,"do":"end"}
)");
        ASSERT_EQ(recorded.size(), 1u);
        const std::string id = recorded[0]["id"];
        std::vector<std::string> arguments{"edit", id};
        arguments.insert(arguments.end(), c.options.begin(), c.options.end());
        const CliRun edited = run(arguments);
        EXPECT_EQ(edited.status, c.error.empty() ? 0 : 1) << c.options[0];
        EXPECT_EQ(edited.err, c.error.empty() ? "" : c.error + "\n") << c.options[0];
        const recording::StudySession session = stored(id);
        EXPECT_EQ(session.subject, c.subject) << c.options[0];
        EXPECT_EQ(session.goal, c.goal) << c.options[0];
        EXPECT_EQ(session.notes(), c.notes) << c.options[0];
    }
}

TEST_F(SessionsCommandTest, EditWithEmptyNotesRemovesThemAndNeedsSomethingToChange) {
    const json recorded = record(kThreeDays);
    const std::string id = recorded[0]["id"];
    ASSERT_EQ(run({"edit", id, "--notes", "Remember this"}).status, 0);
    EXPECT_EQ(stored(id).notes(), "Remember this");
    ASSERT_EQ(run({"edit", id, "--notes", ""}).status, 0);
    EXPECT_EQ(stored(id).notes(), std::nullopt);

    const CliRun nothing = run({"edit", id});
    EXPECT_EQ(nothing.status, 2);
    EXPECT_EQ(stored(id).subject, "Monday");
}

TEST_F(SessionsCommandTest, ALiveSessionInTheStoreBlocksDeletionResetAndItsOwnEdit) {
    const json recorded = record(kFinishedThenLive);
    ASSERT_EQ(recorded.size(), 2u);
    const std::string finished = recorded[0]["id"];
    const std::string live = recorded[1]["id"];
    ASSERT_EQ(recorded[1]["status"], "paused");
    const recording::StudySession liveBefore = stored(live);

    struct Case {
        std::vector<std::string> arguments;
        std::string message;
    };
    const Case cases[] = {
        {{"delete", finished}, "End the active session before deleting session history."},
        {{"delete", "--all"}, "End the active session before deleting all sessions."},
        {{"reset", "--confirm", "RESET"}, "End the active session before resetting Lumenote."},
        {{"edit", live, "--subject", "Renamed"}, "End the active session before editing it."},
    };
    for (const Case& c : cases) {
        const CliRun refused = run(c.arguments);
        EXPECT_EQ(refused.status, 1) << c.arguments[0];
        EXPECT_EQ(refused.err, c.message + "\n");
        EXPECT_EQ(storedCount(), 2u);
        EXPECT_EQ(stored(live), liveBefore);
    }

    // A finished session can still be edited while another one records.
    EXPECT_EQ(run({"edit", finished, "--subject", "Renamed"}).status, 0);
    EXPECT_EQ(stored(finished).subject, "Renamed");
}

TEST_F(SessionsCommandTest, DeleteRemovesExactlyTheNamedSessions) {
    const json recorded = record(kThreeDays);
    const std::string monday = recorded[0]["id"];
    const std::string tuesday = recorded[1]["id"];
    const std::string wednesday = recorded[2]["id"];

    const CliRun deleted =
        run({"delete", lowercased(monday.substr(0, 8)), lowercased(wednesday), monday});
    ASSERT_EQ(deleted.status, 0) << deleted.err;
    EXPECT_EQ(deleted.out, "2 sessions deleted:\n  " + monday + "\n  " + wednesday + "\n");
    EXPECT_EQ(deleted.err, "");
    auto listed = openStore()->listSessions(recording::SessionQuery{});
    ASSERT_TRUE(listed.ok());
    ASSERT_EQ(listed->size(), 1u);
    EXPECT_EQ(listed->front().id.upperString(), tuesday);
}

TEST_F(SessionsCommandTest, DeleteReportsIdsThatNameNoSessionAndDeletesTheOthers) {
    const json recorded = record(kThreeDays);
    const std::string monday = recorded[0]["id"];
    const std::string wednesday = recorded[2]["id"];

    const CliRun partly = run({"delete", monday, "ffffffff", wednesday.substr(0, 8), "bad"});
    EXPECT_EQ(partly.status, 1);
    EXPECT_EQ(partly.out, "2 sessions deleted:\n  " + monday + "\n  " + wednesday + "\n");
    EXPECT_EQ(partly.err,
              "No session has the id ffffffff.\n"
              "\"bad\" is not a session id. Give the whole id or at least its first 8 hex "
              "digits.\n");
    EXPECT_EQ(storedCount(), 1u);

    // The same ids again: none is left, so nothing is deleted.
    const CliRun none = run({"delete", monday, "ffffffff"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.out, "");
    EXPECT_EQ(none.err, "No session has the id " + monday +
                            ".\nNo session has the id ffffffff.\nNo session was deleted.\n");
    EXPECT_EQ(storedCount(), 1u);
}

TEST_F(SessionsCommandTest, DeleteAllRemovesEverySession) {
    record(kThreeDays);
    const CliRun deleted = run({"delete", "--all"});
    ASSERT_EQ(deleted.status, 0) << deleted.err;
    EXPECT_EQ(deleted.out, "3 sessions deleted.\n");
    EXPECT_EQ(storedCount(), 0u);
}

TEST_F(SessionsCommandTest, DeleteNeedsIdsOrAllButNotBoth) {
    const json recorded = record(kThreeDays);
    EXPECT_EQ(run({"delete"}).status, 2);
    EXPECT_EQ(run({"delete", recorded[0]["id"], "--all"}).status, 2);
    EXPECT_EQ(storedCount(), 3u);
}

TEST_F(SessionsCommandTest, ResetIsRefusedWithoutTheExactConfirmation) {
    record(kThreeDays);
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"reset"},
                                               {"reset", "--confirm", "reset"},
                                               {"reset", "--confirm", "RESET "},
                                               {"reset", "--confirm", ""}}) {
        const CliRun refused = run(arguments);
        EXPECT_EQ(refused.status, 1) << arguments.size();
        EXPECT_EQ(
            refused.err,
            "Nothing was reset. To reset Lumenote, run: lumenote-cli reset --confirm RESET\n");
    }
    auto store = openStore();
    EXPECT_EQ(*store->sessionCount(), 3u);
    EXPECT_EQ(store->appClassifications()->size(), 1u);
}

TEST_F(SessionsCommandTest, ResetRemovesHistoryRulesAndPreferencesButKeepsOtherFiles) {
    record(std::string(kThreeDays) +
           R"({"at":500,"do":"setPreference","key":"tracking.inactivityThreshold","value":600})");
    const auto data = home_.paths().applicationData();
    const auto defaults = home_.paths().applicationConfig() / "defaults.json";
    ASSERT_TRUE(contains(lumenote::testing::readFile(defaults), "tracking.inactivityThreshold"));
    const std::string templates = R"({"kept":"templates"})";
    const std::string checkpoint = R"({"kept":"recovery"})";
    lumenote::testing::writeFile(data / "session-templates-v1.json", templates);
    lumenote::testing::writeFile(data / "active-session-v1.json", checkpoint);

    const CliRun reset = run({"reset", "--confirm", "RESET"});
    ASSERT_EQ(reset.status, 0) << reset.err;
    EXPECT_EQ(reset.out,
              "Lumenote was reset.\n"
              "Removed: 3 sessions, 1 application rule, 1 website rule, local PDF labels, and app "
              "and receipt preferences.\n"
              "Kept: templates, automatic backups, recovery files, and Chrome setup.\n");
    auto store = openStore();
    EXPECT_EQ(*store->sessionCount(), 0u);
    EXPECT_TRUE(store->appClassifications()->empty());
    EXPECT_TRUE(store->websiteClassifications()->empty());
    EXPECT_FALSE(contains(lumenote::testing::readFile(defaults), "tracking.inactivityThreshold"));
    EXPECT_EQ(lumenote::testing::readFile(data / "session-templates-v1.json"), templates);
    EXPECT_EQ(lumenote::testing::readFile(data / "active-session-v1.json"), checkpoint);
}

TEST_F(SessionsCommandTest, AStoreThatCannotBeOpenedIsReported) {
    std::filesystem::create_directories(home_.paths().applicationData() / "lumenote.sqlite");
    const CliRun listed = run({"sessions"});
    EXPECT_EQ(listed.status, 1);
    EXPECT_TRUE(listed.err.starts_with("Local storage could not be opened (")) << listed.err;
    EXPECT_TRUE(listed.err.ends_with("). No study activity was recorded.\n")) << listed.err;
}

}  // namespace
}  // namespace lumenote::cli::testing
