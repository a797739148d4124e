#include "store/sqlite_recording_store.hpp"

#include <sys/stat.h>

#include <cmath>
#include <functional>

#include <gtest/gtest.h>

#include "store/sqlite_connection.hpp"
#include "store_test_support.hpp"

namespace lumenote::store {
namespace {

using namespace lumenote::testing;

const Date kDay = Date{800000000.0};

std::vector<Uuid> idsOf(const std::vector<recording::StudySession>& sessions) {
    std::vector<Uuid> ids;
    for (const recording::StudySession& session : sessions) {
        ids.push_back(session.id);
    }
    return ids;
}

class SqliteRecordingStoreTest : public TemporaryFolderTest {
  protected:
    // Applies `changes`, failing the test when the store refuses them.
    void apply(recording::RecordingStore& store, const recording::StoreChangeSet& changes) {
        auto applied = store.apply(changes);
        ASSERT_TRUE(applied.ok()) << applied.error().description;
    }
};

// ---- round trips ----------------------------------------------------------

TEST_F(SqliteRecordingStoreTest, EveryFieldSurvivesClosingAndReopeningTheFile) {
    // A full session with children, and one written by the first layout whose
    // optional columns are all empty and whose raw texts name no known case.
    recording::StudySession full = fullSession(1, Date{-12345.678});
    recording::StudySession bare = bareSession(2, kDay);
    bare.statusRawValue = "archived-by-a-later-release";
    full.segments = {fullSegment(10, full.id, Date{-12000}),
                     bareSegment(11, full.id, Date{-11000})};
    full.segments[1].classificationRawValue = "sort-of-focused";
    recording::ConfirmedNoInputInterval superseded = confirmation(20, full.id, Date{-11500});
    superseded.supersededAt = Date{-10000.5};
    recording::ConfirmedNoInputInterval unknownState = confirmation(21, full.id, Date{-11400});
    unknownState.stateRawValue = "meditation";
    unknownState.sourceRawValue = "voiceCommand";
    full.confirmedNoInputIntervals = {superseded, unknownState};
    const classification::LocalPDFIdentity identity =
        pdfIdentity(30, full.id, Date{-11900}, "filename");
    full.localPDFIdentities = {identity.id};

    recording::StoreChangeSet changes;
    changes.sessions = {full, bare};
    changes.segments = full.segments;
    changes.confirmedIntervals = full.confirmedNoInputIntervals;
    changes.pdfIdentities = {identity};
    changes.durable = true;
    {
        auto store = openStore();
        ASSERT_TRUE(store);
        apply(*store, changes);
    }

    auto store = openStore();
    ASSERT_TRUE(store);
    for (const recording::StudySession& expected : {full, bare}) {
        auto loaded = store->loadSession(expected.id);
        ASSERT_TRUE(loaded.ok()) << loaded.error().description;
        ASSERT_TRUE(loaded->has_value());
        EXPECT_EQ(**loaded, expected) << expected.subject;
    }
    auto listed = store->listSessions({.newestFirst = false, .includeChildren = true});
    ASSERT_TRUE(listed.ok());
    EXPECT_EQ(*listed, (std::vector<recording::StudySession>{full, bare}));
    auto identities = store->pdfIdentities(std::nullopt);
    ASSERT_TRUE(identities.ok());
    EXPECT_EQ(*identities, std::vector<classification::LocalPDFIdentity>{identity});
    auto missing = store->loadSession(uuidNumbered(99));
    ASSERT_TRUE(missing.ok());
    EXPECT_FALSE(missing->has_value());
}

TEST_F(SqliteRecordingStoreTest, RulesAndPreferencesRoundTripAndKeepOneRecordPerKey) {
    {
        auto store = openStore();
        ASSERT_TRUE(store);
        // Bundle identifiers are compared exactly: these are two rules.
        ASSERT_TRUE(store->saveAppClassification({"com.microsoft.Word", "Word", "focused", kDay}));
        ASSERT_TRUE(store->saveAppClassification({"com.microsoft.word", "wörd", "neutral", kDay}));
        ASSERT_TRUE(store->saveAppClassification(
            {"com.microsoft.Word", "Microsoft Word", "later-case", kDay.addingSeconds(5)}));
        ASSERT_TRUE(store->saveWebsiteClassification({"zoom.us", "neutral", kDay}));
        ASSERT_TRUE(
            store->saveWebsiteClassification({"zoom.us", "distracting", kDay.addingSeconds(1)}));
        ASSERT_TRUE(store->saveWebsiteClassification({"bücher.de", "focused", kDay}));
        ASSERT_TRUE(store->saveLocalPDFPreferences({uuidNumbered(1), true, "neutral"}));
        // A record saved under another id replaces the single one.
        ASSERT_TRUE(store->saveLocalPDFPreferences({uuidNumbered(2), false, "some-new-case"}));
    }
    auto store = openStore();
    ASSERT_TRUE(store);
    auto apps = store->appClassifications();
    ASSERT_TRUE(apps.ok());
    EXPECT_EQ(*apps,
              (std::vector<classification::AppClassification>{
                  {"com.microsoft.Word", "Microsoft Word", "later-case", kDay.addingSeconds(5)},
                  {"com.microsoft.word", "wörd", "neutral", kDay}}));
    auto websites = store->websiteClassifications();
    ASSERT_TRUE(websites.ok());
    EXPECT_EQ(*websites, (std::vector<classification::WebsiteClassification>{
                             {"bücher.de", "focused", kDay},
                             {"zoom.us", "distracting", kDay.addingSeconds(1)}}));
    auto preferences = store->localPDFPreferences();
    ASSERT_TRUE(preferences.ok());
    EXPECT_EQ(*preferences,
              (classification::LocalPDFPreferences{uuidNumbered(2), false, "some-new-case"}));

    ASSERT_TRUE(store->deleteAllAppClassifications());
    ASSERT_TRUE(store->deleteAllWebsiteClassifications());
    ASSERT_TRUE(store->deleteLocalPDFPreferences());
    EXPECT_TRUE(store->appClassifications()->empty());
    EXPECT_TRUE(store->websiteClassifications()->empty());
    EXPECT_FALSE(store->localPDFPreferences()->has_value());
}

TEST_F(SqliteRecordingStoreTest, DeletingOneRuleTakesOnlyItsExactKey) {
    auto store = openStore();
    ASSERT_TRUE(store);
    ASSERT_TRUE(store->saveAppClassification({"org.gnome.Evince", "Evince", "focused", kDay}));
    ASSERT_TRUE(store->saveAppClassification({"org.gnome.evince", "evince", "neutral", kDay}));
    ASSERT_TRUE(store->saveWebsiteClassification({"zoom.us", "neutral", kDay}));
    ASSERT_TRUE(store->saveWebsiteClassification({"us", "focused", kDay}));

    // Another letter case is another rule, and an absent key removes nothing.
    auto removed = store->deleteAppClassification("org.gnome.Evince");
    ASSERT_TRUE(removed.ok());
    EXPECT_TRUE(*removed);
    EXPECT_FALSE(*store->deleteAppClassification("org.gnome.Evince"));
    EXPECT_FALSE(*store->deleteAppClassification("org.gnome"));
    EXPECT_EQ(*store->appClassifications(), (std::vector<classification::AppClassification>{
                                                {"org.gnome.evince", "evince", "neutral", kDay}}));

    // A website key is one whole hostname: removing "us" leaves "zoom.us".
    EXPECT_TRUE(*store->deleteWebsiteClassification("us"));
    EXPECT_FALSE(*store->deleteWebsiteClassification("zoom.us."));
    EXPECT_EQ(*store->websiteClassifications(),
              (std::vector<classification::WebsiteClassification>{{"zoom.us", "neutral", kDay}}));
}

TEST_F(SqliteRecordingStoreTest, UpsertingASessionUpdatesItInPlaceAndKeepsItsChildren) {
    auto store = store::SqliteRecordingStore::openInMemory();
    ASSERT_TRUE(store.ok());
    recording::StudySession session = bareSession(1, kDay);
    recording::StoreChangeSet first;
    first.sessions = {session};
    first.segments = {bareSegment(10, session.id, kDay)};
    first.confirmedIntervals = {confirmation(20, session.id, kDay)};
    first.pdfIdentities = {pdfIdentity(30, session.id, kDay, std::nullopt)};
    apply(**store, first);

    // A save of the session alone, as at each cadence tick: a replace that
    // deleted the row first would take the children with it.
    session.subject = "Chemie";
    session.timerDuration = 42;
    recording::StoreChangeSet update;
    update.sessions = {session};
    recording::ActivitySegment grown = bareSegment(10, session.id, kDay);
    grown.endDate = kDay.addingSeconds(25);
    grown.duration = 25;
    update.segments = {grown};
    apply(**store, update);

    auto loaded = (*store)->loadSession(session.id);
    ASSERT_TRUE(loaded.ok());
    ASSERT_TRUE(loaded->has_value());
    EXPECT_EQ((*loaded)->subject, "Chemie");
    EXPECT_EQ((*loaded)->timerDuration, 42);
    EXPECT_EQ((*loaded)->segments, std::vector<recording::ActivitySegment>{grown});
    EXPECT_EQ((*loaded)->confirmedNoInputIntervals.size(), 1u);
    EXPECT_EQ((*loaded)->localPDFIdentities, std::vector<Uuid>{uuidNumbered(30)});

    // Changes of indexed columns (status, start, owner) reach the indexes the
    // queries go through.
    recording::StudySession other = bareSession(2, kDay.addingSeconds(-50));
    session.setStatus(recording::StudySessionStatus::completed);
    session.endDate = kDay.addingSeconds(60);
    session.startDate = kDay.addingSeconds(-100);
    grown.startDate = kDay.addingSeconds(5);
    grown.session = other.id;
    recording::StoreChangeSet moves;
    moves.sessions = {other, session};
    moves.segments = {grown};
    apply(**store, moves);
    EXPECT_EQ(idsOf(*(*store)->liveSessions()), std::vector<Uuid>{other.id});
    EXPECT_EQ(idsOf(*(*store)->listSessions({})), (std::vector<Uuid>{other.id, session.id}));
    EXPECT_TRUE((*store)->loadSession(session.id)->value().segments.empty());
    EXPECT_EQ((*store)->loadSession(other.id)->value().segments,
              std::vector<recording::ActivitySegment>{grown});
}

// ---- deletion -------------------------------------------------------------

TEST_F(SqliteRecordingStoreTest, DeletingASessionTakesItsChildrenAndNothingElse) {
    auto store = openStore();
    ASSERT_TRUE(store);
    recording::StoreChangeSet changes;
    for (const std::uint8_t number : {std::uint8_t{1}, std::uint8_t{2}}) {
        const Uuid session = uuidNumbered(number);
        changes.sessions.push_back(bareSession(number, kDay.addingSeconds(number)));
        changes.segments.push_back(
            bareSegment(static_cast<std::uint8_t>(10 + number), session, kDay));
        changes.confirmedIntervals.push_back(
            confirmation(static_cast<std::uint8_t>(20 + number), session, kDay));
        changes.pdfIdentities.push_back(
            pdfIdentity(static_cast<std::uint8_t>(30 + number), session, kDay, std::nullopt));
    }
    changes.pdfIdentities.push_back(pdfIdentity(39, std::nullopt, kDay, std::nullopt));
    apply(*store, changes);

    recording::StoreChangeSet deletion;
    deletion.deletedSessions = {uuidNumbered(1), uuidNumbered(77)};  // 77 was never stored
    apply(*store, deletion);

    EXPECT_FALSE((*store->loadSession(uuidNumbered(1))).has_value());
    auto kept = store->loadSession(uuidNumbered(2));
    ASSERT_TRUE(kept.ok() && kept->has_value());
    EXPECT_EQ((*kept)->segments.size(), 1u);
    EXPECT_EQ((*kept)->confirmedNoInputIntervals.size(), 1u);
    auto identities = store->pdfIdentities(std::nullopt);
    ASSERT_TRUE(identities.ok());
    ASSERT_EQ(identities->size(), 2u);
    EXPECT_EQ((*identities)[0].id, uuidNumbered(32));
    EXPECT_EQ((*identities)[1].id, uuidNumbered(39));

    // Restoring the deleted session with its own ids brings back its children.
    recording::StoreChangeSet restore;
    restore.sessions = {changes.sessions[0]};
    restore.segments = {changes.segments[0]};
    restore.confirmedIntervals = {changes.confirmedIntervals[0]};
    restore.pdfIdentities = {changes.pdfIdentities[0]};
    apply(*store, restore);
    auto restored = store->loadSession(uuidNumbered(1));
    ASSERT_TRUE(restored.ok() && restored->has_value());
    EXPECT_EQ((*restored)->segments, std::vector<recording::ActivitySegment>{changes.segments[0]});

    EXPECT_EQ(*store->segmentCount(), 2u);
    ASSERT_TRUE(store->deleteAllSessions());
    EXPECT_EQ(*store->sessionCount(), 0u);
    EXPECT_EQ(*store->segmentCount(), 0u) << "segments go with their session";
    // Only the identity that belonged to no session is left.
    EXPECT_EQ(store->pdfIdentities(std::nullopt)->size(), 1u);
}

// ---- failures -------------------------------------------------------------

TEST_F(SqliteRecordingStoreTest, AChangeSetThatFailsHalfwayLeavesNothingApplied) {
    const Uuid stored = uuidNumbered(1);
    const Uuid added = uuidNumbered(2);
    recording::ActivitySegment orphan =
        bareSegment(12, uuidNumbered(66), kDay);  // names no session
    recording::ActivitySegment ownerless = bareSegment(13, stored, kDay);
    ownerless.session.reset();
    recording::ConfirmedNoInputInterval ownerlessInterval = confirmation(21, stored, kDay);
    ownerlessInterval.session.reset();
    recording::StudySession invalid = bareSession(3, kDay);
    invalid.focusScore = std::nan("");       // SQLite stores NaN as NULL...
    invalid.plannedDuration = std::nan("");  // ...which this column refuses

    const struct {
        const char* name;
        std::function<void(recording::StoreChangeSet&)> spoil;
        const char* error;
    } cases[] = {
        {"segment of a missing session", [&](auto& c) { c.segments.push_back(orphan); },
         "FOREIGN KEY constraint failed"},
        {"segment without a session", [&](auto& c) { c.segments.push_back(ownerless); },
         "names no session"},
        {"confirmation without a session",
         [&](auto& c) { c.confirmedIntervals.push_back(ownerlessInterval); }, "names no session"},
        {"session refused by a column", [&](auto& c) { c.sessions.push_back(invalid); },
         "NOT NULL constraint failed"},
    };
    int run = 0;
    for (const bool durable : {false, true}) {
        for (const auto& testCase : cases) {
            SCOPED_TRACE(std::string(testCase.name) + (durable ? ", durable" : ""));
            auto store = openStore(folder_ / std::to_string(++run) / "lumenote.sqlite");
            ASSERT_TRUE(store);
            recording::StoreChangeSet base;
            base.sessions = {bareSession(1, kDay)};
            base.segments = {bareSegment(10, stored, kDay)};
            apply(*store, base);

            recording::StoreChangeSet changes;
            changes.durable = durable;
            recording::StudySession renamed = bareSession(1, kDay);
            renamed.subject = "renamed";
            changes.sessions = {renamed, bareSession(2, kDay)};
            changes.segments = {bareSegment(11, added, kDay)};
            changes.deletedSessions = {stored};
            testCase.spoil(changes);
            auto applied = store->apply(changes);
            ASSERT_FALSE(applied.ok());
            EXPECT_NE(applied.error().description.find(testCase.error), std::string::npos)
                << applied.error().description;

            auto kept = store->loadSession(stored);
            ASSERT_TRUE(kept.ok() && kept->has_value());
            EXPECT_EQ((*kept)->subject, "");
            EXPECT_EQ((*kept)->segments.size(), 1u);
            EXPECT_EQ(*store->sessionCount(), 1u);
            // The store takes the next change set: no transaction was left open.
            apply(*store, base);
        }
    }
}

TEST_F(SqliteRecordingStoreTest, TheStoreFileIsPrivateWriteAheadAndSmallPaged) {
    {
        auto store = openStore();
        ASSERT_TRUE(store);
    }
    struct stat info {};
    ASSERT_EQ(::stat(storeFile().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    ASSERT_EQ(::stat(storeFile().parent_path().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);

    auto connection = store::SqliteConnection::open(storeFile().string());
    ASSERT_TRUE(connection.ok());
    auto mode = (*connection)->cached("PRAGMA journal_mode");
    ASSERT_TRUE(mode.ok());
    ASSERT_TRUE(*(*mode)->step());
    EXPECT_EQ((*mode)->textAt(0), "wal");
    // Small pages keep each save small; the size is fixed when the file is made.
    EXPECT_EQ(*(*connection)->queryInteger("PRAGMA page_size"), 1024);
}

// ---- queries --------------------------------------------------------------

TEST_F(SqliteRecordingStoreTest, ListingOrdersByStartThenIdAndHonoursRangeAndPaging) {
    // start:  100   200   200   200   300
    // id:      5     3     4     9     1
    auto store = store::SqliteRecordingStore::openInMemory();
    ASSERT_TRUE(store.ok());
    recording::StoreChangeSet changes;
    for (const auto& [number, start] : std::vector<std::pair<std::uint8_t, double>>{
             {4, 200}, {1, 300}, {9, 200}, {5, 100}, {3, 200}}) {
        changes.sessions.push_back(bareSession(number, Date{start}));
        changes.segments.push_back(bareSegment(number + 100, uuidNumbered(number), Date{start}));
    }
    apply(**store, changes);

    const auto ids = [](std::initializer_list<int> numbers) {
        std::vector<Uuid> result;
        for (int number : numbers) {
            result.push_back(uuidNumbered(static_cast<std::uint8_t>(number)));
        }
        return result;
    };
    const struct {
        const char* name;
        recording::SessionQuery query;
        std::vector<Uuid> expected;
    } cases[] = {
        {"newest first", {}, ids({1, 9, 4, 3, 5})},
        {"oldest first", {.newestFirst = false}, ids({5, 3, 4, 9, 1})},
        {"newest two", {.limit = 2}, ids({1, 9})},
        {"page two", {.limit = 2, .offset = 2}, ids({4, 3})},
        {"offset past the end", {.offset = 9}, {}},
        {"limit zero", {.limit = 0}, {}},
        {"from 200 inclusive",
         {.startingAtOrAfter = Date{200}, .newestFirst = false},
         ids({3, 4, 9, 1})},
        {"before 200 exclusive", {.startingBefore = Date{200}}, ids({5})},
        {"one instant",
         {.startingAtOrAfter = Date{200}, .startingBefore = Date{200.001}},
         ids({9, 4, 3})},
        {"empty range", {.startingAtOrAfter = Date{300}, .startingBefore = Date{300}}, {}},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        auto listed = (*store)->listSessions(testCase.query);
        ASSERT_TRUE(listed.ok()) << listed.error().description;
        EXPECT_EQ(idsOf(*listed), testCase.expected);
        for (const recording::StudySession& session : *listed) {
            EXPECT_TRUE(session.segments.empty());
        }
    }
    auto withChildren = (*store)->listSessions({.limit = 1, .includeChildren = true});
    ASSERT_TRUE(withChildren.ok());
    ASSERT_EQ(withChildren->size(), 1u);
    EXPECT_EQ(withChildren->front().segments,
              std::vector<recording::ActivitySegment>{changes.segments[1]});
}

TEST_F(SqliteRecordingStoreTest, ListingFiltersBySubjectOrGoalTextAndByStatus) {
    auto store = store::SqliteRecordingStore::openInMemory();
    ASSERT_TRUE(store.ok());
    const struct {
        std::uint8_t number;
        const char* subject;
        const char* goal;
        recording::StudySessionStatus status;
    } stored[] = {
        {1, "Linear Algebra", "eigenvalues", recording::StudySessionStatus::completed},
        {2, "History", "read about ALGEBRA's origins", recording::StudySessionStatus::interrupted},
        {3, "100% effort_plan", "", recording::StudySessionStatus::completed},
        {4, "1000 effortless plans", "", recording::StudySessionStatus::completed},
        {5, "Ökonomie", "", recording::StudySessionStatus::completed},
    };
    recording::StoreChangeSet changes;
    for (const auto& row : stored) {
        recording::StudySession session = bareSession(row.number, Date{100.0 * row.number});
        session.subject = row.subject;
        session.goal = row.goal;
        session.setStatus(row.status);
        changes.sessions.push_back(session);
    }
    apply(**store, changes);
    const auto numbersOf = [&](const recording::SessionQuery& query) {
        std::vector<int> numbers;
        const auto listed = (*store)->listSessions(query);
        for (const auto& session : *listed) {
            numbers.push_back(session.id.bytes()[15]);
        }
        return numbers;
    };
    // ASCII letters match in either case, in the subject or the goal.
    EXPECT_EQ(numbersOf({.subjectOrGoalContains = "algebra"}), (std::vector<int>{2, 1}));
    // % and _ are taken as written, not as wildcards.
    EXPECT_EQ(numbersOf({.subjectOrGoalContains = "0% effort_"}), (std::vector<int>{3}));
    EXPECT_EQ(numbersOf({.subjectOrGoalContains = "Ökon"}), (std::vector<int>{5}));
    EXPECT_TRUE(numbersOf({.subjectOrGoalContains = "calculus"}).empty());
    EXPECT_EQ(numbersOf({.status = recording::StudySessionStatus::interrupted}),
              (std::vector<int>{2}));
    // Filters, range and paging combine.
    EXPECT_EQ(numbersOf({.startingAtOrAfter = Date{150},
                         .subjectOrGoalContains = "a",
                         .status = recording::StudySessionStatus::completed,
                         .limit = 1,
                         .offset = 1}),
              (std::vector<int>{3}));
}

TEST_F(SqliteRecordingStoreTest, LiveSessionsAreTheRunningAndPausedOnesWithTheirChildren) {
    auto store = store::SqliteRecordingStore::openInMemory();
    ASSERT_TRUE(store.ok());
    recording::StoreChangeSet changes;
    const char* statuses[] = {"completed", "paused", "interrupted", "running", "Running", "later"};
    for (std::uint8_t number = 0; number < 6; ++number) {
        recording::StudySession session = bareSession(number, Date{1000.0 - number});
        session.statusRawValue = statuses[number];
        changes.sessions.push_back(session);
    }
    changes.segments = {bareSegment(50, uuidNumbered(3), Date{1000})};
    apply(**store, changes);

    auto live = (*store)->liveSessions();
    ASSERT_TRUE(live.ok());
    EXPECT_EQ(idsOf(*live), (std::vector<Uuid>{uuidNumbered(3), uuidNumbered(1)}));
    EXPECT_EQ(live->front().segments.size(), 1u);
}

TEST_F(SqliteRecordingStoreTest, ClearingFilenameLabelsKeepsManualOnesAndClearsSegmentCopies) {
    auto store = store::SqliteRecordingStore::openInMemory();
    ASSERT_TRUE(store.ok());
    const Uuid session = uuidNumbered(1);
    recording::StoreChangeSet changes;
    changes.sessions = {bareSession(1, kDay)};
    changes.pdfIdentities = {pdfIdentity(30, session, kDay, "filename"),
                             pdfIdentity(31, std::nullopt, kDay.addingSeconds(1), "filename"),
                             pdfIdentity(32, session, kDay.addingSeconds(2), "manual"),
                             pdfIdentity(33, session, kDay.addingSeconds(3), std::nullopt)};
    recording::ActivitySegment manual = fullSegment(11, session, kDay.addingSeconds(60));
    manual.pdfLabelSourceRawValue = "manual";
    changes.segments = {fullSegment(10, session, kDay), manual};
    apply(**store, changes);

    auto cleared = (*store)->clearFilenameDerivedPDFLabels();
    ASSERT_TRUE(cleared.ok());
    EXPECT_EQ(*cleared, 2u);

    auto identities = (*store)->pdfIdentities(session);
    ASSERT_TRUE(identities.ok());
    ASSERT_EQ(identities->size(), 3u);
    EXPECT_FALSE((*identities)[0].displayLabelStorage);
    EXPECT_FALSE((*identities)[0].labelSourceRawValue);
    EXPECT_EQ((*identities)[1].displayLabelStorage, "Skript Ölquellen.pdf");
    EXPECT_EQ((*identities)[2].displayLabelStorage, "Skript Ölquellen.pdf");
    auto loaded = (*store)->loadSession(session);
    ASSERT_TRUE(loaded.ok() && loaded->has_value());
    EXPECT_FALSE((*loaded)->segments[0].pdfDisplayLabelStorage);
    EXPECT_FALSE((*loaded)->segments[0].pdfLabelSourceRawValue);
    EXPECT_EQ((*loaded)->segments[1].pdfDisplayLabel(), "Übung 3.pdf");

    ASSERT_TRUE((*store)->deleteAllPDFIdentities());
    EXPECT_TRUE((*store)->pdfIdentities(std::nullopt)->empty());
    EXPECT_TRUE((*store)->loadSession(session)->value().localPDFIdentities.empty());
}

}  // namespace
}  // namespace lumenote::store
