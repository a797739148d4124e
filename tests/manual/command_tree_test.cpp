#include "manual/command_tree.hpp"

#include <gtest/gtest.h>

#include "manual/bash_completion.hpp"
#include "manual/man_page.hpp"

namespace lumenote::manual {
namespace {

// A small command line with what the real ones use: nested subcommands, a
// positional, a default, choices, a hidden option and a hidden command.
class CommandTreeTest : public ::testing::Test {
  protected:
    void SetUp() override {
        app.name("tool");
        app.description("Does things.");
        app.set_version_flag("--version", "tool 1");
        auto* rules = app.add_subcommand("rules", "Work with rules");
        rules->require_subcommand(1);
        auto* setApp = rules->add_subcommand("set-app", "Classify an application");
        setApp->add_option("APP", text, "The application")->required();
        setApp->add_option("--scope,-s", text, "Where it applies")
            ->check(CLI::IsMember({"session", "always"}))
            ->default_str("session");
        setApp->add_flag("--quiet", flag, "Say nothing");
        setApp->add_flag("--debug", flag, "Internal")->group("");
        app.add_subcommand("secret", "Hidden")->group("");
        auto* show = app.add_subcommand("show", ".starts with a dot \\ and a backslash");
        show->add_option("IDS", many, "Sessions to show");
        show->footer("First line\n'second line");
    }

    CLI::App app;
    std::string text;
    bool flag = false;
    std::vector<std::string> many;
};

TEST_F(CommandTreeTest, ReadsNestedCommandsInOrderWithoutHiddenOnes) {
    const CommandDescription program = describeCommandLine(app);
    EXPECT_EQ(program.name, "tool");
    std::vector<std::vector<std::string>> words;
    for (const CommandDescription* command : allSubcommands(program)) {
        words.push_back(command->words);
    }
    EXPECT_EQ(words,
              (std::vector<std::vector<std::string>>{{"rules"}, {"rules", "set-app"}, {"show"}}));
    EXPECT_TRUE(program.subcommands[0].requiresSubcommand);
    EXPECT_FALSE(program.requiresSubcommand);
}

TEST_F(CommandTreeTest, ReadsOptionsPositionalsDefaultsAndChoices) {
    const CommandDescription program = describeCommandLine(app);
    const CommandDescription& setApp = program.subcommands[0].subcommands[0];
    ASSERT_EQ(setApp.positionals.size(), 1u);
    EXPECT_EQ(setApp.positionals[0].positionalName, "APP");
    EXPECT_TRUE(setApp.positionals[0].required);

    std::vector<std::vector<std::string>> names;
    for (const OptionDescription& option : setApp.options) {
        names.push_back(option.names);
    }
    EXPECT_EQ(names, (std::vector<std::vector<std::string>>{
                         {"-h", "--help"}, {"-s", "--scope"}, {"--quiet"}}));
    EXPECT_TRUE(setApp.options[0].help);
    const OptionDescription& scope = setApp.options[1];
    EXPECT_EQ(scope.defaultValue, "session");
    EXPECT_EQ(valueChoices(scope.valueName), (std::vector<std::string>{"session", "always"}));
    EXPECT_FALSE(setApp.options[2].takesValue());
    EXPECT_TRUE(program.subcommands[1].positionals[0].repeatable);
}

TEST(ValueChoicesTest, ReadsOnlyABraceListAtTheEnd) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> cases{
        {"TEXT:{json,csv,ics}", {"json", "csv", "ics"}},
        {"TEXT:{one}", {"one"}},
        {"TEXT:{}", {}},
        {"TEXT", {}},
        {"", {}},
        {"TEXT:{a,b", {}},
        {"INT:POSITIVE", {}},
        {"TEXT:{a,,b}", {"a", "b"}},
    };
    for (const auto& [valueName, choices] : cases) {
        SCOPED_TRACE(valueName);
        EXPECT_EQ(valueChoices(valueName), choices);
    }
}

TEST_F(CommandTreeTest, ThePageGuardsHelpTextsAndNamesEveryCommand) {
    ManPageContent content;
    content.summary = "do things";
    content.source = "Tool 1";
    content.date = "2026-01-02";
    content.files = {{"$XDG_DATA_HOME/Tool", "The data."}};
    content.seeAlso = {"other(1)", "third(5)"};
    const std::string page = renderManPage(describeCommandLine(app), content);

    EXPECT_NE(page.find(".TH \"TOOL\" 1 \"2026-01-02\" \"Tool 1\" \"User Commands\"\n"),
              std::string::npos);
    EXPECT_NE(page.find(".SH NAME\ntool \\- do things\n"), std::string::npos);
    EXPECT_NE(page.find(".SS \"rules set\\-app\"\n\\fBtool rules set\\-app\\fR "
                        "[\\fIOPTIONS\\fR] \\fIAPP\\fR\n"),
              std::string::npos);
    EXPECT_NE(page.find("\\fBtool rules\\fR \\fICOMMAND\\fR\n"), std::string::npos);
    EXPECT_NE(page.find("\\fBtool show\\fR [\\fIIDS\\fR...]\n"), std::string::npos);
    EXPECT_NE(page.find("\\fB\\-s\\fR, \\fB\\-\\-scope\\fR \\fITEXT:{session,always}\\fR\n"
                        "Where it applies (default: session)\n"),
              std::string::npos);
    EXPECT_NE(page.find("\n\\&.starts with a dot \\e and a backslash\n"), std::string::npos);
    EXPECT_NE(page.find("First line\n.br\n\\&'second line\n"), std::string::npos);
    EXPECT_NE(page.find(".BR other (1),\n.BR third (5)\n"), std::string::npos);
    EXPECT_NE(page.find(".SH FILES\n.TP\n\\fI$XDG_DATA_HOME/Tool\\fR\nThe data.\n"),
              std::string::npos);

    EXPECT_EQ(page.find("secret"), std::string::npos);
    EXPECT_EQ(page.find("debug"), std::string::npos);
    EXPECT_EQ(page.find(".SH ENVIRONMENT"), std::string::npos);
    EXPECT_EQ(page.find(".SH EXIT STATUS"), std::string::npos);
    // The help option is listed once, with the program's options.
    EXPECT_EQ(page.find("Print this help"), page.rfind("Print this help"));
    EXPECT_LT(page.find(".SH COMMANDS"), page.find(".SH OPTIONS"));
}

}  // namespace
}  // namespace lumenote::manual
