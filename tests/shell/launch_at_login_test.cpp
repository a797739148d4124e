// Launch at login over real folders of a temporary home, checked with the
// desktop's own tools: desktop-file-validate reads every entry written, and
// gio launches one the way the session does at login.
#include "shell/launch_at_login.hpp"

#include <sys/stat.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "support/permission_checks.hpp"
#include "support/run_program.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::shell {
namespace {

namespace fs = std::filesystem;
using lumenote::testing::modeOf;
using lumenote::testing::namesIn;
using lumenote::testing::readFile;
using lumenote::testing::runProgram;
using lumenote::testing::writeFile;

const std::string kAddPrefix =
    "Lumenote could not add itself to the applications that start at login (";
const std::string kRemovePrefix =
    "Lumenote could not remove itself from the applications that start at login (";

std::string entryFor(const std::string& execValue) {
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Lumenote\n"
           "Comment=Record study sessions on this computer\n"
           "Exec=" +
           execValue +
           "\n"
           "Icon=com.tallywise.Lumenote\n"
           "Terminal=false\n"
           "Categories=Education;Utility;\n"
           "X-GNOME-Autostart-enabled=true\n"
           "StartupNotify=false\n";
}

// desktop-file-validate's verdict: empty when the entry has no error and no
// warning (hints, such as two main categories, are allowed).
std::string validationProblems(const fs::path& entry) {
    const auto run = runProgram({"desktop-file-validate", entry.string()});
    std::string problems;
    if (run.exitStatus != 0) {
        problems += "exit status " + std::to_string(run.exitStatus) + "\n";
    }
    for (const std::string_view kind : {": error: ", ": warning: "}) {
        if (run.output.find(kind) != std::string::npos) {
            problems += run.output;
            break;
        }
    }
    return problems;
}

class LaunchAtLoginTest : public ::testing::Test {
  protected:
    Result<void, LaunchAtLoginError> enable(const fs::path& executable) {
        return applyLaunchAtLogin(true, paths(), executable);
    }
    Result<void, LaunchAtLoginError> enable() { return enable(executable_); }
    Result<void, LaunchAtLoginError> disable() {
        return applyLaunchAtLogin(false, paths(), executable_);
    }
    const UserPaths& paths() const { return home_.paths(); }

    lumenote::testing::TemporaryHome home_;
    const fs::path autostart_ = home_.paths().autostart();
    const fs::path entry_ = autostart_ / "com.tallywise.Lumenote.desktop";
    const fs::path executable_ = home_.root() / "bin" / "lumenote";
};

// ---- adding and removing ----------------------------------------------------

TEST_F(LaunchAtLoginTest, EnablingWritesTheEntryAndDisablingRemovesItEachAsOftenAsAsked) {
    ASSERT_FALSE(fs::exists(home_.paths().configHome));
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        ASSERT_TRUE(enable());
        ASSERT_TRUE(enable()) << "adding again rewrites the same entry";
        EXPECT_EQ(readFile(entry_), entryFor(executable_.string()));
        EXPECT_EQ(modeOf(entry_), 0600u);
        EXPECT_EQ(namesIn(autostart_), std::set<std::string>{"com.tallywise.Lumenote.desktop"});
        EXPECT_EQ(validationProblems(entry_), "");

        ASSERT_TRUE(disable());
        ASSERT_TRUE(disable()) << "removing a missing entry is no failure";
        EXPECT_TRUE(namesIn(autostart_).empty());
    }
    // A missing autostart folder is created private; the folder stays after
    // removal, as other applications may use it.
    EXPECT_EQ(modeOf(autostart_), 0700u);
}

TEST_F(LaunchAtLoginTest, DisablingWithoutAnyAutostartFolderSucceeds) {
    ASSERT_TRUE(disable());
    EXPECT_FALSE(fs::exists(autostart_));
    // Nor is there anything to remove when a file stands where the folder would.
    writeFile(autostart_, "not a folder");
    ASSERT_TRUE(disable());
    EXPECT_EQ(readFile(autostart_), "not a folder");
}

