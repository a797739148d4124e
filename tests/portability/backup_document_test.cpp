// The backup document read and written: what the writer produces reads back
// exactly, and what another writer may produce (any member order, unknown
// members, nulls, ISO 8601 dates) reads the same.
#include <gtest/gtest.h>

#include "backup_test_support.hpp"
#include "portability/backup_conversion.hpp"
#include "portability/backup_json_writer.hpp"
#include "store/store_test_support.hpp"

namespace lumenote::portability {
namespace {

using namespace lumenote::portability::testing;
using lumenote::testing::bareSegment;
using lumenote::testing::confirmation;
using lumenote::testing::fullSegment;
using lumenote::testing::fullSession;
using lumenote::testing::pdfIdentity;
using lumenote::testing::uuidNumbered;

const Date kDay = Date{kStart};

// What a stored session comes back as: the members a backup carries, its
// children linked to it, and nothing of what it does not carry.
recording::StudySession carriedPart(recording::StudySession session) {
    session.focusedDuration = 0;
    session.distractedDuration = 0;
    session.neutralDuration = 0;
    session.inactiveDuration = 0;
    session.unclassifiedDurationStorage.reset();
    session.ignoredDurationStorage.reset();
    session.focusScore.reset();
    session.originatingTemplateIDStorage.reset();
    session.passiveStudyDurationStorage.reset();
    session.confirmedBreakDurationStorage.reset();
    session.systemExcludedDurationStorage.reset();
    return session;
}

struct Written {
    std::string text;
    std::vector<recording::StudySession> sessions;
    std::vector<std::vector<classification::LocalPDFIdentity>> pdfs;
};

// A session with every member and child, and a finished one of the first
// layout with no optional member at all.
Written writtenHistory() {
    Written written;
    recording::StudySession full = fullSession(1, kDay);
    full.segments = {fullSegment(10, full.id, kDay.addingSeconds(0.000123)),
                     bareSegment(11, full.id, kDay.addingSeconds(100))};
    full.segments[1].duration = 10.000000000001;
    recording::ConfirmedNoInputInterval superseded = confirmation(20, full.id, kDay);
    superseded.supersededAt = kDay.addingSeconds(500.25);
    full.confirmedNoInputIntervals = {superseded, confirmation(21, full.id, kDay)};
    const auto identity = pdfIdentity(30, full.id, kDay.addingSeconds(1), "filename");
    full.localPDFIdentities = {identity.id};

    recording::StudySession bare;
    bare.id = uuidNumbered(2);
    bare.startDate = kDay.addingSeconds(86400);
    bare.endDate = bare.startDate.addingSeconds(60);
    bare.statusRawValue = "interrupted";
    bare.segments = {bareSegment(12, bare.id, bare.startDate)};

    written.sessions = {full, bare};
    written.pdfs = {{identity}, {}};
    BackupDocumentHead head{"9.8.7", kDay.addingSeconds(999999), {}, {}, {}};
    head.preferences.longSleep = 0;
    head.applicationRules = {{"org.gnome.Nautilus", "Files — Dateien", "neutral", kDay}};
    head.websiteRules = {{"example.org", "distracting", kDay}};
    appendDocumentHead(written.text, head);
    for (std::size_t index = 0; index < written.sessions.size(); ++index) {
        appendSession(written.text, written.sessions[index], written.pdfs[index], index == 0);
    }
    appendDocumentTail(written.text);
    return written;
}

TEST(BackupDocumentTest, WhatIsWrittenReadsBackExactly) {
    const Written written = writtenHistory();
    const auto report = validate(written.text);
    ASSERT_TRUE(report) << report.error().message();
    EXPECT_EQ(report->document.formatVersion, kBackupFormatVersion);
    EXPECT_EQ(report->document.appVersion, "9.8.7");
    EXPECT_EQ(report->document.createdAt, kDay.addingSeconds(999999));
    EXPECT_EQ(report->document.preferences.longSleep, 0);
    EXPECT_FALSE(report->document.preferences.appearance);
    EXPECT_EQ(report->document.sessionCount, 2u);
    EXPECT_EQ(report->document.confirmationCount, 2u);
    EXPECT_EQ(report->document.pdfIdentityCount, 1u);
    EXPECT_EQ(report->segmentCount, 3u);
    EXPECT_EQ(report->ruleCount, 2u);
    EXPECT_EQ(report->document.applicationRules.front().applicationName, "Files — Dateien");

    const std::vector<BackupSession> read = sessionsOf(written.text);
    ASSERT_EQ(read.size(), 2u);
    for (std::size_t index = 0; index < read.size(); ++index) {
        SCOPED_TRACE(index);
        RestoredSession stored = storedRecords(BackupSession(read[index]));
        EXPECT_EQ(stored.session, carriedPart(written.sessions[index]));
        EXPECT_EQ(stored.pdfIdentities, written.pdfs[index]);
    }
}

TEST(BackupDocumentTest, MembersInAnyOrderUnknownMembersNullsAndIsoDatesReadTheSame) {
    const json plain = documentJson(2);
    json sessions = plain["sessions"];
    sessions[0]["futureMember"] = json::array({1, 2, {{"x", nullptr}}});
    sessions[0]["segments"][0]["browserFallbackReason"] = nullptr;
    sessions[0]["startDate"] = formatIso8601(Date{sessions[0]["startDate"].get<double>()},
                                             {.fractionalSeconds = true, .utcOffsetSeconds = 3600});
    // The sessions first, the version last, unknown members between: the
    // sessions are then read once the version is known.
    std::string text =
        "{\"sessions\":" + sessions.dump() + ",\"comment\":{\"sessions\":[],\"formatVersion\":9}";
    for (const char* key :
         {"websiteRules", "preferences", "createdAt", "applicationRules", "appVersion"}) {
        text += ",\"" + std::string(key) + "\":" + plain[key].dump();
    }
    text += ",\"formatVersion\":1}";

    const auto expected = validate(plain);
    const auto read = validate(text);
    ASSERT_TRUE(expected) << expected.error().message();
    ASSERT_TRUE(read) << read.error().message();
    EXPECT_EQ(read->segmentCount, expected->segmentCount);
    EXPECT_EQ(read->document.sessionCount, 2u);
    EXPECT_EQ(read->document.preferences, expected->document.preferences);
    EXPECT_EQ(read->document.websiteRules, expected->document.websiteRules);

    const auto decoded = sessionsOf(text);
    ASSERT_EQ(decoded.size(), 2u);
    // ISO 8601 text carries milliseconds only.
    EXPECT_NEAR(decoded[0].startDate.secondsSinceReferenceDate, kStart + 86400, 0.0005);
    EXPECT_FALSE(decoded[0].segments[0].browserFallbackReasonRawValue);
    EXPECT_EQ(decoded[1].segments[0].browserFallbackReasonRawValue, std::nullopt);
}

TEST(BackupDocumentTest, HostileTextsAreRefusedOrMadeSafe) {
    // Raw bytes that are not UTF-8 make the session undecodable, its id
    // included.
    std::string raw = documentJson(1).dump();
    const std::string dumped = json("Lineare Algebra — Übung").dump();
    raw.replace(raw.find(dumped), dumped.size(), "\"bad \xff\xfe bytes\"");
    auto refused = validate(raw);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().message(),
              "The backup contains an invalid record: invalid session at position 1");

