#include "portability/ics_export_writer.hpp"

#include <gtest/gtest.h>

#include "export_test_support.hpp"
#include "portability/export_values.hpp"

namespace lumenote::portability {
namespace {

using testing::writtenBy;

const Date kStart = *parseIso8601("2026-11-16T08:00:00Z");
const Date kExportedAt = *parseIso8601("2026-11-20T12:30:00Z");

ExportSession finished(std::string_view subject) {
    ExportSession session;
    session.id = *Uuid::parse("E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    session.subject = subject;
    session.goal = "private goal";
    session.notes = "private notes";
    session.startDate = kStart;
    session.endDate = kStart.addingSeconds(5400);
    session.status = "completed";
    session.focusScore = 82.5;
    return session;
}

std::string calendarOf(const std::vector<ExportSession>& sessions, std::size_t* events = nullptr) {
    return writtenBy([&](ExportOutput& output) {
        IcsExportWriter writer(output, kExportedAt);
        writer.begin();
        for (const ExportSession& session : sessions) {
            if (writer.writeSession(session) && events != nullptr) {
                ++*events;
            }
        }
        writer.end();
    });
}

// The physical lines of `text`, which must all end with CR LF.
std::vector<std::string> physicalLines(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = text.find("\r\n", start);
        EXPECT_NE(end, std::string::npos) << "unterminated line";
        if (end == std::string::npos) {
            break;
        }
        lines.push_back(text.substr(start, end - start));
        start = end + 2;
    }
    return lines;
}

// The content lines after unfolding (a line starting with a space continues
// the one before it, without that space).
std::vector<std::string> contentLines(const std::string& text) {
    std::vector<std::string> lines;
    for (const std::string& line : physicalLines(text)) {
        if (!line.empty() && line.front() == ' ') {
            lines.back() += line.substr(1);
        } else {
            lines.push_back(line);
        }
    }
    return lines;
}

std::string valueOf(const std::vector<std::string>& lines, std::string_view name) {
    for (const std::string& line : lines) {
        if (line.starts_with(std::string(name) + ":")) {
            return line.substr(name.size() + 1);
        }
    }
    ADD_FAILURE() << "no " << name << " line";
    return {};
}

TEST(IcsExportWriterTest, OneEventPerFinishedSessionWithItsTimesInUtc) {
    const std::string text = calendarOf({finished("Linear algebra")});
    const std::vector<std::string> expected{
        "BEGIN:VCALENDAR",
        "VERSION:2.0",
        "PRODID:-//Lumenote//Session export//EN",
        "CALSCALE:GREGORIAN",
        "BEGIN:VEVENT",
        "UID:E621E1F8-C36C-495A-93FC-0C247A3E6E5F@sessions.lumenote",
        "DTSTAMP:20261120T123000Z",
        "DTSTART:20261116T080000Z",
        "DTEND:20261116T093000Z",
        "SUMMARY:Linear algebra",
        "DESCRIPTION:Status: completed\\nFocus score: 83%",
        "END:VEVENT",
        "END:VCALENDAR",
    };
    EXPECT_EQ(physicalLines(text), expected);
    // Nothing beyond the session's table row: no goal, no notes.
    EXPECT_EQ(text.find("private"), std::string::npos);
}

TEST(IcsExportWriterTest, UnfinishedSessionsAreLeftOutAndEndsNeverPrecedeStarts) {
    ExportSession running = finished("running");
    running.endDate.reset();
    running.status = "running";
    ExportSession clockSetBack = finished("set back");
    clockSetBack.endDate = kStart.addingSeconds(-120);
    clockSetBack.status = "interrupted";
    clockSetBack.focusScore.reset();
    std::size_t events = 0;
    const std::string text = calendarOf({running, clockSetBack}, &events);
    EXPECT_EQ(events, 1u);
    const auto lines = contentLines(text);
    EXPECT_EQ(valueOf(lines, "SUMMARY"), "set back");
    EXPECT_EQ(valueOf(lines, "DTEND"), valueOf(lines, "DTSTART"));
    EXPECT_EQ(valueOf(lines, "DESCRIPTION"), "Status: interrupted\\nFocus score not available");
}

TEST(IcsExportWriterTest, TextIsEscapedAsTheFormatRequires) {
    const struct {
        const char* name;
        std::string subject;
        std::string value;
    } cases[] = {
        {"separators", "a,b;c\\d", "a\\,b\\;c\\\\d"},
        {"every line break is \\n", "one\ntwo\r\nthree\rfour", "one\\ntwo\\nthree\\nfour"},
        {"other controls are left out, tabs kept", std::string("a\0b\x01\x7F\tc", 7), "ab\tc"},
        {"colons and quotes need nothing", "Ratio: \"1:2\"", "Ratio: \"1:2\""},
        {"invalid UTF-8 is repaired", "a\xFF", "a\xEF\xBF\xBD"},
        {"empty", "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(valueOf(contentLines(calendarOf({finished(c.subject)})), "SUMMARY"), c.value);
    }
}

TEST(IcsExportWriterTest, LongLinesFoldAt75OctetsWithoutSplittingACharacter) {
    // Each of these puts a multibyte character across the 75th octet at some
    // length: 2-, 3- and 4-byte characters after 0 ... 3 ASCII letters.
    const std::vector<std::string> characters{"é", "€", "日", "😀", "a"};
    for (const std::string& character : characters) {
        for (std::size_t offset = 0; offset < 4; ++offset) {
            std::string subject(offset, 'x');
            while (subject.size() < 400) {
                subject += character;
            }
            SCOPED_TRACE(character + " after " + std::to_string(offset));
            const std::string text = calendarOf({finished(subject)});
            for (const std::string& line : physicalLines(text)) {
                ASSERT_LE(line.size(), kMaximumLineOctets);
                // Every physical line is whole UTF-8: no character was split.
                std::string scratch;
                ASSERT_EQ(validUtf8(line, scratch).data(), line.data());
            }
            EXPECT_EQ(valueOf(contentLines(text), "SUMMARY"), subject);
        }
    }
}

TEST(IcsExportWriterTest, ALineOfExactly75OctetsIsNotFolded) {
    const std::string subject(75 - std::string("SUMMARY:").size(), 's');
    const auto lines = physicalLines(calendarOf({finished(subject)}));
    EXPECT_NE(std::find(lines.begin(), lines.end(), "SUMMARY:" + subject), lines.end());
    const std::string longer = subject + "t";
    const auto folded = physicalLines(calendarOf({finished(longer)}));
    EXPECT_NE(std::find(folded.begin(), folded.end(), "SUMMARY:" + subject), folded.end());
    EXPECT_NE(std::find(folded.begin(), folded.end(), " t"), folded.end());
}

}  // namespace
}  // namespace lumenote::portability
