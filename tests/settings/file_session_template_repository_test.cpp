#include "settings/file_session_template_repository.hpp"

#include <gtest/gtest.h>

#include "settings/session_template_store.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::settings {
namespace {

namespace fs = std::filesystem;
using Kind = SessionTemplateValidationErrorKind;
using LoadKind = SessionTemplateRepositoryLoadResult::Kind;
using testing::filesContaining;
using testing::readFile;
using testing::TemporaryHome;
using testing::writeFile;

const Date kNow = Date::fromUnixSeconds(1763280000.0);

// Fails every rename, so an atomic write never replaces the file.
class FailingRename : public FileWriteOperations {
  public:
    int rename(const char*, const char*) override { return -1; }
};

SessionTemplateDraft draft(std::string name) {
    return {std::move(name), "Maths", "", 1500, recording::SessionTimingMode::timer, std::nullopt};
}

class FileSessionTemplateRepositoryTest : public ::testing::Test {
  protected:
    fs::path path() const { return FileSessionTemplateRepository::pathFor(home_.paths()); }
    fs::path folder() const { return path().parent_path(); }

    SessionTemplateStore& open() {
        repository_.emplace(path(), [] { return kNow; });
        store_.emplace(*repository_, [] { return kNow; });
        return *store_;
    }

    TemporaryHome home_;
    std::optional<FileSessionTemplateRepository> repository_;
    std::optional<SessionTemplateStore> store_;
};

TEST_F(FileSessionTemplateRepositoryTest, LivesInTheApplicationDataFolder) {
    EXPECT_EQ(path(), home_.root() / "data" / "Lumenote" / "session-templates-v1.json");
}

TEST_F(FileSessionTemplateRepositoryTest, EveryFieldSurvivesAReloadFromTheFile) {
    SessionTemplateStore& store = open();
    EXPECT_FALSE(store.loadMessage().has_value());
    auto first = store.create({"Deep work", "Graph theory \"proofs\"", "Finish chapter 4", 2700,
                               recording::SessionTimingMode::openEnded, 600.0});
    ASSERT_TRUE(first.ok());
    ASSERT_TRUE(store.create(draft("Plain")).ok());
    ASSERT_TRUE(store.toggleFavorite(first->id).ok());
    ASSERT_TRUE(store.markUsed(first->id).ok());
    ASSERT_TRUE(store.setEnabled(first->id, false).ok());
    const auto saved = store.templates();

    SessionTemplateStore& reopened = open();
    EXPECT_EQ(reopened.templates(), saved);
    EXPECT_FALSE(reopened.isReadOnly());
    EXPECT_EQ(filesContaining(folder(), ".temporary").size(), 0U);
}

TEST_F(FileSessionTemplateRepositoryTest, ANewerFormatIsLeftByteForByteAndEveryChangeRefused) {
    const std::string bytes =
        R"({"formatVersion": 2, "templates": [{"id": "x", "shape": "unknown to version 1"}]})";
    writeFile(path(), bytes);
    SessionTemplateStore& store = open();
    EXPECT_TRUE(store.isReadOnly());
    EXPECT_EQ(store.loadMessage(),
              "Templates use a newer local format (version 2). Update Lumenote to edit them.");
    const Uuid anyId = Uuid::generate();
    const std::vector<SessionTemplateValidationError> refusals{
        store.create(draft("New")).error(),  store.update(anyId, draft("N")).error(),
        store.deleteTemplate(anyId).error(), store.toggleFavorite(anyId).error(),
        store.toggleEnabled(anyId).error(),  store.move(anyId, 0).error(),
        store.markUsed(anyId).error(),
    };
    for (const auto& refusal : refusals) {
        EXPECT_EQ(message(refusal),
                  "These templates were created by a newer Lumenote format (version 2) and are "
                  "read-only in this version.");
    }
    EXPECT_EQ(readFile(path()), bytes);
    EXPECT_EQ(filesContaining(folder(), "corrupt").size(), 0U);
}

TEST_F(FileSessionTemplateRepositoryTest, AFileOneByteOverTheCapIsRefusedAndKept) {
    std::string bytes = R"({"formatVersion": 1, "templates": []})";
    bytes.resize(kMaximumSessionTemplateFileBytes + 1, ' ');
    ASSERT_EQ(bytes.size(), 524289U);
    writeFile(path(), bytes);
    FileSessionTemplateRepository repository(path(), [] { return kNow; });
    const auto loaded = repository.load();
    ASSERT_FALSE(loaded.ok());
    EXPECT_EQ(loaded.error(), SessionTemplateRepositoryError::oversized);

    SessionTemplateStore& store = open();
    EXPECT_EQ(store.loadMessage(),
              "Templates contain invalid data and were not loaded. Study history was not "
              "affected.");
    // Saving would destroy the refused file: it is refused too.
    EXPECT_EQ(store.create(draft("New")).error().kind, Kind::persistenceFailure);
    EXPECT_EQ(readFile(path()), bytes);
}

TEST_F(FileSessionTemplateRepositoryTest, AFileOfExactlyTheCapLoads) {
    std::string bytes = R"({"formatVersion": 1, "templates": []})";
    bytes.resize(kMaximumSessionTemplateFileBytes, ' ');
    writeFile(path(), bytes);
    FileSessionTemplateRepository repository(path(), [] { return kNow; });
    const auto loaded = repository.load();
    ASSERT_TRUE(loaded.ok());
    EXPECT_EQ(loaded->kind, LoadKind::document);
}

TEST_F(FileSessionTemplateRepositoryTest, UndecodableFilesAreQuarantinedAndANewOneStarted) {
    const std::vector<std::pair<const char*, std::string>> cases{
        {"not JSON", "{\"formatVersion\": 1, \"templ"},
        {"no version", R"({"templates": []})"},
        {"version zero", R"({"formatVersion": 0, "templates": []})"},
        {"templates not an array", R"({"formatVersion": 1, "templates": {}})"},
        {"missing name",
         R"({"formatVersion": 1, "templates": [{"id": "E621E1F8-C36C-495A-93FC-0C247A3E6E5F",
             "subject": "S", "duration": 60, "defaultGoal": "",
             "createdDate": "2025-11-16T08:00:00.000Z", "modifiedDate": "2025-11-16T08:00:00.000Z",
             "manualSortOrder": 0, "isEnabled": true, "isFavorite": false}]})"},
        {"sort order beyond 64 bits",
         R"({"formatVersion": 1, "templates": [{"id": "E621E1F8-C36C-495A-93FC-0C247A3E6E5F",
             "name": "N", "subject": "S", "duration": 60, "defaultGoal": "",
             "createdDate": "2025-11-16T08:00:00.000Z", "modifiedDate": "2025-11-16T08:00:00.000Z",
             "manualSortOrder": 9223372036854775808, "isEnabled": true, "isFavorite": false}]})"},
        {"unreadable date",
         R"({"formatVersion": 1, "templates": [{"id": "E621E1F8-C36C-495A-93FC-0C247A3E6E5F",
             "name": "N", "subject": "S", "duration": 60, "defaultGoal": "",
             "createdDate": "yesterday", "modifiedDate": "2025-11-16T08:00:00.000Z",
             "manualSortOrder": 0, "isEnabled": true, "isFavorite": false}]})"},
    };
    for (const auto& [label, bytes] : cases) {
        SCOPED_TRACE(label);
        fs::remove_all(folder());
        writeFile(path(), bytes);
        SessionTemplateStore& store = open();
        EXPECT_TRUE(store.templates().empty());
        EXPECT_EQ(store.loadMessage(),
                  "A damaged templates file was isolated. You can create new templates; study "
                  "history was not affected.");
        const auto moved = filesContaining(folder(), "session-templates-v1.corrupt-");
        ASSERT_EQ(moved.size(), 1U);
        EXPECT_EQ(readFile(moved.front()), bytes);
        ASSERT_TRUE(store.create(draft("Fresh")).ok());
        EXPECT_EQ(open().templates().size(), 1U);
    }
}

