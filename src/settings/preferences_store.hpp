// PreferencesStore: the single owner of every user setting. It reads all
// settings from the defaults domain when built, keeps them as properties, and
// writes a property through to its key whenever it is assigned.
//
// Two kinds of read, on purpose: the Booleans "general.launchAtLogin",
// "general.startHidden", "session.remember*", "session.passiveStudyIntroductionSeen",
// "shortcuts.globalHotkeyEnabled", "notifications.*" and "tracking.browser.paused",
// and the integers "onboarding.*", "personalisation.dailyStudyGoalMinutes" and
// "metrics.derivedRevision" use the domain's plain typed getters (false or 0
// when missing); the Booleans that default to true, "insights.aiPhrasingEnabled",
// the three seconds thresholds, "tracking.longSleep" and the two shortcut
// integers are read generically and take their listed default when missing or
// of another type. Strings and enumerations read as strings take "" or their
// default.
//
// Every assignment is written at once and tells the observers which property
// changed; an out-of-range value is clamped first and only the clamped value
// is held, written and announced (one notification per assignment). No
// operation fails: an unusable stored value silently reads as its default.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/observer_list.hpp"
#include "insights/analytics_count_rule.hpp"
#include "recording/enumerations.hpp"
#include "recording/session_records.hpp"
#include "settings/defaults_domain.hpp"
#include "settings/global_hotkey_binding.hpp"
#include "settings/preference_enumerations.hpp"
#include "settings/preference_keys.hpp"

namespace lumenote::settings {

// At most this many celebrated session ids are remembered; older ones drop out.
inline constexpr std::size_t kMaximumCelebratedSessions = 100;

class PreferencesStore {
  public:
    using Observers = ObserverList<PreferenceProperty>;

    // Reads every key in property order; writes nothing. The domain must
    // outlive the store.
    explicit PreferencesStore(DefaultsDomain& domain,
                              insights::SetupTestSessionPredicate isSetupTestSession = {});

    bool launchAtLogin() const { return launchAtLogin_; }
    void setLaunchAtLogin(bool value);
    bool startHidden() const { return startHidden_; }
    void setStartHidden(bool value);
    TallywiseAppearance appearance() const { return appearance_; }
    void setAppearance(TallywiseAppearance value);
    // Seconds, 60 ... 86400.
    double defaultDuration() const { return defaultDuration_; }
    void setDefaultDuration(double seconds);
    bool rememberLastDuration() const { return rememberLastDuration_; }
    void setRememberLastDuration(bool value);
    const std::string& defaultSubject() const { return defaultSubject_; }
    void setDefaultSubject(std::string value);
    bool rememberLastSubject() const { return rememberLastSubject_; }
    void setRememberLastSubject(bool value);
    const std::string& defaultGoal() const { return defaultGoal_; }
    void setDefaultGoal(std::string value);
    bool rememberLastGoal() const { return rememberLastGoal_; }
    void setRememberLastGoal(bool value);
    recording::StudySessionMode defaultStudyMode() const { return defaultStudyMode_; }
    void setDefaultStudyMode(recording::StudySessionMode value);
    recording::SessionTimingMode lastTimingMode() const { return lastTimingMode_; }
    void setLastTimingMode(recording::SessionTimingMode value);
    bool hasSeenPassiveStudyIntroduction() const { return hasSeenPassiveStudyIntroduction_; }
    void setHasSeenPassiveStudyIntroduction(bool value);
    // Status text of the shortcut service; never stored.
    const std::optional<std::string>& globalHotkeyStatusMessage() const {
        return globalHotkeyStatusMessage_;
    }
    void setGlobalHotkeyStatusMessage(std::optional<std::string> value);
    bool globalHotkeyEnabled() const { return globalHotkeyEnabled_; }
    void setGlobalHotkeyEnabled(bool value);
    // Written as two integers. An unusable binding is held and written as
    // given (the shortcut service refuses to register it); it reads back as
    // the default.
    const GlobalHotkeyBinding& globalHotkey() const { return globalHotkey_; }
    void setGlobalHotkey(GlobalHotkeyBinding value);
    // Seconds, 300 ... 3600.
    double passiveStudyPromptThreshold() const { return passiveStudyPromptThreshold_; }
    void setPassiveStudyPromptThreshold(double seconds);
    // Seconds, 90 ... 1800.
    double inactivityThreshold() const { return inactivityThreshold_; }
    void setInactivityThreshold(double seconds);
    LongSleepPreference longSleep() const { return longSleep_; }
    void setLongSleep(LongSleepPreference value);
    bool notificationsEnabled() const { return notificationsEnabled_; }
    void setNotificationsEnabled(bool value);
    bool notificationsIncludeSubject() const { return notificationsIncludeSubject_; }
    void setNotificationsIncludeSubject(bool value);
    bool browserTrackingEnabled() const { return browserTrackingEnabled_; }
    void setBrowserTrackingEnabled(bool value);
    bool hostnameTrackingEnabled() const { return hostnameTrackingEnabled_; }
    void setHostnameTrackingEnabled(bool value);
    bool localPDFDetectionEnabled() const { return localPDFDetectionEnabled_; }
    void setLocalPDFDetectionEnabled(bool value);
    bool manualPDFLabelsEnabled() const { return manualPDFLabelsEnabled_; }
    void setManualPDFLabelsEnabled(bool value);
    bool pauseAllBrowserTracking() const { return pauseAllBrowserTracking_; }
    void setPauseAllBrowserTracking(bool value);
    long long onboardingCompletedVersion() const { return onboardingCompletedVersion_; }
    void setOnboardingCompletedVersion(long long value);
    long long onboardingLastStep() const { return onboardingLastStep_; }
    void setOnboardingLastStep(long long value);
    // Normalised: trimmed, single spaces, at most 40 characters.
    const std::string& firstName() const { return firstName_; }
    void setFirstName(std::string_view value);
    // Minutes; 0 is no goal, otherwise 1 ... 720.
    long long dailyStudyGoalMinutes() const { return dailyStudyGoalMinutes_; }
    void setDailyStudyGoalMinutes(long long minutes);
    bool sessionCelebrationsEnabled() const { return sessionCelebrationsEnabled_; }
    void setSessionCelebrationsEnabled(bool value);
    bool insightsAIPhrasingEnabled() const { return insightsAIPhrasingEnabled_; }
    void setInsightsAIPhrasingEnabled(bool value);
    // Always "none"; any assignment stores "none".
    const std::string& insightsAIProviderIdentifier() const {
        return insightsAIProviderIdentifier_;
    }
    void setInsightsAIProviderIdentifier(std::string_view value);
    // The revision of the derived session totals the stored history carries.
    long long derivedRevision() const { return derivedRevision_; }
    void setDerivedRevision(long long value);

