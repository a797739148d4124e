#include "store/sqlite_history_import.hpp"

#include <gtest/gtest.h>

#include "store/sqlite_connection.hpp"
#include "store_test_support.hpp"

namespace lumenote::store {
namespace {

using namespace lumenote::testing;

const Date kDay = Date{800000000.0};

// A finished session with two segments, a confirmation and a PDF identity.
struct SessionWithChildren {
    recording::StudySession session;
    std::vector<classification::LocalPDFIdentity> pdfs;
};

SessionWithChildren finishedSession(std::uint8_t number, Date start) {
    SessionWithChildren made{fullSession(number, start), {}};
    const Uuid id = made.session.id;
    made.session.segments = {
        fullSegment(static_cast<std::uint8_t>(number + 100), id, start),
        bareSegment(static_cast<std::uint8_t>(number + 110), id, start.addingSeconds(70))};
    made.session.confirmedNoInputIntervals = {
        confirmation(static_cast<std::uint8_t>(number + 120), id, start.addingSeconds(100))};
    made.pdfs = {
        pdfIdentity(static_cast<std::uint8_t>(number + 130), id, start.addingSeconds(5), "manual")};
    made.session.localPDFIdentities = {made.pdfs[0].id};
    return made;
}

class SqliteHistoryImportTest : public TemporaryFolderTest {
  protected:
    void SetUp() override {
        TemporaryFolderTest::SetUp();
        store_ = openStore();
        ASSERT_TRUE(store_);
        // The current data: one session, one rule of each kind, a PDF
        // identity no longer linked to a session, and the PDF preferences.
        current_ = finishedSession(1, kDay);
        recording::StoreChangeSet changes;
        changes.sessions = {current_.session};
        changes.segments = current_.session.segments;
        changes.confirmedIntervals = current_.session.confirmedNoInputIntervals;
        changes.pdfIdentities = current_.pdfs;
        changes.pdfIdentities.push_back(pdfIdentity(90, std::nullopt, kDay, std::nullopt));
        ASSERT_TRUE(store_->apply(changes));
        ASSERT_TRUE(
            store_->saveAppClassification({"org.gnome.Nautilus", "Files", "neutral", kDay}));
        ASSERT_TRUE(store_->saveWebsiteClassification({"example.org", "focused", kDay}));
        ASSERT_TRUE(store_->saveLocalPDFPreferences({uuidNumbered(99), false, "focused"}));
    }

    std::unique_ptr<recording::HistoryImport> begin() {
        auto import = store_->beginImport();
        EXPECT_TRUE(import) << (import ? "" : import.error().description);
        return import ? std::move(*import) : nullptr;
    }

    std::size_t sessions() { return store_->sessionCount().valueOr(0); }

    // The names of the store's own indexes.
    std::set<std::string> indexNames() {
        std::set<std::string> names;
        auto connection = SqliteConnection::open(storeFile().string());
        auto statement =
            (*connection)
                ->prepare(
                    "SELECT name FROM sqlite_schema WHERE type = 'index' AND sql IS NOT NULL");
        while (*(*statement)->step()) {
            names.insert((*statement)->textAt(0));
        }
        return names;
    }

    std::unique_ptr<SqliteRecordingStore> store_;
    SessionWithChildren current_;
};

TEST_F(SqliteHistoryImportTest, ImportedSessionsLoadWithEveryChildLinkedToThem) {
    SessionWithChildren added = finishedSession(2, kDay.addingSeconds(86400));
    // Links the import must set, whatever the records carried.
    added.session.segments[0].session = uuidNumbered(250);
    added.pdfs[0].session.reset();
    {
        auto import = begin();
        ASSERT_TRUE(import->insertSession(added.session, added.pdfs));
        EXPECT_TRUE(*import->containsSession(added.session.id));
        ASSERT_TRUE(import->commit());
    }
    auto loaded = store_->loadSession(added.session.id);
    ASSERT_TRUE(loaded && loaded->has_value());
    added.session.segments[0].session = added.session.id;
    EXPECT_EQ(**loaded, added.session);
    auto pdfs = store_->pdfIdentities(added.session.id);
    ASSERT_EQ(pdfs->size(), 1u);
    EXPECT_EQ(pdfs->front().session, added.session.id);
    EXPECT_EQ(sessions(), 2u);
}

TEST_F(SqliteHistoryImportTest, AnImportThatEndsWithoutCommitChangesNothing) {
    const std::set<std::string> indexes = indexNames();
    {
        auto import = begin();
        ASSERT_TRUE(import->removeHistoryAndRules());
        ASSERT_TRUE(import->insertSession(finishedSession(2, kDay).session, {}));
        ASSERT_TRUE(import->saveAppClassification({"code", "Code", "focused", kDay}));
    }
    EXPECT_EQ(sessions(), 1u);
    EXPECT_TRUE(*store_->loadSession(current_.session.id));
    EXPECT_EQ(store_->appClassifications()->size(), 1u);
    EXPECT_EQ(store_->pdfIdentities(std::nullopt)->size(), 2u);
    EXPECT_EQ(indexNames(), indexes);
}

TEST_F(SqliteHistoryImportTest, RemovingTheHistoryKeepsOnlyThePDFPreferencesAndTheIndexes) {
    const std::set<std::string> indexes = indexNames();
    ASSERT_FALSE(indexes.empty());
    const SessionWithChildren replacement = finishedSession(3, kDay.addingSeconds(3600));
    {
        auto import = begin();
        ASSERT_TRUE(import->removeHistoryAndRules());
        EXPECT_FALSE(*import->containsSession(current_.session.id));
        ASSERT_TRUE(import->insertSession(replacement.session, replacement.pdfs));
        ASSERT_TRUE(import->saveWebsiteClassification({"example.org", "distracting", kDay}));
        ASSERT_TRUE(import->commit());
    }
    EXPECT_EQ(sessions(), 1u);
    EXPECT_TRUE(*store_->loadSession(replacement.session.id));
    EXPECT_TRUE(store_->appClassifications()->empty());
    EXPECT_EQ(store_->websiteClassifications()->front().classificationRawValue, "distracting");
    EXPECT_EQ(store_->pdfIdentities(std::nullopt)->size(), 1u);
    EXPECT_TRUE(*store_->localPDFPreferences());
    // The indexes dropped while loading are back, and in use.
    EXPECT_EQ(indexNames(), indexes);
    auto listed = store_->listSessions({.includeChildren = true});
    EXPECT_EQ(listed->front().segments.size(), 2u);
}

TEST_F(SqliteHistoryImportTest, ATakenIdentityFailsTheCallAndTheImportCanOnlyBeAbandoned) {
    SessionWithChildren clash = finishedSession(4, kDay);
    // A new session whose segment id is already stored under another one.
    clash.session.segments[0].id = current_.session.segments[0].id;
    {
        auto import = begin();
        EXPECT_FALSE(import->insertSession(current_.session, {}));
        EXPECT_FALSE(import->insertSession(clash.session, clash.pdfs));
    }
    EXPECT_EQ(sessions(), 1u);
    EXPECT_FALSE(*store_->loadSession(clash.session.id));
}

TEST_F(SqliteHistoryImportTest, TheStoreChecksItsLinksAgainOnceAnImportEnds) {
    {
        auto import = begin();
        ASSERT_TRUE(import->commit());
    }
    // Foreign keys are on again: a segment of no stored session is refused.
    recording::StoreChangeSet orphan;
    orphan.segments = {bareSegment(77, uuidNumbered(78), kDay)};
    EXPECT_FALSE(store_->apply(orphan));
}

}  // namespace
}  // namespace lumenote::store
