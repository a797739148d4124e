// What makes a backup invalid, what the error says, and which error wins
// when a backup has several problems.
#include <functional>

#include <gtest/gtest.h>

#include "backup_test_support.hpp"

namespace lumenote::portability {
namespace {

using namespace lumenote::portability::testing;

const std::string kInvalid = "The backup contains an invalid record: ";

std::string invalidSession(int number) {
    return kInvalid + "invalid session " + uuidText(sessionKind, number);
}

std::string invalidSegment(int number) {
    return kInvalid + "invalid activity segment " + uuidText(segmentKind, number);
}

std::string duplicate(int kind, int number) {
    return "The backup contains a duplicate identifier: " + uuidText(kind, number);
}

std::string overlapping(int number) {
    return kInvalid + "overlapping active confirmation " + uuidText(confirmationKind, number);
}

struct Case {
    const char* name;
    std::function<void(json&)> change;
    std::function<void(BackupValidationLimits&)> limit;
    std::string expected;  // the message; "" when the backup is valid
};

void expectCases(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        json document = documentJson(2);
        if (c.change) {
            c.change(document);
        }
        BackupValidationLimits limits;
        if (c.limit) {
            c.limit(limits);
        }
        const auto report = validate(document, limits);
        if (c.expected.empty()) {
            EXPECT_TRUE(report) << report.error().message();
        } else {
            ASSERT_FALSE(report);
            EXPECT_EQ(report.error().message(), c.expected);
        }
    }
}

json& session(json& document, int number) {
    return document["sessions"][number - 1];
}

json& segment(json& document, int sessionNumber, int index) {
    return session(document, sessionNumber)["segments"][index];
}

TEST(BackupValidationTest, TheFormatVersionIsCheckedBeforeAnythingElse) {
    const std::string metadata = kInvalid + "backup metadata or preferences";
    expectCases({
        {"a later version, with records it would read differently",
         [](json& d) {
             d["formatVersion"] = 7;
             d["sessions"][0] = "a session of version 7";
             d["applicationRules"] = {{{"rule", "of version 7"}}};
         },
         {},
         "Backup format version 7 is not supported by this version of Lumenote."},
        {"version 0",
         [](json& d) { d["formatVersion"] = 0; },
         {},
         "Backup format version 0 is not supported by this version of Lumenote."},
        {"a later version with too many sessions", [](json& d) { d["formatVersion"] = 2; },
         [](BackupValidationLimits& l) { l.maximumSessions = 1; },
         "Backup format version 2 is not supported by this version of Lumenote."},
        {"a version as text", [](json& d) { d["formatVersion"] = "1"; }, {}, metadata},
        {"a version with a fraction", [](json& d) { d["formatVersion"] = 1.0; }, {}, metadata},
        {"no version", [](json& d) { d.erase("formatVersion"); }, {}, metadata},
    });
}

TEST(BackupValidationTest, TheDocumentsOwnMembersMustBeThereOnceAndWellFormed) {
    const std::string metadata = kInvalid + "backup metadata or preferences";
    expectCases({
        {"no sessions member", [](json& d) { d.erase("sessions"); }, {}, metadata},
        {"no preferences", [](json& d) { d.erase("preferences"); }, {}, metadata},
        {"no website rules", [](json& d) { d.erase("websiteRules"); }, {}, metadata},
        {"a preference of another type",
         [](json& d) { d["preferences"]["defaultDuration"] = "long"; },
         {},
         metadata},
        {"an app version over its bound",
         [](json& d) { d["appVersion"] = std::string(65, '1'); },
         {},
         metadata},
        {"an app version at its bound",
         [](json& d) { d["appVersion"] = std::string(64, '1'); },
         {},
         ""},
        {"a creation date in 1999", [](json& d) { d["createdAt"] = -40'000'000.0; }, {}, metadata},
        {"sessions that are not a list",
         [](json& d) {
             d["sessions"] = {{"a", 1}};
         },
         {},
         metadata},
    });
    // A member given twice.
    std::string twice = documentJson(1).dump();
    twice.insert(1, "\"appVersion\":\"0.0.1\",");
    const auto report = validate(twice);
    ASSERT_FALSE(report);
    EXPECT_EQ(report.error().message(), metadata);
}

TEST(BackupValidationTest, MalformedJsonNamesTheByteWhereItBroke) {
    const std::string text = documentJson(2).dump();
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{1}, text.size() / 2, text.size() - 1}) {
        SCOPED_TRACE(length);
        const auto report = validate(text.substr(0, length));
        ASSERT_FALSE(report);
        EXPECT_EQ(report.error().message(),
                  kInvalid + "malformed JSON at byte " + std::to_string(length));
    }
    const auto trailing = validate(text + " {}");
    ASSERT_FALSE(trailing);
    EXPECT_EQ(trailing.error().message(),
              kInvalid + "malformed JSON at byte " + std::to_string(text.size() + 2));
}

