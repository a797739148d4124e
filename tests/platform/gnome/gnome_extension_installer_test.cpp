// The extension installer over temporary folders, with gnome-shell and
// gnome-extensions stood in for by a scripted runner.
#include "platform/gnome/gnome_extension_installer.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>

namespace lumenote::platform::gnome {
namespace {

namespace fs = std::filesystem;

std::string contents(const fs::path& file) {
    std::ifstream stream(file);
    std::stringstream text;
    text << stream.rdbuf();
    return text.str();
}

void write(const fs::path& file, const std::string& text) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << text;
}

class ExtensionInstallerTest : public ::testing::Test {
  protected:
    void SetUp() override {
        char folder[] = "/tmp/lumenote-gnome-install-XXXXXX";
        root_ = ::mkdtemp(folder);
        shipped_ = root_ / "share/lumenote/gnome-shell";
        for (const auto* format : {"legacy", "modules"}) {
            const auto extension = shipped_ / format / "lumenote@tallywise.com";
            write(extension / "metadata.json", std::string("{\"format\": \"") + format + "\"}");
            write(extension / "extension.js", format);
        }
        write(shipped_ / "legacy/lumenote@tallywise.com/legacy_only.js", "legacy");
        paths_ = UserPaths{root_ / "home/data", root_ / "home/config"};
    }
    void TearDown() override { fs::remove_all(root_); }

    // A runner answering from `answers` (program name to output; a missing
    // program cannot be started), recording each command line.
    ProgramRunner runner(std::map<std::string, std::optional<ProgramOutput>> answers) {
        return
            [this, answers](const std::string& program, const std::vector<std::string>& arguments) {
                std::string line = program;
                for (const auto& argument : arguments) {
                    line += " " + argument;
                }
                commands_.push_back(line);
                const auto found = answers.find(program);
                return found == answers.end() ? std::nullopt : found->second;
            };
    }

    ProgramRunner shellRunner(const std::string& version, int enableExit = 0) {
        return runner({{"gnome-shell", ProgramOutput{0, version}},
                       {"gnome-extensions", ProgramOutput{enableExit, ""}}});
    }

    fs::path extensions() const { return paths_.dataHome / "gnome-shell/extensions"; }
    fs::path installed() const { return extensions() / "lumenote@tallywise.com"; }

    std::vector<std::string> extensionsListing() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(extensions())) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    fs::path root_;
    fs::path shipped_;
    UserPaths paths_;
    std::vector<std::string> commands_;
};

