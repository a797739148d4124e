#include "ui/models/data_settings.hpp"

#include <fmt/format.h>

#include "ui/models/receipt_dates.hpp"

namespace lumenote::ui::models {

namespace {

std::string countText(std::size_t count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

}  // namespace

bool confirmationMatches(std::string_view typed, std::string_view word) {
    return !word.empty() && typed == word;
}

std::string typeToConfirmText(std::string_view word) {
    return fmt::format("Type {} to continue.", word);
}

std::vector<std::string> restorePreviewLines(const portability::BackupValidationReport& report,
                                             const LocalCalendar& calendar) {
    const portability::BackupDocumentSummary& document = report.document;
    return {
        fmt::format("Made by Lumenote {} on {} at {}", document.appVersion,
                    receiptDayText(document.createdAt, calendar),
                    receiptTimeText(document.createdAt, calendar)),
        fmt::format("Sessions: {}", document.sessionCount),
        fmt::format("Activity segments: {}", report.segmentCount),
        fmt::format("Classification rules: {}", report.ruleCount),
        "Supported preferences only",
    };
}

std::string restoreValidationFailedText(const portability::TallywiseBackupError& error) {
    return "Restore validation failed: " + error.message();
}

std::string exportedText(std::size_t sessions) {
    return countText(sessions, "session", "sessions") + " exported.";
}

std::string deletedAllText(std::optional<std::size_t> sessions) {
    if (!sessions) {
        return "All sessions were deleted.";
    }
    if (*sessions == 0) {
        return "There were no sessions to delete.";
    }
    return countText(*sessions, "session", "sessions") + " deleted.";
}

}  // namespace lumenote::ui::models