TEST_F(FileSessionTemplateRepositoryTest, DuplicateIdsMakeTheDocumentUndecodable) {
    const std::string one = R"({"id": "E621E1F8-C36C-495A-93FC-0C247A3E6E5F", "name": "N",
        "subject": "S", "duration": 60, "defaultGoal": "",
        "createdDate": "2025-11-16T08:00:00.000Z", "modifiedDate": "2025-11-16T08:00:00.000Z",
        "manualSortOrder": 0, "isEnabled": true, "isFavorite": false})";
    writeFile(path(), R"({"formatVersion": 1, "templates": [)" + one + "," + one + "]}");
    FileSessionTemplateRepository repository(path(), [] { return kNow; });
    const auto loaded = repository.load();
    ASSERT_TRUE(loaded.ok());
    EXPECT_EQ(loaded->kind, LoadKind::corruptQuarantined);
}

TEST_F(FileSessionTemplateRepositoryTest, ASymbolicLinkIsRefusedAndNeverReplaced) {
    const fs::path target = home_.root() / "elsewhere.json";
    writeFile(target, R"({"formatVersion": 1, "templates": []})");
    fs::create_directories(folder());
    fs::create_symlink(target, path());
    SessionTemplateStore& store = open();
    EXPECT_EQ(store.loadMessage(),
              "Templates contain invalid data and were not loaded. Study history was not "
              "affected.");
    EXPECT_EQ(store.create(draft("New")).error().kind, Kind::persistenceFailure);
    EXPECT_TRUE(fs::is_symlink(path()));
    EXPECT_EQ(readFile(target), R"({"formatVersion": 1, "templates": []})");
}

TEST_F(FileSessionTemplateRepositoryTest, AFailedWriteLeavesThePreviousFileWhole) {
    SessionTemplateStore& store = open();
    ASSERT_TRUE(store.create(draft("Kept")).ok());
    const std::string before = readFile(path());
    FailingRename failing;
    FileSessionTemplateRepository repository(
        path(), [] { return kNow; }, failing);
    SessionTemplateStore failingStore(repository, [] { return kNow; });
    EXPECT_EQ(failingStore.create(draft("Lost")).error().kind, Kind::persistenceFailure);
    EXPECT_EQ(failingStore.templates().size(), 1U);
    EXPECT_EQ(readFile(path()), before);
    EXPECT_EQ(filesContaining(folder(), ".temporary").size(), 0U);
}

TEST_F(FileSessionTemplateRepositoryTest, ADocumentTooLargeToReadBackIsNotWritten) {
    SessionTemplateDocument document;
    // 1,000 characters that JSON escapes to six bytes each.
    const std::string goal(1000, '\x01');
    for (int i = 0; i < 100; ++i) {
        SessionTemplate t;
        t.id = Uuid::generate();
        t.name = "T" + std::to_string(i);
        t.subject = "S";
        t.duration = 1500;
        t.defaultGoal = goal;
        document.templates.push_back(t);
    }
    FileSessionTemplateRepository repository(path(), [] { return kNow; });
    const auto saved = repository.save(document);
    ASSERT_FALSE(saved.ok());
    EXPECT_EQ(saved.error(), SessionTemplateRepositoryError::oversized);
    EXPECT_FALSE(fs::exists(path()));
}

}  // namespace
}  // namespace lumenote::settings
