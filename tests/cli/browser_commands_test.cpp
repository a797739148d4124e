// The browser commands in-process, over a temporary home and the real
// helper in the build tree.
#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include "bridge/browser_bridge_store.hpp"
#include "cli/cli_context.hpp"
#include "cli_test_support.hpp"

namespace lumenote::cli {
namespace {

namespace fs = std::filesystem;
using testing::runIn;

class BrowserCommandsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const char* home = std::getenv("HOME");
        savedHome_ = home ? home : "";
        ::setenv("HOME", home_.root().c_str(), 1);
        ::setenv("TALLYWISE_BRIDGE_DIR", (home_.root() / "bridge").c_str(), 1);
    }
    void TearDown() override {
        ::setenv("HOME", savedHome_.c_str(), 1);
        ::unsetenv("TALLYWISE_BRIDGE_DIR");
    }
    fs::path chromiumManifest() const {
        return home_.paths().configHome /
               "chromium/NativeMessagingHosts/com.tallywise.browser_host.json";
    }

    lumenote::testing::TemporaryHome home_;
    std::string savedHome_;
};

TEST_F(BrowserCommandsTest, RegisterStatusAndUnregisterNamedBrowsers) {
    auto run = runIn(home_, {"browser", "register", "chromium", "Firefox"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out,
              "Chromium: Native host registration repaired\nFirefox: Native host registration "
              "repaired\n");
    EXPECT_TRUE(fs::exists(chromiumManifest()));
    EXPECT_TRUE(fs::exists(home_.root() /
                           ".mozilla/native-messaging-hosts/com.tallywise.browser_host.json"));

    run = runIn(home_, {"browser", "status", "chromium"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("  Native host:  registered\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("  Connection:   Lumenote has not prepared its browser bridge yet"),
              std::string::npos)
        << run.out;
    EXPECT_NE(run.out.find("  Issue:        No active Lumenote session\n"), std::string::npos);

    run = runIn(home_, {"browser", "unregister"});
    EXPECT_EQ(run.out,
              "Firefox: Native host registration removed\nChromium: Native host registration "
              "removed\n")
        << "every registered browser, in the table's order";
    EXPECT_FALSE(fs::exists(chromiumManifest()));
    run = runIn(home_, {"browser", "status", "org.chromium.Chromium"});
    EXPECT_NE(run.out.find("Issue:        The native host is not registered"), std::string::npos);
}

TEST_F(BrowserCommandsTest, UnknownAndUnregistrableBrowsersAreRefused) {
    auto run = runIn(home_, {"browser", "register", "netscape"});
    EXPECT_EQ(run.status, kExitRefused);
    EXPECT_NE(run.err.find("No supported browser is called \"netscape\""), std::string::npos);
    run = runIn(home_, {"browser", "register", "safari"});
    EXPECT_EQ(run.status, kExitRefused);
    EXPECT_EQ(run.err, "Safari: This browser has no native messaging on Linux\n");
    EXPECT_FALSE(fs::exists(home_.root() / ".config"));
}

}  // namespace
}  // namespace lumenote::cli
