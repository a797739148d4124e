// `lumenote-cli receipt`: sessions recorded into a real store, their
// receipts written to real files and read back.
#include <unistd.h>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/cli_context.hpp"
#include "cli/history_test_support.hpp"
#include "support/run_program.hpp"

namespace lumenote::cli::testing {
namespace {

namespace fs = std::filesystem;
using lumenote::testing::namesIn;
using lumenote::testing::readFile;

constexpr std::string_view kOneSession = R"(
{"at":0,"do":"wallClock","iso":"2026-11-23T09:00:00Z"}
{"at":0,"do":"frontmost","bundle":"org.gnome.TextEditor","name":"Text Editor"}
{"at":0,"do":"classifyApp","bundle":"org.gnome.TextEditor","name":"Text Editor","classification":"focused"}
{"at":0,"do":"start","subject":"Algebra","goal":"Chapter 3","duration":600}
{"at":300,"do":"end"}
)";

// The current folder for the life of the object, then the previous one.
class CurrentFolder {
  public:
    explicit CurrentFolder(const fs::path& folder) : previous_(fs::current_path()) {
        fs::current_path(folder);
    }
    ~CurrentFolder() { fs::current_path(previous_); }

  private:
    fs::path previous_;
};

class ReceiptCommandTest : public HistoryCommandTest {
  protected:
    void SetUp() override {
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::unsetenv("DISPLAY");
    }
    fs::path folder() {
        const fs::path path = home_.root() / "receipts";
        fs::create_directories(path);
        return path;
    }
};

TEST_F(ReceiptCommandTest, SessionReceiptIsWrittenUnderItsDefaultName) {
    const auto recorded = record(kOneSession);
    ASSERT_EQ(recorded.size(), 1u);
    const std::string id = recorded[0]["id"];
    const CurrentFolder inside(folder());

    const CliRun saved = run({"receipt", id.substr(0, 8), "--format", "pdf"});
    ASSERT_EQ(saved.status, 0) << saved.err;
    EXPECT_EQ(saved.out, "Saved the receipt to Lumenote Receipt 2026-11-23.pdf.\n");
    EXPECT_TRUE(readFile(folder() / "Lumenote Receipt 2026-11-23.pdf").starts_with("%PDF"));
}

TEST_F(ReceiptCommandTest, RefusalsLeaveNoFile) {
    record(kOneSession);
    const fs::path target = folder() / "receipt.png";

    const CliRun unknown =
        run({"receipt", "0123456789abcdef", "--format", "png", "-o", target.string()});
    EXPECT_EQ(unknown.status, kExitRefused);
    EXPECT_TRUE(contains(unknown.err, "No session has the id")) << unknown.err;

    const CliRun badFormat = run({"receipt", "--week", "2026-11-23", "--format", "jpeg"});
    EXPECT_EQ(badFormat.status, kExitUsage);

    const CliRun both = run({"receipt", "0123456789abcdef", "--week", "2026-11-23", "--format",
                             "png", "-o", target.string()});
    EXPECT_EQ(both.status, kExitUsage);

    const CliRun badDay =
        run({"receipt", "--week", "2026-02-30", "--format", "png", "-o", target.string()});
    EXPECT_EQ(badDay.status, kExitRefused);
    EXPECT_TRUE(contains(badDay.err, "\"2026-02-30\" is not a day.")) << badDay.err;

    const CliRun intoFolder =
        run({"receipt", "--week", "2026-11-23", "--format", "png", "-o", folder().string()});
    EXPECT_EQ(intoFolder.status, kExitRefused);
    EXPECT_EQ(intoFolder.err,
              "The receipt could not be saved (" + folder().string() + " is a folder).\n");
    EXPECT_TRUE(namesIn(folder()).empty());
}

TEST_F(ReceiptCommandTest, WeekReceiptReadsTheWeekOfAnyOfItsDays) {
    record(kOneSession);
    const fs::path target = folder() / "week.pdf";
    const CliRun saved =
        run({"receipt", "--week", "2026-11-27", "--format", "pdf", "-o", target.string()});
    ASSERT_EQ(saved.status, 0) << saved.err;
    const auto text = lumenote::testing::runProgram({"pdftotext", target.string(), "-"}, 30);
    ASSERT_EQ(text.exitStatus, 0) << text.output;
    EXPECT_TRUE(contains(text.output, "Algebra")) << text.output;
    EXPECT_TRUE(contains(text.output, "1 session")) << text.output;
}

TEST_F(ReceiptCommandTest, ThisWeeksReceiptCarriesTheStreak) {
    // Sessions a day apart, the later one started an hour ago: a streak of
    // two days, whether it fell today or (just after midnight) yesterday.
    // The wall clock jumps the day between them.
    const Date later = systemNow().addingSeconds(-3600.0);
    const std::string script =
        R"({"at":0,"do":"frontmost","bundle":"org.gnome.TextEditor","name":"Text Editor"}
{"at":0,"do":"start","subject":"Algebra","duration":600}
{"at":300,"do":"end"}
{"at":301,"do":"wallClock","iso":")" +
        formatIso8601(later) + R"("}
{"at":301,"do":"start","subject":"Algebra","duration":600}
{"at":601,"do":"end"}
)";
    record(script, later.addingSeconds(-86400.0));
    const std::string today = LocalCalendar::current().dayKey(systemNow());
    const fs::path target = folder() / "this week.pdf";
    const CliRun saved =
        run({"receipt", "--week", today, "--format", "pdf", "-o", target.string()});
    ASSERT_EQ(saved.status, 0) << saved.err;
    const auto text = lumenote::testing::runProgram({"pdftotext", target.string(), "-"}, 30);
    EXPECT_TRUE(contains(text.output, "2-day streak")) << text.output;
}

}  // namespace
}  // namespace lumenote::cli::testing
