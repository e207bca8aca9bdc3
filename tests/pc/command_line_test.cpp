// The command line, and the program as a process.
#include <cstdlib>
#include <sys/wait.h>

#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class CommandLineTest : public ThreeStatesTest {
protected:
    // The exit code of a shell's command in which "PROGRAM" and "HOME" stand for what they are.
    int Shell(std::string command) const {
        const auto put = [&command](const std::string& word, const std::string& text) {
            for (std::size_t at; (at = command.find(word)) != command.npos;) {
                command.replace(at, word.size(), text);
            }
        };
        put("PROGRAM", PC_PROGRAM);
        put("HOME", In("Home.sav"));
        put("OUT", In("out"));
        const int status = std::system(("bash -o pipefail -c '" + command + "'").c_str());
        return WEXITSTATUS(status);
    }
};

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
    for (const char* command : {"info", "ls", "cat", "find", "verify", "extract", "diff", "export",
                                "trim", "report", "serve", "mount"}) {
        EXPECT_NE(std::string::npos, all.out.find(command)) << command;
        const Result help = Run({command, "--help"});
        EXPECT_EQ(0, help.code);
        EXPECT_NE(std::string::npos, help.out.find(std::string("Example: tolvenar ") + command));
        EXPECT_NE(std::string::npos, help.out.find("Exit codes"));
    }
}

TEST_F(CommandLineTest, TheProgramGivesResultAndCode) {
    EXPECT_EQ(0, Shell("PROGRAM cat HOME@1 \"/My Documents/letter.txt\" > OUT"));
    EXPECT_EQ("Dear Ann", Read("out"));
    EXPECT_EQ(5, Shell("echo x > OUT.sav; PROGRAM info OUT.sav 2> /dev/null"));
}

TEST_F(CommandLineTest, AFullDiskIsToldByTheCode) {
    EXPECT_EQ(1, Shell("PROGRAM ls HOME > /dev/full 2> OUT"));
    EXPECT_NE(std::string::npos, Read("out").find("cannot be written"));
}

TEST_F(CommandLineTest, APipeThatClosesIsAClearEnd) {
    pair.BeginState();
    pair.AddFile(u"\\large", Bytes(1000000, 'x'), 0x50);
    Save();
    EXPECT_EQ(1, Shell("PROGRAM cat HOME /large 2> /dev/null | head -c 10 > OUT"));
    EXPECT_EQ("xxxxxxxxxx", Read("out"));
}

}  // namespace
}  // namespace tolvenar::pc
