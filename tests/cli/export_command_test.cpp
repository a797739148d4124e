// `lumenote-cli export` end to end: sessions recorded by the real session
// manager into a real store file, exported by the command into real files.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/history_test_support.hpp"

namespace lumenote::cli::testing {
namespace {

namespace fs = std::filesystem;
using lumenote::testing::namesIn;
using lumenote::testing::readFile;
using nlohmann::json;

// Two finished sessions recorded out of start order, with a subject that
// needs quoting in CSV and escaping in a calendar, then one left paused as a
// recorder in another process would leave it.
constexpr std::string_view kTwoSessionsAndALiveOne = R"(
{"at":0,"do":"wallClock","iso":"2026-11-18T09:00:00Z"}
{"at":0,"do":"frontmost","bundle":"org.gnome.TextEditor","name":"Text Editor"}
{"at":0,"do":"classifyApp","bundle":"org.gnome.TextEditor","name":"Text Editor","classification":"focused"}
{"at":0,"do":"start","subject":"Algebra, \"linear\"","goal":"Chapter 3","duration":600}
{"at":120,"do":"frontmost","bundle":"org.mozilla.firefox","name":"Firefox"}
{"at":180,"do":"end"}
{"at":200,"do":"wallClock","iso":"2026-11-16T09:00:00Z"}
{"at":200,"do":"start","subject":"Monday","duration":600}
{"at":230,"do":"end"}
{"at":300,"do":"wallClock","iso":"2026-11-19T09:00:00Z"}
{"at":300,"do":"start","subject":"Live","duration":600}
{"at":330,"do":"pause"}
)";

class ExportCommandTest : public HistoryCommandTest {
  protected:
    fs::path exports() {
        const fs::path folder = home_.root() / "exports";
        fs::create_directories(folder);
        return folder;
    }
    fs::path storeFile() { return store::storePath(home_.paths()); }
};

TEST_F(ExportCommandTest, EachFormatLandsUnderItsDefaultNameAndTheStoreIsLeftAsItWas) {
    const json recorded = record(kTwoSessionsAndALiveOne);
    ASSERT_EQ(recorded.size(), 3u);
    const std::string storeBefore = readFile(storeFile());
    const fs::path folder = exports();

    const CliRun asJson = run({"export", "--format", "json", "-o", folder.string()});
    ASSERT_EQ(asJson.status, 0) << asJson.err;
    const fs::path jsonFile = folder / "Lumenote Sessions.json";
    const json document = json::parse(readFile(jsonFile));
    std::size_t segments = 0;
    for (const json& session : document["sessions"]) {
        segments += session["segments"].size();
    }
    EXPECT_GT(segments, 0u);
    EXPECT_EQ(asJson.out, "Exported 3 sessions with " + std::to_string(segments) + " segments to " +
                              jsonFile.string() + ".\n");
    ASSERT_EQ(document["sessions"].size(), 3u);
    EXPECT_EQ(document["sessions"][0]["subject"], "Monday");
    EXPECT_EQ(document["sessions"][1]["subject"], "Algebra, \"linear\"");
    EXPECT_EQ(document["sessions"][2]["status"], "paused");
    EXPECT_FALSE(document["sessions"][2].contains("endDate"));

    ASSERT_EQ(run({"export", "--format", "csv", "-o", folder.string()}).status, 0);
    const std::string sessions = readFile(folder / "Lumenote Sessions.csv");
    EXPECT_TRUE(sessions.starts_with("format_version,session_id,subject,"));
    EXPECT_TRUE(contains(sessions, ",\"Algebra, \"\"linear\"\"\",Chapter 3,"));

    ASSERT_EQ(
        run({"export", "--format", "csv", "--table", "segments", "-o", folder.string()}).status, 0);
    EXPECT_TRUE(readFile(folder / "Lumenote Segments.csv")
                    .starts_with("format_version,session_id,segment_start,segment_end,"));

    const CliRun calendar = run({"export", "--format", "ics", "-o", folder.string()});
    ASSERT_EQ(calendar.status, 0) << calendar.err;
    EXPECT_TRUE(contains(calendar.out, "Exported 2 sessions as calendar events"));
    EXPECT_TRUE(
        contains(readFile(folder / "Lumenote Sessions.ics"), "SUMMARY:Algebra\\, \"linear\"\r\n"));

    EXPECT_EQ(namesIn(folder),
              (std::set<std::string>{"Lumenote Sessions.json", "Lumenote Sessions.csv",
                                     "Lumenote Segments.csv", "Lumenote Sessions.ics"}));
    EXPECT_EQ(readFile(storeFile()), storeBefore);
}

TEST_F(ExportCommandTest, OneSessionByItsIdPrefixAndToStandardOutput) {
    const json recorded = record(kTwoSessionsAndALiveOne);
    ASSERT_EQ(recorded.size(), 3u);
    const std::string id = recorded[1]["id"];  // the Algebra session, by start
    const fs::path folder = exports();

    const CliRun one =
        run({"export", "--format", "json", "--session", id.substr(0, 8), "-o", folder.string()});
    ASSERT_EQ(one.status, 0) << one.err;
    const json document = json::parse(readFile(folder / "Lumenote Session.json"));
    ASSERT_EQ(document["sessions"].size(), 1u);
    EXPECT_EQ(document["sessions"][0]["id"], id);

    const CliRun piped = run({"export", "--format", "csv", "--session", id, "-o", "-"});
    ASSERT_EQ(piped.status, 0) << piped.err;
    EXPECT_TRUE(piped.out.starts_with("format_version,"));
    EXPECT_EQ(std::count(piped.out.begin(), piped.out.end(), '\n'), 2);  // header and one row
    EXPECT_EQ(piped.err, "");
}

TEST_F(ExportCommandTest, RefusalsSayWhatWentWrongAndWriteNothing) {
    const json recorded = record(kTwoSessionsAndALiveOne);
    ASSERT_EQ(recorded.size(), 3u);
    const fs::path folder = exports();
    lumenote::testing::writeFile(folder / "a file", "in the way");

    const struct {
        const char* name;
        std::vector<std::string> arguments;
        int status;
        std::string message;
    } cases[] = {
        {"malformed id",
         {"export", "--format", "json", "--session", "xyz", "-o", folder.string()},
         1,
         "\"xyz\" is not a session id."},
        {"unknown id",
         {"export", "--format", "json", "--session", "00000000-0000-4000-8000-000000000000", "-o",
          folder.string()},
         1,
         "No session has the id 00000000-0000-4000-8000-000000000000."},
        {"table without csv",
         {"export", "--format", "json", "--table", "segments", "-o", folder.string()},
         2,
         "--table goes with --format csv"},
        {"unknown format", {"export", "--format", "xml"}, 2, "xml"},
        {"unwritable destination",
         {"export", "--format", "csv", "-o", (folder / "a file" / "out.csv").string()},
         1,
         "Lumenote could not write the export (" + (folder / "a file" / "out.csv").string() +
             ": Not a directory)."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const CliRun refused = run(c.arguments);
        EXPECT_EQ(refused.status, c.status);
        EXPECT_TRUE(contains(refused.err, c.message)) << refused.err;
        EXPECT_EQ(refused.out, "");
        EXPECT_EQ(namesIn(folder), std::set<std::string>{"a file"});
    }
}

TEST_F(ExportCommandTest, WithNothingRecordedTheExportIsEmptyAndNoStoreIsCreated) {
    const fs::path folder = exports();
    const CliRun exported = run({"export", "--format", "json", "-o", folder.string()});
    ASSERT_EQ(exported.status, 0) << exported.err;
    EXPECT_EQ(json::parse(readFile(folder / "Lumenote Sessions.json"))["sessions"], json::array());
    EXPECT_FALSE(fs::exists(storeFile()));
}

}  // namespace
}  // namespace lumenote::cli::testing
