#include "store/recorder_lock.hpp"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "store_test_support.hpp"

namespace lumenote::store {
namespace {

using namespace lumenote::testing;

std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A child process that takes the lock, reports on `ready` whether it got it,
// then holds it until the parent closes `release`, and ends without running
// any destructor, as a crashed recorder would.
class LockHoldingChild {
  public:
    explicit LockHoldingChild(const std::filesystem::path& lockFile) {
        int ready[2];
        int release[2];
        if (::pipe(ready) != 0 || ::pipe(release) != 0) {
            return;
        }
        pid_ = ::fork();
        if (pid_ == 0) {
            ::close(ready[0]);
            ::close(release[1]);
            auto lock = store::RecorderLock::acquire(lockFile);
            const char status = lock.ok() ? 'y' : 'n';
            (void)::write(ready[1], &status, 1);
            char ignored;
            (void)::read(release[0], &ignored, 1);
            ::_exit(0);
        }
        ::close(ready[1]);
        ::close(release[0]);
        char status = 'n';
        locked_ = ::read(ready[0], &status, 1) == 1 && status == 'y';
        ::close(ready[0]);
        release_ = release[1];
    }
    ~LockHoldingChild() { end(); }

    // Lets the child exit and waits for it.
    void end() {
        if (pid_ > 0) {
            ::close(release_);
            int status = 0;
            ::waitpid(pid_, &status, 0);
            pid_ = -1;
        }
    }

    pid_t pid() const { return pid_; }
    bool locked() const { return locked_; }

  private:
    pid_t pid_ = -1;
    int release_ = -1;
    bool locked_ = false;
};

class RecorderLockTest : public TemporaryFolderTest {
  protected:
    std::filesystem::path lockFile() const { return folder_ / "Lumenote" / "lumenote.lock"; }
};

// Asking whether a recorder runs reads the holder's id and never takes the
// lock: a crashed holder (its process gone, its id left in the file), a
// released lock and an unreadable file all read as free.
TEST_F(RecorderLockTest, TheRunningHolderIsFoundWithoutTakingTheLock) {
    EXPECT_FALSE(RecorderLock::runningHolder(lockFile()));
    {
        LockHoldingChild child(lockFile());
        ASSERT_TRUE(child.locked());
        EXPECT_EQ(RecorderLock::runningHolder(lockFile()), child.pid());
        // The question left the lock alone: the holder still excludes others.
        EXPECT_FALSE(RecorderLock::acquire(lockFile()).ok());
        const pid_t crashed = child.pid();
        child.end();
        ASSERT_EQ(contentsOf(lockFile()), std::to_string(crashed) + "\n");
        EXPECT_FALSE(RecorderLock::runningHolder(lockFile()));
    }
    {
        auto lock = RecorderLock::acquire(lockFile());
        ASSERT_TRUE(lock.ok());
        EXPECT_EQ(RecorderLock::runningHolder(lockFile()), ::getpid());
    }
    EXPECT_FALSE(RecorderLock::runningHolder(lockFile()));
    for (const char* content : {"", "not a number\n", "-1\n", "12abc"}) {
        std::ofstream(lockFile(), std::ios::trunc) << content;
        EXPECT_FALSE(RecorderLock::runningHolder(lockFile())) << content;
    }
}

TEST_F(RecorderLockTest, ASecondLockInTheSameProcessIsRefusedUntilTheFirstIsReleased) {
    {
        auto first = store::RecorderLock::acquire(lockFile());
        ASSERT_TRUE(first.ok()) << store::recorderLockMessage(first.error());
        EXPECT_EQ(contentsOf(lockFile()), std::to_string(::getpid()) + "\n");
        struct stat info {};
        ASSERT_EQ(::stat(lockFile().c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 0777, 0600u);

        auto second = store::RecorderLock::acquire(lockFile());
        ASSERT_FALSE(second.ok());
        EXPECT_EQ(second.error().failure, store::RecorderLockFailure::heldByAnotherProcess);
        EXPECT_EQ(store::recorderLockMessage(second.error()),
                  "Another Lumenote process (pid " + std::to_string(::getpid()) +
                      ") is already recording, or waits in the tray to record: use it, or "
                      "quit it first.");
        // The refused attempt leaves the holder's id in place.
        EXPECT_EQ(contentsOf(lockFile()), std::to_string(::getpid()) + "\n");
    }
    EXPECT_EQ(contentsOf(lockFile()), "");
    EXPECT_TRUE(store::RecorderLock::acquire(lockFile()).ok());
}

TEST_F(RecorderLockTest, ALockHeldByAnotherProcessNamesItAndIsFreedWhenThatProcessDies) {
    LockHoldingChild child(lockFile());
    ASSERT_GT(child.pid(), 0);
    ASSERT_TRUE(child.locked());

    auto refused = store::RecorderLock::acquire(lockFile());
    ASSERT_FALSE(refused.ok());
    EXPECT_EQ(refused.error().holderProcessId, child.pid());
    EXPECT_EQ(store::recorderLockMessage(refused.error()),
              "Another Lumenote process (pid " + std::to_string(child.pid()) +
                  ") is already recording, or waits in the tray to record: use it, or "
                  "quit it first.");

    // The child ends without releasing: its id stays in the file, yet the
    // lock died with it.
    child.end();
    EXPECT_FALSE(contentsOf(lockFile()).empty());
    auto taken = store::RecorderLock::acquire(lockFile());
    ASSERT_TRUE(taken.ok()) << store::recorderLockMessage(taken.error());
    EXPECT_EQ(contentsOf(lockFile()), std::to_string(::getpid()) + "\n");
}

TEST_F(RecorderLockTest, AHolderWhoseIdCannotBeReadIsStillRefusedWithoutAnId) {
    // The holder has locked but not yet written its id, or wrote something
    // else: the refusal must not invent a process id.
    for (const std::string contents : {"", "12ab\n", "-5\n", "99999999999999999999999\n"}) {
        SCOPED_TRACE(contents);
        auto holder = store::RecorderLock::acquire(lockFile());
        ASSERT_TRUE(holder.ok());
        std::ofstream(lockFile(), std::ios::binary | std::ios::trunc) << contents;
        auto refused = store::RecorderLock::acquire(lockFile());
        ASSERT_FALSE(refused.ok());
        EXPECT_FALSE(refused.error().holderProcessId);
        EXPECT_EQ(store::recorderLockMessage(refused.error()),
                  "Another Lumenote process is already recording, or waits in the tray to "
                  "record: use it, or quit it first.");
    }
}

TEST_F(RecorderLockTest, AnUnusableLockFileIsReportedAsSuch) {
    std::filesystem::create_directories(lockFile());  // a folder where the file should be
    auto lock = store::RecorderLock::acquire(lockFile());
    ASSERT_FALSE(lock.ok());
    EXPECT_EQ(lock.error().failure, store::RecorderLockFailure::unusable);
    EXPECT_NE(store::recorderLockMessage(lock.error()).find(lockFile().string()), std::string::npos)
        << store::recorderLockMessage(lock.error());

    std::filesystem::remove(lockFile());
    std::filesystem::create_symlink(folder_ / "elsewhere", lockFile());
    auto followed = store::RecorderLock::acquire(lockFile());
    ASSERT_FALSE(followed.ok());
    EXPECT_EQ(followed.error().failure, store::RecorderLockFailure::unusable);
    EXPECT_FALSE(std::filesystem::exists(folder_ / "elsewhere"));
}

}  // namespace
}  // namespace lumenote::store
