#include "settings/preferences_store.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

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

}  // namespace

PreferencesStore::PreferencesStore(DefaultsDomain& domain,
                                   insights::SetupTestSessionPredicate isSetupTestSession)
    : domain_(domain), isSetupTestSession_(std::move(isSetupTestSession)) {
    readAll();
}

void PreferencesStore::readAll() {
    DefaultsDomain& d = domain_;
    launchAtLogin_ = d.boolForKey(keys::launchAtLogin);
    startHidden_ = d.boolForKey(keys::startHidden);
    appearance_ = appearanceFromStored(d.stringForKey(keys::appearance));
    defaultDuration_ = clampedThreshold(
        asDouble(d.object(keys::defaultDuration)).value_or(kDefaultDurationRange.fallback),
        kDefaultDurationRange);
    rememberLastDuration_ = d.boolForKey(keys::rememberLastDuration);
    defaultSubject_ = d.stringForKey(keys::defaultSubject).value_or("");
    rememberLastSubject_ = d.boolForKey(keys::rememberLastSubject);
    defaultGoal_ = d.stringForKey(keys::defaultGoal).value_or("");
    rememberLastGoal_ = d.boolForKey(keys::rememberLastGoal);
    defaultStudyMode_ = studyModeFromStored(d.stringForKey(keys::defaultStudyMode));
    lastTimingMode_ = timingModeFromStored(d.stringForKey(keys::lastTimingMode));
    hasSeenPassiveStudyIntroduction_ = d.boolForKey(keys::hasSeenPassiveStudyIntroduction);
    globalHotkeyStatusMessage_.reset();
    globalHotkeyEnabled_ = d.boolForKey(keys::globalHotkeyEnabled);
    globalHotkey_ = globalHotkeyBindingFromStored(asInteger(d.object(keys::globalHotkeyKeyCode)),
                                                  asInteger(d.object(keys::globalHotkeyModifiers)));
    passiveStudyPromptThreshold_ =
        clampedThreshold(asDouble(d.object(keys::passiveStudyPromptThreshold))
                             .value_or(kPassiveStudyPromptRange.fallback),
                         kPassiveStudyPromptRange);
    inactivityThreshold_ = clampedThreshold(
        asDouble(d.object(keys::inactivityThreshold)).value_or(kInactivityThresholdRange.fallback),
        kInactivityThresholdRange);
    longSleep_ = longSleepPreferenceFromStored(asInteger(d.object(keys::longSleep)));
    notificationsEnabled_ = d.boolForKey(keys::notificationsEnabled);
    notificationsIncludeSubject_ = d.boolForKey(keys::notificationsIncludeSubject);
    browserTrackingEnabled_ = asBool(d.object(keys::browserTrackingEnabled)).value_or(true);
    hostnameTrackingEnabled_ = asBool(d.object(keys::hostnameTrackingEnabled)).value_or(true);
    localPDFDetectionEnabled_ = asBool(d.object(keys::localPDFDetectionEnabled)).value_or(true);
    manualPDFLabelsEnabled_ = asBool(d.object(keys::manualPDFLabelsEnabled)).value_or(true);
    pauseAllBrowserTracking_ = d.boolForKey(keys::pauseAllBrowserTracking);
    onboardingCompletedVersion_ = d.integerForKey(keys::onboardingCompletedVersion);
    onboardingLastStep_ = d.integerForKey(keys::onboardingLastStep);
    firstName_ = normalisedFirstName(d.stringForKey(keys::firstName).value_or(""));
    dailyStudyGoalMinutes_ = clampedDailyStudyGoal(d.integerForKey(keys::dailyStudyGoalMinutes));
    sessionCelebrationsEnabled_ = asBool(d.object(keys::sessionCelebrationsEnabled)).value_or(true);
    insightsAIPhrasingEnabled_ = asBool(d.object(keys::insightsAIPhrasingEnabled)).value_or(false);
    insightsAIProviderIdentifier_ = std::string(kNoAIProvider);
    derivedRevision_ = d.integerForKey(keys::derivedRevision);
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
    writeBool(keys::launchAtLogin, launchAtLogin_, value, P::launchAtLogin);
}

