// Shared pieces of the backup tests: backup documents built as JSON values
// (so that a test can break any member), validated from memory in small
// pieces, and failure messages that name the error.
#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "portability/backup_reader.hpp"
#include "portability/backup_records.hpp"

namespace lumenote::portability {

inline void PrintTo(const TallywiseBackupError& error, std::ostream* out) {
    *out << error.message();
}

}  // namespace lumenote::portability

namespace lumenote::portability::testing {

using nlohmann::json;

// 2026-05-08T12:26:40Z, with a fraction below the millisecond.
inline constexpr double kStart = 800'000'000.123456789;

// An upper-case UUID whose last byte is `number` and whose first is `kind`,
// so that the ids of different records never meet.
inline std::string uuidText(int kind, int number) {
    Uuid::Bytes bytes{};
    bytes[0] = static_cast<std::uint8_t>(kind);
    bytes[14] = static_cast<std::uint8_t>(number >> 8);
    bytes[15] = static_cast<std::uint8_t>(number);
    return Uuid(bytes).upperString();
}

enum IdKind { sessionKind = 1, segmentKind, confirmationKind, pdfKind, tabKind };

inline json segmentJson(int number, double start, double seconds) {
    return {
        {"id", uuidText(segmentKind, number)}, {"startDate", start},
        {"endDate", start + seconds},          {"duration", seconds},
        {"applicationName", "Firefox"},        {"bundleIdentifier", "org.mozilla.firefox"},
        {"classification", "focused"},         {"isInactive", false},
        {"activitySource", "website"},         {"browserBundleIdentifier", "org.mozilla.firefox"},
        {"hostname", "docs.google.com"},       {"tabSessionIdentifier", uuidText(tabKind, number)}};
}

inline json confirmationJson(int number, double start, double end,
                             std::optional<double> supersededAt = std::nullopt) {
    json interval{{"id", uuidText(confirmationKind, number)},
                  {"startDate", start},
                  {"endDate", end},
                  {"state", "passiveStudy"},
                  {"source", "returnPrompt"},
                  {"createdAt", end + 10}};
    if (supersededAt) {
        interval["supersededAt"] = *supersededAt;
    }
    return interval;
}

// A finished session of two 60-second segments, one confirmation and one
// PDF identity, starting `number` days after kStart.
inline json sessionJson(int number) {
    const double start = kStart + number * 86400.0;
    return {
        {"id", uuidText(sessionKind, number)},
        {"subject", "Lineare Algebra — Übung"},
        {"goal", "Kapitel 4"},
        {"notes", ""},
        {"plannedDuration", 1500},
        {"startDate", start},
        {"endDate", start + 120},
        {"status", "completed"},
        {"timerDuration", 120},
        {"calculationVersion", 3},
        {"studyMode", "mixedStudy"},
        {"schemaVersion", 3},
        {"timingMode", "timer"},
        {"confirmedNoInputIntervals", json::array({confirmationJson(number, start, start + 30)})},
        {"segments", json::array({segmentJson(2 * number, start, 60),
                                  segmentJson(2 * number + 1, start + 60, 60)})},
        {"localPDFIdentities", json::array({{{"id", uuidText(pdfKind, number)},
                                             {"browserBundleIdentifier", "org.mozilla.firefox"},
                                             {"displayLabel", "Skript.pdf"},
                                             {"labelSource", "manual"},
                                             {"classification", "focused"},
                                             {"createdAt", start + 5}}})}};
}

inline json preferencesJson() {
    return {{"appearance", "dark"},
            {"defaultDuration", 2700},
            {"inactivityThreshold", 120},
            {"longSleep", 1800},
            {"notificationsEnabled", true},
            {"notificationsIncludeSubject", false},
            {"browserTrackingEnabled", true},
            {"hostnameTrackingEnabled", false},
            {"localPDFDetectionEnabled", true},
            {"manualPDFLabelsEnabled", false},
            {"rememberSubject", true},
            {"rememberGoal", false},
            {"rememberDuration", true},
            {"onboardingCompletedVersion", 2}};
}

// A document with `sessions` sessions numbered 1, 2, ... and one rule of
// each kind.
inline json documentJson(int sessions = 2) {
    json list = json::array();
    for (int number = 1; number <= sessions; ++number) {
        list.push_back(sessionJson(number));
    }
    return {{"formatVersion", 1},
            {"appVersion", "0.1.0"},
            {"createdAt", kStart + 400 * 86400.0},
            {"preferences", preferencesJson()},
            {"applicationRules", json::array({{{"bundleIdentifier", "org.gnome.Nautilus"},
                                               {"applicationName", "Files"},
                                               {"classification", "neutral"},
                                               {"updatedAt", kStart}}})},
            {"websiteRules", json::array({{{"hostname", "docs.google.com"},
                                           {"classification", "focused"},
                                           {"updatedAt", kStart}}})},
            {"sessions", list}};
}

// Validates `text` handed out in pieces of `pieceBytes`: small pieces reach
// every boundary of the source.
inline Result<BackupValidationReport, TallywiseBackupError> validate(
    const std::string& text, const BackupValidationLimits& limits = {},
    std::size_t pieceBytes = 7) {
    const std::string_view bytes = text;
    return validateBackupDocument(
        [bytes, pieceBytes] { return std::make_unique<MemoryByteSource>(bytes, pieceBytes); },
        limits);
}

inline Result<BackupValidationReport, TallywiseBackupError> validate(
    const json& document, const BackupValidationLimits& limits = {}) {
    return validate(document.dump(), limits);
}

// Every session of `text`, as forEachBackupSession hands them out.
inline std::vector<BackupSession> sessionsOf(std::string_view text,
                                             const BackupValidationLimits& limits = {}) {
    std::vector<BackupSession> sessions;
    MemoryByteSource source(text, 5);
    auto walked = forEachBackupSession(
        source, limits, [&](BackupSession& session) -> Result<void, TallywiseBackupError> {
            sessions.push_back(session);
            return {};
        });
    EXPECT_TRUE(walked) << (walked ? "" : walked.error().message());
    return sessions;
}

}  // namespace lumenote::portability::testing