TEST(BackupValidationTest, CountsAreBoundedInTotalAndPerSession) {
    // Two sessions of two segments, one confirmation and one PDF identity
    // each, and two rules: 12 records.
    expectCases({
        {"sessions",
         {},
         [](BackupValidationLimits& l) { l.maximumSessions = 1; },
         kInvalid + "too many sessions"},
        {"sessions at the bound", {}, [](BackupValidationLimits& l) { l.maximumSessions = 2; }, ""},
        {"segments in total",
         {},
         [](BackupValidationLimits& l) { l.maximumSegments = 3; },
         kInvalid + "too many activity segments"},
        {"segments in a session",
         {},
         [](BackupValidationLimits& l) { l.maximumSegmentsPerSession = 1; },
         kInvalid + "too many activity segments"},
        {"confirmations in total",
         {},
         [](BackupValidationLimits& l) { l.maximumConfirmations = 1; },
         kInvalid + "too many confirmed intervals"},
        {"confirmations in a session",
         {},
         [](BackupValidationLimits& l) { l.maximumConfirmationsPerSession = 0; },
         kInvalid + "too many confirmed intervals"},
        {"PDF identities in total",
         {},
         [](BackupValidationLimits& l) { l.maximumPDFIdentities = 1; },
         kInvalid + "too many PDF identities"},
        {"PDF identities in a session",
         {},
         [](BackupValidationLimits& l) { l.maximumPDFIdentitiesPerSession = 0; },
         kInvalid + "too many PDF identities"},
        {"application rules",
         {},
         [](BackupValidationLimits& l) { l.maximumApplicationRules = 0; },
         kInvalid + "too many application rules"},
        {"website rules",
         {},
         [](BackupValidationLimits& l) { l.maximumWebsiteRules = 0; },
         kInvalid + "too many website rules"},
        {"records",
         {},
         [](BackupValidationLimits& l) { l.maximumTotalRecords = 11; },
         kInvalid + "too many records"},
        {"records at the bound",
         {},
         [](BackupValidationLimits& l) { l.maximumTotalRecords = 12; },
         ""},
        {"a session's text over the decoding bound",
         {},
         [](BackupValidationLimits& l) {
             // The preferences are the longest of the other members.
             l.maximumSessionBytes = preferencesJson().dump().size();
         },
         kInvalid + "invalid session at position 1"},
    });
}

