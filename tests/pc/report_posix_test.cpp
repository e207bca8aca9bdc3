// report as a process.
#include "tests/pc/child.h"
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

using ReportProgramTest = ThreeStatesTest;

// The disk takes no more than one block.
TEST_F(ReportProgramTest, NoHalfFileStandsUnderItsName) {
    const std::string command = "trap '' XFSZ; ulimit -f 1; " PC_PROGRAM " report " +
                                In("Home.sav") + " -o " + In("page.html") + " 2> " + In("told");
    EXPECT_NE(0, std::system(("bash -c \"" + command + "\"").c_str()));
    EXPECT_NE(std::string::npos, Read("told").find("page.html: File too large"));
    EXPECT_FALSE(std::filesystem::exists(In("page.html")));
}

// A pipe holds a part of the page.
TEST_F(ReportProgramTest, AnInterruptIsAClearEnd) {
    AddManyFiles();
    Save();
    const Child child({"report", In("Home.sav")}, In("told"));
    EXPECT_EQ("<!DOCTYPE html>\n", child.ReadLine());
    child.Interrupt();
    EXPECT_EQ(1, child.End());
    EXPECT_EQ("tolvenar: interrupted\n", Read("told"));
}

}  // namespace
}  // namespace tolvenar::pc
