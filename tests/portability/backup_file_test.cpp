#include "portability/backup_file.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "backup_test_support.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::portability {
namespace {

namespace fs = std::filesystem;
using lumenote::testing::TemporaryHome;
using lumenote::testing::writeFile;

class BackupFileTest : public ::testing::Test {
  protected:
    fs::path path(const std::string& name) const { return home_.root() / name; }

    TallywiseBackupFailure refusal(const fs::path& file, std::size_t megabytes = 10) {
        auto opened = BackupFile::open(file, megabytes);
        EXPECT_FALSE(opened) << file;
        return opened ? TallywiseBackupFailure::invalidRecord : opened.error().failure;
    }

    TemporaryHome home_;
};

TEST_F(BackupFileTest, OnlyARegularFileWithTheBackupExtensionIsOpened) {
    writeFile(path("history.json"), "{}");
    writeFile(path("history.tallywisebackup.txt"), "{}");
    writeFile(path("real.tallywisebackup"), "{}");
    fs::create_directories(path("folder.tallywisebackup"));
    fs::create_symlink(path("real.tallywisebackup"), path("link.tallywisebackup"));
    ASSERT_EQ(::mkfifo(path("pipe.tallywisebackup").c_str(), 0600), 0);

    EXPECT_EQ(refusal(path("history.json")), TallywiseBackupFailure::invalidFileType);
    EXPECT_EQ(refusal(path("history.tallywisebackup.txt")),
              TallywiseBackupFailure::invalidFileType);
    EXPECT_EQ(refusal(path("folder.tallywisebackup")), TallywiseBackupFailure::unsafeFile);
    EXPECT_EQ(refusal(path("link.tallywisebackup")), TallywiseBackupFailure::unsafeFile);
    EXPECT_EQ(refusal(path("pipe.tallywisebackup")), TallywiseBackupFailure::unsafeFile);
    EXPECT_EQ(refusal(path("missing.tallywisebackup")), TallywiseBackupFailure::unreadableFile);
    // The name is checked first: a folder with another name is the wrong type.
    fs::create_directories(path("folder.json"));
    EXPECT_EQ(refusal(path("folder.json")), TallywiseBackupFailure::invalidFileType);

    EXPECT_EQ((TallywiseBackupError{TallywiseBackupFailure::unsafeFile, {}}.message()),
              "The selected backup must be a regular file, not a folder or symbolic link.");
    EXPECT_EQ((TallywiseBackupError{TallywiseBackupFailure::invalidFileType, {}}.message()),
              "Choose a .tallywisebackup file.");
}

TEST_F(BackupFileTest, EmptinessAndSizeAreCheckedBeforeAnyByteIsRead) {
    writeFile(path("empty.tallywisebackup"), "");
    EXPECT_EQ(refusal(path("empty.tallywisebackup")), TallywiseBackupFailure::emptyFile);

    // One megabyte is 1,000,000 bytes: a file of exactly that passes, one
    // byte more does not, whatever it holds.
    writeFile(path("limit.tallywisebackup"), std::string(kBytesPerMegabyte, ' '));
    EXPECT_TRUE(BackupFile::open(path("limit.tallywisebackup"), 1));
    writeFile(path("over.tallywisebackup"), std::string(kBytesPerMegabyte + 1, ' '));
    auto over = BackupFile::open(path("over.tallywisebackup"), 1);
    ASSERT_FALSE(over);
    EXPECT_EQ(over.error().message(), "The selected backup exceeds the 1 MB safety limit.");
    // An unreadable file that is too large is refused for its size alone.
    ASSERT_EQ(::chmod(path("over.tallywisebackup").c_str(), 0), 0);
    EXPECT_EQ(refusal(path("over.tallywisebackup"), 1), TallywiseBackupFailure::fileTooLarge);
}

TEST_F(BackupFileTest, EveryPassReadsTheWholeFileAndAWriteMeanwhileIsNoticed) {
    const std::string contents = testing::documentJson(1).dump();
    writeFile(path("history.tallywisebackup"), contents);
    auto file = BackupFile::open(path("history.tallywisebackup"), 10);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->size(), contents.size());
    for (int pass = 0; pass < 2; ++pass) {
        const auto bytes = file->bytes();
        std::string read(contents.size() + 10, '\0');
        std::size_t filled = 0;
        while (const auto got = bytes->read(read.data() + filled, 100)) {
            if (*got == 0) {
                break;
            }
            filled += *got;
        }
        read.resize(filled);
        EXPECT_EQ(read, contents);
    }
    EXPECT_TRUE(file->unchanged());
    writeFile(path("history.tallywisebackup"), contents + " ");
    EXPECT_FALSE(file->unchanged());
}

}  // namespace
}  // namespace lumenote::portability