TEST(BackupValidationTest, EveryRecordKeepsItsBoundsAtTheirEdges) {
    const BackupValidationLimits defaults;
    const double earliest = defaults.earliestDate.secondsSinceReferenceDate;
    const double latest = defaults.latestDate.secondsSinceReferenceDate;
    const double tolerance = defaults.endpointDurationTolerance;
    const auto startOf = [](json& d, int number) {
        return session(d, number)["startDate"].get<double>();
    };
    expectCases({
        {"a subject at its bound",
         [&](json& d) {
             session(d, 1)["subject"] = std::string(defaults.maximumSubjectBytes, 'a');
         },
         {},
         ""},
        {"a subject one byte over",
         [&](json& d) {
             session(d, 1)["subject"] = std::string(defaults.maximumSubjectBytes - 1, 'a') + "é";
         },
         {},
         invalidSession(1)},
        {"notes over their bound",
         [&](json& d) {
             session(d, 2)["notes"] = std::string(defaults.maximumNotesBytes + 1, 'n');
         },
         {},
         invalidSession(2)},
        {"the earliest date",
         [&](json& d) {
             session(d, 1)["startDate"] = earliest;
             session(d, 1)["endDate"] = earliest + 120;
             segment(d, 1, 0)["startDate"] = earliest;
             segment(d, 1, 0)["endDate"] = earliest + 60;
         },
         {},
         ""},
        {"a segment a moment before the earliest date",
         [&](json& d) { segment(d, 1, 1)["startDate"] = earliest - 0.001; },
         {},
         invalidSegment(3)},
        {"an end date at the latest date, which is not accepted",
         [&](json& d) { session(d, 2)["endDate"] = latest; },
         {},
         invalidSession(2)},
        {"a planned duration at its bound",
         [&](json& d) { session(d, 1)["plannedDuration"] = defaults.maximumPlannedDuration; },
         {},
         ""},
        {"a planned duration over it",
         [&](json& d) { session(d, 1)["plannedDuration"] = defaults.maximumPlannedDuration + 1; },
         {},
         invalidSession(1)},
        {"a negative planned duration",
         [&](json& d) { session(d, 1)["plannedDuration"] = -1; },
         {},
         invalidSession(1)},
        {"a segment's duration off by just under the tolerance",
         [&](json& d) { segment(d, 2, 0)["duration"] = 60 + tolerance - 0.001; },
         {},
         ""},
        {"a segment's duration off by more",
         [&](json& d) { segment(d, 2, 0)["duration"] = 60 + tolerance + 0.01; },
         {},
         invalidSegment(4)},
        {"a timer longer than the session's span by more than the tolerance",
         [&](json& d) { session(d, 1)["timerDuration"] = 120 + tolerance + 1; },
         {},
         invalidSession(1)},
        {"an end before the start by more than the tolerance",
         [&](json& d) {
             session(d, 1)["endDate"] = startOf(d, 1) - tolerance - 1;
             session(d, 1)["timerDuration"] = 0;
         },
         {},
         invalidSession(1)},
        {"a session longer than the longest",
         [&](json& d) {
             session(d, 1)["endDate"] = startOf(d, 1) + defaults.maximumSessionDuration + 1;
         },
         {},
         invalidSession(1)},
        {"a running session",
         [&](json& d) { session(d, 2)["status"] = "running"; },
         {},
         invalidSession(2)},
        {"a paused session without an end",
         [&](json& d) {
             session(d, 2)["status"] = "paused";
             session(d, 2).erase("endDate");
         },
         {},
         invalidSession(2)},
        {"a finished session without an end",
         [&](json& d) { session(d, 2)["endDate"] = nullptr; },
         {},
         invalidSession(2)},
        {"a status of a later release",
         [&](json& d) { session(d, 2)["status"] = "archived"; },
         {},
         ""},
        {"a confirmation ending before it starts",
         [&](json& d) {
             json& interval = session(d, 1)["confirmedNoInputIntervals"][0];
             interval["endDate"] = interval["startDate"].get<double>() - 2;
         },
         {},
         kInvalid + "invalid confirmed interval " + uuidText(confirmationKind, 1)},
        {"a PDF label over its bound",
         [&](json& d) {
             session(d, 2)["localPDFIdentities"][0]["displayLabel"] =
                 std::string(defaults.maximumPDFLabelBytes + 1, 'p');
         },
         {},
         kInvalid + "invalid PDF identity " + uuidText(pdfKind, 2)},
    });
}

TEST(BackupValidationTest, ARecordThatCannotBeDecodedIsNamedWhenItsIdCanBeRead) {
    expectCases({
        {"a segment without its duration",
         [](json& d) { segment(d, 1, 0).erase("duration"); },
         {},
         invalidSegment(2)},
        {"a Boolean given as text",
         [](json& d) { segment(d, 2, 1)["isInactive"] = "no"; },
         {},
         invalidSegment(5)},
        {"a segment whose id is no UUID",
         [](json& d) { segment(d, 2, 1)["id"] = "not-a-uuid"; },
         {},
         invalidSession(2)},
        {"a session without an id",
         [](json& d) { session(d, 2).erase("id"); },
         {},
         kInvalid + "invalid session at position 2"},
        {"an integer version with a fraction",
         [](json& d) { session(d, 1)["calculationVersion"] = 3.5; },
         {},
         invalidSession(1)},
        {"a date that is not ISO 8601",
         [](json& d) { session(d, 1)["startDate"] = "8 May 2026"; },
         {},
         invalidSession(1)},
        {"a session that is not an object",
         [](json& d) { d["sessions"][1] = 42; },
         {},
         kInvalid + "invalid session at position 2"},
    });
    // A member given twice.
    std::string text = documentJson(1).dump();
    const std::string goal = "\"goal\":";
    text.insert(text.find(goal), "\"goal\":\"first\",");
    const auto report = validate(text);
    ASSERT_FALSE(report);
    EXPECT_EQ(report.error().message(), invalidSession(1));
}

