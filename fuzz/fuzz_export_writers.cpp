// Fuzzes the export writers (CSV, JSON, iCalendar) with hostile stored
// records: subjects, goals, notes, application and browser names, hostnames
// and PDF labels of any bytes (ill-formed UTF-8, NUL, quotes, commas, CR and
// LF, leading = + - @, long), and damaged numbers and dates. The records go
// through the export model as an export builds it; the output of each
// writer is read back with an independent reader (export_oracles.hpp) and
// must hold exactly the values the writer's documentation promises.
#include <fuzzer/FuzzedDataProvider.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "export_oracles.hpp"
#include "portability/csv_export_writer.hpp"
#include "portability/export_model.hpp"
#include "portability/export_values.hpp"
#include "portability/ics_export_writer.hpp"
#include "portability/json_export_writer.hpp"
#include "recording/focus_score_text.hpp"
#include "recording/session_records.hpp"
#include "round_trip.hpp"

namespace lumenote::fuzz {
namespace {

using namespace portability;
using recording::ActivitySegment;
using recording::StudySession;

class StringSink final : public ByteSink {
  public:
    Result<void, ExportError> write(std::string_view bytes) override {
        text.append(bytes);
        return {};
    }
    std::string text;
};

// A sink and its output, kept from run to run: an output reserves a block of
// over a megabyte, whose allocation would otherwise cost more than the run.
struct Destination {
    StringSink sink;
    ExportOutput output{sink};

