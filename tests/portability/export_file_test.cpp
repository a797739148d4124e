#include "portability/export_file.hpp"

#include <cerrno>
#include <functional>

#include <gtest/gtest.h>

#include "support/temporary_home.hpp"

namespace lumenote::portability {
namespace {

using lumenote::testing::modeOf;
using lumenote::testing::namesIn;
using lumenote::testing::readFile;
using lumenote::testing::writeFile;

// Writes half of the first block for real, then fails as a full disk would.
class HalfThenFailingWrite final : public FileWriteOperations {
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

class FailingFsync final : public FileWriteOperations {
  public:
    int fsync(int) override {
        errno = EIO;
        return -1;
    }
};

class FailingRename final : public FileWriteOperations {
  public:
    int rename(const char*, const char*) override {
        errno = EXDEV;
        return -1;
    }
};

class NoProgressWrite final : public FileWriteOperations {
  public:
    long write(int, const char*, std::size_t) override { return 0; }
};

class AtomicExportFileTest : public ::testing::Test {
  protected:
    std::filesystem::path folder() const { return home_.root(); }
    lumenote::testing::TemporaryHome home_;
};

TEST_F(AtomicExportFileTest, WritesThePiecesInOrderAndReplacesAnEarlierExport) {
    const auto destination = folder() / "Lumenote Sessions.json";
    writeFile(destination, "an earlier export");
    auto file = AtomicExportFile::create(destination);
    ASSERT_TRUE(file.ok()) << file.error().message();
    ASSERT_TRUE((*file)->write("first,").ok());
    ASSERT_TRUE((*file)->write("second").ok());
    // Until the commit the earlier file is what readers see.
    EXPECT_EQ(readFile(destination), "an earlier export");
    ASSERT_TRUE((*file)->commit().ok());
    EXPECT_EQ(readFile(destination), "first,second");
    EXPECT_EQ(modeOf(destination), 0600u);
    EXPECT_EQ(namesIn(folder()), std::set<std::string>{"Lumenote Sessions.json"});
}

TEST_F(AtomicExportFileTest, AFailureLeavesNoTemporaryFileAndTheEarlierExportWhole) {
    const struct {
        const char* name;
        std::function<std::unique_ptr<FileWriteOperations>()> make;
        const char* reason;
    } cases[] = {
        {"write fails halfway", [] { return std::make_unique<HalfThenFailingWrite>(); },
         "No space left on device"},
        {"write makes no progress", [] { return std::make_unique<NoProgressWrite>(); },
         "Input/output error"},
        {"sync fails", [] { return std::make_unique<FailingFsync>(); }, "Input/output error"},
        {"rename fails", [] { return std::make_unique<FailingRename>(); },
         "Invalid cross-device link"},
    };
    const auto destination = folder() / "export.csv";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        writeFile(destination, "earlier");
        const auto operations = c.make();
        {
            auto file = AtomicExportFile::create(destination, *operations);
            ASSERT_TRUE(file.ok());
            auto written = (*file)->write(std::string(100000, 'x'));
            if (written.ok()) {
                written = (*file)->commit();
            }
            ASSERT_FALSE(written.ok());
            EXPECT_EQ(written.error().message(), "Lumenote could not write the export (" +
                                                     destination.string() + ": " + c.reason + ").");
        }
        EXPECT_EQ(readFile(destination), "earlier");
        EXPECT_EQ(namesIn(folder()), std::set<std::string>{"export.csv"});
    }
}

TEST_F(AtomicExportFileTest, AnAbandonedExportLeavesNothingBehind) {
    const auto destination = folder() / "export.ics";
    {
        auto file = AtomicExportFile::create(destination);
        ASSERT_TRUE(file.ok());
        ASSERT_TRUE((*file)->write("BEGIN:VCALENDAR\r\n").ok());
        // Ends without a commit, as when the history could not be read.
    }
    EXPECT_TRUE(namesIn(folder()).empty());
}

TEST_F(AtomicExportFileTest, AnUnwritableDestinationFailsWithItsReasonAndCreatesNothing) {
    writeFile(folder() / "a file", "not a folder");
    const struct {
        const char* name;
        std::filesystem::path destination;
        const char* reason;
    } cases[] = {
        {"missing folder", folder() / "missing" / "export.json", "No such file or directory"},
        {"a file as the folder", folder() / "a file" / "export.json", "Not a directory"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto file = AtomicExportFile::create(c.destination);
        ASSERT_FALSE(file.ok());
        EXPECT_EQ(file.error().message(), "Lumenote could not write the export (" +
                                              c.destination.string() + ": " + c.reason + ").");
    }
    EXPECT_EQ(namesIn(folder()), std::set<std::string>{"a file"});
}

}  // namespace
}  // namespace lumenote::portability
