#include "foundation/private_file.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <set>

#include <gtest/gtest.h>

#include "support/temporary_home.hpp"

namespace lumenote {
namespace {

namespace fs = std::filesystem;

const Date kNow = Date::fromUnixSeconds(1763280000.75);

using testing::modeOf;
using testing::namesIn;
using testing::readFile;
using testing::writeFile;

class PrivateFileTest : public ::testing::Test {
  protected:
    testing::TemporaryHome home_;
    const fs::path folder_ = home_.root();
};

// ---- reading -------------------------------------------------------------

TEST_F(PrivateFileTest, ReadRefusesEverythingButARegularFileWithoutFollowingOrBlocking) {
    writeFile(folder_ / "target.json", "{\"formatVersion\":1}");
    fs::create_symlink(folder_ / "target.json", folder_ / "link.json");
    fs::create_symlink(folder_ / "nowhere.json", folder_ / "dangling.json");
    fs::create_directory_symlink(folder_, folder_ / "folder-link");
    fs::create_directory(folder_ / "folder.json");
    ASSERT_EQ(::mkfifo((folder_ / "pipe.json").c_str(), 0600), 0);

    const struct {
        const char* name;
        PrivateFileError expected;
    } cases[] = {
        {"link.json", PrivateFileError::symbolicLink},
        {"dangling.json", PrivateFileError::symbolicLink},
        {"folder-link", PrivateFileError::symbolicLink},
        {"folder.json", PrivateFileError::notRegularFile},
        // A FIFO with no writer: opening it for reading would block forever.
        {"pipe.json", PrivateFileError::notRegularFile},
        {"absent.json", PrivateFileError::missing},
        {"absent-folder/file.json", PrivateFileError::missing},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto read = private_file::read(folder_ / c.name, 1024);
        ASSERT_FALSE(read);
        EXPECT_EQ(read.error(), c.expected);
        EXPECT_FALSE(describe(read.error()).empty());
    }
}

TEST_F(PrivateFileTest, ReadAppliesTheCapInclusively) {
    const struct {
        std::size_t size;
        std::size_t cap;
        bool readable;
    } cases[] = {{0, 0, true}, {1, 0, false}, {32768, 32768, true}, {32769, 32768, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.size << " bytes, cap " << c.cap);
        writeFile(folder_ / "file.json", std::string(c.size, 'x'));
        const auto read = private_file::read(folder_ / "file.json", c.cap);
        ASSERT_EQ(read.ok(), c.readable);
        if (c.readable) {
            EXPECT_EQ(read->size(), c.size);
        } else {
            EXPECT_EQ(read.error(), PrivateFileError::tooLarge);
        }
    }
}

TEST_F(PrivateFileTest, ReadDoesNotTrustTheSizeTheFileReports) {
    // Files under /proc claim a size of 0 yet hold bytes, like a file that
    // grows between the size check and the read.
    const fs::path status = "/proc/self/status";
    const auto whole = private_file::read(status, 1 << 20);
    ASSERT_TRUE(whole);
    EXPECT_NE(whole->find("Name:"), std::string::npos);

    const auto capped = private_file::read(status, 16);
    ASSERT_FALSE(capped);
    EXPECT_EQ(capped.error(), PrivateFileError::tooLarge);
}

// ---- writing -------------------------------------------------------------

TEST_F(PrivateFileTest, WriteThenReadRoundTripsEveryByte) {
    std::string large(300000, '\0');
    for (std::size_t i = 0; i < large.size(); ++i) {
        large[i] = static_cast<char>(i * 7);
    }
    const std::string cases[] = {"", std::string("a\0b\0", 4), "Grüße, 学习 ✓ \xF0\x9F\x93\x9A",
                                 large};
    for (const auto& bytes : cases) {
        SCOPED_TRACE(bytes.size());
        ASSERT_TRUE(private_file::writeAtomically(folder_ / "data.json", bytes));
        const auto read = private_file::read(folder_ / "data.json", bytes.size());
        ASSERT_TRUE(read);
        EXPECT_EQ(*read, bytes);
    }
    EXPECT_EQ(namesIn(folder_), std::set<std::string>{"data.json"});
}

TEST_F(PrivateFileTest, WriteMakesFoldersAndFilePrivateWhateverTheUmask) {
    const mode_t previous = ::umask(0);
    const auto written = private_file::writeAtomically(folder_ / "a" / "b" / "file.json", "{}");
    ::umask(previous);
    ASSERT_TRUE(written);
    EXPECT_EQ(modeOf(folder_ / "a"), 0700u);
    EXPECT_EQ(modeOf(folder_ / "a" / "b"), 0700u);
    EXPECT_EQ(modeOf(folder_ / "a" / "b" / "file.json"), 0600u);
}

TEST_F(PrivateFileTest, WriteNarrowsAnExistingFolderAndReplacesAnOpenFile) {
    fs::create_directory(folder_ / "app");
    ::chmod((folder_ / "app").c_str(), 0755);
    writeFile(folder_ / "app" / "file.json", "old");
    ::chmod((folder_ / "app" / "file.json").c_str(), 0644);

    ASSERT_TRUE(private_file::writeAtomically(folder_ / "app" / "file.json", "new"));
    EXPECT_EQ(modeOf(folder_ / "app"), 0700u);
    EXPECT_EQ(modeOf(folder_ / "app" / "file.json"), 0600u);
    EXPECT_EQ(readFile(folder_ / "app" / "file.json"), "new");
}

TEST_F(PrivateFileTest, WriteRefusesAFolderThatIsAFile) {
    writeFile(folder_ / "plain", "x");
    const auto folder = private_file::ensureFolder(folder_ / "plain");
    ASSERT_FALSE(folder);
    EXPECT_EQ(folder.error(), PrivateFileError::folderUnusable);

    const auto written =
        private_file::writeAtomically(folder_ / "plain" / "deeper" / "f.json", "{}");
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error(), PrivateFileError::folderUnusable);
    EXPECT_EQ(readFile(folder_ / "plain"), "x");
}

TEST_F(PrivateFileTest, WriteOverASymbolicLinkReplacesTheLinkNotItsTarget) {
    writeFile(folder_ / "target.json", "target");
    fs::create_symlink(folder_ / "target.json", folder_ / "link.json");
    ASSERT_TRUE(private_file::writeAtomically(folder_ / "link.json", "new"));
    EXPECT_FALSE(fs::is_symlink(folder_ / "link.json"));
    EXPECT_EQ(readFile(folder_ / "link.json"), "new");
    EXPECT_EQ(readFile(folder_ / "target.json"), "target");
}

// Writes half of what it is given for real, then fails as a full disk would.
class HalfThenFailingWrite : public FileWriteOperations {
  public:
    long write(int descriptor, const char* data, std::size_t size) override {
        if (wrote_) {
            errno = ENOSPC;
            return -1;
        }
        wrote_ = true;
        return FileWriteOperations::write(descriptor, data, size / 2);
    }

