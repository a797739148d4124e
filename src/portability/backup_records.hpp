// The values a history backup carries: its sessions, rules and supported
// preferences, and what validating a backup file reports before a restore.
//
// The children of a session and the rules mirror the store's records one
// member for one, so they are those records: only their JSON member names
// differ (`classification` for `classificationRawValue`, `displayLabel` for
// `displayLabelStorage` and so on; see backup_json_writer.hpp). Their
// `session` links are not part of a backup: the nesting says it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "classification/classification_records.hpp"
#include "foundation/dates.hpp"
#include "foundation/uuid.hpp"
#include "recording/session_records.hpp"

namespace lumenote::portability {

// The format version this release writes and reads (`formatVersion`).
inline constexpr long long kBackupFormatVersion = 1;

using BackupSegment = recording::ActivitySegment;
using BackupConfirmedInterval = recording::ConfirmedNoInputInterval;
using BackupPDFIdentity = classification::LocalPDFIdentity;
using BackupApplicationRule = classification::AppClassification;
using BackupWebsiteRule = classification::WebsiteClassification;

// One session with its children. The stored totals and score are not part
// of a backup: a restore computes them again from the segments and
// confirmations under the session's own calculation version.
struct BackupSession {
    Uuid id;
    std::string subject;
    std::string goal;
    std::string notes;  // "" when the session has none
    double plannedDuration = 0.0;
    Date startDate;
    std::optional<Date> endDate;
    std::string status;  // raw StudySessionStatus
    double timerDuration = 0.0;
    std::optional<long long> calculationVersion;
    std::optional<std::string> studyMode;
    std::optional<long long> schemaVersion;
    std::optional<std::string> timingMode;
    // Absent in sessions recorded before confirmations existed.
    std::optional<std::vector<BackupConfirmedInterval>> confirmedNoInputIntervals;
    std::vector<BackupSegment> segments;
    std::vector<BackupPDFIdentity> localPDFIdentities;

    friend bool operator==(const BackupSession&, const BackupSession&) = default;
};

// The supported preferences (keys of the preferences store in their backup
// form). A member absent from a backup is empty here and leaves the current
// setting as it is when the preferences are applied.
struct BackupPreferences {
    std::optional<std::string> appearance;                // "general.appearance"
    std::optional<double> defaultDuration;                // "session.defaultDuration", seconds
    std::optional<double> inactivityThreshold;            // "tracking.inactivityThreshold", seconds
    std::optional<long long> longSleep;                   // "tracking.longSleep", seconds, 0 never
    std::optional<bool> notificationsEnabled;             // "notifications.enabled"
    std::optional<bool> notificationsIncludeSubject;      // "notifications.includeSubject"
    std::optional<bool> browserTrackingEnabled;           // "tracking.browser.enabled"
    std::optional<bool> hostnameTrackingEnabled;          // "tracking.hostname.enabled"
    std::optional<bool> localPDFDetectionEnabled;         // "tracking.pdf.enabled"
    std::optional<bool> manualPDFLabelsEnabled;           // "tracking.pdf.manualLabels"
    std::optional<bool> rememberSubject;                  // "session.rememberSubject"
    std::optional<bool> rememberGoal;                     // "session.rememberGoal"
    std::optional<bool> rememberDuration;                 // "session.rememberDuration"
    std::optional<long long> onboardingCompletedVersion;  // "onboarding.completedVersion"

    friend bool operator==(const BackupPreferences&, const BackupPreferences&) = default;
};

// The number of members of BackupPreferences.
inline constexpr std::size_t kSupportedPreferenceCount = 14;

// Everything of a validated backup but its sessions, which a restore streams
// from the file again (years of history are never held in memory).
struct BackupDocumentSummary {
    long long formatVersion = 0;
    std::string appVersion;
    Date createdAt;
    BackupPreferences preferences;
    std::vector<BackupApplicationRule> applicationRules;
    std::vector<BackupWebsiteRule> websiteRules;
    std::size_t sessionCount = 0;
    std::size_t confirmationCount = 0;
    std::size_t pdfIdentityCount = 0;
};

// What a validated backup offers before it is restored.
struct BackupValidationReport {
    BackupDocumentSummary document;
    std::size_t segmentCount = 0;
    std::size_t ruleCount = 0;  // application and website rules
    std::vector<std::string> warnings;
};

}  // namespace lumenote::portability
