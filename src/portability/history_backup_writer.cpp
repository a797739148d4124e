#include "portability/history_backup_writer.hpp"

#include <optional>
#include <string>

#include "portability/backup_reader.hpp"

namespace lumenote::portability {

Result<WrittenBackup, TallywiseBackupError> writeHistoryBackup(
    recording::RecordingStore& store, recording::SessionHistoryReader& history,
    const BackupDocumentHead& head, AtomicFileWriter& writer,
    const std::function<void(std::size_t sessionsWritten)>& progress) {
    std::string text;
    appendDocumentHead(text, head);
    if (!writer.append(text)) {
        return fail(backupError(TallywiseBackupFailure::writeFailed));
    }
    WrittenBackup written;
    std::optional<TallywiseBackupError> failure;
    auto walked = history.forEachSession(
        recording::SessionWalkQuery{.includeChildren = true},
        [&](const recording::StudySession& session) {
            auto pdfIdentities = store.pdfIdentities(session.id);
            if (!pdfIdentities) {
                failure = historyUnavailable(pdfIdentities.error());
                return false;
            }
            text.clear();
            appendSession(text, session, *pdfIdentities, written.sessions == 0);
            if (!writer.append(text)) {
                failure = backupError(TallywiseBackupFailure::writeFailed);
                return false;
            }
            ++written.sessions;
            written.segments += session.segments.size();
            if (progress && written.sessions % kProgressInterval == 0) {
                progress(written.sessions);
            }
            return true;
        });
    if (failure) {
        return fail(std::move(*failure));
    }
    if (!walked) {
        return fail(historyUnavailable(walked.error()));
    }
    text.clear();
    appendDocumentTail(text);
    if (!writer.append(text)) {
        return fail(backupError(TallywiseBackupFailure::writeFailed));
    }
    return written;
}

}  // namespace lumenote::portability
