// The help of the main dialog: what the viewer is started with, and when it is not.
#include "tests/ui/ui_test.h"

namespace {

class HelpTest : public tests::UiTest {
protected:
    // The viewer would come to the front and take the next keys; that it is asked for is enough.
    void OpenWithoutViewer() {
        device().Remove(L"\\Windows\\peghelp.exe");
        Open();
    }
    std::vector<std::string> Asked() {
        std::vector<std::string> asked;
        for (const Json& call : Ask("trace show CreateProcessW")) {
            asked.push_back(call["arguments"]);
        }
        return asked;
    }
    void ExpectHelp(const std::string& argument) {
        EXPECT_TRUE(Eventually([&] { return !Asked().empty(); })) << argument;
        EXPECT_EQ(std::vector<std::string>{"\\Windows\\peghelp.exe, " + argument}, Asked());
        Ask("trace on");
    }
};

TEST_F(HelpTest, EachPageHasItsHelp) {
    OpenWithoutViewer();
    const struct {
        const char* tab;
        const char* argument;
    } kPages[] = {
        {"Backup", "tolvenar_all.htp#tolvenar_manual_backup"},
        {"Restore", "tolvenar_all.htp#tolvenar_normal_restore"},
        {"Advanced Restore", "tolvenar_all.htp#tolvenar_advanced_restore"},
        {"Storage file", "tolvenar_all.htp#tolvenar_option_storage"},
        {"Options", "tolvenar_all.htp#tolvenar_options_content"},
        {"About", "tolvenar.htc"},
    };
    for (const auto& page : kPages) {
        ShowTab(page.tab);
        Ask("trace on");
        Keys("alt+h");
        ExpectHelp(page.argument);
    }
}

TEST_F(HelpTest, F1OpensTheContentsFromEveryControl) {
    TakeFirstState();
    // Alt+D on the Options page begins a countdown, which would start the agent.
    Ask("set sleep.scale 0");
    OpenWithoutViewer();
    const struct {
        const char* tab;
        const char* keys;
        int control;
    } kControls[] = {
        {"Backup", "alt+d", 1018},  {"Backup", "tab", 1001},    {"Backup", "tab", 1000},
        {"Restore", "alt+s", 1014}, {"Restore", "alt+e", 1016}, {"Storage file", "alt+n", 1019},
        {"Options", "alt+d", 1060}, {"Options", "tab", 1062},
    };
    for (const auto& place : kControls) {
        if (SelectedTab() != place.tab) {
            ShowTab(place.tab);
        }
        Keys(place.keys);
        EXPECT_TRUE(FocusComesTo(place.control)) << place.control;
        Ask("trace on");
        Keys("f1");
        ExpectHelp("tolvenar.htc");
    }
}

TEST_F(HelpTest, WithoutAnInstallationThereIsNoHelp) {
    Ask("reg-delete HKCU\\Software\\Kestrin2\\Tolvenar onTime");
    Open();
    Keys("alt+h");
    ExpectBox(tests::kWarningBox, tests::kInstallationText);
    Keys("f1");
    ExpectBox(tests::kWarningBox, tests::kInstallationText);
    EXPECT_EQ(0u, Calls("CreateProcessW", "peghelp.exe"));
}

TEST_F(HelpTest, AMissingViewerShowsNothing) {
    OpenWithoutViewer();
    Keys("alt+h");
    EXPECT_TRUE(Eventually([&] { return Calls("CreateProcessW", "peghelp.exe") == 1; }));
    Keys("ctrl+tab");
    EXPECT_TRUE(Eventually([&] { return SelectedTab() != "Storage file"; }));
    EXPECT_EQ(0u, BoxCount());
    EXPECT_TRUE(Top("Tolvenar")->at("active"));
}

}  // namespace
