// The help viewer with the installed manual.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

const std::string kViewer = "\\Windows\\peghelp.exe";
const std::string kTitle = "Tolvenar Help";

class HelpViewerTest : public UiTest {
protected:
    void View(const std::string& argument) { Ask("start " + kViewer + " " + argument); }
    // The first line of the section.
    std::string Heading() {
        const std::string text = Text(IDC_HELP_TEXT);
        return text.substr(0, text.find('\r'));
    }
    int Handles() { return ProgramCounters()["handles"]; }
    int Viewers() {
        int count = 0;
        for (const Json& process : Ask("ps")) {
            count += process["path"] == kViewer ? 1 : 0;
        }
        return count;
    }
};

// Each viewer takes the place of the one before.
TEST_F(HelpViewerTest, EachArgumentShowsItsSection) {
    const struct {
        const char* argument;
        const char* heading;
        const char* topic;
    } kSections[] = {
        {"tolvenar.htc", "Tolvenar Help", "Contents"},
        {"tolvenar_all.htp#tolvenar_manual_backup", "Backing up", "Backing up"},
        {"tolvenar_all.htp#tolvenar_normal_restore", "Restoring a state", "Restoring a state"},
        {"tolvenar_all.htp#tolvenar_advanced_restore", "Restoring single changes",
         "Restoring single changes"},
        {"tolvenar_all.htp#tolvenar_option_storage", "The storage file", "The storage file"},
        {"tolvenar_all.htp#tolvenar_options_content", "Options", "Options"},
    };
    for (const auto& section : kSections) {
        View(section.argument);
        EXPECT_SOON_EQ(section.heading, Heading());
        EXPECT_SOON_EQ(1, Viewers());
        EXPECT_SOON_EQ(section.topic, SelectedItem(IDC_HELP_TOPIC));
        EXPECT_SOON(IsActive(kTitle));
    }
}

TEST_F(HelpViewerTest, AnyTopicCanBeChosen) {
    View("tolvenar.htc");
    EXPECT_SOON_EQ("Tolvenar Help", Heading());
    Select(IDC_HELP_TOPIC, "Keys");
    EXPECT_SOON_EQ("Keys", Heading());
    Select(IDC_HELP_TOPIC, "Contents");
    EXPECT_SOON_EQ("Tolvenar Help", Heading());
}

TEST_F(HelpViewerTest, ASectionsPictureStandsBesideItsText) {
    View("tolvenar.htc");
    EXPECT_SOON_EQ("Tolvenar Help", Heading());
    const int whole_width = AnyControl(IDC_HELP_TEXT).width;
    EXPECT_FALSE(AnyControl(IDC_HELP_PICTURE).visible);
    Select(IDC_HELP_TOPIC, "Options");
    EXPECT_SOON(AnyControl(IDC_HELP_PICTURE).visible);
    const Window text = AnyControl(IDC_HELP_TEXT);
    const Window picture = AnyControl(IDC_HELP_PICTURE);
    EXPECT_LE(text.left + text.width, picture.left);
    EXPECT_LE(picture.left + picture.width, text.left + whole_width);
    Select(IDC_HELP_TOPIC, "Keys");
    EXPECT_SOON(!AnyControl(IDC_HELP_PICTURE).visible);
    EXPECT_EQ(whole_width, AnyControl(IDC_HELP_TEXT).width);
}

TEST_F(HelpViewerTest, AMissingPictureLeavesTheText) {
    device().Remove(L"\\Windows\\tolvenar_options.2bp");
    View("tolvenar_all.htp#tolvenar_options_content");
    EXPECT_SOON_EQ("Options", Heading());
    EXPECT_FALSE(AnyControl(IDC_HELP_PICTURE).visible);
}

TEST_F(HelpViewerTest, AnUnknownSectionShowsTheContents) {
    View("tolvenar_all.htp#no_such_section");
    EXPECT_SOON_EQ("Tolvenar Help", Heading());
    EXPECT_SOON_EQ("Contents", SelectedItem(IDC_HELP_TOPIC));
}

TEST_F(HelpViewerTest, WithoutTheManualItSaysSo) {
    device().Remove(L"\\Windows\\tolvenar_all.htp");
    View("tolvenar_all.htp#tolvenar_manual_backup");
    EXPECT_SOON_EQ("This topic is not on the device.", Heading());
}

// The list of topics is missing then, not the text.
TEST_F(HelpViewerTest, ContentsThatCannotBeReadForTheListHaveNoTopics) {
    for (const char* fault : {"CreateFileW 1 1 5", "GetFileSize 1 1 5", "HeapAlloc 1 1 8"}) {
        SCOPED_TRACE(fault);
        Ask(std::string("fault ") + fault);
        View("tolvenar.htc");
        EXPECT_SOON_EQ(1, Viewers());
        EXPECT_SOON_EQ(Texts{"Contents"}, Items(IDC_HELP_TOPIC));
        EXPECT_SOON_EQ("Tolvenar Help", Heading());
        EXPECT_TRUE(RulesAreUsedUp());
        PressCloseBox();
        EXPECT_SOON_EQ(0, Viewers());
    }
}

TEST_F(HelpViewerTest, ItStandsBeforeTheProgramUntilEscape) {
    OpenOn("Options");
    ExpectFocus("alt+b", IDC_ON_BATTERY);
    const int handles = Handles();
    Keys("alt+h");
    EXPECT_SOON_EQ("Options", Heading());
    EXPECT_TRUE(FocusComesTo(IDC_HELP_TEXT));
    EXPECT_SOON(IsActive(kTitle));
    Keys("esc");
    EXPECT_SOON(!Shows(kTitle));
    EXPECT_SOON(IsActive(kMainTitle));
    EXPECT_TRUE(FocusComesTo(IDC_ON_BATTERY));
    EXPECT_EQ(handles, Handles());
}

}  // namespace
}  // namespace tests
