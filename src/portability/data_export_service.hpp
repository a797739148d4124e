// DataExportService: the stored sessions, all of them or one, written as the
// JSON document, one of the two CSV tables, or a calendar. Export is
// read-only: it reads through the store's roles and never changes a session.
//
// Sessions come in start order (then id order for equal starts), the order
// of the store's walks; each session's segments in start order, then id.
// Each session is read, written and let go before the next, so that memory
// stays flat however long the history; the segment table walks the segments
// alone, which needs no calculation. The bytes go to a sink in large blocks.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"
#include "foundation/uuid.hpp"
#include "portability/export_error.hpp"
#include "portability/export_output.hpp"
#include "recording/recording_store.hpp"
#include "recording/session_history_reader.hpp"

namespace lumenote::portability {

enum class ExportFormat { json, csv, ics };
// The CSV tables, offered as one choice each (two files).
enum class ExportTable { sessions, segments };

struct ExportRequest {
    ExportFormat format = ExportFormat::json;
    ExportTable table = ExportTable::sessions;  // read for CSV only
    std::optional<Uuid> session;                // one session; all when absent
    // Several chosen sessions (a selection in the history), written in the
    // order given, which should be start order; ids of no stored session
    // are passed over. Named like an export of all; `session` wins over it.
    std::optional<std::vector<Uuid>> sessions;
};

// The name a file of `request` is saved under by default:
//   JSON:             "Lumenote Sessions.json"          / "Lumenote Session.json"
//   CSV, sessions:    "Lumenote Sessions.csv"           / "Lumenote Session.csv"
//   CSV, segments:    "Lumenote Segments.csv"           / "Lumenote Session Segments.csv"
//   calendar:         "Lumenote Sessions.ics"           / "Lumenote Session.ics"
// (all sessions / one session).
std::string_view defaultExportFileName(const ExportRequest& request);

struct ExportSummary {
    // Sessions written: for the segment table those with segments, for a
    // calendar those that became events.
    std::size_t sessions = 0;
    std::size_t segments = 0;  // segments written (JSON and the segment table)
};

class DataExportService {
  public:
    // Told the count of sessions visited so far, after each one (for the
    // segment table: each one with segments).
    using Progress = std::function<void(std::size_t sessionsDone)>;

    // `store` loads a single session; `history` walks all of them. Both are
    // usually the same store, opened for reading only.
    DataExportService(recording::RecordingStore& store, recording::SessionHistoryReader& history)
        : store_(store), history_(history) {}

    // Writes the export of `request`, stamped `exportedAt` (UTC), to `sink`
    // and flushes it; the caller then keeps or discards what the sink
    // received. Fails when the history cannot be read, the one session asked
    // for is not stored, or the sink fails; the export stops at the first
    // failure.
    Result<ExportSummary, ExportError> write(const ExportRequest& request, Date exportedAt,
                                             ByteSink& sink, const Progress& progress = {});

  private:
    recording::RecordingStore& store_;
    recording::SessionHistoryReader& history_;
};

}  // namespace lumenote::portability
