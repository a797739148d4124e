// `record` checks its arguments before it opens anything: a refused set of
// arguments is refused with its own sentence and leaves no file behind, while
// an accepted one gets as far as the recorder lock. The test holds the lock
// throughout, so that no case can start recording.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/cli_test_support.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "store/recorder_lock.hpp"
#include "store/store_files.hpp"

namespace lumenote::cli {
namespace {

using ::testing::HasSubstr;

std::string repeated(std::string_view piece, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += piece;
    }
    return text;
}

class RecordArgumentsTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(lock_.ok()); }

    testing::CliRun record(const std::vector<std::string>& options) {
        std::vector<std::string> arguments{"record"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return testing::runIn(home_, arguments);
    }

    lumenote::testing::TemporaryHome home_;
    Result<store::RecorderLock, store::RecorderLockError> lock_ =
        store::RecorderLock::acquire(store::recorderLockPath(home_.paths()));
};

TEST_F(RecordArgumentsTest, RefusedArgumentsAreReportedBeforeAnythingIsOpened) {
    const std::string badDuration =
        "Choose a valid duration. A session lasts from 1 second to 24 hours.\n";
    const std::string longSubject = "Subject must be 200 characters or fewer.\n";
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"-s", repeated("é", 201)}, longSubject},
        {{"-s", repeated("x", 10000), "-d", "0"}, longSubject},
        {{"-s", repeated("x", 201), "-t", "No such template"}, longSubject},
        {{"-s", "Maths", "-d", "24h0m1s"}, badDuration},
        {{"-s", "Maths", "-d", "999999"}, badDuration},
        {{"-s", "Maths", "-d", "0m"}, badDuration},
        {{"-s", "Maths", "-d", "soon"},
         "Give a duration such as 25m, 90m, 1h30m or a number of seconds such as 1500.\n"},
    };
    for (const auto& [options, error] : cases) {
        SCOPED_TRACE(options.back().substr(0, 20));
        const testing::CliRun run = record(options);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err, error);
        EXPECT_EQ(run.out, "");
    }
    const testing::CliRun badMode = record({"-s", "Maths", "-m", "book"});
    EXPECT_EQ(badMode.status, 2);
    EXPECT_THAT(badMode.err, HasSubstr("Choose computer, mixed or offline"));
    EXPECT_FALSE(std::filesystem::exists(store::storePath(home_.paths())));
    EXPECT_FALSE(std::filesystem::exists(settings::JsonFileDefaultsDomain::pathFor(home_.paths())));
}

TEST_F(RecordArgumentsTest, BoundaryArgumentsAndEitherSpellingOfAModeAreAccepted) {
    const std::vector<std::string> cases[] = {
        {"-s", repeated("é", 200)},
        {"-s", " \n" + repeated("é", 200) + "\t "},
        {"-s", "Maths", "-d", "1"},
        {"-s", "Maths", "-d", "24h"},
        {"-s", "Maths", "-m", "offlineBookStudy"},
        {"-s", "Maths", "-m", "MixedStudy"},
    };
    for (const auto& options : cases) {
        SCOPED_TRACE(options.back().substr(0, 20));
        const testing::CliRun run = record(options);
        EXPECT_EQ(run.status, 1);
        EXPECT_THAT(run.err, HasSubstr("already recording"));
    }
}

}  // namespace
}  // namespace lumenote::cli
