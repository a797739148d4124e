#include <gtest/gtest.h>

#include "cli/history_test_support.hpp"

namespace lumenote::cli::testing {
namespace {

class ReportCommandTest : public HistoryCommandTest {};

TEST_F(ReportCommandTest, AFreshHomeReportsZeroAndCreatesNoStore) {
    const CliRun report = run({"report"});
    EXPECT_EQ(report.status, 0) << report.err;
    EXPECT_TRUE(contains(report.out, "- Sessions: 0\n- Activity segments: 0\n"));
    EXPECT_TRUE(contains(report.out, "- Active session: No\n"));
    EXPECT_FALSE(std::filesystem::exists(store::storePath(home_.paths())));
}

// Whatever the history holds, the report and the feedback link carry counts
// and switches only.
TEST_F(ReportCommandTest, NothingARecordedSessionHoldsAppearsInTheReport) {
    const nlohmann::json sessions = record(R"(
{"at":0,"do":"classifyWebsite","hostname":"zebra-quokka.example.org","classification":"focused"}
{"at":0,"do":"classifyApp","bundle":"org.example.Xylophonist","name":"Xylophonist Studio","classification":"focused"}
{"at":0,"do":"frontmost","bundle":"org.example.Xylophonist","name":"Xylophonist Studio"}
{"at":0,"do":"start","subject":"Quasicrystal Hermeneutics","goal":"Marzipan theorem","duration":3600}
{"at":20,"do":"frontmost","bundle":"org.chromium.Chromium","name":"Chromium"}
{"at":21,"do":"browserEvent","event":{"browserBundleIdentifier":"org.chromium.Chromium","eventType":"tabActivated","hostname":"zebra-quokka.example.org","temporaryTabIdentifier":"3"}}
{"at":35,"do":"browser","bundle":"org.chromium.Chromium","pdf":"BBBBBBBB-BBBB-4BBB-8BBB-BBBBBBBBBBBB","label":"Lanternfish-notes.pdf"}
{"at":50,"do":"end"}
)");
    ASSERT_EQ(sessions.size(), 1u);
    ASSERT_EQ(run({"edit", sessions[0]["id"], "--notes", "Periwinkle notebook"}).status, 0);

    const CliRun report = run({"report"});
    const CliRun feedback = run({"report", "--feedback"});
    ASSERT_EQ(report.status, 0) << report.err;
    ASSERT_EQ(feedback.status, 0) << feedback.err;
    EXPECT_TRUE(contains(report.out, "- Sessions: 1\n"));
    EXPECT_TRUE(contains(report.out, "- Application rules: 1\n- Website rules: 1\n"));
    const std::string id = sessions[0]["id"];
    for (const std::string& secret :
         {std::string("Quasicrystal"), std::string("Marzipan"), std::string("Periwinkle"),
          std::string("zebra"), std::string("quokka"), std::string("Xylophonist"),
          std::string("Lanternfish"), std::string("BBBBBBBB"), std::string("org.example"), id,
          id.substr(0, 8), std::string("2026-11-16"), std::string("08:00")}) {
        EXPECT_FALSE(contains(report.out, secret)) << secret;
        EXPECT_FALSE(contains(feedback.out, secret)) << secret;
    }
    EXPECT_TRUE(contains(feedback.out, "mailto:"));
}

TEST_F(ReportCommandTest, TheReportIsSavedWholeOrNotAtAll) {
    const std::filesystem::path file = home_.root() / "Desktop" / "report.txt";
    const CliRun saved = run({"report", "-o", file.string()});
    ASSERT_EQ(saved.status, 0) << saved.err;
    EXPECT_EQ(saved.out, "Diagnostic report saved to " + file.string() + "\n");
    EXPECT_TRUE(lumenote::testing::readFile(file).starts_with("Lumenote Diagnostic Report\n"));

    lumenote::testing::writeFile(home_.root() / "plain", "not a folder");
    const CliRun refused = run({"report", "-o", (home_.root() / "plain" / "r.txt").string()});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(contains(refused.err, "The diagnostic report could not be saved to "));
}

}  // namespace
}  // namespace lumenote::cli::testing
