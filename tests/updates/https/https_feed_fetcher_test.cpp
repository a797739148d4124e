// The update check over a real HTTPS connection: a python3 server on
// 127.0.0.1 with a certificate made for this run, trusted through the
// fetcher's options only.
#include "platform/network/https_feed_fetcher.hpp"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "support/ed25519_test_key.hpp"
#include "support/local_ports.hpp"
#include "support/run_program.hpp"
#include "support/temporary_home.hpp"
#include "updates/release_channel.hpp"
#include "updates/signed_feed.hpp"
#include "updates/update_check.hpp"

namespace lumenote::updates {
namespace {

using testing::closedPort;
using testing::Ed25519TestKey;
using testing::feedText;
using testing::PlainListener;
using testing::readFile;
using testing::runProgram;
using testing::TemporaryHome;
using testing::writeFile;

class HttpsFeedTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        folder_ = new TemporaryHome;
        root_ = folder_->root() / "served";
        std::filesystem::create_directories(root_);
        const auto certificate = runProgram(
            {"openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
             "-nodes", "-days", "2", "-subj", "/CN=127.0.0.1", "-addext",
             "subjectAltName=IP:127.0.0.1", "-keyout", (folder_->root() / "key.pem").string(),
             "-out", (folder_->root() / "cert.pem").string()},
            30);
        ASSERT_EQ(certificate.exitStatus, 0) << certificate.output;
        startServer();
    }

    static void TearDownTestSuite() {
        if (serverPid_ > 0) {
            ::kill(serverPid_, SIGTERM);
            int status = 0;
            while (::waitpid(serverPid_, &status, 0) < 0 && errno == EINTR) {
            }
        }
        delete folder_;
    }

