#include "foundation/atomic_file_writer.hpp"

#include <cerrno>
#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "support/temporary_home.hpp"

namespace lumenote {
namespace {

namespace fs = std::filesystem;
using namespace lumenote::testing;

// Fails the write call number `failing` (counting from 1) with ENOSPC,
// after letting the earlier ones through.
class FailingNthWrite : public FileWriteOperations {
  public:
    explicit FailingNthWrite(int failing) : failing_(failing) {}
    long write(int descriptor, const char* data, std::size_t size) override {
        if (++calls_ == failing_) {
            errno = ENOSPC;
            return -1;
        }
        return FileWriteOperations::write(descriptor, data, size);
    }
    int calls() const { return calls_; }

  private:
    int failing_;
    int calls_ = 0;
};

class FailingFsync : public FileWriteOperations {
  public:
    int fsync(int) override {
        errno = EIO;
        return -1;
    }
};

class FailingRename : public FileWriteOperations {
  public:
    int rename(const char*, const char*) override {
        errno = EXDEV;
        return -1;
    }
};

class AtomicFileWriterTest : public ::testing::Test {
  protected:
    TemporaryHome home_;
    fs::path folder() const { return home_.root() / "out"; }
};

TEST_F(AtomicFileWriterTest, PiecesOfEverySizeArriveInOrderOnlyAtTheCommit) {
    // Small pieces are gathered, one larger than the buffer goes straight
    // through, and the buffer's own boundary falls inside a piece.
    const std::string small(1000, 'a');
    const std::string large(AtomicFileWriter::kBufferBytes + 17, 'b');
    const std::string straddling(AtomicFileWriter::kBufferBytes - 500, 'c');
    const fs::path target = folder() / "history.tallywisebackup";
    writeFile(target, "previous");

    auto writer = AtomicFileWriter::create(target);
    ASSERT_TRUE(writer);
    for (const std::string* piece : {&small, &large, &small, &straddling, &small}) {
        ASSERT_TRUE(writer->append(*piece));
    }
    const std::string expected = small + large + small + straddling + small;
    ASSERT_TRUE(writer->finish());
    EXPECT_EQ(readFile(writer->temporaryPath()), expected);
    EXPECT_EQ(readFile(target), "previous");

    ASSERT_TRUE(writer->commit());
    EXPECT_EQ(readFile(target), expected);
    EXPECT_EQ(modeOf(target), 0600u);
    EXPECT_EQ(namesIn(folder()), std::set<std::string>{"history.tallywisebackup"});
}

TEST_F(AtomicFileWriterTest, AWriterEndedWithoutCommitLeavesNothingBehind) {
    const fs::path target = folder() / "history.tallywisebackup";
    writeFile(target, "previous");
    {
        auto writer = AtomicFileWriter::create(target);
        ASSERT_TRUE(writer);
        ASSERT_TRUE(writer->append(std::string(3 * AtomicFileWriter::kBufferBytes, 'x')));
        ASSERT_TRUE(writer->finish());
    }
    EXPECT_EQ(readFile(target), "previous");
    EXPECT_EQ(namesIn(folder()), std::set<std::string>{"history.tallywisebackup"});
}

TEST_F(AtomicFileWriterTest, AFailureAnywhereKeepsThePreviousFileAndRemovesTheTemporaryOne) {
    const struct {
        const char* name;
        std::function<std::unique_ptr<FileWriteOperations>()> make;
    } cases[] = {
        // The first write is the straight-through large piece.
        {"the large piece fails", [] { return std::make_unique<FailingNthWrite>(1); }},
        // The second is the buffer flushed at finish().
        {"the last flush fails", [] { return std::make_unique<FailingNthWrite>(2); }},
        {"fsync fails", [] { return std::make_unique<FailingFsync>(); }},
        {"rename fails", [] { return std::make_unique<FailingRename>(); }},
    };
    const fs::path target = folder() / "history.tallywisebackup";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        writeFile(target, "previous");
        const auto operations = c.make();
        auto writer = AtomicFileWriter::create(target, *operations);
        ASSERT_TRUE(writer);
        auto outcome = writer->append(std::string(AtomicFileWriter::kBufferBytes + 1, 'x'));
        if (outcome) {
            outcome = writer->append("tail");
        }
        if (outcome) {
            outcome = writer->commit();
        }
        ASSERT_FALSE(outcome);
        EXPECT_EQ(outcome.error(), PrivateFileError::writeFailed);
        // Once failed, the writer stays failed.
        EXPECT_FALSE(writer->append("more"));
        EXPECT_FALSE(writer->commit());
        EXPECT_EQ(readFile(target), "previous");
        EXPECT_EQ(namesIn(folder()), std::set<std::string>{"history.tallywisebackup"});
    }
}

TEST_F(AtomicFileWriterTest, AParentThatIsARegularFileIsRefusedBeforeAnythingIsWritten) {
    // Works as root too, where a read-only folder would still be writable.
    writeFile(home_.root() / "plain", "not a folder");
    auto writer = AtomicFileWriter::create(home_.root() / "plain" / "history.tallywisebackup");
    ASSERT_FALSE(writer);
    EXPECT_EQ(writer.error(), PrivateFileError::folderUnusable);
}

// A file saved into a folder the user chose leaves the folder's mode alone;
// Lumenote's own folders are narrowed to the user.
TEST_F(AtomicFileWriterTest, OnlyLumenotesOwnFoldersAreMadePrivate) {
    using Policy = AtomicFileWriter::FolderPolicy;
    const auto modeOf = [](const fs::path& path) {
        return fs::status(path).permissions() & fs::perms::all;
    };
    const fs::path shared = home_.root() / "Documents";
    fs::create_directories(shared);
    fs::permissions(shared, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                                fs::perms::others_read | fs::perms::others_exec);
    const fs::perms before = modeOf(shared);
    for (const Policy policy : {Policy::useAsItIs, Policy::ensurePrivate}) {
        auto writer = AtomicFileWriter::create(shared / "history.tallywisebackup",
                                               systemFileWriteOperations(),
                                               private_file::Durability::synced, policy);
        ASSERT_TRUE(writer);
        ASSERT_TRUE(writer->append("{}"));
        ASSERT_TRUE(writer->commit());
        EXPECT_EQ(modeOf(shared), policy == Policy::useAsItIs ? before : fs::perms::owner_all);
    }

    const fs::path fresh = home_.root() / "new" / "nested";
    auto writer =
        AtomicFileWriter::create(fresh / "history.tallywisebackup", systemFileWriteOperations(),
                                 private_file::Durability::synced, Policy::useAsItIs);
    ASSERT_TRUE(writer) << "a missing folder is created";
    EXPECT_EQ(modeOf(fresh), fs::perms::owner_all);
}

}  // namespace
}  // namespace lumenote
