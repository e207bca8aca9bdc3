// Installed applications in the difference tree.
#include "tests/difftree/model/difference_tree_fixture.h"

namespace tolvenar {
namespace {

using Lines = std::vector<std::u16string>;

class ApplicationsTest : public DifferenceTreeFixture {};

TEST_F(ApplicationsTest, AnApplicationIsShownByPublisherAndProgram) {
    Simple({Key(u"Software\\Apps\\Acme Notes"),
            Text(u"Software\\Apps\\Acme Notes", u"InstlDir", u"\\Program Files\\Notes"),
            Value(u"Software\\Apps\\Acme Notes", u"Instl")});
    // The blank before the match stays.
    EXPECT_EQ(
        (Lines{u"Acme  (+)*", u" Notes (+)*", u"  InstallDir=\"\\Program Files\\Notes\" (+)*"}),
        Below(u"Applications"));
    EXPECT_EQ(1u, tree_.Find({u"Applications"})->record->added);
    EXPECT_EQ(1u | 4 | 16, tree_.Find({u"Applications", u"Acme  (+)"})->record->flags);
    EXPECT_EQ(1u | 4, tree_.Find({u"Applications", u"Acme  (+)", u"Notes (+)"})->record->flags);
}

TEST_F(ApplicationsTest, ADirectoryThatTheNameDoesNotHoldLeavesItWhole) {
    const std::u16string key = u"\\software\\apps\\Acme Notes";
    Simple({Value(key, u"INSTL"), Text(key, u"instldir", u"\\Program Files\\notes\\")});
    EXPECT_EQ((Lines{u"Acme Notes (+)*", u" InstallDir=\"\\Program Files\\notes\" (+)*"}),
              Below(u"Applications"));
}

TEST_F(ApplicationsTest, ANameThatBeginsWithTheDirectoryHasNoPublisher) {
    const std::u16string key = u"Software\\Apps\\Notes 2";
    Simple({Value(key, u"Instl"), Text(key, u"InstlDir", u"Notes")});
    EXPECT_EQ((Lines{u"Notes 2 (+)*", u" InstallDir=\"Notes\" (+)*"}), Below(u"Applications"));
}

TEST_F(ApplicationsTest, TheProgramBeginsWhereTheDirectoryOccursFirst) {
    const std::u16string key = u"Software\\Apps\\Acme Notes Notes";
    Simple({Value(key, u"Instl"), Text(key, u"InstlDir", u"\\Notes")});
    EXPECT_EQ((Lines{u"Acme  (+)*", u" Notes Notes (+)*", u"  InstallDir=\"\\Notes\" (+)*"}),
              Below(u"Applications"));
}

// With the second one no component is left that the name could hold.
TEST_F(ApplicationsTest, OnlyOneSeparatorIsTakenOffTheEndOfADirectory) {
    const std::u16string key = u"Software\\Apps\\Acme Notes";
    Simple({Value(key, u"Instl"), Text(key, u"InstlDir", u"\\Notes\\\\")});
    EXPECT_EQ((Lines{u"Acme Notes (+)*", u" InstallDir=\"\\Notes\\\" (+)*"}),
              Below(u"Applications"));
}

TEST_F(ApplicationsTest, AKeyWithoutANameIsNoApplication) {
    Simple({Value(u"Software\\Apps\\", u"Instl"), Value(u"Software\\Apps\\\\One", u"Instl")});
    EXPECT_EQ(Lines{}, Below(u"Applications"));
}

TEST_F(ApplicationsTest, WithoutDirectoryThereIsNoLineOfIt) {
    const std::u16string key = u"Software\\Apps\\Acme Notes";
    Simple({Value(key, u"Instl"), Text(key, u"InstlDir", nullptr)});
    EXPECT_EQ(Lines{u"Acme Notes (+)*"}, Below(u"Applications"));
    Simple({Value(key, u"Instl"), Text(key, u"InstlDir", u"\\")});
    EXPECT_EQ(Lines{u"Acme Notes (+)*"}, Below(u"Applications"));
}

TEST_F(ApplicationsTest, OnlyInstalledApplicationsAreShownNewestFirst) {
    Advanced({Value(u"Software\\Apps\\One", u"Instl"), Value(u"Software\\Apps\\Two", u"Other"),
              Value(u"Software\\Apps\\Three\\Sub", u"Instl", JF_DELETE),
              Value(u"Software\\AppsX\\Four", u"Instl"), Value(u"Software\\Apps", u"Instl")});
    EXPECT_EQ((Lines{u"Three (-)*", u"One (+)*"}), Below(u"Applications"));
}

TEST_F(ApplicationsTest, AnApplicationHasTheFlagsOfAllItsObjects) {
    Simple(
        {Value(u"Software\\Apps\\One", u"Instl"), Value(u"Software\\Apps\\ONE", u"x", JF_DELETE)});
    EXPECT_EQ(Lines{u"One (±)*"}, Below(u"Applications"));
    EXPECT_EQ(1u, tree_.Find({u"Applications"})->record->both);
}

TEST_F(ApplicationsTest, ALongApplicationNameIsCut) {
    Simple({Value(u"Software\\Apps\\" + std::u16string(120, u'n'), u"Instl")});
    EXPECT_EQ(Lines{std::u16string(100, u'n') + u" (+)*"}, Below(u"Applications"));
}

TEST_F(ApplicationsTest, TheLongestDirectoryStandsWholeInItsLine) {
    const std::u16string key = u"Software\\Apps\\One";
    const std::u16string longest(260, u'd');
    Simple({Value(key, u"Instl"), Text(key, u"InstlDir", longest.c_str())});
    EXPECT_EQ((Lines{u"One (+)*", u" InstallDir=\"" + longest + u"\" (+)*"}),
              Below(u"Applications"));
    Simple({Value(key, u"Instl"), Text(key, u"InstlDir", (longest + u"e").c_str())});
    EXPECT_EQ((Lines{u"One (+)*", u" InstallDir=\"" + longest + u"\" (+)*"}),
              Below(u"Applications"));
}

}  // namespace
}  // namespace tolvenar
