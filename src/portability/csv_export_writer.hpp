// The two CSV tables of an export: one row per session (25 columns) and one
// row per activity segment (12 columns), each under its header row.
//
// The file is UTF-8 without a byte-order mark; text that is not valid UTF-8
// has each ill-formed part replaced by U+FFFD. Rows end with CR LF, as RFC
// 4180 has it (a standard reader accepts LF as well, but CR LF is what
// spreadsheets expect). A cell is quoted when it holds a comma, a double
// quote, a CR or an LF, or begins or ends with a space or a tab (which
// some readers would otherwise trim); inside quotes a double quote is
// doubled. Every other cell is written as it is: no formula escaping, since
// a cell must read back exactly as it was.
//
// Cells: durations and the focus score follow the seconds rule (three
// decimals, "%.3f"; not finite or negative -> "0.000"); dates the timestamp
// rule; absent values (no planned length, no end, no score, no browser,
// hostname or PDF label) are empty cells; "inactive" is "true" or "false";
// the session id is the upper-case UUID.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "portability/export_model.hpp"
#include "portability/export_output.hpp"

namespace lumenote::portability {

inline constexpr std::array<std::string_view, 25> kSessionTableColumns{
    "format_version",
    "session_id",
    "subject",
    "goal",
    "notes",
    "planned_seconds",
    "start",
    "end",
    "status",
    "timer_seconds",
    "focused_seconds",
    "distracted_seconds",
    "neutral_seconds",
    "unclassified_seconds",
    "ignored_seconds",
    "inactive_seconds",
    "focus_score",
    "longest_focus_seconds",
    "interruptions",
    "study_mode",
    "passive_study_seconds",
    "confirmed_break_seconds",
    "unconfirmed_no_input_seconds",
    "total_confirmed_study_seconds",
    "timing_mode",
};

inline constexpr std::array<std::string_view, 12> kSegmentTableColumns{
    "format_version",   "session_id",    "segment_start",  "segment_end",
    "duration_seconds", "resource_type", "application",    "browser",
    "hostname",         "pdf_label",     "classification", "inactive",
};

class CsvExportWriter {
  public:
    explicit CsvExportWriter(ExportOutput& output) : output_(output) {}

    void writeSessionHeader();
    // `unconfirmedNoInputDuration`: the session's time without input that
    // was confirmed neither as study nor as a break (study_time.hpp), in
    // seconds; the one cell the session model does not carry.
    void writeSessionRow(const ExportSession& session, double unconfirmedNoInputDuration);

    void writeSegmentHeader();
    void writeSegmentRow(const Uuid& session, const ExportSegment& segment);

  private:
    // Each cell but a row's first is preceded by a comma.
    void beginCell();
    void textCell(std::string_view text);
    // A cell of the system's own vocabulary (a header name, an id, a raw
    // value, true or false), which never needs quotes or repair: written
    // without looking at its bytes.
    void wordCell(std::string_view word);
    void optionalTextCell(const std::optional<std::string_view>& text);
    void secondsCell(double seconds);
    void dateCell(Date date);
    void endRow();

    ExportOutput& output_;
    bool rowStarted_ = false;
    std::string scratch_;  // reused for text that needs repair
    // The text of the last owner's id, kept across its segments' rows.
    std::optional<Uuid> ownerId_;
    std::string ownerIdText_;
};

}  // namespace lumenote::portability