TEST_F(LaunchAtLoginTest, OnlyOurEntryIsTouchedAndTheSharedFolderKeepsItsMode) {
    const std::vector<std::string> others{"other.desktop", "com.tallywise.Lumenote.desktop~",
                                          "com.tallywise.lumenote.desktop",
                                          "com.tallywise.Lumenote.desktop.disabled"};
    for (const std::string& name : others) {
        writeFile(autostart_ / name, "[Desktop Entry]\nName=" + name + "\n");
    }
    ASSERT_EQ(::chmod(autostart_.c_str(), 0755), 0);
    // An entry from a build that lived elsewhere is brought up to date.
    writeFile(entry_, entryFor("/old/place/lumenote"));

    ASSERT_TRUE(enable());
    EXPECT_EQ(readFile(entry_), entryFor(executable_.string()));
    ASSERT_TRUE(disable());

    EXPECT_EQ(modeOf(autostart_), 0755u);
    EXPECT_EQ(namesIn(autostart_), std::set<std::string>(others.begin(), others.end()));
    for (const std::string& name : others) {
        EXPECT_EQ(readFile(autostart_ / name), "[Desktop Entry]\nName=" + name + "\n");
    }
}

// ---- program paths ----------------------------------------------------------

TEST_F(LaunchAtLoginTest, OddProgramPathsAreQuotedAndTheEntryStaysValid) {
    struct Case {
        std::string path;
        std::string exec;
    };
    for (const Case& c : {
             Case{"/usr/bin/lumenote", "/usr/bin/lumenote"},
             Case{"/opt/My Study Tools/lumenote", R"("/opt/My Study Tools/lumenote")"},
             Case{R"(/opt/back\slash/lumenote)", R"("/opt/back\\\\slash/lumenote")"},
             Case{R"(/opt/"quoted" $dollar `tick`/lumenote)",
                  R"("/opt/\\"quoted\\" \\$dollar \\`tick\\`/lumenote")"},
             Case{"/opt/100% Ökologie/lumenote", R"("/opt/100%% Ökologie/lumenote")"},
             Case{"/opt/two\nlines\tand a tab/lumenote",
                  R"("/opt/two\nlines\tand a tab/lumenote")"},
         }) {
        SCOPED_TRACE(c.path);
        ASSERT_TRUE(enable(c.path));
        EXPECT_EQ(readFile(entry_), entryFor(c.exec));
        EXPECT_EQ(validationProblems(entry_), "");
    }
}

// gio reads the entry with GLib's desktop-entry parser and starts its
// program as the session does at login; the program prints the path it was
// started as, line break and tab included. (GLib looks the program up before
// it resolves "%%", so a percent sign is left to desktop-file-validate above.)
TEST_F(LaunchAtLoginTest, TheDesktopStartsTheProgramAtExactlyItsPath) {
    const fs::path program = home_.root() /
                             R"(My "Study" Tools $HOME `x` back\slash it's Ökologie; #1 (new))"
                             "\n\tline" /
                             "lumenote";
    writeFile(program, "#!/bin/sh\nprintf '%s' \"$0\"\n");
    ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
    ASSERT_TRUE(enable(program));
    const auto run = runProgram({"gio", "launch", entry_.string()});
    EXPECT_EQ(run.exitStatus, 0) << run.output;
    EXPECT_EQ(run.output, program.string());
}

TEST_F(LaunchAtLoginTest, UnusableProgramPathsAreRefusedBeforeAnythingIsWritten) {
    const auto relative = enable("bin/lumenote");
    ASSERT_FALSE(relative);
    EXPECT_EQ(relative.error().failure, LaunchAtLoginFailure::executableNotAbsolute);
    EXPECT_EQ(relative.error().message(),
              kAddPrefix + "the program path bin/lumenote is not absolute).");
    for (const std::string path : {"/opt/\xff/lumenote", "/opt/\x1b/lumenote"}) {
        const auto refused = enable(path);
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.error().message(),
                  kAddPrefix + "its program path cannot be written in a desktop entry).");
    }
    EXPECT_FALSE(fs::exists(autostart_));
}

// ---- what is in the way -----------------------------------------------------