    // The once-a-day gate for the daily-goal-complete moment. False without a
    // goal. Otherwise the mark "{era}-{year}-{month}-{day}-{goalMinutes}" of
    // `date`'s day in `calendar` is compared with the stored one: equal gives
    // false, different is stored and gives true. A goal changed on a day
    // already acknowledged therefore allows one more acknowledgement.
    bool acknowledgeDailyGoalIfNeeded(Date date, const LocalCalendar& calendar);

    // The once-per-session gate for the end-of-session celebration: true at
    // most once for a session id, and only with celebrations on and a session
    // that counts for analytics at `now`. Remembers the last 100 sessions.
    bool shouldCelebrate(const recording::StudySession& session, Date now);

    // Removes the stored preferences (every key above but the derived-totals
    // revision, which describes the stored history), the two bookkeeping keys
    // and the receipt options, then reads every property again and tells the
    // observers about each.
    void resetToDefaults();

    Observers::Token addObserver(Observers::Callback callback) {
        return observers_.add(std::move(callback));
    }
    void removeObserver(Observers::Token token) { observers_.remove(token); }

    DefaultsDomain& domain() { return domain_; }

  private:
    void readAll();
    void write(std::string_view key, DefaultsValue value, PreferenceProperty property);
    void writeBool(std::string_view key, bool& member, bool value, PreferenceProperty property);

    DefaultsDomain& domain_;
    insights::SetupTestSessionPredicate isSetupTestSession_;
    Observers observers_;

    bool launchAtLogin_ = false;
    bool startHidden_ = false;
    TallywiseAppearance appearance_ = TallywiseAppearance::system;
    double defaultDuration_ = 1500.0;
    bool rememberLastDuration_ = false;
    std::string defaultSubject_;
    bool rememberLastSubject_ = false;
    std::string defaultGoal_;
    bool rememberLastGoal_ = false;
    recording::StudySessionMode defaultStudyMode_ = recording::StudySessionMode::mixedStudy;
    recording::SessionTimingMode lastTimingMode_ = recording::SessionTimingMode::timer;
    bool hasSeenPassiveStudyIntroduction_ = false;
    std::optional<std::string> globalHotkeyStatusMessage_;
    bool globalHotkeyEnabled_ = false;
    GlobalHotkeyBinding globalHotkey_;
    double passiveStudyPromptThreshold_ = 300.0;
    double inactivityThreshold_ = 90.0;
    LongSleepPreference longSleep_ = LongSleepPreference::tenMinutes;
    bool notificationsEnabled_ = false;
    bool notificationsIncludeSubject_ = false;
    bool browserTrackingEnabled_ = true;
    bool hostnameTrackingEnabled_ = true;
    bool localPDFDetectionEnabled_ = true;
    bool manualPDFLabelsEnabled_ = true;
    bool pauseAllBrowserTracking_ = false;
    long long onboardingCompletedVersion_ = 0;
    long long onboardingLastStep_ = 0;
    std::string firstName_;
    long long dailyStudyGoalMinutes_ = 0;
    bool sessionCelebrationsEnabled_ = true;
    bool insightsAIPhrasingEnabled_ = false;
    std::string insightsAIProviderIdentifier_{"none"};
    long long derivedRevision_ = 0;
};

}  // namespace lumenote::settings
