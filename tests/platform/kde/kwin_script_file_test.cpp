// Where the shipped KWin script is found, and its private copy for KWin.
#include "platform/kde/kwin_script_file.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace lumenote::platform::kde {
namespace {

namespace fs = std::filesystem;

class KWinScriptFile : public ::testing::Test {
  protected:
    void SetUp() override {
        root_ = fs::temp_directory_path() /
                ("kwin-script-file-" +
                 std::to_string(::testing::UnitTest::GetInstance()->current_test_info()->line()));
        fs::remove_all(root_);
        fs::create_directories(root_);
    }
    void TearDown() override { fs::remove_all(root_); }

    static void write(const fs::path& path, const std::string& text) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }
    static std::string read(const fs::path& path) {
        std::ifstream stream(path);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    fs::path root_;
};

TEST_F(KWinScriptFile, TheBuildTreeAndTheInstalledLayoutAreBothFound) {
    const fs::path build = root_ / "build";
    write(build / "kwin/lumenote-activation.js", "build");
    EXPECT_EQ(shippedKWinScript(build / "bin"), build / "kwin/lumenote-activation.js");

    const fs::path prefix = root_ / "usr";
    write(prefix / "share/lumenote/kwin/lumenote-activation.js", "installed");
    EXPECT_EQ(shippedKWinScript(prefix / "bin"),
              prefix / "share/lumenote/kwin/lumenote-activation.js");

    // A folder of the script's name is not the script.
    fs::create_directories(root_ / "odd/kwin/lumenote-activation.js");
    EXPECT_EQ(shippedKWinScript(root_ / "odd/bin"), std::nullopt);
    EXPECT_EQ(shippedKWinScript(root_ / "none/bin"), std::nullopt);
}

TEST_F(KWinScriptFile, TheCopyIsPrivateAndReplacesAnOlderOne) {
    const fs::path runtime = root_ / "runtime";
    fs::create_directories(runtime);
    write(root_ / "shipped.js", "first");
    auto staged = stageKWinScript(root_ / "shipped.js", runtime);
    ASSERT_TRUE(staged.ok());
    EXPECT_EQ(staged.value(), runtime / "lumenote/kwin/lumenote-activation.js");
    EXPECT_EQ(read(staged.value()), "first");
    EXPECT_EQ(fs::status(runtime / "lumenote").permissions() & fs::perms::all,
              fs::perms::owner_all);
    EXPECT_EQ(fs::status(runtime / "lumenote/kwin").permissions() & fs::perms::all,
              fs::perms::owner_all);

    write(root_ / "shipped.js", "second");
    ASSERT_TRUE(stageKWinScript(root_ / "shipped.js", runtime).ok());
    EXPECT_EQ(read(staged.value()), "second");
    EXPECT_FALSE(fs::exists(runtime / "lumenote/kwin/lumenote-activation.js.partial"));
}

TEST_F(KWinScriptFile, AMissingScriptOrRuntimeFolderFails) {
    write(root_ / "shipped.js", "script");
    struct Case {
        const char* why;
        fs::path shipped;
        fs::path runtime;
    };
    write(root_ / "a-file", "not a folder");
    const Case cases[] = {
        {"no shipped script", root_ / "missing.js", root_},
        {"a runtime folder that does not exist", root_ / "shipped.js", root_ / "no/such/folder"},
        {"a runtime folder that is a file", root_ / "shipped.js", root_ / "a-file"},
    };
    for (const Case& testCase : cases) {
        auto staged = stageKWinScript(testCase.shipped, testCase.runtime);
        ASSERT_FALSE(staged.ok()) << testCase.why;
        EXPECT_EQ(staged.error(), KWinScriptError::scriptNotFound) << testCase.why;
    }
}

}  // namespace
}  // namespace lumenote::platform::kde