TEST(GnomeShellVersion, IsTheMajorNumberOfTheVersionLine) {
    const std::pair<const char*, std::optional<int>> cases[] = {
        {"GNOME Shell 43.9\n", 43},
        {"GNOME Shell 45.0", 45},
        {"GNOME Shell 46", 46},
        {"GNOME Shell 47.rc\n", 47},
        {"GNOME Shell 3.38.4\n", 3},
        {"GNOME Shell \n", std::nullopt},
        {"GNOME Shell x43\n", std::nullopt},
        {"GNOME Shell 43x\n", std::nullopt},
        {"GNOME Shell 0.1\n", std::nullopt},
        {"GNOME Shell 99999999999999\n", std::nullopt},
        {"gnome-shell 43.9\n", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [text, major] : cases) {
        EXPECT_EQ(parseGnomeShellVersion(text), major) << text;
    }
    EXPECT_EQ(extensionFormatFor(43), ExtensionFormat::legacy);
    EXPECT_EQ(extensionFormatFor(44), ExtensionFormat::legacy);
    EXPECT_EQ(extensionFormatFor(45), ExtensionFormat::modules);
}

TEST_F(ExtensionInstallerTest, InstallsTheShellsFormatEnablesItAndReplacesOnlyItsOwnCopy) {
    write(extensions() / "someone-else@example.org/metadata.json", "theirs");
    auto first = installGnomeShellExtension(shipped_, paths_, shellRunner("GNOME Shell 43.9\n"));
    ASSERT_TRUE(first) << describe(first.error());
    EXPECT_EQ(first->format, ExtensionFormat::legacy);
    EXPECT_EQ(first->folder, installed());
    EXPECT_FALSE(first->replacedPrevious);
    EXPECT_EQ(first->enabling, ExtensionEnabling::enabled);
    EXPECT_EQ(contents(installed() / "extension.js"), "legacy");
    EXPECT_EQ(commands_,
              (std::vector<std::string>{"gnome-shell --version",
                                        "gnome-extensions enable lumenote@tallywise.com"}));

    // The user upgraded to a shell of the other format; the earlier copy is
    // replaced whole (its legacy-only file is gone), the neighbour untouched.
    write(installed() / "added-by-hand.txt", "x");
    auto second = installGnomeShellExtension(shipped_, paths_, shellRunner("GNOME Shell 46.2\n"));
    ASSERT_TRUE(second);
    EXPECT_EQ(second->format, ExtensionFormat::modules);
    EXPECT_TRUE(second->replacedPrevious);
    EXPECT_EQ(contents(installed() / "extension.js"), "modules");
    EXPECT_FALSE(fs::exists(installed() / "legacy_only.js"));
    EXPECT_FALSE(fs::exists(installed() / "added-by-hand.txt"));
    EXPECT_EQ(contents(extensions() / "someone-else@example.org/metadata.json"), "theirs");
    EXPECT_EQ(extensionsListing(),
              (std::vector<std::string>{"lumenote@tallywise.com", "someone-else@example.org"}));

    // Again: the same result.
    auto third = installGnomeShellExtension(shipped_, paths_, shellRunner("GNOME Shell 46.2\n"));
    ASSERT_TRUE(third);
    EXPECT_EQ(contents(installed() / "extension.js"), "modules");
    EXPECT_EQ(extensionsListing(),
              (std::vector<std::string>{"lumenote@tallywise.com", "someone-else@example.org"}));
}

TEST_F(ExtensionInstallerTest, LeftoversOfAnInterruptedInstallAreCleared) {
    write(extensions() / ".lumenote@tallywise.com.installing/extension.js", "half");
    write(extensions() / ".lumenote@tallywise.com.previous/extension.js", "old");
    auto report = installGnomeShellExtension(shipped_, paths_, shellRunner("GNOME Shell 43.9"));
    ASSERT_TRUE(report);
    EXPECT_EQ(contents(installed() / "extension.js"), "legacy");
    EXPECT_EQ(extensionsListing(), (std::vector<std::string>{"lumenote@tallywise.com"}));
}

TEST_F(ExtensionInstallerTest, FailuresChangeNothingAndSayWhy) {
    write(root_ / "elsewhere/mine.txt", "mine");
    struct Case {
        const char* what;
        std::function<void()> prepare;
        ProgramRunner run;
        ExtensionInstallError expected;
    };
    const Case cases[] = {
        {"no gnome-shell", [] {}, runner({}), ExtensionInstallError::gnomeShellNotFound},
        {"gnome-shell fails", [] {},
         runner({{"gnome-shell", ProgramOutput{1, "GNOME Shell 43.9"}}}),
         ExtensionInstallError::unknownShellVersion},
        {"another program's version", [] {}, shellRunner("Mutter 43.8"),
         ExtensionInstallError::unknownShellVersion},
        {"the format is not shipped", [this] { fs::remove_all(shipped_ / "modules"); },
         shellRunner("GNOME Shell 45.0"), ExtensionInstallError::shippedExtensionMissing},
        {"a symbolic link in the way",
         [this] {
             fs::create_directories(extensions());
             fs::create_directory_symlink(root_ / "elsewhere", installed());
         },
         shellRunner("GNOME Shell 43.9"), ExtensionInstallError::destinationNotReplaceable},
        {"a file in the way",
         [this] {
             fs::remove(installed());
             write(installed(), "a file");
         },
         shellRunner("GNOME Shell 43.9"), ExtensionInstallError::destinationNotReplaceable},
        {"the extensions folder is a file",
         [this] {
             fs::remove_all(paths_.dataHome);
             write(extensions(), "a file");
         },
         shellRunner("GNOME Shell 43.9"), ExtensionInstallError::copyFailed},
    };
    for (const auto& each : cases) {
        each.prepare();
        commands_.clear();
        auto report = installGnomeShellExtension(shipped_, paths_, each.run);
        ASSERT_FALSE(report) << each.what;
        EXPECT_EQ(report.error(), each.expected) << each.what;
        EXPECT_FALSE(describe(report.error()).empty());
        EXPECT_EQ(
            std::count_if(commands_.begin(), commands_.end(),
                          [](const auto& line) { return line.starts_with("gnome-extensions"); }),
            0)
            << each.what;
    }
    EXPECT_EQ(contents(root_ / "elsewhere/mine.txt"), "mine");
    EXPECT_EQ(contents(extensions()), "a file");
}

TEST_F(ExtensionInstallerTest, WithoutGnomeExtensionsTheUserIsToldToEnableItAfterLoggingIn) {
    struct Case {
        ProgramRunner run;
        ExtensionEnabling expected;
    };
    const Case cases[] = {
        {shellRunner("GNOME Shell 43.9", 0), ExtensionEnabling::enabled},
        {shellRunner("GNOME Shell 43.9", 2), ExtensionEnabling::toolFailed},
        {runner({{"gnome-shell", ProgramOutput{0, "GNOME Shell 43.9"}}}),
         ExtensionEnabling::toolMissing},
    };
    for (const auto& each : cases) {
        auto report = installGnomeShellExtension(shipped_, paths_, each.run);
        ASSERT_TRUE(report);
        EXPECT_EQ(report->enabling, each.expected);
        EXPECT_TRUE(fs::is_regular_file(installed() / "metadata.json"));
        const auto sentences = describe(*report);
        ASSERT_EQ(sentences.size(), 2u);
        EXPECT_EQ(
            std::count_if(sentences.begin(), sentences.end(),
                          [](const auto& s) { return s.find("Log out") != std::string::npos; }),
            1);
        EXPECT_EQ(sentences[1].find("Extensions application") != std::string::npos,
                  each.expected != ExtensionEnabling::enabled);
    }
}

TEST_F(ExtensionInstallerTest, TheShippedExtensionIsFoundBesideTheBuildTreeOrTheInstalledPrefix) {
    EXPECT_EQ(shippedExtensionsFolder(root_ / "bin"), shipped_);
    write(root_ / "build/gnome-shell/legacy/lumenote@tallywise.com/metadata.json", "{}");
    EXPECT_EQ(shippedExtensionsFolder(root_ / "build/bin"), root_ / "build/gnome-shell");
    EXPECT_EQ(shippedExtensionsFolder(root_ / "elsewhere/bin"), std::nullopt);
    // A folder without the build of the legacy format does not count.
    fs::create_directories(root_ / "other/gnome-shell/modules");
    EXPECT_EQ(shippedExtensionsFolder(root_ / "other/bin"), std::nullopt);
}

TEST(ProcessRunner, RunsAProgramAndReportsOneThatCannotStartOrHangs) {
    const auto run = processRunner(std::chrono::milliseconds(500));
    const auto echo = run("sh", {"-c", "echo 'GNOME Shell 43.9'; exit 3"});
    ASSERT_TRUE(echo);
    EXPECT_EQ(echo->exitCode, 3);
    EXPECT_EQ(echo->standardOutput, "GNOME Shell 43.9\n");
    EXPECT_EQ(run("/nonexistent/gnome-extensions", {"enable"}), std::nullopt);
    const auto started = std::chrono::steady_clock::now();
    EXPECT_EQ(run("sleep", {"30"}), std::nullopt);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(5));
}

}  // namespace
}  // namespace lumenote::platform::gnome
