// The personal bests a finished session can set, shown with its summary, and
// the check that finds them. The rules live with the analytics (insights/
// personal_bests.hpp); the recorder only asks when a session ends.
#pragma once

#include <string_view>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "foundation/store_error.hpp"
#include "recording/session_records.hpp"

namespace lumenote::recording {

// In the order in which a summary lists them.
enum class PersonalBestKind {
    dailyGoalComplete,
    longestFocus,
    highestFocusScore,
    longestSession,
};

struct PersonalBest {
    PersonalBestKind kind = PersonalBestKind::longestSession;
    // The session's own figure: seconds of study that day, of the longest
    // Focused run or of timer time, or the focus score (a percentage).
    double value = 0.0;

    friend bool operator==(const PersonalBest&, const PersonalBest&) = default;
};

// "Daily goal complete", "New longest focus", "New highest focus score",
// "New longest session".
std::string_view personalBestTitle(PersonalBestKind kind);

class PersonalBestsCheck {
  public:
    virtual ~PersonalBestsCheck() = default;

    // The bests `finished` (just ended and saved, with its segments and
    // confirmations) sets against the rest of the stored history at `now`,
    // in PersonalBestKind order. May record that the daily goal was
    // acknowledged. Fails with the store's error, having acknowledged nothing.
    virtual Result<std::vector<PersonalBest>, StoreError> personalBestsOf(
        const StudySession& finished, Date now) = 0;
};

}  // namespace lumenote::recording
