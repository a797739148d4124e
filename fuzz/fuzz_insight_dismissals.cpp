// Fuzzes the insight dismissals file as its repository reads it: the format
// version read on its own first, then the records. A document that decodes
// must be written back into one that decodes to the same records (dates to
// the millisecond), of the version it was read with, and writes the same
// bytes again; every record it holds is found by containsDismissal.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/private_file.hpp"
#include "insights/insight_dismissal_document.hpp"
#include "round_trip.hpp"

namespace lumenote::fuzz {
namespace {

using insights::InsightDismissalDocument;
using insights::InsightDismissalRecord;

// The document with every date rounded to the millisecond, the precision the
// file carries.
InsightDismissalDocument toMilliseconds(InsightDismissalDocument document) {
    for (InsightDismissalRecord& record : document.records) {
        record.dismissedAt =
            Date::fromMillisecondsSince1970(record.dismissedAt.millisecondsSince1970());
    }
    return document;
}

void fuzzDismissals(std::string_view bytes) {
    // The repository decodes only a document whose version reads as 1.
    if (formatVersionOf(bytes, "formatVersion") != insights::kInsightDismissalFormatVersion) {
        return;
    }
    const auto decoded = insights::decodeInsightDismissalDocument(bytes);
    if (!decoded) {
        return;
    }
    for (const InsightDismissalRecord& record : decoded->records) {
        check(!record.key.insightID.empty() && !record.key.evidenceRevision.empty(), "dismissals",
              "a record without an insight id or evidence revision was accepted", bytes);
        check(insights::containsDismissal(decoded->records, record.key.insightID,
                                          record.key.evidenceRevision),
              "dismissals", "a decoded record is not found", bytes);
    }
    const std::string written = insights::encodeInsightDismissalDocument(*decoded);
    check(formatVersionOf(written, "formatVersion") == insights::kInsightDismissalFormatVersion,
          "dismissals", "the written document's version does not read as 1", written);
    const auto reread = insights::decodeInsightDismissalDocument(written);
    check(reread.has_value(), "dismissals",
          "a decoded document was written as one that does not decode", written);
    check(insights::encodeInsightDismissalDocument(*reread) == written, "dismissals",
          "writing the reread document changed it", written);
    check(toMilliseconds(*reread) == toMilliseconds(*decoded), "dismissals",
          "the written document reads back as other records", written);
}

}  // namespace
}  // namespace lumenote::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lumenote::fuzz::fuzzDismissals(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
