#include "portability/ics_export_writer.hpp"

#include <algorithm>

#include "portability/export_values.hpp"
#include "recording/focus_score_text.hpp"

namespace lumenote::portability {

namespace {

namespace Tracking = recording::TrackingCalculationService;

bool isContinuationByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

}  // namespace

std::string icsDateTime(Date date) {
    const ExportTimestamp timestamp(date);
    std::string compact;
    for (const char c : timestamp.text()) {
        if (c != '-' && c != ':') {
            compact.push_back(c);
        }
    }
    return compact;
}

IcsExportWriter::IcsExportWriter(ExportOutput& output, Date exportedAt)
    : output_(output), stamp_(icsDateTime(exportedAt)) {}

void IcsExportWriter::begin() {
    contentLine("BEGIN", "VCALENDAR");
    contentLine("VERSION", "2.0");
    contentLine("PRODID", "-//Lumenote//Session export//EN");
    contentLine("CALSCALE", "GREGORIAN");
}

void IcsExportWriter::end() {
    contentLine("END", "VCALENDAR");
}

bool IcsExportWriter::writeSession(const ExportSession& session) {
    if (!session.endDate) {
        return false;
    }
    contentLine("BEGIN", "VEVENT");
    contentLine("UID", session.id.upperString() + "@" + std::string(kEventUidDomain));
    contentLine("DTSTAMP", stamp_);
    contentLine("DTSTART", icsDateTime(session.startDate));
    contentLine("DTEND", icsDateTime(std::max(session.startDate, *session.endDate)));
    contentLine("SUMMARY", escapedText(session.subject));
    const std::string score = session.focusScore
                                  ? "Focus score: " + Tracking::formatFocusScore(session.focusScore)
                                  : std::string(Tracking::kFocusScoreNotAvailableText);
    contentLine("DESCRIPTION",
                escapedText("Status: " + std::string(session.status) + "\n" + score));
    contentLine("END", "VEVENT");
    return true;
}

std::string_view IcsExportWriter::escapedText(std::string_view text) {
    const std::string_view valid = validUtf8(text, scratch_);
    escaped_.clear();
    for (std::size_t at = 0; at < valid.size(); ++at) {
        const char c = valid[at];
        switch (c) {
            case '\\':
            case ';':
            case ',':
                escaped_.push_back('\\');
                escaped_.push_back(c);
                break;
            case '\r':
                if (at + 1 < valid.size() && valid[at + 1] == '\n') {
                    ++at;
                }
                escaped_.append("\\n");
                break;
            case '\n':
                escaped_.append("\\n");
                break;
            default:
                if ((static_cast<unsigned char>(c) >= 0x20 && c != '\x7F') || c == '\t') {
                    escaped_.push_back(c);
                }
        }
    }
    return escaped_;
}

void IcsExportWriter::contentLine(std::string_view name, std::string_view value) {
    line_.assign(name);
    line_.push_back(':');
    line_.append(value);
    std::string_view rest = line_;
    std::size_t room = kMaximumLineOctets;
    while (rest.size() > room) {
        std::size_t cut = room;
        while (cut > 0 && isContinuationByte(rest[cut])) {
            --cut;
        }
        output_.append(rest.substr(0, cut));
        output_.append("\r\n ");
        rest.remove_prefix(cut);
        room = kMaximumLineOctets - 1;
    }
    output_.append(rest);
    output_.append("\r\n");
}

}  // namespace lumenote::portability
