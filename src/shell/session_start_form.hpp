// The tray panel's form for a new session: what it starts with (the
// preferences' defaults and remembered values), the request it makes, which
// field a refusal belongs beside, and the one-click start from a template.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/result.hpp"
#include "recording/session_manager.hpp"
#include "settings/preferences_store.hpp"
#include "settings/session_template.hpp"

namespace lumenote::shell {

struct SessionStartForm {
    std::string subject;
    std::string goal;
    recording::SessionTimingMode timingMode = recording::SessionTimingMode::timer;
    // Whole minutes as typed; a value that is not a number is kept as text so
    // that its refusal can be shown.
    std::string durationMinutes = "25";
    recording::StudySessionMode studyMode = recording::StudySessionMode::mixedStudy;
};

// The names the form gives the study modes ("Computer-based", "Mixed
// (computer and paper)", "Offline book study").
std::string_view studyModeTitle(recording::StudySessionMode mode);

// The quick choices offered beside the duration, in minutes.
inline constexpr int kDurationPresetsMinutes[] = {25, 50, 90};

// The form as the preferences fill it: the default (or remembered) subject,
// goal and duration, the last timing mode and the default study mode.
SessionStartForm initialSessionStartForm(const settings::PreferencesStore& preferences);

// Where a refusal is shown.
enum class FormField { subject, goal, duration, wholeForm };

struct FormRefusal {
    FormField field;
    std::string message;
};

// The field a session manager refusal belongs beside.
FormField fieldOfFailure(recording::SessionFailure failure);

// The request the form makes, or the first refusal of its fields (a duration
// that is not a whole number of minutes, then the manager's own checks).
Result<recording::SessionStartRequest, FormRefusal> sessionStartRequest(
    const SessionStartForm& form);

// A template's one-click start: its subject, goal, duration and timing, in
// the default study mode.
recording::SessionStartRequest templateStartRequest(const settings::SessionTemplate& chosen,
                                                    recording::StudySessionMode studyMode);

// The templates offered for one-click starts: enabled ones, favourites
// first, then in the user's order; at most `limit`.
std::vector<const settings::SessionTemplate*> quickStartTemplates(
    const std::vector<settings::SessionTemplate>& templates, std::size_t limit);

// After a start, what the preferences remember of it ("session.remember*").
void rememberStartedSession(settings::PreferencesStore& preferences,
                            const recording::SessionStartRequest& request);

}  // namespace lumenote::shell