    // Escaped control characters decode, and are refused by the checks: a
    // terminal would obey them instead of showing them.
    using namespace std::string_literals;
    for (const std::string& hostile : {"\x1b[2J"s, "bell\x07"s, "nul\0x"s, "\xc2\x9b c1"s}) {
        json document = documentJson(1);
        document["sessions"][0]["segments"][1]["applicationName"] = hostile;
        auto result = validate(document);
        ASSERT_FALSE(result) << hostile;
        EXPECT_EQ(result.error().detail, "invalid activity segment " + uuidText(segmentKind, 3));
    }
    // Line breaks and tabs belong in free texts.
    json notes = documentJson(1);
    notes["sessions"][0]["notes"] = "line one\n\tline two\r\n";
    EXPECT_TRUE(validate(notes));

    // What the writer is given that is not UTF-8 it replaces, so that its
    // own backups always read back.
    recording::StudySession session = fullSession(5, kDay);
    session.subject = "broken \xe2\x82 and lone \x80";
    std::string text;
    appendDocumentHead(text, BackupDocumentHead{"1", kDay, {}, {}, {}});
    appendSession(text, session, {}, true);
    appendDocumentTail(text);
    const auto sessions = sessionsOf(text);
    ASSERT_EQ(sessions.size(), 1u);
    // Each byte outside a UTF-8 sequence becomes one replacement character.
    EXPECT_EQ(sessions[0].subject, "broken \xef\xbf\xbd\xef\xbf\xbd and lone \xef\xbf\xbd");
}

}  // namespace
}  // namespace lumenote::portability
