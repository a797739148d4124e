#include "recording/active_session_checkpoint.hpp"
#include "recording/session_messages.hpp"

#include <cmath>
#include <functional>
#include <limits>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace lumenote::recording {
namespace {

using Problem = ActiveSessionCheckpointProblem;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// 2025-11-16T08:00:00.123Z
const Date kStart = Date::fromMillisecondsSince1970(1763280000123.0);

ActiveSessionCheckpoint sampleCheckpoint() {
    ActiveSessionCheckpoint c;
    c.sessionID = *Uuid::parse("E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    c.startedAt = kStart;
    c.expectedEndAt = kStart.addingSeconds(3000);
    c.state = ActiveSessionCheckpointState::recording;
    c.confirmedDuration = 1190.5;
    c.accumulatedPauseDuration = 60.0;
    c.lastConfirmedActivityAt = kStart.addingSeconds(1250.5);
    c.lastPersistedSegmentBoundaryAt = kStart.addingSeconds(1240);
    c.savedAt = kStart.addingSeconds(1255);
    c.calculationVersion = 3;
    return c;
}

// ---- validation -----------------------------------------------------------

TEST(ActiveSessionCheckpointTest, ValidationAppliesEachRuleAtItsBoundary) {
    using Change = std::function<void(ActiveSessionCheckpoint&)>;
    // Moves `field` to `seconds` away from `anchor`.
    const auto at = [](Date ActiveSessionCheckpoint::*field, Date ActiveSessionCheckpoint::*anchor,
                       double seconds) -> Change {
        return [=](ActiveSessionCheckpoint& c) { c.*field = (c.*anchor).addingSeconds(seconds); };
    };
    using C = ActiveSessionCheckpoint;
    const struct {
        const char* name;
        Change change;
        std::optional<Problem> expected;
    } cases[] = {
        {"unchanged", [](C&) {}, std::nullopt},
        {"format version 0", [](C& c) { c.formatVersion = 0; }, Problem::formatVersion},
        {"format version 2", [](C& c) { c.formatVersion = 2; }, Problem::formatVersion},
        {"calculation version 1", [](C& c) { c.calculationVersion = 1; }, std::nullopt},
        {"calculation version 0", [](C& c) { c.calculationVersion = 0; },
         Problem::calculationVersion},
        {"calculation version 4", [](C& c) { c.calculationVersion = 4; },
         Problem::calculationVersion},
        {"zero durations",
         [](C& c) {
             c.confirmedDuration = 0;
             c.accumulatedPauseDuration = 0;
         },
         std::nullopt},
        {"negative confirmed", [](C& c) { c.confirmedDuration = -0.001; }, Problem::durations},
        {"negative pause", [](C& c) { c.accumulatedPauseDuration = -1; }, Problem::durations},
        {"NaN confirmed", [](C& c) { c.confirmedDuration = kNaN; }, Problem::durations},
        {"infinite pause", [](C& c) { c.accumulatedPauseDuration = kInfinity; },
         Problem::durations},
        {"NaN start", [](C& c) { c.startedAt = Date{kNaN}; }, Problem::datesNotFinite},
        {"infinite expected end", [](C& c) { c.expectedEndAt = Date{kInfinity}; },
         Problem::datesNotFinite},
        {"NaN confirmed activity", [](C& c) { c.lastConfirmedActivityAt = Date{kNaN}; },
         Problem::datesNotFinite},
        {"infinite boundary", [](C& c) { c.lastPersistedSegmentBoundaryAt = Date{-kInfinity}; },
         Problem::datesNotFinite},
        // Finite, but its millisecond form overflows and could not be written.
        {"huge save time", [](C& c) { c.savedAt = Date{1e307}; }, Problem::datesNotFinite},
        // Finite and in order, but after the year 9999: the recovery prompt
        // could not write the dates.
        {"every date in the year 10000",
         [](C& c) {
             for (Date* date : {&c.startedAt, &c.expectedEndAt, &c.lastConfirmedActivityAt,
                                &c.lastPersistedSegmentBoundaryAt, &c.savedAt}) {
                 *date = Date::fromMillisecondsSince1970(253402300800000.0);
             }
         },
         Problem::datesNotFinite},
        {"every date at the last millisecond of 9999",
         [](C& c) {
             for (Date* date : {&c.startedAt, &c.expectedEndAt, &c.lastConfirmedActivityAt,
                                &c.lastPersistedSegmentBoundaryAt, &c.savedAt}) {
                 *date = Date::fromMillisecondsSince1970(253402300799999.0);
             }
         },
         std::nullopt},
        {"start one millisecond before the year 0000",
         [](C& c) { c.startedAt = Date::fromMillisecondsSince1970(-62167219200001.0); },
         Problem::datesNotFinite},

        {"confirmed activity 5 s before start",
         at(&C::lastConfirmedActivityAt, &C::startedAt, -5.0), std::nullopt},
        {"confirmed activity 5.001 s before start",
         at(&C::lastConfirmedActivityAt, &C::startedAt, -5.001), Problem::datesOutOfOrder},
        {"boundary 5 s before start", at(&C::lastPersistedSegmentBoundaryAt, &C::startedAt, -5.0),
         std::nullopt},
        {"boundary 5.001 s before start",
         at(&C::lastPersistedSegmentBoundaryAt, &C::startedAt, -5.001), Problem::datesOutOfOrder},
        {"confirmed activity 5 s after save", at(&C::lastConfirmedActivityAt, &C::savedAt, 5.0),
         std::nullopt},
        {"confirmed activity 5.001 s after save",
         at(&C::lastConfirmedActivityAt, &C::savedAt, 5.001), Problem::datesOutOfOrder},
        {"boundary 5 s after save", at(&C::lastPersistedSegmentBoundaryAt, &C::savedAt, 5.0),
         std::nullopt},
        {"boundary 5.001 s after save", at(&C::lastPersistedSegmentBoundaryAt, &C::savedAt, 5.001),
         Problem::datesOutOfOrder},
        {"saved at the start of a fresh session",
         [](C& c) {
             c.lastConfirmedActivityAt = c.startedAt;
             c.lastPersistedSegmentBoundaryAt = c.startedAt;
             c.savedAt = c.startedAt.addingSeconds(-5.0);
         },
         std::nullopt},
        {"saved 5.001 s before a fresh start",
         [](C& c) {
             c.lastConfirmedActivityAt = c.startedAt;
             c.lastPersistedSegmentBoundaryAt = c.startedAt;
             c.savedAt = c.startedAt.addingSeconds(-5.001);
         },
         Problem::datesOutOfOrder},
        {"boundary after confirmed activity",
         at(&C::lastPersistedSegmentBoundaryAt, &C::lastConfirmedActivityAt, 4.0), std::nullopt},
        {"planned end far after save", at(&C::expectedEndAt, &C::savedAt, 80000.0), std::nullopt},
        {"planned end 5 s before start", at(&C::expectedEndAt, &C::startedAt, -5.0), std::nullopt},
        {"planned end 5.001 s before start", at(&C::expectedEndAt, &C::startedAt, -5.001),
         Problem::datesOutOfOrder},
        {"planned end passed while recording", at(&C::expectedEndAt, &C::savedAt, -600.0),
         std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ActiveSessionCheckpoint checkpoint = sampleCheckpoint();
        c.change(checkpoint);
        EXPECT_EQ(checkpointProblem(checkpoint), c.expected);
    }
}

TEST(ActiveSessionCheckpointTest, ValidityDoesNotChangeThroughTheStoredForm) {
    // Slack just under and over 5 s in steps below a millisecond: validation
    // must judge the dates as they will be read back, or a checkpoint saved
    // as valid could be quarantined at the next launch.
    for (double extra = -0.0015; extra <= 0.0015; extra += 0.0001) {
        SCOPED_TRACE(extra);
        ActiveSessionCheckpoint checkpoint = sampleCheckpoint();
        checkpoint.lastConfirmedActivityAt = checkpoint.startedAt.addingSeconds(-5.0 - extra);
        const auto decoded = decodeCheckpoint(encodeCheckpoint(checkpoint));
        ASSERT_TRUE(decoded);
        EXPECT_EQ(isValidCheckpoint(*decoded), isValidCheckpoint(checkpoint));
    }
}

// ---- encoding and decoding ------------------------------------------------

TEST(ActiveSessionCheckpointTest, EncodesSortedKeysAndWholeMillisecondDates) {
    ActiveSessionCheckpoint checkpoint = sampleCheckpoint();
    checkpoint.templateID = Uuid::parse("0a1b2c3d-4e5f-4061-8293-a4b5c6d7e8f9");
    EXPECT_EQ(encodeCheckpoint(checkpoint),
              "{\"accumulatedPauseDuration\":60.0,"
              "\"calculationVersion\":3,"
              "\"confirmedDuration\":1190.5,"
              "\"expectedEndAt\":1763283000123,"
              "\"formatVersion\":1,"
              "\"lastConfirmedActivityAt\":1763281250623,"
              "\"lastPersistedSegmentBoundaryAt\":1763281240123,"
              "\"savedAt\":1763281255123,"
              "\"sessionID\":\"E621E1F8-C36C-495A-93FC-0C247A3E6E5F\","
              "\"startedAt\":1763280000123,"
              "\"state\":\"recording\","
              "\"templateID\":\"0A1B2C3D-4E5F-4061-8293-A4B5C6D7E8F9\"}\n");

    checkpoint.templateID.reset();
    EXPECT_EQ(encodeCheckpoint(checkpoint).find("templateID"), std::string::npos);
}

TEST(ActiveSessionCheckpointTest, RoundTripsEveryField) {
    ActiveSessionCheckpoint paused = sampleCheckpoint();
    paused.state = ActiveSessionCheckpointState::paused;
    paused.calculationVersion = 1;
    paused.confirmedDuration = 0.1 + 0.2;  // not exact in binary: must come back bit for bit
    paused.templateID = Uuid::generate();
    // Before 1970 the millisecond numbers are negative.
    ActiveSessionCheckpoint early = sampleCheckpoint();
    early.startedAt = Date::fromMillisecondsSince1970(-86400000.0);
    early.expectedEndAt = early.startedAt;
    early.lastConfirmedActivityAt = early.startedAt;
    early.lastPersistedSegmentBoundaryAt = early.startedAt;
    early.savedAt = early.startedAt.addingSeconds(1);

    for (const auto& checkpoint : {sampleCheckpoint(), paused, early}) {
        const auto decoded = decodeCheckpoint(encodeCheckpoint(checkpoint));
        ASSERT_TRUE(decoded);
        EXPECT_EQ(*decoded, checkpoint);
    }
}

TEST(ActiveSessionCheckpointTest, DecodingRefusesMissingMembersWrongTypesAndUnknownValues) {
    const nlohmann::json valid = nlohmann::json::parse(encodeCheckpoint(sampleCheckpoint()));
    for (const auto& [key, value] : valid.items()) {
        SCOPED_TRACE("without " + key);
        nlohmann::json missing = valid;
        missing.erase(key);
        EXPECT_FALSE(decodeCheckpoint(missing.dump()));
    }

    const struct {
        const char* key;
        nlohmann::json value;
    } wrong[] = {
        {"formatVersion", 1.0},
        {"formatVersion", "1"},
        {"formatVersion", 18446744073709551615ull},
        {"calculationVersion", 3.5},
        {"calculationVersion", nullptr},
        {"startedAt", "1763280000123"},
        {"savedAt", nullptr},
        {"expectedEndAt", true},
        {"confirmedDuration", "12"},
        {"accumulatedPauseDuration", nlohmann::json::array()},
        {"sessionID", "not-a-uuid"},
        {"sessionID", 42},
        {"state", "running"},
        {"state", "Recording"},
        {"state", 0},
        {"templateID", nullptr},
        {"templateID", ""},
        {"templateID", 7},
    };
    for (const auto& c : wrong) {
        SCOPED_TRACE(std::string(c.key) + " = " + c.value.dump());
        nlohmann::json changed = valid;
        changed[c.key] = c.value;
        EXPECT_FALSE(decodeCheckpoint(changed.dump()));
    }

    for (const char* text : {"", "[]", "null", "{", "{\"formatVersion\":1}"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(decodeCheckpoint(text));
    }
}

TEST(ActiveSessionCheckpointTest, DecodingKeepsOutOfRangeVersionsForValidation) {
    nlohmann::json document = nlohmann::json::parse(encodeCheckpoint(sampleCheckpoint()));
    document["formatVersion"] = 2;
    document["calculationVersion"] = 4;
    document["confirmedDuration"] = -3;
    document["futureMember"] = "ignored";
    const auto decoded = decodeCheckpoint(document.dump());
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->formatVersion, 2);
    EXPECT_EQ(decoded->calculationVersion, 4);
    EXPECT_EQ(decoded->confirmedDuration, -3.0);
    EXPECT_FALSE(isValidCheckpoint(*decoded));
}

// ---- recovery summary -----------------------------------------------------

TEST(ActiveSessionCheckpointTest,
     RecoverySummaryCountsOnlyTimeAfterTheConfirmedBoundaryAsUncertain) {
    const ActiveSessionCheckpoint checkpoint = sampleCheckpoint();
    const Date confirmed = checkpoint.lastConfirmedActivityAt;
    const struct {
        const char* name;
        double confirmedDuration;
        Date recoveredAt;
        double expectedConfirmed;
        double expectedUncertain;
    } cases[] = {
        {"an hour later", 1190.5, confirmed.addingSeconds(3600.25), 1190.5, 3600.25},
        {"at the boundary", 1190.5, confirmed, 1190.5, 0.0},
        {"clock set back since the crash", 1190.5, confirmed.addingSeconds(-90), 1190.5, 0.0},
        {"beyond a century", 1e12, confirmed.addingSeconds(4e9), 3155760000.0, 3155760000.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ActiveSessionCheckpoint input = checkpoint;
        input.confirmedDuration = c.confirmedDuration;
        input.state = ActiveSessionCheckpointState::paused;
        const ActiveSessionRecoverySummary summary = makeRecoverySummary(input, c.recoveredAt);
        EXPECT_EQ(summary.sessionID, checkpoint.sessionID);
        EXPECT_EQ(summary.originalState, ActiveSessionCheckpointState::paused);
        EXPECT_EQ(summary.startTime, checkpoint.startedAt);
        EXPECT_EQ(summary.lastConfirmedActivityAt, confirmed);
        EXPECT_EQ(summary.recoveredAt, c.recoveredAt);
        EXPECT_DOUBLE_EQ(summary.confirmedDuration, c.expectedConfirmed);
        EXPECT_DOUBLE_EQ(summary.uncertainDuration, c.expectedUncertain);
    }
}

TEST(ActiveSessionCheckpointTest, RecoveryFailureMessageFillsInTheError) {
    EXPECT_EQ(sessionFailureMessage(SessionFailure::recoveryFailed, "The file is too large."),
              "Lumenote could not recover an unfinished session: The file is too large.");
}

}  // namespace
}  // namespace lumenote::recording