TEST(BackupValidationTest, RulesMustNameAClassificationAndAKeyOnce) {
    const std::string application = kInvalid + "invalid application rule";
    const std::string website = kInvalid + "invalid website rule";
    expectCases({
        {"an unknown classification",
         [](json& d) { d["applicationRules"][0]["classification"] = "sort-of"; },
         {},
         application},
        {"an empty bundle identifier",
         [](json& d) { d["applicationRules"][0]["bundleIdentifier"] = ""; },
         {},
         application},
        {"a missing update date",
         [](json& d) { d["applicationRules"][0].erase("updatedAt"); },
         {},
         application},
        {"a hostname that is not normalised",
         [](json& d) { d["websiteRules"][0]["hostname"] = "Docs.Google.com"; },
         {},
         website},
        {"a hostname with a final dot",
         [](json& d) { d["websiteRules"][0]["hostname"] = "docs.google.com."; },
         {},
         website},
        {"one hostname twice",
         [](json& d) { d["websiteRules"].push_back(d["websiteRules"][0]); },
         {},
         website},
        {"one bundle identifier in two letter cases",
         [](json& d) {
             json rule = d["applicationRules"][0];
             rule["bundleIdentifier"] = "org.gnome.nautilus";
             d["applicationRules"].push_back(rule);
         },
         {},
         ""},
    });
}

TEST(BackupValidationTest, IdentitiesMustBeUniqueWithinTheirKind) {
    expectCases({
        {"a session twice",
         [](json& d) { session(d, 2)["id"] = uuidText(sessionKind, 1); },
         {},
         duplicate(sessionKind, 1)},
        {"a segment in two sessions",
         [](json& d) { segment(d, 2, 1)["id"] = uuidText(segmentKind, 2); },
         {},
         duplicate(segmentKind, 2)},
        {"a PDF identity twice",
         [](json& d) { session(d, 2)["localPDFIdentities"][0]["id"] = uuidText(pdfKind, 1); },
         {},
         duplicate(pdfKind, 1)},
        {"the same bytes as a session and as a segment",
         [](json& d) { segment(d, 1, 0)["id"] = uuidText(sessionKind, 1); },
         {},
         ""},
        {"the lowest of two repeated identities is named",
         [](json& d) {
             segment(d, 2, 1)["id"] = uuidText(segmentKind, 3);
             segment(d, 2, 0)["id"] = uuidText(segmentKind, 2);
         },
         {},
         duplicate(segmentKind, 2)},
    });
}