void PreferencesStore::setStartHidden(bool value) {
    writeBool(keys::startHidden, startHidden_, value, P::startHidden);
}

void PreferencesStore::setAppearance(TallywiseAppearance value) {
    appearance_ = value;
    write(keys::appearance, std::string(rawValue(value)), P::appearance);
}

void PreferencesStore::setDefaultDuration(double seconds) {
    defaultDuration_ = clampedThreshold(seconds, kDefaultDurationRange);
    write(keys::defaultDuration, defaultDuration_, P::defaultDuration);
}

void PreferencesStore::setRememberLastDuration(bool value) {
    writeBool(keys::rememberLastDuration, rememberLastDuration_, value, P::rememberLastDuration);
}

void PreferencesStore::setDefaultSubject(std::string value) {
    defaultSubject_ = std::move(value);
    write(keys::defaultSubject, defaultSubject_, P::defaultSubject);
}

void PreferencesStore::setRememberLastSubject(bool value) {
    writeBool(keys::rememberLastSubject, rememberLastSubject_, value, P::rememberLastSubject);
}

void PreferencesStore::setDefaultGoal(std::string value) {
    defaultGoal_ = std::move(value);
    write(keys::defaultGoal, defaultGoal_, P::defaultGoal);
}

void PreferencesStore::setRememberLastGoal(bool value) {
    writeBool(keys::rememberLastGoal, rememberLastGoal_, value, P::rememberLastGoal);
}

void PreferencesStore::setDefaultStudyMode(recording::StudySessionMode value) {
    defaultStudyMode_ = value;
    write(keys::defaultStudyMode, std::string(rawValue(value)), P::defaultStudyMode);
}

void PreferencesStore::setLastTimingMode(recording::SessionTimingMode value) {
    lastTimingMode_ = value;
    write(keys::lastTimingMode, std::string(rawValue(value)), P::lastTimingMode);
}

void PreferencesStore::setHasSeenPassiveStudyIntroduction(bool value) {
    writeBool(keys::hasSeenPassiveStudyIntroduction, hasSeenPassiveStudyIntroduction_, value,
              P::hasSeenPassiveStudyIntroduction);
}

void PreferencesStore::setGlobalHotkeyStatusMessage(std::optional<std::string> value) {
    globalHotkeyStatusMessage_ = std::move(value);
    observers_.notify(P::globalHotkeyStatusMessage);
}

void PreferencesStore::setGlobalHotkeyEnabled(bool value) {
    writeBool(keys::globalHotkeyEnabled, globalHotkeyEnabled_, value, P::globalHotkeyEnabled);
}

void PreferencesStore::setGlobalHotkey(GlobalHotkeyBinding value) {
    globalHotkey_ = value;
    domain_.set(keys::globalHotkeyKeyCode, static_cast<long long>(value.keyCode));
    write(keys::globalHotkeyModifiers, static_cast<long long>(value.modifiers), P::globalHotkey);
}

void PreferencesStore::setPassiveStudyPromptThreshold(double seconds) {
    passiveStudyPromptThreshold_ = clampedThreshold(seconds, kPassiveStudyPromptRange);
    write(keys::passiveStudyPromptThreshold, passiveStudyPromptThreshold_,
          P::passiveStudyPromptThreshold);
}

void PreferencesStore::setInactivityThreshold(double seconds) {
    inactivityThreshold_ = clampedThreshold(seconds, kInactivityThresholdRange);
    write(keys::inactivityThreshold, inactivityThreshold_, P::inactivityThreshold);
}

void PreferencesStore::setLongSleep(LongSleepPreference value) {
    longSleep_ = value;
    write(keys::longSleep, longSleepSeconds(value), P::longSleep);
}

void PreferencesStore::setNotificationsEnabled(bool value) {
    writeBool(keys::notificationsEnabled, notificationsEnabled_, value, P::notificationsEnabled);
}

