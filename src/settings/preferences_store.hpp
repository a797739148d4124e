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
// "updates.checkEnabled" (only a stored true turns it on),
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

// The stored settings as this process holds them.
struct PreferenceValues {
    bool launchAtLogin = false;
    bool startHidden = false;
    TallywiseAppearance appearance = TallywiseAppearance::system;
    double defaultDuration = 1500.0;
    bool rememberLastDuration = false;
    std::string defaultSubject;
    bool rememberLastSubject = false;
    std::string defaultGoal;
    bool rememberLastGoal = false;
    recording::StudySessionMode defaultStudyMode = recording::StudySessionMode::mixedStudy;
    recording::SessionTimingMode lastTimingMode = recording::SessionTimingMode::timer;
    bool hasSeenPassiveStudyIntroduction = false;
    bool globalHotkeyEnabled = false;
    GlobalHotkeyBinding globalHotkey;
    double passiveStudyPromptThreshold = 300.0;
    double inactivityThreshold = 90.0;
    LongSleepPreference longSleep = LongSleepPreference::tenMinutes;
    bool notificationsEnabled = false;
    bool notificationsIncludeSubject = false;
    bool browserTrackingEnabled = true;
    bool hostnameTrackingEnabled = true;
    bool localPDFDetectionEnabled = true;
    bool manualPDFLabelsEnabled = true;
    bool pauseAllBrowserTracking = false;
    long long onboardingCompletedVersion = 0;
    long long onboardingLastStep = 0;
    std::string firstName;
    long long dailyStudyGoalMinutes = 0;
    bool sessionCelebrationsEnabled = true;
    bool insightsAIPhrasingEnabled = false;
    std::string insightsAIProviderIdentifier{"none"};
    bool updatesCheckEnabled = false;
    std::string updatesFeedAddress;
    long long derivedRevision = 0;

    friend bool operator==(const PreferenceValues&, const PreferenceValues&) = default;
};

class PreferencesStore {
  public:
    using Observers = ObserverList<PreferenceProperty>;

    // Reads every key in property order; writes nothing. The domain must
    // outlive the store.
    explicit PreferencesStore(DefaultsDomain& domain,
                              insights::SetupTestSessionPredicate isSetupTestSession = {});