  private:
    bool wrote_ = false;
};

// Fails the fsync call number `failing` (1 is the file, 2 the folder).
class FailingFsync : public FileWriteOperations {
  public:
    explicit FailingFsync(int failing) : failing_(failing) {}
    int fsync(int descriptor) override {
        if (++calls_ == failing_) {
            errno = EIO;
            return -1;
        }
        return FileWriteOperations::fsync(descriptor);
    }

  private:
    int failing_;
    int calls_ = 0;
};

// Records the temporary file's name and fails the rename.
class FailingRename : public FileWriteOperations {
  public:
    int rename(const char* from, const char*) override {
        from_ = from;
        errno = EXDEV;
        return -1;
    }
    fs::path from_;
};

// Accepts at most three bytes a call, as a write interrupted by signals may.
class TricklingWrite : public FileWriteOperations {
  public:
    long write(int descriptor, const char* data, std::size_t size) override {
        return FileWriteOperations::write(descriptor, data, std::min<std::size_t>(size, 3));
    }
};

TEST_F(PrivateFileTest, FailedWriteKeepsThePreviousFileWholeAndLeavesNoTemporaryFile) {
    const struct {
        const char* name;
        std::function<std::unique_ptr<FileWriteOperations>()> make;
    } cases[] = {
        {"write fails halfway", [] { return std::make_unique<HalfThenFailingWrite>(); }},
        {"fsync fails", [] { return std::make_unique<FailingFsync>(1); }},
        {"rename fails", [] { return std::make_unique<FailingRename>(); }},
    };
    const std::string previous = "{\"formatVersion\":1,\"previous\":true}";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        writeFile(folder_ / "file.json", previous);
        const auto operations = c.make();
        const auto written = private_file::writeAtomically(
            folder_ / "file.json", "{\"formatVersion\":1,\"next\":[1,2,3,4,5]}", *operations);
        ASSERT_FALSE(written);
        EXPECT_EQ(written.error(), PrivateFileError::writeFailed);
        EXPECT_EQ(readFile(folder_ / "file.json"), previous);
        EXPECT_EQ(namesIn(folder_), std::set<std::string>{"file.json"});
    }
}

