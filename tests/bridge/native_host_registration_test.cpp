#include "bridge/native_host_registration.hpp"

#include <sys/stat.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "bridge/extension_identity.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::bridge {
namespace {

namespace fs = std::filesystem;
using lumenote::testing::readFile;
using lumenote::testing::writeFile;
using Json = nlohmann::json;

constexpr const char* kExtensionId = "abcdefghijklmnopabcdefghijklmnop";
constexpr const char* kAddonId = "browser-extension@lumenote";

class NativeHostRegistrationTest : public ::testing::Test {
  protected:
    void SetUp() override {
        writeFile(helper_, "#!/bin/sh\n");
        ::chmod(helper_.c_str(), 0755);
    }

    NativeHostRegistrationChecker checker(fs::path helper) const {
        return NativeHostRegistrationChecker(
            {home_.root(), home_.root() / ".config", std::move(helper), kExtensionId, kAddonId});
    }

    lumenote::testing::TemporaryHome home_;
    fs::path helper_ = home_.root() / "libexec" / "TallywiseBrowserHost";
    NativeHostRegistrationChecker checker_ = checker(helper_);
};

TEST_F(NativeHostRegistrationTest, RepairWritesEachBrowsersManifestWhereItLooks) {
    ASSERT_TRUE(checker_.repair(SupportedBrowser::chromium));
    const fs::path chromium =
        home_.root() / ".config/chromium/NativeMessagingHosts/com.tallywise.browser_host.json";
    const Json written = Json::parse(readFile(chromium));
    EXPECT_EQ(written, Json::parse(R"({
        "name": "com.tallywise.browser_host",
        "description": "Lumenote privacy-first browser activity bridge",
        "path": ")" + helper_.string() +
                                   R"(",
        "type": "stdio",
        "allowed_origins": ["chrome-extension://abcdefghijklmnopabcdefghijklmnop/"]})"));
    EXPECT_TRUE(checker_.check(SupportedBrowser::chromium).isReady());

    ASSERT_TRUE(checker_.repair(SupportedBrowser::firefox));
    const Json firefox = Json::parse(
        readFile(home_.root() / ".mozilla/native-messaging-hosts/com.tallywise.browser_host.json"));
    EXPECT_EQ(firefox["allowed_extensions"], Json::array({kAddonId}));
    EXPECT_FALSE(firefox.contains("allowed_origins"));
    EXPECT_TRUE(checker_.check(SupportedBrowser::firefox).isReady());

    // Registering one browser registers no other.
    EXPECT_FALSE(checker_.check(SupportedBrowser::googleChrome).manifestPresent);
    EXPECT_EQ(checker_.manifestFolder(SupportedBrowser::brave),
              home_.root() / ".config/BraveSoftware/Brave-Browser/NativeMessagingHosts");
}

TEST_F(NativeHostRegistrationTest, ArcAndSafariAreNeverRegistered) {
    for (const auto browser : {SupportedBrowser::safari, SupportedBrowser::arc}) {
        EXPECT_FALSE(checker_.manifestPath(browser));
        EXPECT_EQ(checker_.check(browser), NativeHostSetupSnapshot{});
        const auto repaired = checker_.repair(browser);
        ASSERT_FALSE(repaired);
        EXPECT_EQ(repaired.error(), NativeHostRegistrationError::noManifestFolder);
        EXPECT_TRUE(checker_.remove(browser));
    }
    EXPECT_EQ(lumenote::testing::namesIn(home_.root()), (std::set<std::string>{"libexec"}));
}

TEST_F(NativeHostRegistrationTest, AnExtraOriginIsNotExactlyTheConfiguredOne) {
    ASSERT_TRUE(checker_.repair(SupportedBrowser::googleChrome));
    const fs::path path = *checker_.manifestPath(SupportedBrowser::googleChrome);
    Json manifest = Json::parse(readFile(path));
    manifest["allowed_origins"].push_back("chrome-extension://ppppppppppppppppppppppppppppppppp/");
    writeFile(path, manifest.dump());
    const auto snapshot = checker_.check(SupportedBrowser::googleChrome);
    EXPECT_TRUE(snapshot.manifestValid);
    EXPECT_TRUE(snapshot.helperExecutable);
    EXPECT_FALSE(snapshot.exactConfiguredOriginAuthorised);

    manifest["allowed_origins"] =
        Json::array({"chrome-extension://abcdefghijklmnopabcdefghijklmnop"});
    writeFile(path, manifest.dump());
    EXPECT_FALSE(checker_.check(SupportedBrowser::googleChrome).exactConfiguredOriginAuthorised)
        << "the origin without its final slash is another origin";

    ASSERT_TRUE(checker_.repair(SupportedBrowser::googleChrome));
    EXPECT_TRUE(checker_.check(SupportedBrowser::googleChrome).isReady()) << "repair restores it";
}

TEST_F(NativeHostRegistrationTest, ManifestsOfAnotherFormAreInvalid) {
    const fs::path path = *checker_.manifestPath(SupportedBrowser::chromium);
    const Json good = Json::parse(checker_.manifestText(SupportedBrowser::chromium));
    const std::vector<std::pair<const char*, std::string>> cases{
        {"not JSON", "{\"name\": "},
        {"an array", "[]"},
        {"another host",
         [&] {
             Json m = good;
             m["name"] = "com.other.host";
             return m.dump();
         }()},
        {"another type",
         [&] {
             Json m = good;
             m["type"] = "socket";
             return m.dump();
         }()},
        {"a relative path",
         [&] {
             Json m = good;
             m["path"] = "TallywiseBrowserHost";
             return m.dump();
         }()},
        {"origins as text",
         [&] {
             Json m = good;
             m["allowed_origins"] = "chrome-extension://x/";
             return m.dump();
         }()},
        {"Firefox's key",
         [&] {
             Json m = good;
             m.erase("allowed_origins");
             m["allowed_extensions"] = Json::array({kAddonId});
             return m.dump();
         }()},
    };
    for (const auto& [name, text] : cases) {
        writeFile(path, text);
        const auto snapshot = checker_.check(SupportedBrowser::chromium);
        EXPECT_TRUE(snapshot.manifestPresent) << name;
        EXPECT_FALSE(snapshot.manifestValid) << name;
        EXPECT_FALSE(snapshot.exactConfiguredOriginAuthorised) << name;
    }
}

TEST_F(NativeHostRegistrationTest, AMissingOrNonExecutableHelperIsReportedAndCannotBeRegistered) {
    ASSERT_TRUE(checker_.repair(SupportedBrowser::chromium));
    ::chmod(helper_.c_str(), 0644);
    auto snapshot = checker_.check(SupportedBrowser::chromium);
    EXPECT_TRUE(snapshot.helperPresent);
    EXPECT_FALSE(snapshot.helperExecutable);
    fs::remove(helper_);
    snapshot = checker_.check(SupportedBrowser::chromium);
    EXPECT_FALSE(snapshot.helperPresent);
    EXPECT_TRUE(snapshot.exactConfiguredOriginAuthorised);

    const auto repaired = checker(home_.root() / "nowhere" / "TallywiseBrowserHost")
                              .repair(SupportedBrowser::googleChrome);
    ASSERT_FALSE(repaired);
    EXPECT_EQ(message(repaired.error()), "The bundled native host is unavailable");
    EXPECT_FALSE(fs::exists(home_.root() / ".config" / "google-chrome"));
}

TEST_F(NativeHostRegistrationTest, RemoveDeletesTheManifestAndReportsWhatItCannotDelete) {
    ASSERT_TRUE(checker_.repair(SupportedBrowser::vivaldi));
    ASSERT_TRUE(checker_.remove(SupportedBrowser::vivaldi));
    EXPECT_FALSE(checker_.check(SupportedBrowser::vivaldi).manifestPresent);
    EXPECT_TRUE(checker_.remove(SupportedBrowser::vivaldi)) << "already gone is success";

    // A folder in the manifest's place cannot be deleted as a file.
    const fs::path path = *checker_.manifestPath(SupportedBrowser::opera);
    writeFile(path / "keep", "x");
    const auto removed = checker_.remove(SupportedBrowser::opera);
    ASSERT_FALSE(removed);
    EXPECT_EQ(message(removed.error()), "Could not remove native host registration");
}

TEST_F(NativeHostRegistrationTest, TheBundledHostIsFoundInstalledOrInTheBuildTree) {
    const fs::path prefix = home_.root() / "usr";
    writeFile(prefix / "libexec/lumenote/TallywiseBrowserHost", "#!/bin/sh\n");
    ::chmod((prefix / "libexec/lumenote/TallywiseBrowserHost").c_str(), 0755);
    EXPECT_EQ(locateBundledHost(prefix / "bin"), prefix / "libexec/lumenote/TallywiseBrowserHost");
    EXPECT_EQ(locateBundledHost(helper_.parent_path()), helper_);
    EXPECT_EQ(locateBundledHost(home_.root() / "empty"), std::nullopt);
}

TEST(ExtensionIdentityTest, TheCompiledIdentitiesAreTheOnesOfTheExtensionsIdsFile) {
    const Json ids = Json::parse(readFile(fs::path(LUMENOTE_SOURCE_DIR) / "extension/ids.json"));
    EXPECT_EQ(chromiumExtensionIdentifier(), ids["chromiumExtensionId"].get<std::string>());
    EXPECT_EQ(firefoxAddonIdentifier(), ids["firefoxAddonId"].get<std::string>());
    ASSERT_EQ(chromiumExtensionIdentifier().size(), 32u);
    for (const char c : chromiumExtensionIdentifier()) {
        EXPECT_TRUE(c >= 'a' && c <= 'p') << "a Chromium id is written in the letters a to p";
    }
}

}  // namespace
}  // namespace lumenote::bridge