    bool launchAtLogin() const { return values_.launchAtLogin; }
    void setLaunchAtLogin(bool value);
    bool startHidden() const { return values_.startHidden; }
    void setStartHidden(bool value);
    TallywiseAppearance appearance() const { return values_.appearance; }
    void setAppearance(TallywiseAppearance value);
    // Seconds, 60 ... 86400.
    double defaultDuration() const { return values_.defaultDuration; }
    void setDefaultDuration(double seconds);
    bool rememberLastDuration() const { return values_.rememberLastDuration; }
    void setRememberLastDuration(bool value);
    const std::string& defaultSubject() const { return values_.defaultSubject; }
    void setDefaultSubject(std::string value);
    bool rememberLastSubject() const { return values_.rememberLastSubject; }
    void setRememberLastSubject(bool value);
    const std::string& defaultGoal() const { return values_.defaultGoal; }
    void setDefaultGoal(std::string value);
    bool rememberLastGoal() const { return values_.rememberLastGoal; }
    void setRememberLastGoal(bool value);
    recording::StudySessionMode defaultStudyMode() const { return values_.defaultStudyMode; }
    void setDefaultStudyMode(recording::StudySessionMode value);
    recording::SessionTimingMode lastTimingMode() const { return values_.lastTimingMode; }
    void setLastTimingMode(recording::SessionTimingMode value);
    bool hasSeenPassiveStudyIntroduction() const { return values_.hasSeenPassiveStudyIntroduction; }
    void setHasSeenPassiveStudyIntroduction(bool value);
    // Status text of the shortcut service; never stored.
    const std::optional<std::string>& globalHotkeyStatusMessage() const {
        return globalHotkeyStatusMessage_;
    }
    void setGlobalHotkeyStatusMessage(std::optional<std::string> value);
    bool globalHotkeyEnabled() const { return values_.globalHotkeyEnabled; }
    void setGlobalHotkeyEnabled(bool value);
    // Written as two integers. An unusable binding is held and written as
    // given (the shortcut service refuses to register it); it reads back as
    // the default.
    const GlobalHotkeyBinding& globalHotkey() const { return values_.globalHotkey; }
    void setGlobalHotkey(GlobalHotkeyBinding value);
    // Seconds, 300 ... 3600.
    double passiveStudyPromptThreshold() const { return values_.passiveStudyPromptThreshold; }
    void setPassiveStudyPromptThreshold(double seconds);
    // Seconds, 90 ... 1800.
    double inactivityThreshold() const { return values_.inactivityThreshold; }
    void setInactivityThreshold(double seconds);
    LongSleepPreference longSleep() const { return values_.longSleep; }
    void setLongSleep(LongSleepPreference value);
    bool notificationsEnabled() const { return values_.notificationsEnabled; }
    void setNotificationsEnabled(bool value);
    bool notificationsIncludeSubject() const { return values_.notificationsIncludeSubject; }
    void setNotificationsIncludeSubject(bool value);
    bool browserTrackingEnabled() const { return values_.browserTrackingEnabled; }
    void setBrowserTrackingEnabled(bool value);
    bool hostnameTrackingEnabled() const { return values_.hostnameTrackingEnabled; }
    void setHostnameTrackingEnabled(bool value);
    bool localPDFDetectionEnabled() const { return values_.localPDFDetectionEnabled; }
    void setLocalPDFDetectionEnabled(bool value);
    bool manualPDFLabelsEnabled() const { return values_.manualPDFLabelsEnabled; }
    void setManualPDFLabelsEnabled(bool value);
    bool pauseAllBrowserTracking() const { return values_.pauseAllBrowserTracking; }
    void setPauseAllBrowserTracking(bool value);
    long long onboardingCompletedVersion() const { return values_.onboardingCompletedVersion; }
    void setOnboardingCompletedVersion(long long value);
    long long onboardingLastStep() const { return values_.onboardingLastStep; }
    void setOnboardingLastStep(long long value);
    // Normalised: trimmed, single spaces, at most 40 characters.
    const std::string& firstName() const { return values_.firstName; }
    void setFirstName(std::string_view value);
    // Minutes; 0 is no goal, otherwise 1 ... 720.
    long long dailyStudyGoalMinutes() const { return values_.dailyStudyGoalMinutes; }
    void setDailyStudyGoalMinutes(long long minutes);
    bool sessionCelebrationsEnabled() const { return values_.sessionCelebrationsEnabled; }
    void setSessionCelebrationsEnabled(bool value);
    bool insightsAIPhrasingEnabled() const { return values_.insightsAIPhrasingEnabled; }
    void setInsightsAIPhrasingEnabled(bool value);
    // Always "none"; any assignment stores "none".
    const std::string& insightsAIProviderIdentifier() const {
        return values_.insightsAIProviderIdentifier;
    }
    void setInsightsAIProviderIdentifier(std::string_view value);
    // Off by default: no update check contacts anything until this is on.
    bool updatesCheckEnabled() const { return values_.updatesCheckEnabled; }
    void setUpdatesCheckEnabled(bool value);
    // Empty: the address compiled into the build. Held and written trimmed;
    // whether it is https:// is judged when a check runs.
    const std::string& updatesFeedAddress() const { return values_.updatesFeedAddress; }
    void setUpdatesFeedAddress(std::string_view value);
    // The revision of the derived session totals the stored history carries.
    long long derivedRevision() const { return values_.derivedRevision; }
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

    // Reads every property again when another process (the command line, the
    // other front end) changed the stored settings, and tells the observers
    // about each property whose value differs from what this store held, in
    // property order. The hotkey status message is this process's own and is
    // kept. Cheap enough to call every second: without an outside change it
    // costs one look at the domain.
    void adoptChangesMadeElsewhere();

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

    std::optional<std::string> globalHotkeyStatusMessage_;
    PreferenceValues values_;
};

}  // namespace lumenote::settings
