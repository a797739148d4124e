// Fuzzes the history backup reader: the validation and the session walk a
// restore makes over a file anyone could hand to lumenote-cli restore. The
// first byte chooses the pieces the bytes arrive in, so that every block
// boundary of the scanner is reached. Besides not crashing: the walk must
// agree with the validation on what a valid backup holds, and a valid
// backup written again must validate and read back as the same sessions.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "portability/backup_conversion.hpp"
#include "portability/backup_json_writer.hpp"
#include "portability/backup_reader.hpp"
#include "round_trip.hpp"

namespace lumenote::fuzz {
namespace {

using namespace portability;

// Small bounds, so that every one of them is reached by small inputs.
BackupValidationLimits smallLimits() {
    BackupValidationLimits limits;
    limits.maximumSessions = 8;
    limits.maximumSegments = 24;
    limits.maximumSegmentsPerSession = 12;
    limits.maximumConfirmationsPerSession = 6;
    limits.maximumPDFIdentitiesPerSession = 6;
    limits.maximumApplicationRules = 6;
    limits.maximumWebsiteRules = 6;
    limits.maximumTotalRecords = 60;
    limits.maximumSessionBytes = 8192;
    return limits;
}

Result<BackupValidationReport, TallywiseBackupError> validate(std::string_view document,
                                                              std::size_t piece) {
    return validateBackupDocument(
        [document, piece] { return std::make_unique<MemoryByteSource>(document, piece); },
        smallLimits());
}

std::vector<BackupSession> walk(std::string_view document, std::size_t piece) {
    std::vector<BackupSession> sessions;
    MemoryByteSource source(document, piece);
    auto walked = forEachBackupSession(
        source, smallLimits(), [&](BackupSession& session) -> Result<void, TallywiseBackupError> {
            BackupSession kept = session;
            // A list of confirmations written as absent and one written
            // empty mean the same; the writer always writes the list.
            if (!kept.confirmedNoInputIntervals) {
                kept.confirmedNoInputIntervals.emplace();
            }
            sessions.push_back(std::move(kept));
            return {};
        });
    check(walked.ok(), "backup", "a validated backup could not be walked", document);
    return sessions;
}

std::string write(const BackupDocumentSummary& document,
                  const std::vector<BackupSession>& sessions) {
    std::string text;
    appendDocumentHead(
        text, BackupDocumentHead{document.appVersion, document.createdAt, document.preferences,
                                 document.applicationRules, document.websiteRules});
    for (std::size_t index = 0; index < sessions.size(); ++index) {
        const RestoredSession stored = storedRecords(BackupSession(sessions[index]));
        appendSession(text, stored.session, stored.pdfIdentities, index == 0);
    }
    appendDocumentTail(text);
    return text;
}

}  // namespace
}  // namespace lumenote::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lumenote::fuzz;
    if (size == 0) {
        return 0;
    }
    const std::size_t piece = std::size_t{data[0]} % 64 + 1;
    const std::string_view document(reinterpret_cast<const char*>(data) + 1, size - 1);

    const auto report = validate(document, piece);
    if (!report) {
        check(!report.error().message().empty(), "backup", "an error without a message", document);
        return 0;
    }
    const std::vector<BackupSession> sessions = walk(document, piece);
    std::size_t segments = 0;
    for (const BackupSession& session : sessions) {
        segments += session.segments.size();
    }
    check(sessions.size() == report->document.sessionCount && segments == report->segmentCount,
          "backup", "the walk and the validation count different records", document);

    const std::string written = write(report->document, sessions);
    const auto again = validate(written, piece);
    check(again.ok(), "backup", "a valid backup written again does not validate", written);
    check(again->document.preferences == report->document.preferences &&
              again->document.applicationRules == report->document.applicationRules &&
              again->document.websiteRules == report->document.websiteRules,
          "backup", "the metadata read back differs", written);
    const std::vector<BackupSession> reread = walk(written, piece);
    check(reread == sessions, "backup", "the sessions read back differ", written);
    check(write(again->document, reread) == written, "backup",
          "writing the reread backup changed it", written);
    return 0;
}
