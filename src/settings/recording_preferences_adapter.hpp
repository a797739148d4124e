// The preferences store seen as the settings the recorder reads.
#pragma once

#include "recording/recording_preferences.hpp"
#include "settings/preferences_store.hpp"

namespace lumenote::settings {

class PreferencesForRecording final : public recording::RecordingPreferences {
  public:
    explicit PreferencesForRecording(PreferencesStore& store) : store_(store) {}

    double inactivityThreshold() const override { return store_.inactivityThreshold(); }
    double passiveStudyPromptThreshold() const override {
        return store_.passiveStudyPromptThreshold();
    }
    std::optional<double> longSleepThreshold() const override;
    long long derivedRevision() const override { return store_.derivedRevision(); }
    void setDerivedRevision(long long revision) override { store_.setDerivedRevision(revision); }
    void resetApplicationPreferences() override { store_.resetToDefaults(); }
    bool shouldCelebrate(const recording::StudySession& session, Date now) override {
        return store_.shouldCelebrate(session, now);
    }
    long long dailyStudyGoalMinutes() const override { return store_.dailyStudyGoalMinutes(); }
    bool acknowledgeDailyGoalIfNeeded(Date date, const LocalCalendar& calendar) override {
        return store_.acknowledgeDailyGoalIfNeeded(date, calendar);
    }
    bool notificationsEnabled() const override { return store_.notificationsEnabled(); }
    bool notificationsIncludeSubject() const override {
        return store_.notificationsIncludeSubject();
    }

  private:
    PreferencesStore& store_;
};

}  // namespace lumenote::settings