    // The output for a new document.
    ExportOutput& fresh() {
        sink.text.clear();
        return output;
    }
};

Destination& destination(int which) {
    static Destination destinations[4];
    return destinations[which];
}

const Date kMonday = *parseIso8601("2026-11-16T08:00:00Z");

// Stored text: up to 200 bytes of anything.
std::string storedText(FuzzedDataProvider& input) {
    return input.ConsumeRandomLengthString(200);
}

// A stored number: a plausible one, or any bit pattern (NaN, infinities).
double storedNumber(FuzzedDataProvider& input) {
    if (input.ConsumeBool()) {
        return static_cast<double>(input.ConsumeIntegralInRange<int>(-60, 36000)) / 4.0;
    }
    return std::bit_cast<double>(input.ConsumeIntegral<std::uint64_t>());
}

Date storedDate(FuzzedDataProvider& input) {
    if (input.ConsumeBool()) {
        return kMonday.addingSeconds(input.ConsumeIntegralInRange<int>(-86400, 86400));
    }
    return Date{std::bit_cast<double>(input.ConsumeIntegral<std::uint64_t>())};
}

template <typename T>
std::optional<T> maybe(FuzzedDataProvider& input, T value) {
    return input.ConsumeBool() ? std::optional<T>(std::move(value)) : std::nullopt;
}

constexpr const char* kClassifications[] = {"focused",      "distracted", "neutral",
                                            "unclassified", "ignored",    "bogus"};
constexpr const char* kSources[] = {"application",     "website", "localPDF",
                                    "browserFallback", "system",  "bogus"};
constexpr const char* kStatuses[] = {"completed", "running", "paused", "interrupted", "bogus"};

ActivitySegment storedSegment(FuzzedDataProvider& input, const Uuid& session) {
    ActivitySegment segment;
    segment.session = session;
    segment.startDate = storedDate(input);
    segment.endDate = storedDate(input);
    segment.duration = storedNumber(input);
    segment.applicationName = storedText(input);
    segment.bundleIdentifier = "org.example.app";
    segment.classificationRawValue = input.PickValueInArray(kClassifications);
    segment.isInactive = input.ConsumeBool();
    segment.activitySourceRawValue = input.PickValueInArray(kSources);
    segment.browserBundleIdentifier = maybe(input, std::string("org.chromium.Chromium"));
    segment.hostname = maybe(input, storedText(input));
    segment.pdfDisplayLabelStorage = maybe(input, storedText(input));
    return segment;
}

StudySession storedSession(FuzzedDataProvider& input, std::uint8_t index) {
    StudySession session;
    session.id = Uuid(Uuid::Bytes{0x0B, 0, 0, 0, 0, 0, 0x40, 0, 0x80, 0, 0, 0, 0, 0, 0, index});
    session.subject = storedText(input);
    session.goal = storedText(input);
    session.notesStorage = maybe(input, storedText(input));
    session.plannedDuration = storedNumber(input);
    session.timingModeStorage = input.ConsumeBool() ? "timer" : "open_ended";
    session.startDate = storedDate(input);
    session.endDate = maybe(input, storedDate(input));
    session.statusRawValue = input.PickValueInArray(kStatuses);
    session.timerDuration = storedNumber(input);
    session.focusedDuration = storedNumber(input);
    session.distractedDuration = storedNumber(input);
    session.neutralDuration = storedNumber(input);
    session.inactiveDuration = storedNumber(input);
    session.focusScore = maybe(input, storedNumber(input));
    session.calculationVersionStorage = input.ConsumeIntegralInRange<long long>(1, 3);
    const int segments = input.ConsumeIntegralInRange(0, 4);
    for (int count = 0; count < segments; ++count) {
        session.segments.push_back(storedSegment(input, session.id));
    }
    return session;
}

// --- the documents' shapes -------------------------------------------------

bool isTimestamp(std::string_view text) {
    return text.size() == ExportTimestamp::kLength && text[4] == '-' && text[10] == 'T' &&
           text.back() == 'Z' && parseIso8601(text).has_value();
}

// The timestamp rule: formatIso8601's text for a date within the written years.
void checkTimestamp(std::string_view text, Date date, std::string_view document) {
    check(isTimestamp(text), "timestamp", "a date is not written by the timestamp rule", document);
    const double unix = date.unixSeconds();
    if (unix >= -62167219200.0 && unix <= 253402300799.0) {
        check(text == formatIso8601(date), "timestamp", "a date differs from formatIso8601's text",
              document);
    }
}

bool isFixedThreeDecimals(std::string_view text) {
    const std::size_t point = text.find('.');
    if (point == std::string_view::npos || point == 0 || text.size() - point != 4) {
        return false;
    }
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (index != point && (text[index] < '0' || text[index] > '9')) {
            return false;
        }
    }
    return true;
}

// --- CSV ---------------------------------------------------------------------

bool needsQuotes(std::string_view text) {
    return text.find_first_of(",\"\r\n") != std::string_view::npos ||
           (!text.empty() && (text.front() == ' ' || text.front() == '\t' || text.back() == ' ' ||
                              text.back() == '\t'));
}

// A text cell holds the text made valid UTF-8 and nothing else (no formula
// escaping), quoted exactly when the documented rule asks for it.
void checkTextCell(const CsvField& cell, std::string_view stored, std::string_view table) {
    const std::string expected = repairedUtf8(stored);
    check(cell.value == expected, "csv", "a text cell does not read back as its text", table);
    check(cell.quoted == needsQuotes(expected), "csv", "a text cell is quoted against the rule",
          table);
}

void checkOptionalCell(const CsvField& cell, const std::optional<std::string_view>& stored,
                       std::string_view table) {
    if (stored) {
        checkTextCell(cell, *stored, table);
    } else {
        check(cell.value.empty() && !cell.quoted, "csv", "an absent value is not an empty cell",
              table);
    }
}

std::vector<CsvRecord> readTable(std::string_view table, std::size_t rows, std::size_t columns) {
    const auto records = readStrictCsv(table);
    check(records.has_value(), "csv", "the table is not RFC 4180 CSV", table);
    check(records->size() == rows, "csv", "the table has the wrong number of rows", table);
    for (const CsvRecord& record : *records) {
        check(record.size() == columns, "csv", "a row has the wrong number of cells", table);
    }
    return *records;
}

void checkCsv(const std::vector<StudySession>& sessions, const std::vector<ExportSession>& model) {
    Destination& sessionSink = destination(0);
    Destination& segmentSink = destination(1);
    {
        ExportOutput& sessionOutput = sessionSink.fresh();
        ExportOutput& segmentOutput = segmentSink.fresh();
        CsvExportWriter sessionTable(sessionOutput);
        CsvExportWriter segmentTable(segmentOutput);
        sessionTable.writeSessionHeader();
        segmentTable.writeSegmentHeader();
        for (const ExportSession& session : model) {
            sessionTable.writeSessionRow(session, session.inactiveDuration);
            for (const ExportSegment& segment : session.segments) {
                segmentTable.writeSegmentRow(session.id, segment);
            }
        }
        check(sessionOutput.flush().ok() && segmentOutput.flush().ok(), "csv",
              "writing to memory failed", "");
    }
    const std::string& sessionText = sessionSink.sink.text;
    const std::string& segmentText = segmentSink.sink.text;
    std::size_t segmentCount = 0;
    for (const ExportSession& session : model) {
        segmentCount += session.segments.size();
    }
    const auto sessionRows = readTable(sessionText, model.size() + 1, kSessionTableColumns.size());
    const auto segmentRows = readTable(segmentText, segmentCount + 1, kSegmentTableColumns.size());
    for (std::size_t column = 0; column < kSessionTableColumns.size(); ++column) {
        check(sessionRows[0][column].value == kSessionTableColumns[column], "csv",
              "a session column is misnamed", sessionText);
    }
    for (std::size_t column = 0; column < kSegmentTableColumns.size(); ++column) {
        check(segmentRows[0][column].value == kSegmentTableColumns[column], "csv",
              "a segment column is misnamed", segmentText);
    }
    std::size_t segmentRow = 1;
    for (std::size_t index = 0; index < model.size(); ++index) {
        const CsvRecord& row = sessionRows[index + 1];
        const StudySession& stored = sessions[index];
        check(row[1].value == stored.id.upperString(), "csv", "the session id differs",
              sessionText);
        checkTextCell(row[2], stored.subject, sessionText);
        checkTextCell(row[3], stored.goal, sessionText);
        checkTextCell(row[4], stored.notes().value_or(""), sessionText);
        checkTimestamp(row[6].value, stored.startDate, sessionText);
        for (const std::size_t column : {9, 10, 11, 12, 13, 14, 15, 17, 20, 21, 22, 23}) {
            check(isFixedThreeDecimals(row[column].value), "csv",
                  "a duration is not written with three decimals", sessionText);
        }
        for (const ExportSegment& segment : model[index].segments) {
            const CsvRecord& cells = segmentRows[segmentRow++];
            check(cells[1].value == stored.id.upperString(), "csv",
                  "a segment names another session", segmentText);
            checkTimestamp(cells[2].value, segment.startDate, segmentText);
            checkTimestamp(cells[3].value, segment.endDate, segmentText);
            check(isFixedThreeDecimals(cells[4].value), "csv",
                  "a segment duration is not written with three decimals", segmentText);
            checkTextCell(cells[6], segment.applicationDisplayName, segmentText);
            checkOptionalCell(cells[7], segment.browserDisplayName, segmentText);
            checkOptionalCell(cells[8], segment.hostname, segmentText);
            checkOptionalCell(cells[9], segment.pdfLabel, segmentText);
            check(cells[11].value == (segment.inactive ? "true" : "false"), "csv",
                  "inactive is not true or false", segmentText);
        }
    }
}

// --- JSON --------------------------------------------------------------------

using OrderedJson = nlohmann::ordered_json;

void checkKeysSorted(const OrderedJson& object, std::string_view document) {
    std::string previous;
    bool first = true;
    for (const auto& [key, value] : object.items()) {
        check(first || previous < key, "json", "keys are not in sorted order", document);
        check(!value.is_null(), "json", "a member is written as null", document);
        if (value.is_number()) {
            check(value.get<double>() >= 0.0, "json", "a negative number was written", document);
        }
        previous = key;
        first = false;
    }
}

void checkJsonText(const OrderedJson& object, const char* key,
                   const std::optional<std::string_view>& stored, std::string_view document) {
    const auto found = object.find(key);
    if (!stored) {
        check(found == object.end(), "json", "an absent value was written", document);
        return;
    }
    check(found != object.end() && found->is_string() &&
              found->get<std::string>() == repairedUtf8(*stored),
          "json", "a text does not read back as its text made valid UTF-8", document);
}

void checkJson(const std::vector<ExportSession>& model) {
    Destination& sink = destination(2);
    ExportOutput& output = sink.fresh();
    JsonExportWriter writer(output);
    writer.begin(TallywiseExportDocument{kExportFormatVersion, kMonday});
    for (const ExportSession& session : model) {
        writer.writeSession(session);
    }
    writer.end();
    check(output.flush().ok(), "json", "writing to memory failed", "");
    const std::string& text = sink.sink.text;
    for (const char c : text) {
        check(static_cast<unsigned char>(c) >= 0x20 || c == '\n' || c == '\t', "json",
              "a control character was written unescaped", text);
    }
    check(text.find("\xE2\x80\xA8") == std::string::npos &&
              text.find("\xE2\x80\xA9") == std::string::npos,
          "json", "a line separator was written unescaped", text);
    const OrderedJson document = OrderedJson::parse(text, nullptr, false);
    check(document.is_object(), "json", "the export is not a JSON document", text);
    checkKeysSorted(document, text);
    const OrderedJson& sessions = document["sessions"];
    check(sessions.is_array() && sessions.size() == model.size(), "json",
          "the export holds another number of sessions", text);
    for (std::size_t index = 0; index < model.size(); ++index) {
        const ExportSession& session = model[index];
        const OrderedJson& object = sessions[index];
        checkKeysSorted(object, text);
        checkJsonText(object, "subject", session.subject, text);
        checkJsonText(object, "goal", session.goal, text);
        checkJsonText(object, "notes", session.notes, text);
        checkTimestamp(object["startDate"].get<std::string>(), session.startDate, text);
        const OrderedJson& segments = object["segments"];
        check(segments.is_array() && segments.size() == session.segments.size(), "json",
              "a session holds another number of segments", text);
        for (std::size_t at = 0; at < session.segments.size(); ++at) {
            const ExportSegment& segment = session.segments[at];
            const OrderedJson& written = segments[at];
            checkKeysSorted(written, text);
            checkJsonText(written, "applicationDisplayName", segment.applicationDisplayName, text);
            checkJsonText(written, "browserDisplayName", segment.browserDisplayName, text);
            checkJsonText(written, "hostname", segment.hostname, text);
            checkJsonText(written, "pdfLabel", segment.pdfLabel, text);
            checkTimestamp(written["endDate"].get<std::string>(), segment.endDate, text);
        }
    }
}

// --- iCalendar ---------------------------------------------------------------

// A TEXT value as the calendar documents it: valid UTF-8, each line break
// (CR LF, CR or LF) one "\n", other control characters but tab left out.
std::string calendarText(std::string_view stored) {
    const std::string valid = repairedUtf8(stored);
    std::string text;
    for (std::size_t at = 0; at < valid.size(); ++at) {
        const char c = valid[at];
        if (c == '\r' || c == '\n') {
            if (c == '\r' && at + 1 < valid.size() && valid[at + 1] == '\n') {
                ++at;
            }
            text += '\n';
        } else if (static_cast<unsigned char>(c) >= 0x20 ? c != '\x7F' : c == '\t') {
            text += c;
        }
    }
    return text;
}

// The value of an escaped TEXT property; nullopt for a bare ';' or ',', or a
// backslash that escapes nothing RFC 5545 allows.
std::optional<std::string> unescapedText(std::string_view value) {
    std::string text;
    for (std::size_t at = 0; at < value.size(); ++at) {
        const char c = value[at];
        if (c == ';' || c == ',') {
            return std::nullopt;
        }
        if (c != '\\') {
            text += c;
            continue;
        }
        if (++at == value.size()) {
            return std::nullopt;
        }
        const char escaped = value[at];
        if (escaped == 'n' || escaped == 'N') {
            text += '\n';
        } else if (escaped == '\\' || escaped == ';' || escaped == ',') {
            text += escaped;
        } else {
            return std::nullopt;
        }
    }
    return text;
}

// The content lines of the calendar after checking its physical lines: each
// ends with CR LF, holds at most 75 octets, is valid UTF-8 on its own, and a
// continuation starts with one space.
std::vector<std::string> unfoldedLines(std::string_view text) {
    std::vector<std::string> lines;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = text.find("\r\n", at);
        check(end != std::string_view::npos, "ics", "the last line does not end with CR LF", text);
        const std::string_view line = text.substr(at, end - at);
        check(line.size() <= kMaximumLineOctets, "ics", "a line is longer than 75 octets", text);
        check(line.find_first_of("\r\n") == std::string_view::npos, "ics",
              "a bare CR or LF inside a line", text);
        check(isValidUtf8(line), "ics", "a fold splits a UTF-8 sequence", text);
        if (!line.empty() && line.front() == ' ') {
            check(!lines.empty(), "ics", "the calendar starts with a continuation", text);
            lines.back() += line.substr(1);
        } else {
            lines.emplace_back(line);
        }
        at = end + 2;
    }
    return lines;
}

