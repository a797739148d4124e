// StudyStateEdit: the last change of study state made to a stretch of a
// session, kept so that it can be described and undone.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/dates.hpp"
#include "foundation/uuid.hpp"
#include "recording/enumerations.hpp"

namespace lumenote::recording {

// A relabelling of [startDate, endDate]. An empty state means unconfirmed: an
// empty `newState` returned the range to unconfirmed, an empty
// `previousState` means the range was unconfirmed before (or held more than
// one state; see SessionStudyStateEditor::applyEdit). Undoing the edit is
// applying `previousState` over the same range.
struct StudyStateEdit {
    Uuid id;
    Uuid sessionID;
    Date startDate;
    Date endDate;
    std::optional<ConfirmedStudyState> previousState;
    std::optional<ConfirmedStudyState> newState;

    friend bool operator==(const StudyStateEdit&, const StudyStateEdit&) = default;
};

// What the interface appends to a description when it offers the undo.
inline constexpr std::string_view kStudyStateEditUndoSuffix = ". Undo is available.";

// A length of time as the edit descriptions show it, from `seconds` rounded
// half away from zero to whole seconds (negative or not finite counts 0):
//   under one minute: whole seconds, "0 s", "45 s";
//   from one minute: whole minutes, rounded half away from zero, as "1 min",
//   "25 min", "1 h", "1 h 5 min", "26 h 40 min" (hours are not cut into days).
std::string formatStudyStateEditDuration(double seconds);

// "25 min marked as Studying away from Mac", "1 h 5 min marked as Break" or
// "45 s returned to Unconfirmed", with the length of the edit's range.
std::string studyStateEditDescription(const StudyStateEdit& edit);

}  // namespace lumenote::recording
