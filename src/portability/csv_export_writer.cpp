#include "portability/csv_export_writer.hpp"

#include "portability/export_values.hpp"

namespace lumenote::portability {

namespace {

bool isEdgeSpace(char byte) {
    return byte == ' ' || byte == '\t';
}

// What a cell's bytes need: repair (a byte above ASCII, which may belong to
// ill-formed UTF-8) and quotes. One pass, as nearly every cell needs neither.
struct CellNeeds {
    bool check = false;
    bool quotes = false;
};

CellNeeds cellNeeds(std::string_view text) {
    CellNeeds needs;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        needs.check |= byte >= 0x80;
        needs.quotes |= c == ',' || c == '"' || c == '\r' || c == '\n';
    }
    if (!text.empty()) {
        needs.quotes |= isEdgeSpace(text.front()) || isEdgeSpace(text.back());
    }
    return needs;
}

}  // namespace

void CsvExportWriter::beginCell() {
    if (rowStarted_) {
        output_.append(',');
    }
    rowStarted_ = true;
}

void CsvExportWriter::endRow() {
    output_.append("\r\n");
    rowStarted_ = false;
}

void CsvExportWriter::textCell(std::string_view text) {
    beginCell();
    // Repair replaces bytes above ASCII only, so it never changes whether
    // quotes are needed.
    const CellNeeds needs = cellNeeds(text);
    const std::string_view valid = needs.check ? validUtf8(text, scratch_) : text;
    if (!needs.quotes) {
        output_.append(valid);
        return;
    }
    output_.append('"');
    std::size_t runStart = 0;
    for (std::size_t quote = valid.find('"'); quote != std::string_view::npos;
         quote = valid.find('"', quote + 1)) {
        output_.append(valid.substr(runStart, quote + 1 - runStart));
        output_.append('"');
        runStart = quote + 1;
    }
    output_.append(valid.substr(runStart));
    output_.append('"');
}

void CsvExportWriter::wordCell(std::string_view word) {
    beginCell();
    output_.append(word);
}

void CsvExportWriter::optionalTextCell(const std::optional<std::string_view>& text) {
    if (text) {
        textCell(*text);
    } else {
        beginCell();
    }
}

void CsvExportWriter::secondsCell(double seconds) {
    beginCell();
    appendFixedThreeDecimals(output_, seconds);
}

void CsvExportWriter::dateCell(Date date) {
    beginCell();
    output_.append(ExportTimestamp(date).text());
}

void CsvExportWriter::writeSessionHeader() {
    for (const std::string_view column : kSessionTableColumns) {
        wordCell(column);
    }
    endRow();
}

void CsvExportWriter::writeSegmentHeader() {
    for (const std::string_view column : kSegmentTableColumns) {
        wordCell(column);
    }
    endRow();
}

void CsvExportWriter::writeSessionRow(const ExportSession& session,
                                      double unconfirmedNoInputDuration) {
    beginCell();
    appendInteger(output_, kExportFormatVersion);
    wordCell(session.id.upperString());
    textCell(session.subject);
    textCell(session.goal);
    textCell(session.notes);
    if (session.plannedDuration) {
        secondsCell(*session.plannedDuration);
    } else {
        beginCell();
    }
    dateCell(session.startDate);
    if (session.endDate) {
        dateCell(*session.endDate);
    } else {
        beginCell();
    }
    wordCell(session.status);
    secondsCell(session.timerDuration);
    secondsCell(session.focusedDuration);
    secondsCell(session.distractedDuration);
    secondsCell(session.neutralDuration);
    secondsCell(session.unclassifiedDuration);
    secondsCell(session.ignoredDuration);
    secondsCell(session.inactiveDuration);
    if (session.focusScore) {
        secondsCell(*session.focusScore);
    } else {
        beginCell();
    }
    secondsCell(session.longestFocusBlock);
    beginCell();
    appendInteger(output_, session.meaningfulInterruptions);
    wordCell(session.studyMode);
    secondsCell(session.passiveStudyDuration);
    secondsCell(session.confirmedBreakDuration);
    secondsCell(unconfirmedNoInputDuration);
    secondsCell(session.totalConfirmedStudyDuration);
    wordCell(session.timingMode);
    endRow();
}

void CsvExportWriter::writeSegmentRow(const Uuid& session, const ExportSegment& segment) {
    if (ownerId_ != session) {
        ownerId_ = session;
        ownerIdText_ = session.upperString();
    }
    beginCell();
    appendInteger(output_, kExportFormatVersion);
    wordCell(ownerIdText_);
    dateCell(segment.startDate);
    dateCell(segment.endDate);
    secondsCell(segment.duration);
    wordCell(segment.resourceType);
    textCell(segment.applicationDisplayName);
    optionalTextCell(segment.browserDisplayName);
    optionalTextCell(segment.hostname);
    optionalTextCell(segment.pdfLabel);
    wordCell(segment.classification);
    wordCell(segment.inactive ? "true" : "false");
    endRow();
}

}  // namespace lumenote::portability
