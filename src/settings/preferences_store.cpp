#include "settings/preferences_store.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "foundation/text.hpp"
#include "settings/preference_rules.hpp"

namespace lumenote::settings {

namespace keys = preference_keys;
using P = PreferenceProperty;

namespace {

// Era, year, month and day of a "YYYY-MM-DD" day key (the year may carry a
// minus sign). Years before 1 belong to the era before the common era (0),
// counted backwards from 1 as the Gregorian calendar counts them.
struct CalendarDay {
    int era = 1;
    int year = 1;
    int month = 1;
    int day = 1;
};

CalendarDay calendarDay(std::string_view dayKey) {
    CalendarDay result;
    const std::size_t dayDash = dayKey.rfind('-');
    const std::size_t monthDash = dayKey.rfind('-', dayDash - 1);
    int year = 0;
    std::from_chars(dayKey.data(), dayKey.data() + monthDash, year);
    std::from_chars(dayKey.data() + monthDash + 1, dayKey.data() + dayDash, result.month);
    std::from_chars(dayKey.data() + dayDash + 1, dayKey.data() + dayKey.size(), result.day);
    if (year >= 1) {
        result.year = year;
    } else {
        result.era = 0;
        result.year = 1 - year;
    }
    return result;
}

// The stored properties whose values differ, in property order.
std::vector<PreferenceProperty> changedProperties(const PreferenceValues& before,
                                                  const PreferenceValues& after) {
    std::vector<PreferenceProperty> changed;
    const auto note = [&changed](bool differs, PreferenceProperty property) {
        if (differs) {
            changed.push_back(property);
        }
    };
    note(before.launchAtLogin != after.launchAtLogin, P::launchAtLogin);
    note(before.startHidden != after.startHidden, P::startHidden);
    note(before.appearance != after.appearance, P::appearance);
    note(before.defaultDuration != after.defaultDuration, P::defaultDuration);
    note(before.rememberLastDuration != after.rememberLastDuration, P::rememberLastDuration);
    note(before.defaultSubject != after.defaultSubject, P::defaultSubject);
    note(before.rememberLastSubject != after.rememberLastSubject, P::rememberLastSubject);
    note(before.defaultGoal != after.defaultGoal, P::defaultGoal);
    note(before.rememberLastGoal != after.rememberLastGoal, P::rememberLastGoal);
    note(before.defaultStudyMode != after.defaultStudyMode, P::defaultStudyMode);
    note(before.lastTimingMode != after.lastTimingMode, P::lastTimingMode);
    note(before.hasSeenPassiveStudyIntroduction != after.hasSeenPassiveStudyIntroduction,
         P::hasSeenPassiveStudyIntroduction);
    note(before.globalHotkeyEnabled != after.globalHotkeyEnabled, P::globalHotkeyEnabled);
    note(before.globalHotkey != after.globalHotkey, P::globalHotkey);
    note(before.passiveStudyPromptThreshold != after.passiveStudyPromptThreshold,
         P::passiveStudyPromptThreshold);
    note(before.inactivityThreshold != after.inactivityThreshold, P::inactivityThreshold);
    note(before.longSleep != after.longSleep, P::longSleep);
    note(before.notificationsEnabled != after.notificationsEnabled, P::notificationsEnabled);
    note(before.notificationsIncludeSubject != after.notificationsIncludeSubject,
         P::notificationsIncludeSubject);
    note(before.browserTrackingEnabled != after.browserTrackingEnabled, P::browserTrackingEnabled);
    note(before.hostnameTrackingEnabled != after.hostnameTrackingEnabled,
         P::hostnameTrackingEnabled);
    note(before.localPDFDetectionEnabled != after.localPDFDetectionEnabled,
         P::localPDFDetectionEnabled);
    note(before.manualPDFLabelsEnabled != after.manualPDFLabelsEnabled, P::manualPDFLabelsEnabled);
    note(before.pauseAllBrowserTracking != after.pauseAllBrowserTracking,
         P::pauseAllBrowserTracking);
    note(before.onboardingCompletedVersion != after.onboardingCompletedVersion,
         P::onboardingCompletedVersion);
    note(before.onboardingLastStep != after.onboardingLastStep, P::onboardingLastStep);
    note(before.firstName != after.firstName, P::firstName);
    note(before.dailyStudyGoalMinutes != after.dailyStudyGoalMinutes, P::dailyStudyGoalMinutes);
    note(before.sessionCelebrationsEnabled != after.sessionCelebrationsEnabled,
         P::sessionCelebrationsEnabled);
    note(before.insightsAIPhrasingEnabled != after.insightsAIPhrasingEnabled,
         P::insightsAIPhrasingEnabled);
    note(before.insightsAIProviderIdentifier != after.insightsAIProviderIdentifier,
         P::insightsAIProviderIdentifier);
    note(before.updatesCheckEnabled != after.updatesCheckEnabled, P::updatesCheckEnabled);
    note(before.updatesFeedAddress != after.updatesFeedAddress, P::updatesFeedAddress);
    note(before.derivedRevision != after.derivedRevision, P::derivedRevision);
    return changed;
}

}  // namespace

PreferencesStore::PreferencesStore(DefaultsDomain& domain,
                                   insights::SetupTestSessionPredicate isSetupTestSession)
    : domain_(domain), isSetupTestSession_(std::move(isSetupTestSession)) {
    readAll();
}

void PreferencesStore::readAll() {
    DefaultsDomain& d = domain_;
    values_.launchAtLogin = d.boolForKey(keys::launchAtLogin);
    values_.startHidden = d.boolForKey(keys::startHidden);
    values_.appearance = appearanceFromStored(d.stringForKey(keys::appearance));
    values_.defaultDuration = clampedThreshold(
        asDouble(d.object(keys::defaultDuration)).value_or(kDefaultDurationRange.fallback),
        kDefaultDurationRange);
    values_.rememberLastDuration = d.boolForKey(keys::rememberLastDuration);
    values_.defaultSubject = d.stringForKey(keys::defaultSubject).value_or("");
    values_.rememberLastSubject = d.boolForKey(keys::rememberLastSubject);
    values_.defaultGoal = d.stringForKey(keys::defaultGoal).value_or("");
    values_.rememberLastGoal = d.boolForKey(keys::rememberLastGoal);
    values_.defaultStudyMode = studyModeFromStored(d.stringForKey(keys::defaultStudyMode));
    values_.lastTimingMode = timingModeFromStored(d.stringForKey(keys::lastTimingMode));
    values_.hasSeenPassiveStudyIntroduction = d.boolForKey(keys::hasSeenPassiveStudyIntroduction);
    globalHotkeyStatusMessage_.reset();
    values_.globalHotkeyEnabled = d.boolForKey(keys::globalHotkeyEnabled);
    values_.globalHotkey =
        globalHotkeyBindingFromStored(asInteger(d.object(keys::globalHotkeyKeyCode)),
                                      asInteger(d.object(keys::globalHotkeyModifiers)));
    values_.passiveStudyPromptThreshold =
        clampedThreshold(asDouble(d.object(keys::passiveStudyPromptThreshold))
                             .value_or(kPassiveStudyPromptRange.fallback),
                         kPassiveStudyPromptRange);
    values_.inactivityThreshold = clampedThreshold(
        asDouble(d.object(keys::inactivityThreshold)).value_or(kInactivityThresholdRange.fallback),
        kInactivityThresholdRange);
    values_.longSleep = longSleepPreferenceFromStored(asInteger(d.object(keys::longSleep)));
    values_.notificationsEnabled = d.boolForKey(keys::notificationsEnabled);
    values_.notificationsIncludeSubject = d.boolForKey(keys::notificationsIncludeSubject);
    values_.browserTrackingEnabled = asBool(d.object(keys::browserTrackingEnabled)).value_or(true);
    values_.hostnameTrackingEnabled =
        asBool(d.object(keys::hostnameTrackingEnabled)).value_or(true);
    values_.localPDFDetectionEnabled =
        asBool(d.object(keys::localPDFDetectionEnabled)).value_or(true);
    values_.manualPDFLabelsEnabled = asBool(d.object(keys::manualPDFLabelsEnabled)).value_or(true);
    values_.pauseAllBrowserTracking = d.boolForKey(keys::pauseAllBrowserTracking);
    values_.onboardingCompletedVersion = d.integerForKey(keys::onboardingCompletedVersion);
    values_.onboardingLastStep = d.integerForKey(keys::onboardingLastStep);
    values_.firstName = normalisedFirstName(d.stringForKey(keys::firstName).value_or(""));
    values_.dailyStudyGoalMinutes =
        clampedDailyStudyGoal(d.integerForKey(keys::dailyStudyGoalMinutes));
    values_.sessionCelebrationsEnabled =
        asBool(d.object(keys::sessionCelebrationsEnabled)).value_or(true);
    values_.insightsAIPhrasingEnabled =
        asBool(d.object(keys::insightsAIPhrasingEnabled)).value_or(false);
    values_.insightsAIProviderIdentifier = std::string(kNoAIProvider);
    // Permission to use the network: only a stored JSON true grants it.
    values_.updatesCheckEnabled = asBool(d.object(keys::updatesCheckEnabled)).value_or(false);
    values_.updatesFeedAddress =
        text::trimmed(d.stringForKey(keys::updatesFeedAddress).value_or(""));
    values_.derivedRevision = d.integerForKey(keys::derivedRevision);
}

void PreferencesStore::write(std::string_view key, DefaultsValue value,
                             PreferenceProperty property) {
    domain_.set(key, std::move(value));
    observers_.notify(property);
}

void PreferencesStore::writeBool(std::string_view key, bool& member, bool value,
                                 PreferenceProperty property) {
    member = value;
    write(key, value, property);
}

void PreferencesStore::setLaunchAtLogin(bool value) {
    writeBool(keys::launchAtLogin, values_.launchAtLogin, value, P::launchAtLogin);
}

void PreferencesStore::setStartHidden(bool value) {
    writeBool(keys::startHidden, values_.startHidden, value, P::startHidden);
}

void PreferencesStore::setAppearance(TallywiseAppearance value) {
    values_.appearance = value;
    write(keys::appearance, std::string(rawValue(value)), P::appearance);
}

void PreferencesStore::setDefaultDuration(double seconds) {
    values_.defaultDuration = clampedThreshold(seconds, kDefaultDurationRange);
    write(keys::defaultDuration, values_.defaultDuration, P::defaultDuration);
}

void PreferencesStore::setRememberLastDuration(bool value) {
    writeBool(keys::rememberLastDuration, values_.rememberLastDuration, value,
              P::rememberLastDuration);
}

void PreferencesStore::setDefaultSubject(std::string value) {
    values_.defaultSubject = std::move(value);
    write(keys::defaultSubject, values_.defaultSubject, P::defaultSubject);
}

void PreferencesStore::setRememberLastSubject(bool value) {
    writeBool(keys::rememberLastSubject, values_.rememberLastSubject, value,
              P::rememberLastSubject);
}

void PreferencesStore::setDefaultGoal(std::string value) {
    values_.defaultGoal = std::move(value);
    write(keys::defaultGoal, values_.defaultGoal, P::defaultGoal);
}

void PreferencesStore::setRememberLastGoal(bool value) {
    writeBool(keys::rememberLastGoal, values_.rememberLastGoal, value, P::rememberLastGoal);
}

void PreferencesStore::setDefaultStudyMode(recording::StudySessionMode value) {
    values_.defaultStudyMode = value;
    write(keys::defaultStudyMode, std::string(rawValue(value)), P::defaultStudyMode);
}

void PreferencesStore::setLastTimingMode(recording::SessionTimingMode value) {
    values_.lastTimingMode = value;
    write(keys::lastTimingMode, std::string(rawValue(value)), P::lastTimingMode);
}

void PreferencesStore::setHasSeenPassiveStudyIntroduction(bool value) {
    writeBool(keys::hasSeenPassiveStudyIntroduction, values_.hasSeenPassiveStudyIntroduction, value,
              P::hasSeenPassiveStudyIntroduction);
}

void PreferencesStore::setGlobalHotkeyStatusMessage(std::optional<std::string> value) {
    globalHotkeyStatusMessage_ = std::move(value);
    observers_.notify(P::globalHotkeyStatusMessage);
}

void PreferencesStore::setGlobalHotkeyEnabled(bool value) {
    writeBool(keys::globalHotkeyEnabled, values_.globalHotkeyEnabled, value,
              P::globalHotkeyEnabled);
}

void PreferencesStore::setGlobalHotkey(GlobalHotkeyBinding value) {
    values_.globalHotkey = value;
    domain_.set(keys::globalHotkeyKeyCode, static_cast<long long>(value.keyCode));
    write(keys::globalHotkeyModifiers, static_cast<long long>(value.modifiers), P::globalHotkey);
}

void PreferencesStore::setPassiveStudyPromptThreshold(double seconds) {
    values_.passiveStudyPromptThreshold = clampedThreshold(seconds, kPassiveStudyPromptRange);
    write(keys::passiveStudyPromptThreshold, values_.passiveStudyPromptThreshold,
          P::passiveStudyPromptThreshold);
}

void PreferencesStore::setInactivityThreshold(double seconds) {
    values_.inactivityThreshold = clampedThreshold(seconds, kInactivityThresholdRange);
    write(keys::inactivityThreshold, values_.inactivityThreshold, P::inactivityThreshold);
}

void PreferencesStore::setLongSleep(LongSleepPreference value) {
    values_.longSleep = value;
    write(keys::longSleep, longSleepSeconds(value), P::longSleep);
}

void PreferencesStore::setNotificationsEnabled(bool value) {
    writeBool(keys::notificationsEnabled, values_.notificationsEnabled, value,
              P::notificationsEnabled);
}

void PreferencesStore::setNotificationsIncludeSubject(bool value) {
    writeBool(keys::notificationsIncludeSubject, values_.notificationsIncludeSubject, value,
              P::notificationsIncludeSubject);
}

void PreferencesStore::setBrowserTrackingEnabled(bool value) {
    writeBool(keys::browserTrackingEnabled, values_.browserTrackingEnabled, value,
              P::browserTrackingEnabled);
}

void PreferencesStore::setHostnameTrackingEnabled(bool value) {
    writeBool(keys::hostnameTrackingEnabled, values_.hostnameTrackingEnabled, value,
              P::hostnameTrackingEnabled);
}

void PreferencesStore::setLocalPDFDetectionEnabled(bool value) {
    writeBool(keys::localPDFDetectionEnabled, values_.localPDFDetectionEnabled, value,
              P::localPDFDetectionEnabled);
}

void PreferencesStore::setManualPDFLabelsEnabled(bool value) {
    writeBool(keys::manualPDFLabelsEnabled, values_.manualPDFLabelsEnabled, value,
              P::manualPDFLabelsEnabled);
}

void PreferencesStore::setPauseAllBrowserTracking(bool value) {
    writeBool(keys::pauseAllBrowserTracking, values_.pauseAllBrowserTracking, value,
              P::pauseAllBrowserTracking);
}

void PreferencesStore::setOnboardingCompletedVersion(long long value) {
    values_.onboardingCompletedVersion = value;
    write(keys::onboardingCompletedVersion, value, P::onboardingCompletedVersion);
}

void PreferencesStore::setOnboardingLastStep(long long value) {
    values_.onboardingLastStep = value;
    write(keys::onboardingLastStep, value, P::onboardingLastStep);
}

void PreferencesStore::setFirstName(std::string_view value) {
    values_.firstName = normalisedFirstName(value);
    write(keys::firstName, values_.firstName, P::firstName);
}

void PreferencesStore::setDailyStudyGoalMinutes(long long minutes) {
    values_.dailyStudyGoalMinutes = clampedDailyStudyGoal(minutes);
    write(keys::dailyStudyGoalMinutes, values_.dailyStudyGoalMinutes, P::dailyStudyGoalMinutes);
}

void PreferencesStore::setSessionCelebrationsEnabled(bool value) {
    writeBool(keys::sessionCelebrationsEnabled, values_.sessionCelebrationsEnabled, value,
              P::sessionCelebrationsEnabled);
}

void PreferencesStore::setInsightsAIPhrasingEnabled(bool value) {
    writeBool(keys::insightsAIPhrasingEnabled, values_.insightsAIPhrasingEnabled, value,
              P::insightsAIPhrasingEnabled);
}

void PreferencesStore::setInsightsAIProviderIdentifier(std::string_view) {
    values_.insightsAIProviderIdentifier = std::string(kNoAIProvider);
    write(keys::insightsAIProviderIdentifier, values_.insightsAIProviderIdentifier,
          P::insightsAIProviderIdentifier);
}

void PreferencesStore::setUpdatesCheckEnabled(bool value) {
    writeBool(keys::updatesCheckEnabled, values_.updatesCheckEnabled, value,
              P::updatesCheckEnabled);
}

void PreferencesStore::setUpdatesFeedAddress(std::string_view value) {
    values_.updatesFeedAddress = text::trimmed(value);
    write(keys::updatesFeedAddress, values_.updatesFeedAddress, P::updatesFeedAddress);
}

void PreferencesStore::setDerivedRevision(long long value) {
    values_.derivedRevision = value;
    write(keys::derivedRevision, value, P::derivedRevision);
}

bool PreferencesStore::acknowledgeDailyGoalIfNeeded(Date date, const LocalCalendar& calendar) {
    if (values_.dailyStudyGoalMinutes < 1) {
        return false;
    }
    const CalendarDay day = calendarDay(calendar.dayKey(date));
    const std::string mark = fmt::format("{}-{}-{}-{}-{}", day.era, day.year, day.month, day.day,
                                         values_.dailyStudyGoalMinutes);
    if (domain_.stringForKey(keys::dailyGoalAcknowledgement) == mark) {
        return false;
    }
    domain_.set(keys::dailyGoalAcknowledgement, mark);
    return true;
}

bool PreferencesStore::shouldCelebrate(const recording::StudySession& session, Date now) {
    if (!values_.sessionCelebrationsEnabled ||
        !insights::countsForAnalytics(session, now, isSetupTestSession_)) {
        return false;
    }
    std::vector<std::string> celebrated = asStringArray(domain_.object(keys::celebratedSessionIDs))
                                              .value_or(std::vector<std::string>{});
    const std::string id = session.id.upperString();
    if (std::find(celebrated.begin(), celebrated.end(), id) != celebrated.end()) {
        return false;
    }
    celebrated.push_back(id);
    if (celebrated.size() > kMaximumCelebratedSessions) {
        celebrated.erase(celebrated.begin(),
                         celebrated.end() - static_cast<long>(kMaximumCelebratedSessions));
    }
    domain_.set(keys::celebratedSessionIDs, std::move(celebrated));
    return true;
}

void PreferencesStore::adoptChangesMadeElsewhere() {
    if (!domain_.refreshFromStorage()) {
        return;
    }
    const PreferenceValues before = values_;
    std::optional<std::string> statusMessage = std::move(globalHotkeyStatusMessage_);
    readAll();
    globalHotkeyStatusMessage_ = std::move(statusMessage);
    for (const PreferenceProperty property : changedProperties(before, values_)) {
        observers_.notify(property);
    }
}

void PreferencesStore::resetToDefaults() {
    std::vector<std::string> removed;
    for (std::string_view key : {keys::launchAtLogin,
                                 keys::startHidden,
                                 keys::appearance,
                                 keys::defaultDuration,
                                 keys::rememberLastDuration,
                                 keys::defaultSubject,
                                 keys::rememberLastSubject,
                                 keys::defaultGoal,
                                 keys::rememberLastGoal,
                                 keys::defaultStudyMode,
                                 keys::lastTimingMode,
                                 keys::hasSeenPassiveStudyIntroduction,
                                 keys::globalHotkeyEnabled,
                                 keys::globalHotkeyKeyCode,
                                 keys::globalHotkeyModifiers,
                                 keys::passiveStudyPromptThreshold,
                                 keys::inactivityThreshold,
                                 keys::longSleep,
                                 keys::notificationsEnabled,
                                 keys::notificationsIncludeSubject,
                                 keys::browserTrackingEnabled,
                                 keys::hostnameTrackingEnabled,
                                 keys::localPDFDetectionEnabled,
                                 keys::manualPDFLabelsEnabled,
                                 keys::pauseAllBrowserTracking,
                                 keys::onboardingCompletedVersion,
                                 keys::onboardingLastStep,
                                 keys::firstName,
                                 keys::dailyStudyGoalMinutes,
                                 keys::sessionCelebrationsEnabled,
                                 keys::insightsAIPhrasingEnabled,
                                 keys::insightsAIProviderIdentifier,
                                 keys::updatesCheckEnabled,
                                 keys::updatesFeedAddress,
                                 keys::dailyGoalAcknowledgement,
                                 keys::celebratedSessionIDs,
                                 keys::receiptIncludeGoal,
                                 keys::receiptIncludeExactTimes,
                                 keys::receiptIncludeBranding,
                                 keys::receiptIncludeSubjectSummary}) {
        removed.emplace_back(key);
    }
    domain_.remove(removed);
    readAll();
    // The derived-totals revision is last and was kept.
    for (int property = 0; property < static_cast<int>(P::derivedRevision); ++property) {
        observers_.notify(static_cast<P>(property));
    }
}

}  // namespace lumenote::settings
