// What the Sessions section of the settings shows of a session template, and
// how the template editor's entries become a draft for the template store.
#pragma once

#include <optional>
#include <string>

#include "foundation/result.hpp"
#include "settings/session_template.hpp"

namespace lumenote::ui::models {

// "Chemistry · 50 min, break 10 min": the line under a template's name; an
// open-ended template says "open end" instead of its length, and a disabled
// one ends in " · hidden from the panel".
std::string templateDetailText(const settings::SessionTemplate& sessionTemplate);

// What the template editor holds: texts as typed and the numbers' texts.
struct TemplateEntry {
    std::string name;
    std::string subject;
    std::string goal;
    std::string durationMinutes;
    bool openEnded = false;
    bool hasBreak = false;
    std::string breakMinutes;
};

// The editor's fields for an existing template (an empty entry with 25
// minutes and a 5-minute break offered when there is none).
TemplateEntry templateEntry(const std::optional<settings::SessionTemplate>& sessionTemplate);

// The draft the entry stands for, with minutes turned into seconds; the
// store checks the rest. Refused with "Enter the duration in minutes." or
// "Enter the break in minutes." when a number is not one.
Result<settings::SessionTemplateDraft, std::string> templateDraft(const TemplateEntry& entry);

}  // namespace lumenote::ui::models