void checkCalendar(const std::vector<ExportSession>& model) {
    Destination& sink = destination(3);
    ExportOutput& output = sink.fresh();
    IcsExportWriter writer(output, kMonday);
    writer.begin();
    std::vector<const ExportSession*> events;
    for (const ExportSession& session : model) {
        const bool written = writer.writeSession(session);
        check(written == session.endDate.has_value(), "ics",
              "an event written for a session without an end, or none for one with", "");
        if (written) {
            events.push_back(&session);
        }
    }
    writer.end();
    check(output.flush().ok(), "ics", "writing to memory failed", "");
    const std::string& text = sink.sink.text;
    const std::vector<std::string> lines = unfoldedLines(text);
    std::size_t event = 0;
    for (const std::string& line : lines) {
        for (const char c : line) {
            const auto byte = static_cast<unsigned char>(c);
            check((byte >= 0x20 && byte != 0x7F) || c == '\t', "ics",
                  "a control character in a content line", text);
        }
        if (line.rfind("SUMMARY:", 0) == 0) {
            check(event < events.size(), "ics", "more events than sessions with an end", text);
            const auto summary = unescapedText(std::string_view(line).substr(8));
            check(summary.has_value() && *summary == calendarText(events[event]->subject), "ics",
                  "a summary does not read back as its subject", text);
            ++event;
        }
    }
    check(event == events.size(), "ics", "the calendar holds another number of events", text);
}

void fuzzExport(FuzzedDataProvider& input) {
    std::vector<StudySession> sessions;
    const int count = input.ConsumeIntegralInRange(1, 3);
    for (int index = 0; index < count; ++index) {
        sessions.push_back(storedSession(input, static_cast<std::uint8_t>(index)));
    }
    std::vector<ExportSession> model;
    for (const StudySession& session : sessions) {
        model.push_back(makeExportSession(session, ExportContent::segmentsAndRuns));
    }
    checkCsv(sessions, model);
    checkJson(model);
    checkCalendar(model);
}

}  // namespace
}  // namespace lumenote::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    lumenote::fuzz::fuzzExport(input);
    return 0;
}
