// The command line.
#include "pc/program/more_commands.h"
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class CommandLineTest : public ThreeStatesTest {};

TEST_F(CommandLineTest, WrongUsageIsCodeTwo) {
    EXPECT_EQ(2, Run({}).code);
    EXPECT_EQ(2, Run({"fly", "HOME"}).code);
    EXPECT_EQ(2, Run({"info"}).code);
    EXPECT_EQ(2, Run({"info", "HOME", "--fly"}).code);
    EXPECT_EQ("", Run({"info"}).out);
    EXPECT_NE("", Run({"info"}).err);
}

TEST_F(CommandLineTest, EveryCommandHasHelpWithAnExample) {
    const Result all = Run({"--help"});
    EXPECT_EQ(0, all.code);
    std::vector<std::string> commands = {"info",    "ls",   "cat",    "find", "verify",
                                         "extract", "diff", "export", "trim", "salvage"};
    // Windows has fewer of these.
    for (const Command& command : MoreCommands()) {
        commands.push_back(command.name);
    }
    for (const std::string& command : commands) {
        EXPECT_NE(std::string::npos, all.out.find(command)) << command;
        const Result help = Run({command, "--help"});
        EXPECT_EQ(0, help.code);
        EXPECT_NE(std::string::npos, help.out.find(std::string("Example: tolvenar ") + command));
        EXPECT_NE(std::string::npos, help.out.find("Exit codes"));
    }
}

TEST_F(CommandLineTest, DescribesItselfForTheManualPageAndTheShells) {
    for (const char* form : {"man", "bash", "zsh", "fish"}) {
        const Result described = Run({"describe", form});
        EXPECT_EQ(0, described.code) << form;
        EXPECT_NE(std::string::npos, described.out.find("salvage")) << form;
        EXPECT_NE(std::string::npos, described.out.find("keep")) << form;
        EXPECT_EQ(std::string::npos, described.out.find(" describe")) << form;
    }
    EXPECT_EQ(2, Run({"describe", "fly"}).code);
    EXPECT_EQ(std::string::npos, Run({"--help"}).out.find("describe"));
}

TEST_F(CommandLineTest, TellsItsVersion) {
    const Result version = Run({"--version"});
    EXPECT_EQ(0, version.code);
    EXPECT_EQ(0u, version.out.find("tolvenar ")) << version.out;
}

}  // namespace
}  // namespace tolvenar::pc
