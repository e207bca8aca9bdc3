// The help viewer with the installed manual.
#include "tests/ui/ui_test.h"

namespace {

constexpr int kTopic = 1151, kText = 1152;
const std::string kViewer = "\\Windows\\peghelp.exe";
const std::string kTitle = "Tolvenar Help";

class HelpViewerTest : public tests::UiTest {
protected:
    void View(const std::string& argument) { Ask("start " + kViewer + " " + argument); }
    std::string Topic() {
        const int selected = Selected(kTopic);
        return selected >= 0 ? Items(kTopic).at(static_cast<std::size_t>(selected)) : "none";
    }
    // The first line of the section.
    std::string Heading() {
        const std::string text = Text(kText);
        return text.substr(0, text.find('\r'));
    }
    bool HeadingBecomes(const std::string& heading) {
        return Eventually([&] { return Heading() == heading; });
    }
    // Handles that the program has.
    int Handles() {
        const Json counters = Ask("counters");
        for (const Json& process : counters["processes"]) {
            if (process["name"] == tests::kProgram) {
                return process["handles"];
            }
        }
        return -1;
    }
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
        EXPECT_TRUE(HeadingBecomes(section.heading)) << section.argument << ": " << Heading();
        EXPECT_TRUE(Eventually([&] { return Viewers() == 1; })) << Viewers();
        EXPECT_EQ(section.topic, Topic());
        EXPECT_TRUE(Top(kTitle)->at("active"));
    }
}

TEST_F(HelpViewerTest, AnyTopicCanBeChosen) {
    View("tolvenar.htc");
    EXPECT_TRUE(HeadingBecomes("Tolvenar Help"));
    Select(kTopic, "Keys");
    EXPECT_TRUE(HeadingBecomes("Keys"));
    Select(kTopic, "Contents");
    EXPECT_TRUE(HeadingBecomes("Tolvenar Help"));
}

TEST_F(HelpViewerTest, AnUnknownSectionShowsTheContents) {
    View("tolvenar_all.htp#no_such_section");
    EXPECT_TRUE(HeadingBecomes("Tolvenar Help"));
    EXPECT_EQ("Contents", Topic());
}

TEST_F(HelpViewerTest, WithoutTheManualItSaysSo) {
    device().Remove(L"\\Windows\\tolvenar_all.htp");
    View("tolvenar_all.htp#tolvenar_manual_backup");
    EXPECT_TRUE(HeadingBecomes("This topic is not on the device."));
}

// The list of topics is missing then, not the text.
TEST_F(HelpViewerTest, ContentsThatCannotBeReadForTheListHaveNoTopics) {
    for (const char* fault : {"CreateFileW 1 1 5", "GetFileSize 1 1 5", "HeapAlloc 1 1 8"}) {
        SCOPED_TRACE(fault);
        Ask(std::string("fault ") + fault);
        View("tolvenar.htc");
        EXPECT_TRUE(Eventually([&] { return Viewers() == 1 && Items(kTopic).size() == 1; }));
        EXPECT_TRUE(HeadingBecomes("Tolvenar Help"));
        EXPECT_EQ("[]", device().Faults());
        PressCloseBox();
        EXPECT_TRUE(Eventually([&] { return Viewers() == 0; }));
    }
}

TEST_F(HelpViewerTest, ItStandsBeforeTheProgramUntilEscape) {
    Open();
    ShowTab("Options");
    Keys("alt+b");
    EXPECT_TRUE(FocusComesTo(1061));
    const int handles = Handles();
    Keys("alt+h");
    EXPECT_TRUE(HeadingBecomes("Options"));
    EXPECT_TRUE(FocusComesTo(kText));
    EXPECT_TRUE(Top(kTitle)->at("active"));
    Keys("esc");
    EXPECT_TRUE(Eventually([&] { return !Shows(kTitle); }));
    EXPECT_TRUE(Eventually([&] { return Top("Tolvenar")->at("active") == true; }));
    EXPECT_TRUE(FocusComesTo(1061));
    EXPECT_EQ(handles, Handles());
}

}  // namespace