TEST_F(LaunchAtLoginTest, ASymbolicLinkOrAFolderInPlaceIsNeitherReplacedNorRemoved) {
    const fs::path target = home_.root() / "dotfiles" / "lumenote.desktop";
    writeFile(target, "the user's own entry\n");
    fs::create_directories(autostart_);
    struct Case {
        const char* name;
        std::function<void()> plant;
        LaunchAtLoginFailure failure;
        std::string reason;
    };
    const std::string linkReason =
        entry_.string() + " is a symbolic link, which Lumenote leaves as it is";
    for (const Case& c : {
             Case{"link to a file", [&] { fs::create_symlink(target, entry_); },
                  LaunchAtLoginFailure::entryIsSymbolicLink, linkReason},
             Case{"dangling link", [&] { fs::create_symlink(home_.root() / "gone", entry_); },
                  LaunchAtLoginFailure::entryIsSymbolicLink, linkReason},
             Case{"folder", [&] { fs::create_directory(entry_); },
                  LaunchAtLoginFailure::entryIsNotAFile,
                  entry_.string() + " is not a regular file"},
         }) {
        SCOPED_TRACE(c.name);
        c.plant();
        const auto added = enable();
        ASSERT_FALSE(added);
        EXPECT_EQ(added.error().failure, c.failure);
        EXPECT_EQ(added.error().message(), kAddPrefix + c.reason + ").");
        const auto removed = disable();
        ASSERT_FALSE(removed);
        EXPECT_EQ(removed.error().message(), kRemovePrefix + c.reason + ").");

        EXPECT_EQ(fs::symlink_status(entry_).type(),
                  c.failure == LaunchAtLoginFailure::entryIsNotAFile ? fs::file_type::directory
                                                                     : fs::file_type::symlink);
        EXPECT_EQ(namesIn(autostart_), std::set<std::string>{"com.tallywise.Lumenote.desktop"});
        fs::remove(entry_);
    }
    EXPECT_EQ(readFile(target), "the user's own entry\n");
}

TEST_F(LaunchAtLoginTest, AnAutostartPathThatIsNoFolderIsReported) {
    writeFile(autostart_, "not a folder");
    const auto added = enable();
    ASSERT_FALSE(added);
    EXPECT_EQ(added.error().failure, LaunchAtLoginFailure::folderUnusable);
    EXPECT_EQ(added.error().message(), kAddPrefix + "the folder " + autostart_.string() +
                                           " cannot be created or is not a folder).");
    EXPECT_EQ(readFile(autostart_), "not a folder");
}

TEST_F(LaunchAtLoginTest, AReadOnlyAutostartFolderFailsWithoutLeavingAnythingBehind) {
    fs::create_directories(autostart_);
    ASSERT_EQ(::chmod(autostart_.c_str(), 0555), 0);
    {
        lumenote::testing::PermissionChecksEnforced enforced;
        const auto added = enable();
        ASSERT_FALSE(added);
        EXPECT_EQ(added.error().failure, LaunchAtLoginFailure::writeFailed);
        EXPECT_EQ(added.error().message(),
                  kAddPrefix + entry_.string() + " could not be written).");
    }
    EXPECT_TRUE(namesIn(autostart_).empty()) << "not even a temporary file";

    // An entry added while the folder was writable cannot be removed now.
    ASSERT_EQ(::chmod(autostart_.c_str(), 0755), 0);
    ASSERT_TRUE(enable());
    ASSERT_EQ(::chmod(autostart_.c_str(), 0555), 0);
    {
        lumenote::testing::PermissionChecksEnforced enforced;
        const auto removed = disable();
        ASSERT_FALSE(removed);
        EXPECT_EQ(removed.error().failure, LaunchAtLoginFailure::removeFailed);
        EXPECT_EQ(removed.error().message(),
                  kRemovePrefix + entry_.string() + ": Permission denied).");
    }
    EXPECT_EQ(readFile(entry_), entryFor(executable_.string()));
    EXPECT_EQ(modeOf(autostart_), 0555u);
    ASSERT_EQ(::chmod(autostart_.c_str(), 0755), 0);
}

}  // namespace
}  // namespace lumenote::shell