// Session 1's confirmations, in seconds from its start:
//   first   0 |==========| 30          (from sessionJson: study)
//   second   extra, drawn per case     (a break unless the case says study)
TEST(BackupValidationTest, ConfirmationsInForceMustNotOverlapWithinASession) {
    const auto withSecond = [](double from, double to, std::optional<double> superseded,
                               std::string state = "confirmedBreak") {
        return [=](json& d) {
            const double start = session(d, 1)["startDate"].get<double>();
            json second = confirmationJson(
                9, start + from, start + to,
                superseded ? std::optional<double>(start + *superseded) : std::nullopt);
            second["state"] = state;
            session(d, 1)["confirmedNoInputIntervals"].push_back(std::move(second));
        };
    };
    expectCases({
        //   0 |==========| 30              study
        //          20 |==========| 50      study again (an away period inside the
        //                                  time an offline book session declares)
        {"the same state twice", withSecond(20, 50, std::nullopt, "passiveStudy"), {}, ""},
        //   0 |==========| 30
        //          20 |==========| 50
        {"overlapping by ten seconds", withSecond(20, 50, std::nullopt), {}, overlapping(9)},
        //   0 |==========| 30
        //        10 |==| 15
        {"inside the first", withSecond(10, 15, std::nullopt), {}, overlapping(9)},
        //   0 |==========| 30
        //                  30 |=====| 60
        {"touching", withSecond(30, 60, std::nullopt), {}, ""},
        //   0 |==========| 30
        //             29.5 |=====| 60      (within the second of tolerance)
        {"sharing half a second", withSecond(29.5, 60, std::nullopt), {}, ""},
        //   0 |==========| 30
        //         20 |..........| 50       (superseded)
        {"overlapping a superseded one", withSecond(20, 50, 100.0), {}, ""},
        //            -20 |======| 5        (starts first: the first one is named)
        {"starting earlier", withSecond(-20, 5, std::nullopt), {}, overlapping(1)},
        // Two sessions' confirmations may overlap each other.
        {"in another session",
         [](json& d) {
             session(d, 2)["startDate"] = session(d, 1)["startDate"];
             session(d, 2)["endDate"] = session(d, 1)["endDate"];
             for (int index : {0, 1}) {
                 segment(d, 2, index)["startDate"] = segment(d, 1, index)["startDate"];
                 segment(d, 2, index)["endDate"] = segment(d, 1, index)["endDate"];
             }
             session(d, 2)["confirmedNoInputIntervals"][0]["startDate"] =
                 session(d, 1)["confirmedNoInputIntervals"][0]["startDate"];
             session(d, 2)["confirmedNoInputIntervals"][0]["endDate"] =
                 session(d, 1)["confirmedNoInputIntervals"][0]["endDate"];
         },
         {},
         ""},
    });
}

TEST(BackupValidationTest, TheFirstProblemInCheckingOrderIsReported) {
    expectCases({
        // Bounds come before identities, and identities before overlaps,
        // wherever in the document each problem is.
        {"a duplicate session before a bound broken later",
         [](json& d) {
             session(d, 2)["id"] = uuidText(sessionKind, 1);
             session(d, 2)["status"] = "running";
         },
         {},
         invalidSession(1)},
        {"an overlap before a duplicate segment",
         [](json& d) {
             const double start = session(d, 1)["startDate"].get<double>();
             session(d, 1)["confirmedNoInputIntervals"].push_back(
                 confirmationJson(9, start + 10, start + 50));
             segment(d, 2, 1)["id"] = uuidText(segmentKind, 2);
         },
         {},
         duplicate(segmentKind, 2)},
        {"an overlap in the first session and a bound broken in the second",
         [](json& d) {
             const double start = session(d, 1)["startDate"].get<double>();
             session(d, 1)["confirmedNoInputIntervals"].push_back(
                 confirmationJson(9, start + 10, start + 50));
             segment(d, 2, 0)["duration"] = -1;
         },
         {},
         invalidSegment(4)},
        {"a broken rule before a broken session",
         [](json& d) {
             d["websiteRules"][0]["classification"] = "nope";
             session(d, 1)["status"] = "running";
         },
         {},
         kInvalid + "invalid website rule"},
    });
}

TEST(BackupValidationTest, WarningsSayWhatARestoreWillNotDoAsAsked) {
    const auto valid = validate(documentJson(2));
    ASSERT_TRUE(valid);
    EXPECT_TRUE(valid->warnings.empty());

    json document = documentJson(0);
    document["preferences"].erase("appearance");
    document["preferences"].erase("longSleep");
    document["preferences"]["rememberGoal"] = nullptr;
    auto empty = validate(document);
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->warnings,
              (std::vector<std::string>{"The backup contains no sessions.",
                                        "3 of the supported preferences are missing from the "
                                        "backup; those settings stay as they are."}));

    document = documentJson(1);
    session(document, 1)["status"] = "archived";
    segment(document, 1, 0)["classification"] = "sort-of-focused";
    segment(document, 1, 1)["activitySource"] = "hologram";
    auto unknown = validate(document);
    ASSERT_TRUE(unknown);
    EXPECT_EQ(unknown->warnings,
              (std::vector<std::string>{"3 records hold values this version of Lumenote does "
                                        "not know; they are restored as they are."}));
}

}  // namespace
}  // namespace lumenote::portability
