// SessionTemplate: a saved set of session settings a session can start from,
// the document that holds the templates, and that document's JSON form.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/uuid.hpp"
#include "recording/enumerations.hpp"

namespace lumenote::settings {

struct SessionTemplate {
    Uuid id;
    std::string name;                              // unique display name, 1 to 80 characters
    std::string subject;                           // 1 to 200 characters
    double duration = 0;                           // planned seconds, 60 to 43,200
    std::optional<std::string> timingModeStorage;  // "timer" or "open_ended"
    std::string defaultGoal;                       // at most 1,000 characters, may be empty
    std::optional<double> breakDuration;           // seconds, 60 to 7,200; absent for no break
    Date createdDate;
    Date modifiedDate;
    long long manualSortOrder = 0;  // position chosen by the user; lower comes first
    std::optional<Date> lastUsedDate;
    bool isEnabled = true;
    bool isFavorite = false;

    // An empty or unknown stored mode is `timer`.
    recording::SessionTimingMode timingMode() const;
    void setTimingMode(recording::SessionTimingMode mode);

    friend bool operator==(const SessionTemplate&, const SessionTemplate&) = default;
};

// What the user chooses when creating or editing a template.
struct SessionTemplateDraft {
    std::string name;
    std::string subject;
    std::string defaultGoal;
    double duration = 0;
    recording::SessionTimingMode timingMode = recording::SessionTimingMode::timer;
    std::optional<double> breakDuration;

    // The editable fields of an existing template.
    static SessionTemplateDraft of(const SessionTemplate& sessionTemplate);
};

inline constexpr long long kCurrentSessionTemplateFormatVersion = 1;

struct SessionTemplateDocument {
    long long formatVersion = kCurrentSessionTemplateFormatVersion;
    std::vector<SessionTemplate> templates;

    friend bool operator==(const SessionTemplateDocument&,
                           const SessionTemplateDocument&) = default;
};

// The JSON text of a document: {"formatVersion": 1, "templates": [...]} with
// each template's fields under their own names, ids as upper-case UUID text
// and dates as ISO 8601 UTC text with milliseconds. Absent optional fields
// are left out.
std::string encodeSessionTemplateDocument(const SessionTemplateDocument& document);

// Decodes a whole document; nullopt when it is not valid JSON, a required
// field is missing or of the wrong type (an integer must fit a long long), an
// id or date cannot be read, or two templates share an id. Unknown members are
// ignored.
std::optional<SessionTemplateDocument> decodeSessionTemplateDocument(std::string_view text);

}  // namespace lumenote::settings
