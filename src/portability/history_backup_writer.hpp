// Writing the stored history into a backup file, one session at a time.
#pragma once

#include <cstddef>
#include <functional>

#include "foundation/atomic_file_writer.hpp"
#include "foundation/result.hpp"
#include "portability/backup_error.hpp"
#include "portability/backup_json_writer.hpp"
#include "recording/recording_store.hpp"
#include "recording/session_history_reader.hpp"

namespace lumenote::portability {

struct WrittenBackup {
    std::size_t sessions = 0;
    std::size_t segments = 0;
};

// Appends the whole document to `writer`: `head`, then every stored session
// in start order with its children and PDF identities (read from `store`
// while `history` walks), then the tail. Only one session is held at a
// time. Fails with historyUnavailable when the store cannot be read and
// writeFailed when the writer fails; `writer` is then left to be abandoned.
// `progress` is told the sessions written so far every so often.
Result<WrittenBackup, TallywiseBackupError> writeHistoryBackup(
    recording::RecordingStore& store, recording::SessionHistoryReader& history,
    const BackupDocumentHead& head, AtomicFileWriter& writer,
    const std::function<void(std::size_t sessionsWritten)>& progress);

}  // namespace lumenote::portability
