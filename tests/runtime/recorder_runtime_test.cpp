// The recorder runtime over real services in a temporary home (a real SQLite
// store, the real recorder lock, no X display and no reachable session bus):
// what a front end is told, and the one place that keeps the last error.
#include "runtime/recorder_runtime.hpp"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <QCoreApplication>
#include <memory>
#include <string>
#include <vector>

#include "support/temporary_home.hpp"

namespace lumenote::runtime {
namespace {

// Keeps every call it receives, in order, as a short line.
class RecordingFrontEnd final : public RecorderFrontEnd {
  public:
    void refresh() override { ++refreshes; }
    void controlled(RecorderControl control) override {
        calls.push_back("controlled " + std::to_string(static_cast<int>(control)));
    }
    void showError(const std::string& message) override { calls.push_back("error " + message); }
    void noInputQuestionArrived(const recording::NoInputClassificationPrompt&) override {
        calls.push_back("question");
    }
    void sessionEnded(const std::optional<recording::StudySession>& finished,
                      const std::vector<recording::PersonalBest>&) override {
        calls.push_back(finished ? "ended " + finished->subject : "ended");
    }
    void terminated(const std::string& reason) override { calls.push_back("terminated " + reason); }
    Result<void, std::string> present() override {
        calls.push_back("present");
        return {};
    }

    std::vector<std::string> calls;
    int refreshes = 0;
};

class RecorderRuntimeTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        // Nothing of the developer's desktop is reached: no display, and a
        // session bus address that leads nowhere.
        ::unsetenv("DISPLAY");
        ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/lumenote-test-bus", 1);
        static int argc = 1;
        static char name[] = "recorder_runtime_test";
        static char* argv[] = {name, nullptr};
        static QCoreApplication application(argc, argv);
    }

    std::unique_ptr<RecorderServices> open(std::vector<std::string>& warnings) {
        auto services = RecorderServices::open(home_.paths(), warnings);
        EXPECT_TRUE(services.ok()) << (services.ok() ? "" : services.error().message);
        return services.ok() ? std::move(services).value() : nullptr;
    }

    static recording::SessionStartRequest request(std::string subject = "Biology") {
        recording::SessionStartRequest start;
        start.subject = std::move(subject);
        start.timingMode = recording::SessionTimingMode::openEnded;
        return start;
    }

    testing::TemporaryHome home_;
    RecordingFrontEnd frontEnd_;
};

TEST_F(RecorderRuntimeTest, OpeningWithoutADisplayWarnsAndStillRecords) {
    std::vector<std::string> warnings;
    auto services = open(warnings);
    ASSERT_TRUE(services);
    ASSERT_FALSE(warnings.empty());
    EXPECT_NE(warnings.front().find("Unknown application"), std::string::npos) << warnings.front();
    EXPECT_EQ(services->activationDescriptor(), -1);
    EXPECT_FALSE(services->takeActivation());

    RecorderRuntime runtime(*services, frontEnd_);
    ASSERT_TRUE(runtime.start(request()).ok());
    EXPECT_TRUE(runtime.manager().activeSession());
    EXPECT_TRUE(runtime.status().sessionActive);
    EXPECT_EQ(runtime.status().subject, "Biology");
}

TEST_F(RecorderRuntimeTest, ASecondRecorderIsRefusedWhileTheFirstHoldsTheLock) {
    std::vector<std::string> warnings;
    auto first = open(warnings);
    ASSERT_TRUE(first);
    auto second = RecorderServices::open(home_.paths(), warnings);
    ASSERT_FALSE(second.ok());
    EXPECT_EQ(second.error().kind, ServicesOpenError::Kind::anotherRecorder);
    EXPECT_NE(second.error().message.find("is already recording"), std::string::npos);
    first.reset();
    EXPECT_TRUE(RecorderServices::open(home_.paths(), warnings).ok());
}

