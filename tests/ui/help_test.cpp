// The help of the main dialog: what the viewer is started with, and when it is not.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

class HelpTest : public UiTest {
protected:
    // The viewer would come to the front and take the next keys; that it is asked for is enough.
    void OpenWithoutViewer() {
        device().Remove(L"\\Windows\\peghelp.exe");
        Open();
    }
    Texts Asked() {
        Texts asked;
        for (const Call& call : Traced("CreateProcessW")) {
            asked.push_back(call.arguments);
        }
        return asked;
    }
    void ExpectHelp(const std::string& argument) {
        EXPECT_SOON_EQ(Texts{"\\Windows\\peghelp.exe, " + argument}, Asked());
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

TEST_F(HelpTest, EachPageHasAButtonForItsHelp) {
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
        Press(IDC_PAGE_HELP);
        ExpectHelp(page.argument);
    }
}

TEST_F(HelpTest, ATapOnTheQuestionMarkOfTheCaptionOpensTheContents) {
    OpenWithoutViewer();
    ASSERT_SOON(IsActive(kMainTitle));
    Ask("trace on");
    Ask("window help");
    ExpectHelp("tolvenar.htc");
}

// Some systems ask for help themselves when they see the key.
TEST_F(HelpTest, AltHOpensOneHelpWhereTheSystemAsksForItToo) {
    OpenWithoutViewer();
    ShowTab("Options");
    for (const char* how : {"sent", "posted"}) {
        device().Set("help.key", how);
        Ask("trace on");
        Keys("alt+h");
        EXPECT_SOON_EQ(Texts{"\\Windows\\peghelp.exe, tolvenar_all.htp#tolvenar_options_content"},
                       Asked())
            << how;
        ASSERT_TRUE(DialogIsDone());
        EXPECT_EQ(1u, Asked().size()) << how;
    }
}

TEST_F(HelpTest, F1OpensTheContentsFromEveryControl) {
    TakeFirstState();
    // Alt+D on the Options page begins a countdown, which would start the agent.
    Ask("set sleep.scale 0");
    OpenWithoutViewer();
    const KeyToControl kControls[] = {
        {"Backup", "alt+d", IDC_NEW_DESCRIPTION},
        {"Backup", "tab", IDC_BACKUP},
        {"Backup", "tab", IDC_PAGE_HELP},
        {"Backup", "tab", IDC_TABS},
        {"Restore", "alt+s", IDC_STATES},
        {"Restore", "alt+e", IDC_STATE_DESCRIPTION},
        {"Storage file", "alt+n", IDC_STORAGE_NAME},
        {"Options", "alt+d", IDC_ON_TIME},
        {"Options", "tab", IDC_TIME},
    };
    for (const auto& place : kControls) {
        ExpectFocusOn(place);
        Ask("trace on");
        Keys("f1");
        ExpectHelp("tolvenar.htc");
    }
}

TEST_F(HelpTest, WithoutAnInstallationThereIsNoHelp) {
    RemoveInstallation();
    Open();
    Keys("alt+h");
    ExpectBox(kNotInstalled);
    Keys("f1");
    ExpectBox(kNotInstalled);
    EXPECT_EQ(0u, Calls("CreateProcessW", "peghelp.exe"));
}

TEST_F(HelpTest, AMissingViewerShowsNothing) {
    OpenWithoutViewer();
    Keys("alt+h");
    EXPECT_SOON_EQ(1u, Calls("CreateProcessW", "peghelp.exe"));
    Keys("ctrl+tab");
    EXPECT_SOON(SelectedTab() != "Storage file");
    EXPECT_EQ(0u, BoxCount());
    EXPECT_SOON(IsActive(kMainTitle));
}

}  // namespace
}  // namespace tests