TEST_F(PrivateFileTest, TemporaryFileIsAHiddenSiblingThatFolderReadersCanSkip) {
    FailingRename operations;
    ASSERT_FALSE(private_file::writeAtomically(folder_ / "state.json", "{}", operations));
    EXPECT_EQ(operations.from_.parent_path(), folder_);
    const std::string name = operations.from_.filename().string();
    EXPECT_EQ(name.rfind(".state.json.", 0), 0u) << name;
    EXPECT_TRUE(name.ends_with(".temporary")) << name;
}

TEST_F(PrivateFileTest, FailedFolderSyncIsReportedAfterTheNewFileIsInPlace) {
    writeFile(folder_ / "file.json", "old");
    FailingFsync operations(2);
    const auto written = private_file::writeAtomically(folder_ / "file.json", "new", operations);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error(), PrivateFileError::writeFailed);
    EXPECT_EQ(readFile(folder_ / "file.json"), "new");
    EXPECT_EQ(namesIn(folder_), std::set<std::string>{"file.json"});
}

TEST_F(PrivateFileTest, AnUnsyncedWriteSkipsBothSyncsButIsStillAtomicAndPrivate) {
    // Every fsync fails: a synced write notices, an unsynced one never asks.
    FailingFsync operations(1);
    ASSERT_TRUE(private_file::writeAtomically(folder_ / "event.json", "{\"a\":1}", operations,
                                              private_file::Durability::unsynced));
    EXPECT_EQ(readFile(folder_ / "event.json"), "{\"a\":1}");
    EXPECT_EQ(modeOf(folder_ / "event.json"), 0600u);
    EXPECT_EQ(namesIn(folder_), std::set<std::string>{"event.json"});
    EXPECT_FALSE(private_file::writeAtomically(folder_ / "event.json", "{}", operations));
}

TEST_F(PrivateFileTest, ShortWritesAreContinuedUntilEveryByteIsWritten) {
    TricklingWrite operations;
    const std::string bytes = "{\"formatVersion\":1,\"name\":\"Ünïcödé\"}";
    ASSERT_TRUE(private_file::writeAtomically(folder_ / "file.json", bytes, operations));
    EXPECT_EQ(readFile(folder_ / "file.json"), bytes);
}

// ---- quarantine ----------------------------------------------------------

TEST_F(PrivateFileTest, QuarantineNameKeepsTheExtensionAndCountsPastTakenNames) {
    EXPECT_EQ(private_file::quarantinePath(folder_ / "active-session-v1.json", kNow),
              folder_ / "active-session-v1.corrupt-1763280000.json");
    EXPECT_EQ(private_file::quarantinePath(folder_ / "bridge-token", kNow),
              folder_ / "bridge-token.corrupt-1763280000");

    writeFile(folder_ / "active-session-v1.corrupt-1763280000.json", "");
    EXPECT_EQ(private_file::quarantinePath(folder_ / "active-session-v1.json", kNow),
              folder_ / "active-session-v1.corrupt-1763280000-2.json");
    // A dangling link takes its name as much as a file does.
    fs::create_symlink(folder_ / "nowhere",
                       folder_ / "active-session-v1.corrupt-1763280000-2.json");
    EXPECT_EQ(private_file::quarantinePath(folder_ / "active-session-v1.json", kNow),
              folder_ / "active-session-v1.corrupt-1763280000-3.json");
}

TEST_F(PrivateFileTest, QuarantineMovesTheFileAsideWithOwnerOnlyAccess) {
    const fs::path file = folder_ / "templates-v1.json";
    writeFile(folder_ / "templates-v1.corrupt-1763280000.json", "earlier damage");
    writeFile(file, "not json");
    ::chmod(file.c_str(), 0644);

    const auto moved = private_file::quarantine(file, kNow);
    ASSERT_TRUE(moved);
    EXPECT_EQ(*moved, folder_ / "templates-v1.corrupt-1763280000-2.json");
    EXPECT_FALSE(fs::exists(fs::symlink_status(file)));
    EXPECT_EQ(readFile(*moved), "not json");
    EXPECT_EQ(modeOf(*moved), 0600u);
    EXPECT_EQ(readFile(folder_ / "templates-v1.corrupt-1763280000.json"), "earlier damage");
}

TEST_F(PrivateFileTest, QuarantineMovesALinkItselfAndLeavesItsTargetAlone) {
    writeFile(folder_ / "target", "target");
    ::chmod((folder_ / "target").c_str(), 0644);
    fs::create_symlink(folder_ / "target", folder_ / "link.json");

    const auto moved = private_file::quarantine(folder_ / "link.json", kNow);
    ASSERT_TRUE(moved);
    EXPECT_TRUE(fs::is_symlink(*moved));
    EXPECT_EQ(modeOf(folder_ / "target"), 0644u);
    EXPECT_EQ(readFile(folder_ / "target"), "target");

    const auto missing = private_file::quarantine(folder_ / "absent.json", kNow);
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error(), PrivateFileError::quarantineFailed);
}

