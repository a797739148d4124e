#include "portability/json_export_writer.hpp"

#include <algorithm>
#include <array>
#include <cassert>

#include "portability/export_values.hpp"

namespace lumenote::portability {

namespace {

// Indentation of the levels: the document's members, the sessions, their
// members, their segments, and the segments' members.
constexpr int kDocumentMembers = 1;
constexpr int kSessions = 2;
constexpr int kSessionMembers = 3;
constexpr int kSegments = 4;
constexpr int kSegmentMembers = 5;
constexpr std::string_view kTabs = "\t\t\t\t\t";
// The longest key with its indentation, quotes and separators.
constexpr std::size_t kLongestMemberStart = 64;

std::string_view indentation(int depth) {
    return kTabs.substr(0, static_cast<std::size_t>(depth));
}

constexpr std::array<char, 16> kHexDigits{'0', '1', '2', '3', '4', '5', '6', '7',
                                          '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};

// The escape of an ASCII byte that JSON does not allow as it is; empty for
// bytes written unchanged.
std::string_view shortEscape(unsigned char byte) {
    switch (byte) {
        case '"':
            return "\\\"";
        case '\\':
            return "\\\\";
        case '\b':
            return "\\b";
        case '\f':
            return "\\f";
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            return {};
    }
}

// U+2028 LINE SEPARATOR and U+2029 PARAGRAPH SEPARATOR: E2 80 A8 / A9.
bool isLineSeparatorAt(std::string_view text, std::size_t at) {
    return at + 2 < text.size() && text[at] == '\xE2' && text[at + 1] == '\x80' &&
           (text[at + 2] == '\xA8' || text[at + 2] == '\xA9');
}

}  // namespace

void JsonExportWriter::begin(const TallywiseExportDocument& document) {
    output_.append("{\n");
    key("exportedAt", kDocumentMembers);
    date(document.exportedAt);
    key("formatVersion", kDocumentMembers, true);
    appendInteger(output_, document.formatVersion);
    key("sessions", kDocumentMembers, true);
    output_.append('[');
}

void JsonExportWriter::end() {
    if (wroteSession_) {
        output_.append('\n');
        output_.append(indentation(kDocumentMembers));
    }
    output_.append("]\n}\n");
}

void JsonExportWriter::key(std::string_view name, int depth, bool afterAnother) {
    // Gathered first and appended once: keys are a third of all appends.
    std::array<char, kLongestMemberStart> start;  // written before it is read
    const std::string_view tabs = indentation(depth);
    assert(tabs.size() + name.size() + 6 <= start.size());
    char* out = start.data();
    if (afterAnother) {
        *out++ = ',';
        *out++ = '\n';
    }
    out = std::copy(tabs.begin(), tabs.end(), out);
    *out++ = '"';
    out = std::copy(name.begin(), name.end(), out);
    *out++ = '"';
    *out++ = ':';
    *out++ = ' ';
    output_.append(std::string_view(start.data(), static_cast<std::size_t>(out - start.data())));
}

void JsonExportWriter::string(std::string_view text) {
    output_.append('"');
    // Nearly every text is ASCII with nothing to escape: one pass finds out.
    bool plain = true;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        plain &= byte >= 0x20 && byte < 0x80 && c != '"' && c != '\\';
    }
    if (plain) {
        output_.append(text);
        output_.append('"');
        return;
    }
    const std::string_view valid = validUtf8(text, scratch_);
    std::size_t runStart = 0;
    for (std::size_t at = 0; at < valid.size(); ++at) {
        const auto byte = static_cast<unsigned char>(valid[at]);
        const bool control = byte < 0x20;
        const bool separator = byte == 0xE2 && isLineSeparatorAt(valid, at);
        if (!control && byte != '"' && byte != '\\' && !separator) {
            continue;
        }
        output_.append(valid.substr(runStart, at - runStart));
        if (separator) {
            output_.append(valid[at + 2] == '\xA8' ? "\\u2028" : "\\u2029");
            at += 2;
        } else if (const std::string_view escape = shortEscape(byte); !escape.empty()) {
            output_.append(escape);
        } else {
            output_.append("\\u00");
            output_.append(kHexDigits[byte >> 4]);
            output_.append(kHexDigits[byte & 0x0F]);
        }
        runStart = at + 1;
    }
    output_.append(valid.substr(runStart));
    output_.append('"');
}

void JsonExportWriter::word(std::string_view text) {
    output_.append('"');
    output_.append(text);
    output_.append('"');
}

void JsonExportWriter::date(Date value) {
    output_.append('"');
    output_.append(ExportTimestamp(value).text());
    output_.append('"');
}

void JsonExportWriter::seconds(double value) {
    appendShortestDouble(output_, exportSeconds(value));
}

void JsonExportWriter::writeSession(const ExportSession& session) {
    output_.append(wroteSession_ ? ",\n" : "\n");
    wroteSession_ = true;
    output_.append(indentation(kSessions));
    output_.append("{\n");
    // Members in the sorted order of their keys.
    const auto next = [this](std::string_view name) { key(name, kSessionMembers, true); };
    key("confirmedBreakDuration", kSessionMembers);
    seconds(session.confirmedBreakDuration);
    next("distractedDuration");
    seconds(session.distractedDuration);
    if (session.endDate) {
        next("endDate");
        date(*session.endDate);
    }
    if (session.focusScore) {
        next("focusScore");
        seconds(*session.focusScore);
    }
    next("focusedDuration");
    seconds(session.focusedDuration);
    next("goal");
    string(session.goal);
    next("id");
    word(session.id.upperString());
    next("ignoredDuration");
    seconds(session.ignoredDuration);
    next("inactiveDuration");
    seconds(session.inactiveDuration);
    next("longestFocusBlock");
    seconds(session.longestFocusBlock);
    next("meaningfulInterruptions");
    appendInteger(output_, session.meaningfulInterruptions);
    next("neutralDuration");
    seconds(session.neutralDuration);
    next("notes");
    string(session.notes);
    next("passiveStudyDuration");
    seconds(session.passiveStudyDuration);
    if (session.plannedDuration) {
        next("plannedDuration");
        seconds(*session.plannedDuration);
    }
    next("segments");
    output_.append('[');
    for (std::size_t index = 0; index < session.segments.size(); ++index) {
        output_.append(index == 0 ? "\n" : ",\n");
        writeSegment(session.segments[index]);
    }
    if (!session.segments.empty()) {
        output_.append('\n');
        output_.append(indentation(kSessionMembers));
    }
    output_.append(']');
    next("startDate");
    date(session.startDate);
    next("status");
    word(session.status);
    next("studyMode");
    word(session.studyMode);
    next("subject");
    string(session.subject);
    next("timerDuration");
    seconds(session.timerDuration);
    next("timingMode");
    word(session.timingMode);
    next("totalConfirmedStudyDuration");
    seconds(session.totalConfirmedStudyDuration);
    next("unclassifiedDuration");
    seconds(session.unclassifiedDuration);
    output_.append('\n');
    output_.append(indentation(kSessions));
    output_.append('}');
}

void JsonExportWriter::writeSegment(const ExportSegment& segment) {
    output_.append(indentation(kSegments));
    output_.append("{\n");
    const auto next = [this](std::string_view name) { key(name, kSegmentMembers, true); };
    key("applicationDisplayName", kSegmentMembers);
    string(segment.applicationDisplayName);
    if (segment.browserDisplayName) {
        next("browserDisplayName");
        string(*segment.browserDisplayName);
    }
    next("classification");
    word(segment.classification);
    next("duration");
    seconds(segment.duration);
    next("endDate");
    date(segment.endDate);
    if (segment.hostname) {
        next("hostname");
        string(*segment.hostname);
    }
    next("inactive");
    output_.append(segment.inactive ? "true" : "false");
    if (segment.pdfLabel) {
        next("pdfLabel");
        string(*segment.pdfLabel);
    }
    next("resourceType");
    word(segment.resourceType);
    next("startDate");
    date(segment.startDate);
    output_.append('\n');
    output_.append(indentation(kSegments));
    output_.append('}');
}

}  // namespace lumenote::portability