TEST_F(RecorderRuntimeTest, EveryRefusalIsKeptAndShownOnce) {
    std::vector<std::string> warnings;
    auto services = open(warnings);
    ASSERT_TRUE(services);
    RecorderRuntime runtime(*services, frontEnd_);

    // No session yet: each command is refused with its own sentence.
    EXPECT_EQ(runtime.togglePause().error(), recording::SessionFailure::noActiveSession);
    EXPECT_EQ(runtime.lastError(), "No study session is active.");
    EXPECT_EQ(
        runtime.answerNoInputQuestion(recording::SessionManager::NoInputPromptAnswer::passiveStudy)
            .error(),
        recording::SessionFailure::noPendingPrompt);
    EXPECT_EQ(runtime.lastError(), "There is no question about time without input to answer.");
    EXPECT_EQ(runtime.start(request("  ")).error(), recording::SessionFailure::subjectMissing);
    EXPECT_EQ(runtime.lastError(), "Add a subject.");
    EXPECT_EQ(frontEnd_.calls, (std::vector<std::string>{
                                   "error No study session is active.",
                                   "error There is no question about time without input to answer.",
                                   "error Add a subject."}));
    runtime.clearLastError();
    EXPECT_FALSE(runtime.lastError());
    EXPECT_FALSE(runtime.stopped());
}

TEST_F(RecorderRuntimeTest, CommandsAreToldToTheFrontEndAndEachEndOnce) {
    std::vector<std::string> warnings;
    auto services = open(warnings);
    ASSERT_TRUE(services);
    RecorderRuntime runtime(*services, frontEnd_);
    ASSERT_TRUE(runtime.start(request()).ok());

    ASSERT_TRUE(runtime.togglePause().ok());
    EXPECT_EQ(runtime.status().state, recording::StudySessionStatus::paused);
    ASSERT_TRUE(runtime.togglePause().ok());
    EXPECT_EQ(runtime.status().state, recording::StudySessionStatus::running);
    ASSERT_TRUE(runtime.startPassiveStudy().ok());
    ASSERT_TRUE(runtime.returnToComputerStudy().ok());
    // Back twice: the second is refused and only its sentence is told.
    EXPECT_FALSE(runtime.returnToComputerStudy().ok());
    ASSERT_TRUE(runtime.end().ok());

    EXPECT_EQ(frontEnd_.calls,
              (std::vector<std::string>{
                  "controlled " + std::to_string(static_cast<int>(RecorderControl::pause)),
                  "controlled " + std::to_string(static_cast<int>(RecorderControl::resume)),
                  "controlled " + std::to_string(static_cast<int>(RecorderControl::away)),
                  "controlled " + std::to_string(static_cast<int>(RecorderControl::back)),
                  "error " + recording::sessionFailureMessage(
                                 recording::SessionFailure::noPassiveStudyPeriod),
                  "ended Biology"}));
    EXPECT_FALSE(runtime.manager().activeSession());

    // The loop goes on for the desktop's next session; its end is told too,
    // and nothing is told twice.
    EXPECT_FALSE(runtime.stopped());
    frontEnd_.calls.clear();
    ASSERT_TRUE(runtime.start(request("Chemistry")).ok());
    ASSERT_TRUE(runtime.endAsInterrupted().ok());
    EXPECT_FALSE(runtime.end().ok());
    EXPECT_EQ(frontEnd_.calls,
              (std::vector<std::string>{
                  "ended Chemistry", "error " + recording::sessionFailureMessage(
                                                    recording::SessionFailure::noActiveSession)}));
}

TEST_F(RecorderRuntimeTest, TerminationKeepsTheSessionForRecovery) {
    std::vector<std::string> warnings;
    auto services = open(warnings);
    ASSERT_TRUE(services);
    Uuid recorded;
    {
        RecorderRuntime runtime(*services, frontEnd_);
        ASSERT_TRUE(runtime.start(request()).ok());
        recorded = runtime.manager().activeSession()->id;
        runtime.terminate("Stopped by SIGTERM");
        runtime.terminate("Stopped by SIGTERM");
        EXPECT_TRUE(runtime.stopped());
    }
    EXPECT_EQ(frontEnd_.calls, (std::vector<std::string>{"terminated Stopped by SIGTERM"}));
    services.reset();

    // The next recorder offers the session it left.
    auto relaunched = open(warnings);
    ASSERT_TRUE(relaunched);
    ASSERT_TRUE(relaunched->manager().pendingRecoverySession());
    EXPECT_EQ(relaunched->manager().pendingRecoverySession()->id, recorded);
    RecorderRuntime runtime(*relaunched, frontEnd_);
    EXPECT_EQ(runtime.start(request()).error(), recording::SessionFailure::recoveryPending);
    ASSERT_TRUE(runtime.endRecoveredSession().ok());
    EXPECT_TRUE(runtime.start(request("Chemistry")).ok());
}

}  // namespace
}  // namespace lumenote::runtime
