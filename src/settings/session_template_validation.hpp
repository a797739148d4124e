// The rules a session template must meet before it is stored, and the
// sentence the user is shown for each refusal.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "settings/session_template.hpp"

namespace lumenote::settings {

inline constexpr std::size_t kMaximumSessionTemplates = 250;
inline constexpr std::size_t kMaximumTemplateNameCharacters = 80;
inline constexpr std::size_t kMaximumTemplateSubjectCharacters = 200;
inline constexpr std::size_t kMaximumTemplateGoalCharacters = 1000;
inline constexpr double kMinimumTemplateDuration = 60.0;         // 1 minute
inline constexpr double kMaximumTemplateDuration = 43200.0;      // 12 hours
inline constexpr double kMinimumTemplateBreakDuration = 60.0;    // 1 minute
inline constexpr double kMaximumTemplateBreakDuration = 7200.0;  // 2 hours

// The refusals, in the order the store checks them.
enum class SessionTemplateValidationErrorKind {
    readOnly,
    nameRequired,
    subjectRequired,
    nameTooLong,
    subjectTooLong,
    goalTooLong,
    duplicateName,
    invalidDuration,
    invalidBreakDuration,
    invalidDate,
    missingTemplate,
    tooManyTemplates,
    persistenceFailure
};

struct SessionTemplateValidationError {
    SessionTemplateValidationErrorKind kind;
    long long version = 0;  // the newer format version, for `readOnly`

    friend bool operator==(const SessionTemplateValidationError&,
                           const SessionTemplateValidationError&) = default;
};

// The sentence shown for a refusal.
std::string message(const SessionTemplateValidationError& error);

// Names are compared after trimming and ignoring letter case
// (text::caseFolded), so "Deep Work" and "deep work " are the same name.
bool sameTemplateName(std::string_view a, std::string_view b);

// Checks a template's own fields, in order: name and subject present (after
// trimming), name, subject and goal lengths, a name no other template in
// `list` (any with another id) has, duration within 1 minute to 12 hours, a
// break absent or within 1 minute to 2 hours, and every date finite. Returns
// the first refusal.
std::optional<SessionTemplateValidationError> validateSessionTemplate(
    const SessionTemplate& candidate, const std::vector<SessionTemplate>& list);

}  // namespace lumenote::settings
