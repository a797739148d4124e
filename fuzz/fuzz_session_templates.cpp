// Fuzzes the session templates file as the templates repository reads it:
// the format version read on its own first (loadVersionedJson's rule), then
// the whole document. A document that decodes must be written back into one
// that decodes to the same templates (dates to the millisecond) and writes
// the same bytes again.
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "foundation/private_file.hpp"
#include "round_trip.hpp"
#include "settings/session_template.hpp"

namespace lumenote::fuzz {
namespace {

using settings::SessionTemplate;
using settings::SessionTemplateDocument;

Date toMilliseconds(Date date) {
    return Date::fromMillisecondsSince1970(date.millisecondsSince1970());
}

// The document with every date rounded to the millisecond, the precision the
// file carries.
SessionTemplateDocument toMilliseconds(SessionTemplateDocument document) {
    for (SessionTemplate& entry : document.templates) {
        entry.createdDate = toMilliseconds(entry.createdDate);
        entry.modifiedDate = toMilliseconds(entry.modifiedDate);
        if (entry.lastUsedDate) {
            entry.lastUsedDate = toMilliseconds(*entry.lastUsedDate);
        }
    }
    return document;
}

void fuzzTemplates(std::string_view bytes) {
    const auto version = formatVersionOf(bytes, "formatVersion");
    const auto decoded = settings::decodeSessionTemplateDocument(bytes);
    if (!decoded) {
        return;
    }
    check(version.has_value() && *version == decoded->formatVersion, "templates",
          "the document's version differs from the version read on its own", bytes);
    std::set<Uuid> ids;
    for (const SessionTemplate& entry : decoded->templates) {
        check(ids.insert(entry.id).second, "templates", "two templates share an id", bytes);
    }
    const std::string written = settings::encodeSessionTemplateDocument(*decoded);
    const auto reread = settings::decodeSessionTemplateDocument(written);
    check(reread.has_value(), "templates",
          "a decoded document was written as one that does not decode", written);
    check(settings::encodeSessionTemplateDocument(*reread) == written, "templates",
          "writing the reread document changed it", written);
    check(toMilliseconds(*reread) == toMilliseconds(*decoded), "templates",
          "the written document reads back as other templates", written);
    check(formatVersionOf(written, "formatVersion") == decoded->formatVersion, "templates",
          "the written document's version reads as another", written);
}

}  // namespace
}  // namespace lumenote::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lumenote::fuzz::fuzzTemplates(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
