#include "insights/insight_dismissal_store.hpp"

#include <gtest/gtest.h>

#include "insight_test_support.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::insights {
namespace {

using lumenote::testing::filesContaining;
using lumenote::testing::modeOf;
using lumenote::testing::readFile;
using lumenote::testing::TemporaryHome;
using lumenote::testing::writeFile;
using testing::at;

// Fails every write, as a full disk would.
class FailingWrites : public FileWriteOperations {
  public:
    long write(int, const char*, std::size_t) override { return -1; }
};

class InsightDismissalStoreTest : public ::testing::Test {
  protected:
    TemporaryHome home;
    Date now = at("2026-11-18T12:00:00Z");
    std::filesystem::path path = FileInsightDismissalRepository::pathFor(home.paths());
    FileInsightDismissalRepository repository{path, [this] { return now; }};

    static LocalInsightFact fact(std::string id, std::string revision) {
        LocalInsightFact fact;
        fact.id = std::move(id);
        fact.evidenceRevision = std::move(revision);
        return fact;
    }
};

TEST_F(InsightDismissalStoreTest, AMissingFileMeansNoneAndDismissalsRoundTrip) {
    EXPECT_EQ(path, home.root() / "data" / "Lumenote" / "Insights" / "insight-dismissals-v1.json");
    InsightDismissalStore store(repository, [this] { return now; });
    EXPECT_TRUE(store.records().empty());
    EXPECT_FALSE(store.lastError().has_value());
    int notified = 0;
    store.changed().add([&] { ++notified; });

    EXPECT_TRUE(store.dismiss(fact("topSubject-2026-11-16", "00000000000000aa")));
    EXPECT_EQ(notified, 1);
    EXPECT_EQ(modeOf(path), 0600);
    EXPECT_EQ(modeOf(path.parent_path()), 0700);

    InsightDismissalStore reloaded(repository, [this] { return now; });
    EXPECT_TRUE(reloaded.isDismissed("topSubject-2026-11-16", "00000000000000aa"));
    EXPECT_FALSE(reloaded.isDismissed("topSubject-2026-11-16", "00000000000000ab"));
    EXPECT_FALSE(reloaded.isDismissed("topSubject-2026-11-09", "00000000000000aa"));
    EXPECT_EQ(reloaded.records().front().dismissedAt, now);
}

TEST_F(InsightDismissalStoreTest, ANewerVersionIsLeftByteForByteAndNothingIsSaved) {
    const std::string newer = R"({"records": "a layout of tomorrow", "formatVersion": 2})";
    writeFile(path, newer);
    InsightDismissalStore store(repository, [this] { return now; });
    EXPECT_TRUE(store.isReadOnly());
    EXPECT_EQ(store.lastError(),
              "Insight dismissals use unsupported format version 2. The file was left unchanged.");
    EXPECT_FALSE(store.dismiss(fact("focusTrend-2026-11-16", "0123456789abcdef")));
    EXPECT_FALSE(store.isDismissed("focusTrend-2026-11-16", "0123456789abcdef"));
    EXPECT_EQ(readFile(path), newer);
    EXPECT_EQ(filesContaining(path.parent_path(), "corrupt").size(), 0U);
}

TEST_F(InsightDismissalStoreTest, AnInvalidRecordEmptiesTheListAndMovesTheFileAside) {
    for (
        const char* record :
        {R"({"key": {"insightID": "a"}, "dismissedAt": "2026-11-18T12:00:00Z"})",
         R"({"key": {"insightID": "a", "evidenceRevision": "b"}})",
         R"({"key": {"insightID": "a", "evidenceRevision": 7}, "dismissedAt": "2026-11-18T12:00:00Z"})",
         R"({"key": {"insightID": "a", "evidenceRevision": "b"}, "dismissedAt": "yesterday"})",
         R"("a")"}) {
        writeFile(
            path,
            std::string(R"({"formatVersion": 1, "records": [)") +
                R"({"key": {"insightID": "x", "evidenceRevision": "y"}, "dismissedAt": "2026-11-18T12:00:00Z"},)" +
                record + "]}");
        InsightDismissalStore store(repository, [this] { return now; });
        EXPECT_EQ(store.lastError(), "The insight dismissal file contained an invalid record.")
            << record;
        EXPECT_TRUE(store.records().empty()) << record;
        EXPECT_FALSE(store.isReadOnly());
        EXPECT_FALSE(std::filesystem::exists(path)) << record;
        EXPECT_TRUE(store.dismiss(fact("x", "y")));
        EXPECT_FALSE(store.lastError().has_value());
        std::filesystem::remove_all(path.parent_path());
    }
}

TEST_F(InsightDismissalStoreTest, AFailedSaveSaysWhyAndKeepsTheFileAndTheRecords) {
    FailingWrites failing;
    FileInsightDismissalRepository broken(
        path, [this] { return now; }, failing);
    InsightDismissalStore store(broken, [this] { return now; });
    EXPECT_FALSE(store.dismiss(fact("focusTrend-2026-11-16", "0123456789abcdef")));
    EXPECT_EQ(store.lastError(), "Insight dismissal could not be saved: " +
                                     std::string(describe(PrivateFileError::writeFailed)));
    EXPECT_TRUE(store.records().empty());
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(InsightDismissalStoreTest, KeepsOneRecordPerInsightAndTheNewestThousand) {
    InsightDismissalStore store(repository, [this] { return now; });
    EXPECT_TRUE(store.dismiss(fact("focusTrend-2026-11-16", "0000000000000001")));
    now = now.addingSeconds(1);
    EXPECT_TRUE(store.dismiss(fact("focusTrend-2026-11-16", "0000000000000002")));
    EXPECT_EQ(store.records().size(), 1U);
    EXPECT_TRUE(store.isDismissed("focusTrend-2026-11-16", "0000000000000002"));

    // A file of 1001 records, the oldest in the middle: it is the one dropped.
    InsightDismissalDocument document;
    for (int i = 0; i < 1001; ++i) {
        document.records.push_back(
            {{"id-" + std::to_string(i), "r"}, now.addingSeconds(i == 500 ? -10000 : i)});
    }
    writeFile(path, encodeInsightDismissalDocument(document));
    InsightDismissalStore full(repository, [this] { return now; });
    EXPECT_EQ(full.records().size(), 1000U);
    EXPECT_FALSE(full.isDismissed("id-500", "r"));
    EXPECT_TRUE(full.isDismissed("id-0", "r"));

    now = now.addingSeconds(5000);
    EXPECT_TRUE(full.dismiss(fact("id-new", "r")));
    InsightDismissalStore reloaded(repository, [this] { return now; });
    EXPECT_EQ(reloaded.records().size(), 1000U);
    EXPECT_TRUE(reloaded.isDismissed("id-new", "r"));
    EXPECT_FALSE(reloaded.isDismissed("id-0", "r"));
    EXPECT_TRUE(reloaded.isDismissed("id-1", "r"));
}

TEST_F(InsightDismissalStoreTest, ALinkIsNeitherFollowedNorReplaced) {
    const auto target = home.root() / "elsewhere.json";
    writeFile(target, R"({"formatVersion": 1, "records": []})");
    std::filesystem::create_directories(path.parent_path());
    std::filesystem::create_symlink(target, path);
    InsightDismissalStore store(repository, [this] { return now; });
    EXPECT_TRUE(store.isReadOnly());
    EXPECT_TRUE(store.lastError().has_value());
    EXPECT_FALSE(store.dismiss(fact("a", "b")));
    EXPECT_TRUE(std::filesystem::is_symlink(path));
}

}  // namespace
}  // namespace lumenote::insights
