// The settings the recorder reads while it runs. The preferences store
// implements this (settings/ builds on recording/, never the other way), so
// the recorder always sees the current, clamped values.
#pragma once

#include <optional>

#include "foundation/dates.hpp"
#include "recording/session_records.hpp"

namespace lumenote::recording {

class RecordingPreferences {
  public:
    virtual ~RecordingPreferences() = default;

    // Seconds without input after which a stretch counts as no input.
    virtual double inactivityThreshold() const = 0;
    // Seconds of no input after which returning raises the question.
    virtual double passiveStudyPromptThreshold() const = 0;
    // Seconds of sleep that pause the session; nullopt when it never does.
    virtual std::optional<double> longSleepThreshold() const = 0;
    // The revision of derived totals the stored sessions carry.
    virtual long long derivedRevision() const = 0;
    virtual void setDerivedRevision(long long revision) = 0;
    // Puts the application's and the receipt's preferences back to their
    // defaults (the data reset).
    virtual void resetApplicationPreferences() = 0;
    // The once-per-session gate of the end-of-session celebration.
    virtual bool shouldCelebrate(const StudySession& session, Date now) = 0;
    // Minutes of study the user aims for each day; 0 when no goal is set.
    virtual long long dailyStudyGoalMinutes() const = 0;
    // The once-per-day (and per goal) gate of the daily-goal-complete moment:
    // true the first time it is asked for `date`'s day in `calendar`.
    virtual bool acknowledgeDailyGoalIfNeeded(Date date, const LocalCalendar& calendar) = 0;
    // Whether the recorder may post notifications at all; off, it posts none.
    virtual bool notificationsEnabled() const = 0;
    // Whether a notification about a session may name its subject.
    virtual bool notificationsIncludeSubject() const = 0;
};

}  // namespace lumenote::recording