void PreferencesStore::setNotificationsIncludeSubject(bool value) {
    writeBool(keys::notificationsIncludeSubject, notificationsIncludeSubject_, value,
              P::notificationsIncludeSubject);
}

void PreferencesStore::setBrowserTrackingEnabled(bool value) {
    writeBool(keys::browserTrackingEnabled, browserTrackingEnabled_, value,
              P::browserTrackingEnabled);
}

void PreferencesStore::setHostnameTrackingEnabled(bool value) {
    writeBool(keys::hostnameTrackingEnabled, hostnameTrackingEnabled_, value,
              P::hostnameTrackingEnabled);
}

void PreferencesStore::setLocalPDFDetectionEnabled(bool value) {
    writeBool(keys::localPDFDetectionEnabled, localPDFDetectionEnabled_, value,
              P::localPDFDetectionEnabled);
}

void PreferencesStore::setManualPDFLabelsEnabled(bool value) {
    writeBool(keys::manualPDFLabelsEnabled, manualPDFLabelsEnabled_, value,
              P::manualPDFLabelsEnabled);
}

void PreferencesStore::setPauseAllBrowserTracking(bool value) {
    writeBool(keys::pauseAllBrowserTracking, pauseAllBrowserTracking_, value,
              P::pauseAllBrowserTracking);
}

void PreferencesStore::setOnboardingCompletedVersion(long long value) {
    onboardingCompletedVersion_ = value;
    write(keys::onboardingCompletedVersion, value, P::onboardingCompletedVersion);
}

void PreferencesStore::setOnboardingLastStep(long long value) {
    onboardingLastStep_ = value;
    write(keys::onboardingLastStep, value, P::onboardingLastStep);
}

void PreferencesStore::setFirstName(std::string_view value) {
    firstName_ = normalisedFirstName(value);
    write(keys::firstName, firstName_, P::firstName);
}

void PreferencesStore::setDailyStudyGoalMinutes(long long minutes) {
    dailyStudyGoalMinutes_ = clampedDailyStudyGoal(minutes);
    write(keys::dailyStudyGoalMinutes, dailyStudyGoalMinutes_, P::dailyStudyGoalMinutes);
}

void PreferencesStore::setSessionCelebrationsEnabled(bool value) {
    writeBool(keys::sessionCelebrationsEnabled, sessionCelebrationsEnabled_, value,
              P::sessionCelebrationsEnabled);
}

void PreferencesStore::setInsightsAIPhrasingEnabled(bool value) {
    writeBool(keys::insightsAIPhrasingEnabled, insightsAIPhrasingEnabled_, value,
              P::insightsAIPhrasingEnabled);
}

void PreferencesStore::setInsightsAIProviderIdentifier(std::string_view) {
    insightsAIProviderIdentifier_ = std::string(kNoAIProvider);
    write(keys::insightsAIProviderIdentifier, insightsAIProviderIdentifier_,
          P::insightsAIProviderIdentifier);
}

void PreferencesStore::setDerivedRevision(long long value) {
    derivedRevision_ = value;
    write(keys::derivedRevision, value, P::derivedRevision);
}

bool PreferencesStore::acknowledgeDailyGoalIfNeeded(Date date, const LocalCalendar& calendar) {
    if (dailyStudyGoalMinutes_ < 1) {
        return false;
    }
    const CalendarDay day = calendarDay(calendar.dayKey(date));
    const std::string mark = fmt::format("{}-{}-{}-{}-{}", day.era, day.year, day.month, day.day,
                                         dailyStudyGoalMinutes_);
    if (domain_.stringForKey(keys::dailyGoalAcknowledgement) == mark) {
        return false;
    }
    domain_.set(keys::dailyGoalAcknowledgement, mark);
    return true;
}

bool PreferencesStore::shouldCelebrate(const recording::StudySession& session, Date now) {
    if (!sessionCelebrationsEnabled_ ||
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
