// The keys of the defaults domain owned by the preferences store, and the
// properties they back.
#pragma once

#include <string_view>

namespace lumenote::settings {

namespace preference_keys {
inline constexpr std::string_view launchAtLogin = "general.launchAtLogin";
inline constexpr std::string_view startHidden = "general.startHidden";
inline constexpr std::string_view appearance = "general.appearance";
inline constexpr std::string_view defaultDuration = "session.defaultDuration";
inline constexpr std::string_view rememberLastDuration = "session.rememberDuration";
inline constexpr std::string_view defaultSubject = "session.defaultSubject";
inline constexpr std::string_view rememberLastSubject = "session.rememberSubject";
inline constexpr std::string_view defaultGoal = "session.defaultGoal";
inline constexpr std::string_view rememberLastGoal = "session.rememberGoal";
inline constexpr std::string_view defaultStudyMode = "session.defaultStudyMode";
inline constexpr std::string_view lastTimingMode = "session.lastTimingMode";
inline constexpr std::string_view hasSeenPassiveStudyIntroduction =
    "session.passiveStudyIntroductionSeen";
inline constexpr std::string_view globalHotkeyEnabled = "shortcuts.globalHotkeyEnabled";
inline constexpr std::string_view globalHotkeyKeyCode = "shortcuts.globalHotkeyKeyCode";
inline constexpr std::string_view globalHotkeyModifiers = "shortcuts.globalHotkeyModifiers";
inline constexpr std::string_view passiveStudyPromptThreshold =
    "tracking.passiveStudyPromptThreshold";
inline constexpr std::string_view inactivityThreshold = "tracking.inactivityThreshold";
inline constexpr std::string_view longSleep = "tracking.longSleep";
inline constexpr std::string_view notificationsEnabled = "notifications.enabled";
inline constexpr std::string_view notificationsIncludeSubject = "notifications.includeSubject";
inline constexpr std::string_view browserTrackingEnabled = "tracking.browser.enabled";
inline constexpr std::string_view hostnameTrackingEnabled = "tracking.hostname.enabled";
inline constexpr std::string_view localPDFDetectionEnabled = "tracking.pdf.enabled";
inline constexpr std::string_view manualPDFLabelsEnabled = "tracking.pdf.manualLabels";
inline constexpr std::string_view pauseAllBrowserTracking = "tracking.browser.paused";
inline constexpr std::string_view onboardingCompletedVersion = "onboarding.completedVersion";
inline constexpr std::string_view onboardingLastStep = "onboarding.lastStep";
inline constexpr std::string_view firstName = "personalisation.firstName";
inline constexpr std::string_view dailyStudyGoalMinutes = "personalisation.dailyStudyGoalMinutes";
inline constexpr std::string_view sessionCelebrationsEnabled =
    "personalisation.sessionCelebrations";
inline constexpr std::string_view insightsAIPhrasingEnabled = "insights.aiPhrasingEnabled";
inline constexpr std::string_view insightsAIProviderIdentifier = "insights.aiProviderIdentifier";
// Whether "Check for Updates…" may contact the update address (off until the
// user allows it), and an address that replaces the one compiled in.
inline constexpr std::string_view updatesCheckEnabled = "updates.checkEnabled";
inline constexpr std::string_view updatesFeedAddress = "updates.feedAddress";
// Which revision of the derived session totals the stored history carries.
inline constexpr std::string_view derivedRevision = "metrics.derivedRevision";

// Bookkeeping owned by the store, not settings the user chooses.
inline constexpr std::string_view dailyGoalAcknowledgement =
    "personalisation.dailyGoalAcknowledgement";
inline constexpr std::string_view celebratedSessionIDs = "personalisation.celebratedSessionIDs";

// The receipt options' keys: not read here, but reset together with the
// preferences.
inline constexpr std::string_view receiptIncludeGoal = "receipt.includeGoal";
inline constexpr std::string_view receiptIncludeExactTimes = "receipt.includeExactTimes";
inline constexpr std::string_view receiptIncludeBranding = "receipt.includeBranding";
inline constexpr std::string_view receiptIncludeSubjectSummary = "receipt.includeSubjectSummary";
}  // namespace preference_keys

// The observable properties of the preferences store, in their reading order;
// observers are told which one was assigned.
enum class PreferenceProperty {
    launchAtLogin,
    startHidden,
    appearance,
    defaultDuration,
    rememberLastDuration,
    defaultSubject,
    rememberLastSubject,
    defaultGoal,
    rememberLastGoal,
    defaultStudyMode,
    lastTimingMode,
    hasSeenPassiveStudyIntroduction,
    globalHotkeyStatusMessage,
    globalHotkeyEnabled,
    globalHotkey,
    passiveStudyPromptThreshold,
    inactivityThreshold,
    longSleep,
    notificationsEnabled,
    notificationsIncludeSubject,
    browserTrackingEnabled,
    hostnameTrackingEnabled,
    localPDFDetectionEnabled,
    manualPDFLabelsEnabled,
    pauseAllBrowserTracking,
    onboardingCompletedVersion,
    onboardingLastStep,
    firstName,
    dailyStudyGoalMinutes,
    sessionCelebrationsEnabled,
    insightsAIPhrasingEnabled,
    insightsAIProviderIdentifier,
    updatesCheckEnabled,
    updatesFeedAddress,
    derivedRevision
};

}  // namespace lumenote::settings