// ---- versioned documents -------------------------------------------------

TEST_F(PrivateFileTest, LoadAcceptsSupportedVersionsAndLeavesNewerOnesUntouched) {
    const struct {
        std::string text;
        VersionedJsonStatus status;
        long long version;
    } cases[] = {
        {"{\"formatVersion\":1,\"x\":[]}", VersionedJsonStatus::loaded, 1},
        {"{\"x\":{\"formatVersion\":9},\"formatVersion\":2}", VersionedJsonStatus::loaded, 2},
        {"{\"formatVersion\":3,\"layout\":\"unknown\"}", VersionedJsonStatus::newerVersion, 3},
        {" {\"formatVersion\" : 9223372036854775807}\n", VersionedJsonStatus::newerVersion,
         9223372036854775807LL},
    };
    const fs::path file = folder_ / "doc-v1.json";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        writeFile(file, c.text);
        ::chmod(file.c_str(), 0640);
        const auto load = loadVersionedJson(file, 1024, 2, "formatVersion", kNow);
        EXPECT_EQ(load.status, c.status);
        EXPECT_EQ(load.formatVersion, c.version);
        EXPECT_EQ(load.text, c.status == VersionedJsonStatus::loaded ? c.text : "");
        EXPECT_EQ(readFile(file), c.text);
        EXPECT_EQ(modeOf(file), 0640u);
        EXPECT_EQ(namesIn(folder_), std::set<std::string>{"doc-v1.json"});
    }
}

TEST_F(PrivateFileTest, LoadQuarantinesDocumentsWithoutAValidVersion) {
    const std::string cases[] = {
        "",
        "not json",
        "{\"formatVersion\":1",
        "{\"formatVersion\":1} trailing",
        "[{\"formatVersion\":1}]",
        "{}",
        "{\"version\":1}",
        "{\"formatVersion\":0}",
        "{\"formatVersion\":-4}",
        "{\"formatVersion\":1.0}",
        "{\"formatVersion\":\"1\"}",
        "{\"formatVersion\":true}",
        "{\"formatVersion\":9223372036854775808}",
        "{\"formatVersion\":1,\"name\":\"\xC3\x28\"}",
        std::string(100000, '['),
    };
    const fs::path file = folder_ / "doc-v1.json";
    for (const auto& text : cases) {
        SCOPED_TRACE(text.substr(0, 40));
        writeFile(file, text);
        const auto load = loadVersionedJson(file, 1 << 20, 1, "formatVersion", kNow);
        ASSERT_EQ(load.status, VersionedJsonStatus::quarantined);
        ASSERT_TRUE(load.movedTo);
        EXPECT_FALSE(fs::exists(fs::symlink_status(file)));
        EXPECT_EQ(readFile(*load.movedTo), text);
        EXPECT_EQ(modeOf(*load.movedTo), 0600u);
        fs::remove(*load.movedTo);
    }
}

TEST_F(PrivateFileTest, LoadLeavesRefusedFilesInPlace) {
    const fs::path file = folder_ / "doc-v1.json";
    EXPECT_EQ(loadVersionedJson(file, 64, 1, "formatVersion", kNow).status,
              VersionedJsonStatus::missing);

    const std::string oversized =
        "{\"formatVersion\":1,\"padding\":\"" + std::string(64, 'x') + "\"}";
    writeFile(file, oversized);
    auto load = loadVersionedJson(file, 64, 1, "formatVersion", kNow);
    EXPECT_EQ(load.status, VersionedJsonStatus::refused);
    EXPECT_EQ(load.error, PrivateFileError::tooLarge);
    EXPECT_EQ(readFile(file), oversized);

    // A link to a damaged document is neither followed nor moved.
    fs::remove(file);
    writeFile(folder_ / "elsewhere.json", "damaged");
    fs::create_symlink(folder_ / "elsewhere.json", file);
    load = loadVersionedJson(file, 64, 1, "formatVersion", kNow);
    EXPECT_EQ(load.status, VersionedJsonStatus::refused);
    EXPECT_EQ(load.error, PrivateFileError::symbolicLink);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(readFile(folder_ / "elsewhere.json"), "damaged");
    EXPECT_EQ(namesIn(folder_), (std::set<std::string>{"doc-v1.json", "elsewhere.json"}));
}

}  // namespace
}  // namespace lumenote
