#include "ui/models/session_settings.hpp"

#include <fmt/format.h>

#include "shell/duration_text.hpp"
#include "ui/models/number_entry.hpp"

namespace lumenote::ui::models {

namespace {

std::string minutesText(double seconds) {
    return fmt::format("{:g}", seconds / 60.0);
}

}  // namespace

std::string templateDetailText(const settings::SessionTemplate& sessionTemplate) {
    std::string text = sessionTemplate.subject + " \u00b7 ";
    text += sessionTemplate.timingMode() == recording::SessionTimingMode::openEnded
                ? std::string("open end")
                : shell::durationText(sessionTemplate.duration);
    if (sessionTemplate.breakDuration) {
        text += ", break " + shell::durationText(*sessionTemplate.breakDuration);
    }
    if (!sessionTemplate.isEnabled) {
        text += " \u00b7 hidden from the panel";
    }
    return text;
}

TemplateEntry templateEntry(const std::optional<settings::SessionTemplate>& sessionTemplate) {
    if (!sessionTemplate) {
        return {.durationMinutes = "25", .breakMinutes = "5"};
    }
    return {
        .name = sessionTemplate->name,
        .subject = sessionTemplate->subject,
        .goal = sessionTemplate->defaultGoal,
        .durationMinutes = minutesText(sessionTemplate->duration),
        .openEnded = sessionTemplate->timingMode() == recording::SessionTimingMode::openEnded,
        .hasBreak = sessionTemplate->breakDuration.has_value(),
        .breakMinutes = minutesText(sessionTemplate->breakDuration.value_or(300.0)),
    };
}

Result<settings::SessionTemplateDraft, std::string> templateDraft(const TemplateEntry& entry) {
    const std::optional<double> duration = parsedNumber(entry.durationMinutes);
    if (!duration) {
        return fail(std::string("Enter the duration in minutes."));
    }
    settings::SessionTemplateDraft draft{
        .name = entry.name,
        .subject = entry.subject,
        .defaultGoal = entry.goal,
        .duration = *duration * 60.0,
        .timingMode = entry.openEnded ? recording::SessionTimingMode::openEnded
                                      : recording::SessionTimingMode::timer,
    };
    if (entry.hasBreak) {
        const std::optional<double> pause = parsedNumber(entry.breakMinutes);
        if (!pause) {
            return fail(std::string("Enter the break in minutes."));
        }
        draft.breakDuration = *pause * 60.0;
    }
    return draft;
}

}  // namespace lumenote::ui::models
