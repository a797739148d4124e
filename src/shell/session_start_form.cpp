#include "shell/session_start_form.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "foundation/text.hpp"

namespace lumenote::shell {

namespace {

constexpr std::string_view kDurationNotANumber = "Enter the duration as whole minutes.";

}  // namespace

std::string_view studyModeTitle(recording::StudySessionMode mode) {
    switch (mode) {
        case recording::StudySessionMode::computerBased:
            return "Computer-based";
        case recording::StudySessionMode::mixedStudy:
            return "Mixed (computer and paper)";
        case recording::StudySessionMode::offlineBookStudy:
            return "Offline book study";
    }
    return {};
}

SessionStartForm initialSessionStartForm(const settings::PreferencesStore& preferences) {
    SessionStartForm form;
    form.subject = preferences.defaultSubject();
    form.goal = preferences.defaultGoal();
    form.timingMode = preferences.lastTimingMode();
    form.durationMinutes =
        std::to_string(static_cast<long long>(std::lround(preferences.defaultDuration() / 60.0)));
    form.studyMode = preferences.defaultStudyMode();
    return form;
}

FormField fieldOfFailure(recording::SessionFailure failure) {
    switch (failure) {
        case recording::SessionFailure::subjectMissing:
        case recording::SessionFailure::subjectEmpty:
        case recording::SessionFailure::subjectTooLong:
            return FormField::subject;
        case recording::SessionFailure::goalTooLong:
            return FormField::goal;
        case recording::SessionFailure::invalidDuration:
            return FormField::duration;
        default:
            return FormField::wholeForm;
    }
}

Result<recording::SessionStartRequest, FormRefusal> sessionStartRequest(
    const SessionStartForm& form) {
    recording::SessionStartRequest request;
    request.subject = form.subject;
    request.goal = form.goal;
    request.timingMode = form.timingMode;
    request.studyMode = form.studyMode;
    if (form.timingMode == recording::SessionTimingMode::timer) {
        const std::string minutes = text::trimmed(form.durationMinutes);
        long long value = 0;
        const auto [end, error] =
            std::from_chars(minutes.data(), minutes.data() + minutes.size(), value);
        if (minutes.empty() || error != std::errc{} || end != minutes.data() + minutes.size()) {
            return fail(FormRefusal{FormField::duration, std::string(kDurationNotANumber)});
        }
        request.plannedDuration = static_cast<double>(value) * 60.0;
    }
    if (auto refused = recording::SessionManager::checkStartRequest(request); !refused.ok()) {
        return fail(
            FormRefusal{fieldOfFailure(refused.error().failure), refused.error().message()});
    }
    return request;
}

recording::SessionStartRequest templateStartRequest(const settings::SessionTemplate& chosen,
                                                    recording::StudySessionMode studyMode) {
    recording::SessionStartRequest request;
    request.subject = chosen.subject;
    request.goal = chosen.defaultGoal;
    request.plannedDuration = chosen.duration;
    request.timingMode = chosen.timingMode();
    request.studyMode = studyMode;
    request.templateID = chosen.id;
    return request;
}

std::vector<const settings::SessionTemplate*> quickStartTemplates(
    const std::vector<settings::SessionTemplate>& templates, std::size_t limit) {
    std::vector<const settings::SessionTemplate*> offered;
    for (const settings::SessionTemplate& candidate : templates) {
        if (candidate.isEnabled) {
            offered.push_back(&candidate);
        }
    }
    std::stable_sort(
        offered.begin(), offered.end(),
        [](const settings::SessionTemplate* left, const settings::SessionTemplate* right) {
            if (left->isFavorite != right->isFavorite) {
                return left->isFavorite;
            }
            return left->manualSortOrder < right->manualSortOrder;
        });
    if (offered.size() > limit) {
        offered.resize(limit);
    }
    return offered;
}

void rememberStartedSession(settings::PreferencesStore& preferences,
                            const recording::SessionStartRequest& request) {
    preferences.setLastTimingMode(request.timingMode);
    if (preferences.rememberLastSubject()) {
        preferences.setDefaultSubject(text::trimmed(request.subject));
    }
    if (preferences.rememberLastGoal()) {
        preferences.setDefaultGoal(request.goal);
    }
    if (preferences.rememberLastDuration() &&
        request.timingMode == recording::SessionTimingMode::timer) {
        preferences.setDefaultDuration(request.plannedDuration);
    }
}

}  // namespace lumenote::shell
