#include "ui/models/data_settings.hpp"

#include <gtest/gtest.h>

namespace lumenote::ui::models {
namespace {

TEST(DataSettings, OnlyTheExactWordConfirms) {
    struct Case {
        std::string_view typed;
        std::string_view word;
        bool confirms;
    };
    for (const Case& c : {
             Case{"RESTORE", kRestoreConfirmationWord, true},
             Case{"restore", kRestoreConfirmationWord, false},
             Case{"RESTOR", kRestoreConfirmationWord, false},
             Case{"RESTORE ", kRestoreConfirmationWord, false},
             Case{" RESTORE", kRestoreConfirmationWord, false},
             Case{"RESTORED", kRestoreConfirmationWord, false},
             Case{"", kRestoreConfirmationWord, false},
             Case{"RESET", kResetConfirmationWord, true},
             Case{"RESET", kRestoreConfirmationWord, false},
             Case{"Reset", kResetConfirmationWord, false},
             Case{"DELETE", kDeleteAllConfirmationWord, true},
             // Nothing confirms an action without a word.
             Case{"", "", false},
         }) {
        EXPECT_EQ(confirmationMatches(c.typed, c.word), c.confirms)
            << "'" << c.typed << "' for " << c.word;
    }
    EXPECT_EQ(typeToConfirmText(kResetConfirmationWord), "Type RESET to continue.");
}

TEST(DataSettings, ThePreviewListsTheReportInItsOrder) {
    portability::BackupValidationReport report;
    report.document.appVersion = "1.4.0";
    report.document.createdAt = Date::fromUnixSeconds(1'790'000'000.0);  // 2026-09-21 14:13 UTC
    report.document.sessionCount = 1200;
    report.segmentCount = 56'789;
    report.ruleCount = 0;
    const auto berlin = LocalCalendar::named("Europe/Berlin");
    ASSERT_TRUE(berlin.has_value());
    EXPECT_EQ(
        restorePreviewLines(report, *berlin),
        (std::vector<std::string>{"Made by Lumenote 1.4.0 on Monday 21 September 2026 at 16:13",
                                  "Sessions: 1200", "Activity segments: 56789",
                                  "Classification rules: 0", "Supported preferences only"}));
}

TEST(DataSettings, OutcomesCountInWords) {
    EXPECT_EQ(exportedText(1), "1 session exported.");
    EXPECT_EQ(exportedText(0), "0 sessions exported.");
    EXPECT_EQ(deletedAllText(0), "There were no sessions to delete.");
    EXPECT_EQ(deletedAllText(1), "1 session deleted.");
    EXPECT_EQ(deletedAllText(20'000), "20000 sessions deleted.");
    EXPECT_EQ(deletedAllText(std::nullopt), "All sessions were deleted.");
    EXPECT_EQ(restoreValidationFailedText(
                  portability::backupError(portability::TallywiseBackupFailure::emptyFile)),
              "Restore validation failed: The selected backup file is empty.");
}

}  // namespace
}  // namespace lumenote::ui::models