    // Starts the server under coreutils' timeout and reads the port it
    // prints once it listens (waiting at most 20 seconds for it).
    static void startServer() {
        int output[2];
        ASSERT_EQ(::pipe2(output, O_CLOEXEC), 0);
        const std::vector<std::string> command{"timeout",
                                               "--kill-after=5",
                                               "300",
                                               "python3",
                                               LUMENOTE_FEED_SERVER,
                                               "--root",
                                               root_.string(),
                                               "--cert",
                                               (folder_->root() / "cert.pem").string(),
                                               "--key",
                                               (folder_->root() / "key.pem").string()};
        std::vector<char*> argv;
        for (const std::string& argument : command) {
            argv.push_back(const_cast<char*>(argument.c_str()));
        }
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
        ASSERT_EQ(::posix_spawnp(&serverPid_, argv[0], &actions, nullptr, argv.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
        ::close(output[1]);
        std::string line;
        pollfd readable{output[0], POLLIN, 0};
        while (line.find('\n') == std::string::npos && ::poll(&readable, 1, 20000) > 0) {
            char buffer[64];
            const ssize_t count = ::read(output[0], buffer, sizeof buffer);
            if (count <= 0) {
                break;
            }
            line.append(buffer, static_cast<std::size_t>(count));
        }
        ::close(output[0]);
        ASSERT_NE(line.find('\n'), std::string::npos) << "the feed server printed no port";
        port_ = std::stoi(line);
    }

    static std::string address(const std::string& path) {
        return "https://127.0.0.1:" + std::to_string(port_) + path;
    }

    static platform::network::HttpsFetchOptions trustingTheServer() {
        return {.timeout = std::chrono::seconds(20),
                .userAgent = std::string(updateUserAgent()),
                .extraTrustedCertificates = {readFile(folder_->root() / "cert.pem")}};
    }

    UpdateCheckOutcome check(const std::string& feedAddress,
                             platform::network::HttpsFetchOptions options = trustingTheServer()) {
        platform::network::HttpsFeedFetcher fetcher(std::move(options));
        return check(feedAddress, fetcher);
    }

    UpdateCheckOutcome check(const std::string& feedAddress, FeedFetcher& fetcher) {
        const UpdateCheckRequest request{.checksEnabled = true,
                                         .feedAddress = feedAddress,
                                         .runningVersion = "0.1.0",
                                         .runningRelease = {{0, 1, 0}, 5}};
        return checkForUpdates(request, fetcher, key_.publicKey());
    }

    // The requests the server saw, oldest first.
    static std::vector<nlohmann::json> requests() {
        std::vector<nlohmann::json> seen;
        std::istringstream lines(readFile(root_ / "requests.jsonl"));
        for (std::string line; std::getline(lines, line);) {
            seen.push_back(nlohmann::json::parse(line));
        }
        return seen;
    }

    void serve(const std::string& name, const std::string& bytes) {
        writeFile(root_ / name, bytes);
    }

    static inline TemporaryHome* folder_ = nullptr;
    static inline std::filesystem::path root_;
    static inline pid_t serverPid_ = -1;
    static inline int port_ = 0;
    Ed25519TestKey key_;
};

TEST_F(HttpsFeedTest, ANewerSignedFeedIsOfferedAndTheRequestSaysNoMoreThanItsName) {
    serve("newer.json", key_.envelope(feedText("0.2.0", 1)));
    const UpdateCheckOutcome outcome = check(address("/newer.json"));
    ASSERT_EQ(outcome.status, UpdateCheckStatus::newerAvailable) << updateCheckSentence(outcome);
    EXPECT_EQ(outcome.offer->version, "0.2.0");
    EXPECT_EQ(outcome.offer->downloadAddress, "https://downloads.example/lumenote");

    const nlohmann::json headers = requests().back()["headers"];
    EXPECT_EQ(headers["User-Agent"], updateUserAgent());
    EXPECT_FALSE(headers.contains("Cookie"));
    EXPECT_FALSE(headers.contains("Referer"));
    EXPECT_EQ(headers.value("Accept-Language", "*"), "*");
}

TEST_F(HttpsFeedTest, TheSameReleaseIsUpToDate) {
    serve("same.json", key_.envelope(feedText("0.1.0", 5)));
    EXPECT_EQ(check(address("/same.json")).status, UpdateCheckStatus::upToDate);
    serve("older.json", key_.envelope(feedText("0.0.9", 40)));
    EXPECT_EQ(check(address("/older.json")).status, UpdateCheckStatus::upToDate);
}

TEST_F(HttpsFeedTest, OneTamperedByteFailsTheSignatureAndOffersNothing) {
    const std::string feed = feedText("0.2.0", 1);
    std::string tampered = feed;
    tampered[tampered.find("0.2.0")] = '9';
    serve("tampered.json", Ed25519TestKey::envelopeOf(tampered, key_.sign(feed)));
    const UpdateCheckOutcome outcome = check(address("/tampered.json"));
    EXPECT_EQ(outcome.status, UpdateCheckStatus::notVerified);
    EXPECT_FALSE(outcome.offer);
    EXPECT_EQ(updateCheckSentence(outcome),
              "The update information could not be verified, so nothing was changed.");
}

TEST_F(HttpsFeedTest, AnInsecureAddressIsRefusedBeforeAnyConnection) {
    PlainListener listener;
    const std::string port = std::to_string(listener.port());
    for (const std::string& insecure :
         {"http://127.0.0.1:" + port + "/feed.json", "HTTP://127.0.0.1:" + port + "/feed.json",
          "ftp://127.0.0.1:" + port + "/feed.json", "127.0.0.1:" + port}) {
        EXPECT_EQ(check(insecure).status, UpdateCheckStatus::insecureAddress) << insecure;
    }
    EXPECT_EQ(listener.acceptedConnections(), 0);
}

TEST_F(HttpsFeedTest, ARedirectIsFollowedOnlyToHttps) {
    serve("moved.json", key_.envelope(feedText("0.3.0", 1)));
    EXPECT_EQ(check(address("/redirect/" + address("/moved.json"))).status,
              UpdateCheckStatus::newerAvailable);

    PlainListener listener;
    const std::string plain = "http://127.0.0.1:" + std::to_string(listener.port()) + "/moved.json";
    EXPECT_EQ(check(address("/redirect/" + plain)).status, UpdateCheckStatus::insecureAddress);
    EXPECT_EQ(listener.acceptedConnections(), 0);
}

TEST_F(HttpsFeedTest, ACookieTheServerSetsIsNeverSentBackNotEvenByTheNextCheck) {
    serve("after-cookie.json", key_.envelope(feedText("0.2.0", 1)));
    platform::network::HttpsFeedFetcher fetcher(trustingTheServer());
    EXPECT_EQ(check(address("/cookie/after-cookie.json"), fetcher).status,
              UpdateCheckStatus::newerAvailable);
    EXPECT_EQ(check(address("/after-cookie.json"), fetcher).status,
              UpdateCheckStatus::newerAvailable);
    for (const nlohmann::json& request : requests()) {
        EXPECT_FALSE(request["headers"].contains("Cookie")) << request.dump();
    }
}

TEST_F(HttpsFeedTest, AnAnswerPastTheSizeCapIsRefused) {
    serve("huge.json", std::string(kMaximumEnvelopeBytes + 1, ' '));
    EXPECT_EQ(check(address("/huge.json")).status, UpdateCheckStatus::malformedFeed);
}

TEST_F(HttpsFeedTest, NoServerAnErrorStatusOrAnUntrustedCertificateIsUnreachable) {
    EXPECT_EQ(check("https://127.0.0.1:" + std::to_string(closedPort()) + "/feed.json").status,
              UpdateCheckStatus::unreachable);
    EXPECT_EQ(check(address("/missing.json")).status, UpdateCheckStatus::unreachable);

    serve("valid.json", key_.envelope(feedText("0.2.0", 1)));
    platform::network::HttpsFetchOptions systemTrustOnly = trustingTheServer();
    systemTrustOnly.extraTrustedCertificates.clear();
    EXPECT_EQ(check(address("/valid.json"), systemTrustOnly).status,
              UpdateCheckStatus::unreachable);
}

TEST_F(HttpsFeedTest, AServerThatNeverAnswersIsCutOffAtTheTimeout) {
    PlainListener silent;
    platform::network::HttpsFetchOptions brief = trustingTheServer();
    brief.timeout = std::chrono::milliseconds(300);
    const auto started = std::chrono::steady_clock::now();
    EXPECT_EQ(
        check("https://127.0.0.1:" + std::to_string(silent.port()) + "/feed.json", brief).status,
        UpdateCheckStatus::unreachable);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(10));
}

// The fetcher runs its event loop inside one application for the whole run,
// as inside the desktop application.
class QtApplicationEnvironment final : public ::testing::Environment {
  public:
    void SetUp() override { application_ = std::make_unique<QCoreApplication>(argc_, argv_); }
    void TearDown() override { application_.reset(); }

  private:
    int argc_ = 1;
    char name_[16] = "updates_https";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<QCoreApplication> application_;
};

[[maybe_unused]] ::testing::Environment* const kQtApplication =
    ::testing::AddGlobalTestEnvironment(new QtApplicationEnvironment);

}  // namespace
}  // namespace lumenote::updates
