#include "settings/session_template_validation.hpp"

#include <cmath>

#include "foundation/text.hpp"

namespace lumenote::settings {

namespace {

using Kind = SessionTemplateValidationErrorKind;

std::optional<SessionTemplateValidationError> refusal(Kind kind) {
    return SessionTemplateValidationError{kind};
}

bool finite(Date date) {
    return std::isfinite(date.secondsSinceReferenceDate);
}

}  // namespace

std::string message(const SessionTemplateValidationError& error) {
    switch (error.kind) {
        case Kind::readOnly:
            return "These templates were created by a newer Lumenote format (version " +
                   std::to_string(error.version) + ") and are read-only in this version.";
        case Kind::nameRequired:
            return "Add a template name.";
        case Kind::subjectRequired:
            return "Add a subject for sessions started from this template.";
        case Kind::nameTooLong:
            return "Keep the template name to 80 characters or fewer.";
        case Kind::subjectTooLong:
            return "Keep the subject to 200 characters or fewer.";
        case Kind::goalTooLong:
            return "Keep the default goal to 1,000 characters or fewer.";
        case Kind::duplicateName:
            return "Choose a distinct template name so it is clear which template you are using.";
        case Kind::invalidDuration:
            return "Choose a duration from 1 minute to 12 hours.";
        case Kind::invalidBreakDuration:
            return "Choose a break from 1 minute to 2 hours, or turn the break off.";
        case Kind::invalidDate:
            return "The template contains an invalid date.";
        case Kind::missingTemplate:
            return "That template is no longer available.";
        case Kind::tooManyTemplates:
            return "Lumenote supports up to 250 session templates.";
        case Kind::persistenceFailure:
            return "Lumenote could not save the template. Your previous templates were kept "
                   "unchanged.";
    }
    return {};
}

bool sameTemplateName(std::string_view a, std::string_view b) {
    return text::caseFolded(text::trimmed(a)) == text::caseFolded(text::trimmed(b));
}

std::optional<SessionTemplateValidationError> validateSessionTemplate(
    const SessionTemplate& candidate, const std::vector<SessionTemplate>& list) {
    const std::string name = text::trimmed(candidate.name);
    const std::string subject = text::trimmed(candidate.subject);
    if (name.empty()) {
        return refusal(Kind::nameRequired);
    }
    if (subject.empty()) {
        return refusal(Kind::subjectRequired);
    }
    if (text::characterCount(name) > kMaximumTemplateNameCharacters) {
        return refusal(Kind::nameTooLong);
    }
    if (text::characterCount(subject) > kMaximumTemplateSubjectCharacters) {
        return refusal(Kind::subjectTooLong);
    }
    if (text::characterCount(text::trimmed(candidate.defaultGoal)) >
        kMaximumTemplateGoalCharacters) {
        return refusal(Kind::goalTooLong);
    }
    for (const SessionTemplate& other : list) {
        if (other.id != candidate.id && sameTemplateName(other.name, name)) {
            return refusal(Kind::duplicateName);
        }
    }
    // Written so that NaN fails every bound.
    if (!(candidate.duration >= kMinimumTemplateDuration &&
          candidate.duration <= kMaximumTemplateDuration)) {
        return refusal(Kind::invalidDuration);
    }
    if (candidate.breakDuration && !(*candidate.breakDuration >= kMinimumTemplateBreakDuration &&
                                     *candidate.breakDuration <= kMaximumTemplateBreakDuration)) {
        return refusal(Kind::invalidBreakDuration);
    }
    if (!finite(candidate.createdDate) || !finite(candidate.modifiedDate) ||
        (candidate.lastUsedDate && !finite(*candidate.lastUsedDate))) {
        return refusal(Kind::invalidDate);
    }
    return std::nullopt;
}

}  // namespace lumenote::settings
