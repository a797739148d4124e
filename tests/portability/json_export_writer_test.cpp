#include "portability/json_export_writer.hpp"

#include <limits>
#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include "export_test_support.hpp"

namespace lumenote::portability {
namespace {

using nlohmann::ordered_json;
using testing::writtenBy;

const Date kStart = *parseIso8601("2026-11-16T08:00:00Z");
const Date kExportedAt = *parseIso8601("2026-11-20T12:30:00Z");

ExportSegment websiteSegment() {
    ExportSegment segment;
    segment.startDate = kStart;
    segment.endDate = kStart.addingSeconds(90);
    segment.duration = 89.5;
    segment.resourceType = "website";
    segment.applicationDisplayName = "Firefox";
    segment.browserDisplayName = "Firefox";
    segment.hostname = "en.wikipedia.org";
    segment.pdfLabel = "Skript.pdf";
    segment.classification = "focused";
    segment.inactive = true;
    return segment;
}

ExportSession finishedSession() {
    ExportSession session;
    session.id = *Uuid::parse("E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    session.subject = "Linear algebra";
    session.goal = "Chapter 4";
    session.notes = "Eigenvalues";
    session.plannedDuration = 3600;
    session.startDate = kStart;
    session.endDate = kStart.addingSeconds(3600);
    session.status = "completed";
    session.timerDuration = 3600;
    session.focusedDuration = 1500.5;
    session.distractedDuration = 300.25;
    session.neutralDuration = 200;
    session.unclassifiedDuration = 100;
    session.ignoredDuration = 12;
    session.inactiveDuration = 90.75;
    session.studyMode = "mixedStudy";
    session.passiveStudyDuration = 60;
    session.confirmedBreakDuration = 30;
    session.timingMode = "timer";
    session.totalConfirmedStudyDuration = 2160.75;
    session.focusScore = 83.33333333333333;
    session.longestFocusBlock = 600;
    session.meaningfulInterruptions = 2;
    session.segments = {websiteSegment()};
    return session;
}

std::string documentOf(const std::vector<ExportSession>& sessions) {
    return writtenBy([&](ExportOutput& output) {
        JsonExportWriter writer(output);
        writer.begin({kExportFormatVersion, kExportedAt});
        for (const ExportSession& session : sessions) {
            writer.writeSession(session);
        }
        writer.end();
    });
}

// Every object's keys, at any depth, come in the byte order of their keys.
void expectSortedKeys(const ordered_json& value, const std::string& where = "document") {
    if (value.is_object()) {
        std::string previous;
        bool first = true;
        for (const auto& [key, member] : value.items()) {
            EXPECT_TRUE(first || previous < key) << where << ": " << previous << " before " << key;
            previous = key;
            first = false;
            expectSortedKeys(member, where + "." + key);
        }
    } else if (value.is_array()) {
        for (std::size_t index = 0; index < value.size(); ++index) {
            expectSortedKeys(value[index], where + "[" + std::to_string(index) + "]");
        }
    }
}

TEST(JsonExportWriterTest, WritesOneMemberPerLineWithSortedKeysAndTabIndentation) {
    const std::string expected =
        "{\n"
        "\t\"exportedAt\": \"2026-11-20T12:30:00Z\",\n"
        "\t\"formatVersion\": 1,\n"
        "\t\"sessions\": [\n"
        "\t\t{\n"
        "\t\t\t\"confirmedBreakDuration\": 30,\n"
        "\t\t\t\"distractedDuration\": 300.25,\n"
        "\t\t\t\"endDate\": \"2026-11-16T09:00:00Z\",\n"
        "\t\t\t\"focusScore\": 83.33333333333333,\n"
        "\t\t\t\"focusedDuration\": 1500.5,\n"
        "\t\t\t\"goal\": \"Chapter 4\",\n"
        "\t\t\t\"id\": \"E621E1F8-C36C-495A-93FC-0C247A3E6E5F\",\n"
        "\t\t\t\"ignoredDuration\": 12,\n"
        "\t\t\t\"inactiveDuration\": 90.75,\n"
        "\t\t\t\"longestFocusBlock\": 600,\n"
        "\t\t\t\"meaningfulInterruptions\": 2,\n"
        "\t\t\t\"neutralDuration\": 200,\n"
        "\t\t\t\"notes\": \"Eigenvalues\",\n"
        "\t\t\t\"passiveStudyDuration\": 60,\n"
        "\t\t\t\"plannedDuration\": 3600,\n"
        "\t\t\t\"segments\": [\n"
        "\t\t\t\t{\n"
        "\t\t\t\t\t\"applicationDisplayName\": \"Firefox\",\n"
        "\t\t\t\t\t\"browserDisplayName\": \"Firefox\",\n"
        "\t\t\t\t\t\"classification\": \"focused\",\n"
        "\t\t\t\t\t\"duration\": 89.5,\n"
        "\t\t\t\t\t\"endDate\": \"2026-11-16T08:01:30Z\",\n"
        "\t\t\t\t\t\"hostname\": \"en.wikipedia.org\",\n"
        "\t\t\t\t\t\"inactive\": true,\n"
        "\t\t\t\t\t\"pdfLabel\": \"Skript.pdf\",\n"
        "\t\t\t\t\t\"resourceType\": \"website\",\n"
        "\t\t\t\t\t\"startDate\": \"2026-11-16T08:00:00Z\"\n"
        "\t\t\t\t}\n"
        "\t\t\t],\n"
        "\t\t\t\"startDate\": \"2026-11-16T08:00:00Z\",\n"
        "\t\t\t\"status\": \"completed\",\n"
        "\t\t\t\"studyMode\": \"mixedStudy\",\n"
        "\t\t\t\"subject\": \"Linear algebra\",\n"
        "\t\t\t\"timerDuration\": 3600,\n"
        "\t\t\t\"timingMode\": \"timer\",\n"
        "\t\t\t\"totalConfirmedStudyDuration\": 2160.75,\n"
        "\t\t\t\"unclassifiedDuration\": 100\n"
        "\t\t}\n"
        "\t]\n"
        "}\n";
    EXPECT_EQ(documentOf({finishedSession()}), expected);
}

TEST(JsonExportWriterTest, AbsentOptionalsAreLeftOutNeverNullAndKeysStaySorted) {
    ExportSession running = finishedSession();
    running.endDate.reset();          // not finished
    running.plannedDuration.reset();  // open-ended
    running.focusScore.reset();       // not enough evidence
    running.status = "running";
    running.segments.front().browserDisplayName.reset();
    running.segments.front().hostname.reset();
    running.segments.front().pdfLabel.reset();
    ExportSession noSegments = finishedSession();
    noSegments.segments.clear();

    const std::string text = documentOf({running, noSegments, finishedSession()});
    EXPECT_EQ(text.find("null"), std::string::npos);
    const ordered_json document = ordered_json::parse(text);
    expectSortedKeys(document);
    const ordered_json& sessions = document["sessions"];
    ASSERT_EQ(sessions.size(), 3u);
    for (const char* key : {"endDate", "plannedDuration", "focusScore"}) {
        EXPECT_FALSE(sessions[0].contains(key)) << key;
        EXPECT_TRUE(sessions[2].contains(key)) << key;
    }
    EXPECT_EQ(sessions[0].size(), 21u);
    EXPECT_EQ(sessions[2].size(), 24u);
    for (const char* key : {"browserDisplayName", "hostname", "pdfLabel"}) {
        EXPECT_FALSE(sessions[0]["segments"][0].contains(key)) << key;
    }
    EXPECT_EQ(sessions[0]["segments"][0].size(), 7u);
    EXPECT_EQ(sessions[2]["segments"][0].size(), 10u);
    EXPECT_EQ(sessions[1]["segments"], ordered_json::array());
}

TEST(JsonExportWriterTest, DurationsThatAreNotFiniteOrNegativeAreWrittenAsZero) {
    ExportSession session = finishedSession();
    session.focusedDuration = std::numeric_limits<double>::quiet_NaN();
    session.distractedDuration = -12.5;
    session.timerDuration = std::numeric_limits<double>::infinity();
    session.plannedDuration = -0.0;
    session.segments.front().duration = -std::numeric_limits<double>::infinity();
    const std::string text = documentOf({session});
    const ordered_json parsed = ordered_json::parse(text);  // never NaN or Infinity
    const ordered_json& written = parsed["sessions"][0];
    for (const char* key :
         {"focusedDuration", "distractedDuration", "timerDuration", "plannedDuration"}) {
        EXPECT_EQ(written[key].dump(), "0") << key;
    }
    EXPECT_EQ(written["segments"][0]["duration"].dump(), "0");
}

TEST(JsonExportWriterTest, EscapesEveryControlCharacterAndRepairsInvalidUtf8) {
    std::string controls;
    for (char c = 0; c < 0x20; ++c) {
        controls.push_back(c);
    }
    const struct {
        const char* name;
        std::string text;
        std::string readBack;     // what a JSON reader gets from the written string
        const char* writtenForm;  // a piece the written text must hold
    } cases[] = {
        {"every control character", controls, controls, "\\u0000\\u0001"},
        {"short escapes", "\b\f\n\r\t", "\b\f\n\r\t", "\\b\\f\\n\\r\\t"},
        {"quote and backslash", "say \"hi\" \\ bye", "say \"hi\" \\ bye", "\\\"hi\\\" \\\\"},
        {"delete is not a control character in JSON", "a\x7F", "a\x7F", "a\x7F"},
        {"line separators for JavaScript", "a\xE2\x80\xA8z\xE2\x80\xA9",
         "a\xE2\x80\xA8z\xE2\x80\xA9", "a\\u2028z\\u2029"},
        {"other characters stay as they are", "Übung — 日本語 😀", "Übung — 日本語 😀",
         "Übung — 日本語 😀"},
        {"invalid UTF-8", "a\xFF\xC3z", "a\xEF\xBF\xBD\xEF\xBF\xBDz", "a\xEF\xBF\xBD\xEF\xBF\xBDz"},
        {"empty", "", "", "\"subject\": \"\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ExportSession session = finishedSession();
        session.subject = c.text;
        session.segments.front().hostname = c.text;
        const std::string text = documentOf({session});
        EXPECT_NE(text.find(c.writtenForm), std::string::npos);
        for (const char byte : text) {
            ASSERT_TRUE(static_cast<unsigned char>(byte) >= 0x20 || byte == '\n' || byte == '\t');
        }
        const ordered_json parsed = ordered_json::parse(text);
        EXPECT_EQ(parsed["sessions"][0]["subject"].get<std::string>(), c.readBack);
        EXPECT_EQ(parsed["sessions"][0]["segments"][0]["hostname"].get<std::string>(), c.readBack);
    }
}

}  // namespace
}  // namespace lumenote::portability
