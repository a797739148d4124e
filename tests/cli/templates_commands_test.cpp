#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/cli_test_support.hpp"
#include "settings/file_session_template_repository.hpp"
#include "store/recorder_lock.hpp"
#include "store/store_files.hpp"

namespace lumenote::cli {
namespace {

using testing::CliRun;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class TemplatesCommandsTest : public ::testing::Test {
  protected:
    CliRun run(const std::vector<std::string>& arguments) {
        return testing::runIn(home_, arguments);
    }
    CliRun add(const std::string& name, const std::string& duration = "25m") {
        return run(
            {"templates", "add", "--name", name, "--subject", "Maths", "--duration", duration});
    }
    std::filesystem::path templatesPath() const {
        return settings::FileSessionTemplateRepository::pathFor(home_.paths());
    }

    lumenote::testing::TemporaryHome home_;
};

TEST_F(TemplatesCommandsTest, AddedTemplatesAreListedFavouritesFirst) {
    EXPECT_EQ(run({"templates", "list"}).out,
              "No session templates yet. Add one with \"lumenote-cli templates add\".\n");
    const CliRun added = run({"templates", "add", "--name", "Deep work", "--subject", "Maths",
                              "--duration", "1h30m", "--break", "5m"});
    EXPECT_EQ(added.status, 0);
    EXPECT_THAT(added.out, StartsWith("Added template \"Deep work\" ("));
    ASSERT_EQ(run({"templates", "add", "--name", "Reading", "--subject", "Literature", "--duration",
                   "2700", "--open-ended", "--goal", "Chapter 3"})
                  .status,
              0);
    ASSERT_EQ(run({"templates", "favorite", "reading"}).out, "\"Reading\" is a favourite.\n");
    ASSERT_EQ(run({"templates", "disable", "Deep work"}).out, "\"Deep work\" is disabled.\n");
    EXPECT_EQ(run({"templates", "list"}).out,
              "  1. Reading — Literature, open-ended (45m planned), favourite\n"
              "  2. Deep work — Maths, 1h30m, break 5m, disabled\n");
}

TEST_F(TemplatesCommandsTest, RefusalsPrintTheValidationSentenceAndExitNonZero) {
    ASSERT_EQ(add("Deep work").status, 0);
    struct Case {
        std::vector<std::string> arguments;
        std::string message;
    };
    const std::vector<Case> cases{
        {{"templates", "add", "--name", "DEEP WORK", "--subject", "S", "--duration", "25m"},
         "Choose a distinct template name so it is clear which template you are using.\n"},
        {{"templates", "add", "--name", std::string(81, 'n'), "--subject", "S", "--duration",
          "25m"},
         "Keep the template name to 80 characters or fewer.\n"},
        {{"templates", "add", "--name", "Short", "--subject", "S", "--duration", "59"},
         "Choose a duration from 1 minute to 12 hours.\n"},
        {{"templates", "add", "--name", "Short", "--subject", "S", "--duration", "25m", "--break",
          "3h"},
         "Choose a break from 1 minute to 2 hours, or turn the break off.\n"},
        {{"templates", "add", "--name", "  ", "--subject", "S", "--duration", "25m"},
         "Add a template name.\n"},
        {{"templates", "add", "--name", "Short", "--subject", "S", "--duration", "soon"},
         "Give a duration such as 25m, 90m, 1h30m or a number of seconds such as 1500.\n"},
        {{"templates", "delete", "Nothing like it"},
         "No session template has the name or id \"Nothing like it\".\n"},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.message);
        const CliRun result = run(testCase.arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.err, testCase.message);
    }
    EXPECT_EQ(run({"templates", "list"}).out, "  1. Deep work — Maths, 25m\n");
}

TEST_F(TemplatesCommandsTest, TheBoundariesOfTheDurationAreAccepted) {
    EXPECT_EQ(add("One minute", "60").status, 0);
    EXPECT_EQ(add("Twelve hours", "12h").status, 0);
    EXPECT_EQ(add("Just over", "12h0m1s").status, 1);
}

TEST_F(TemplatesCommandsTest, EditChangesOnlyTheGivenFields) {
    ASSERT_EQ(run({"templates", "add", "--name", "Reading", "--subject", "Literature", "--duration",
                   "45m", "--break", "5m", "--goal", "Chapter 3"})
                  .status,
              0);
    const CliRun edited =
        run({"templates", "edit", "reading", "--name", "Reading aloud", "--no-break"});
    EXPECT_EQ(edited.status, 0);
    EXPECT_EQ(edited.out, "Updated template \"Reading aloud\".\n");
    const CliRun shown = run({"templates", "show", "Reading aloud"});
    EXPECT_THAT(shown.out, HasSubstr("Subject:   Literature\n"));
    EXPECT_THAT(shown.out, HasSubstr("Goal:      Chapter 3\n"));
    EXPECT_THAT(shown.out, HasSubstr("Duration:  45m\n"));
    EXPECT_THAT(shown.out, HasSubstr("Break:     none\n"));
    // Contradictory options are a usage error.
    EXPECT_EQ(run({"templates", "edit", "Reading aloud", "--open-ended", "--timer"}).status, 2);
}

TEST_F(TemplatesCommandsTest, TemplatesCanBeNamedByIdAndMovedAndDeleted) {
    ASSERT_EQ(add("A").status, 0);
    ASSERT_EQ(add("B").status, 0);
    const CliRun c = add("C");
    const std::string id = c.out.substr(c.out.find('(') + 1, 36);
    EXPECT_EQ(run({"templates", "move", id, "--to", "1"}).out, "\"C\" is now number 1.\n");
    EXPECT_EQ(run({"templates", "move", "a", "--to", "3"}).out, "\"A\" is now number 3.\n");
    EXPECT_EQ(run({"templates", "list"}).out,
              "  1. C — Maths, 25m\n  2. B — Maths, 25m\n  3. A — Maths, 25m\n");
    EXPECT_EQ(run({"templates", "delete", id}).out, "Deleted template \"C\".\n");
    EXPECT_EQ(run({"templates", "show", id}).status, 1);
}

TEST_F(TemplatesCommandsTest, APositionOutsideTheListNamesTheRangeAndMovesNothing) {
    ASSERT_EQ(add("A").status, 0);
    ASSERT_EQ(add("B").status, 0);
    ASSERT_EQ(add("C").status, 0);
    for (const char* position :
         {"0", "4", "-1", "+2", "1.5", "two", "", "99999999999999999999999999999"}) {
        const CliRun moved = run({"templates", "move", "B", "--to", position});
        EXPECT_EQ(moved.status, 1) << position;
        EXPECT_EQ(moved.err, "Choose a position from 1 to 3.\n") << position;
    }
    EXPECT_EQ(run({"templates", "list"}).out,
              "  1. A — Maths, 25m\n  2. B — Maths, 25m\n  3. C — Maths, 25m\n");
    // The template is looked up first: an unknown one is reported as such.
    EXPECT_EQ(run({"templates", "move", "D", "--to", "0"}).err,
              "No session template has the name or id \"D\".\n");
}

TEST_F(TemplatesCommandsTest, AnOpenEndedTemplateNeedsNoDuration) {
    ASSERT_EQ(run({"prefs", "set", "session.defaultDuration", "45m"}).status, 0);
    const CliRun added =
        run({"templates", "add", "--name", "Reading", "--subject", "Books", "--open-ended"});
    EXPECT_EQ(added.status, 0) << added.err;
    // A default duration beyond the templates' 12 hours is kept at 12 hours.
    ASSERT_EQ(run({"prefs", "set", "session.defaultDuration", "20h"}).status, 0);
    ASSERT_EQ(
        run({"templates", "add", "--name", "Long", "--subject", "Books", "--open-ended"}).status,
        0);
    EXPECT_EQ(run({"templates", "list"}).out,
              "  1. Reading — Books, open-ended (45m planned)\n"
              "  2. Long — Books, open-ended (12h planned)\n");

    const CliRun neither = run({"templates", "add", "--name", "Timed", "--subject", "Books"});
    EXPECT_EQ(neither.status, 2);
    EXPECT_EQ(neither.err,
              "templates add: give --duration, or --open-ended for sessions that run until "
              "ended\n");
    EXPECT_THAT(run({"templates", "show", "Timed"}).err, HasSubstr("No session template"));
}

TEST_F(TemplatesCommandsTest, ANewerFileIsLeftAloneAndEveryChangeRefused) {
    const std::string bytes = R"({"formatVersion": 2, "templates": []})";
    lumenote::testing::writeFile(templatesPath(), bytes);
    const std::string readOnly =
        "These templates were created by a newer Lumenote format (version 2) and are read-only "
        "in this version.\n";
    const CliRun added = add("New");
    EXPECT_EQ(added.status, 1);
    EXPECT_EQ(added.err,
              "Templates use a newer local format (version 2). Update Lumenote to edit them.\n" +
                  readOnly);
    EXPECT_EQ(lumenote::testing::readFile(templatesPath()), bytes);
}

TEST_F(TemplatesCommandsTest, EverySubcommandHasHelp) {
    for (const char* command :
         {"list", "show", "add", "edit", "delete", "favorite", "enable", "disable", "move"}) {
        const CliRun help = run({"templates", command, "--help"});
        EXPECT_EQ(help.status, 0) << command;
        EXPECT_THAT(help.out, HasSubstr("Usage:")) << command;
    }
}

TEST_F(TemplatesCommandsTest, ATemplateIsMarkedUsedOnlyOnceItsSessionStarts) {
    ASSERT_EQ(add("Deep work").status, 0);
    const std::string neverUsed = "Last used: never\n";
    ASSERT_THAT(run({"templates", "show", "Deep work"}).out, HasSubstr(neverUsed));
    // Another recorder holds the lock: the session cannot start.
    auto lock = store::RecorderLock::acquire(store::recorderLockPath(home_.paths()));
    ASSERT_TRUE(lock.ok());
    const CliRun refused = run({"record", "--template", "Deep work"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.err, HasSubstr("already recording"));
    EXPECT_THAT(run({"templates", "show", "Deep work"}).out, HasSubstr(neverUsed));
}

}  // namespace
}  // namespace lumenote::cli
