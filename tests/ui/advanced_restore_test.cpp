// The Advanced Restore page: the differences of a state in the tree, and its two buttons.
#include "simulator/databases/database_store.h"
#include "tests/support/ui_test.h"
#include "tests/ui/stored_states.h"

namespace tests {
namespace {

constexpr unsigned kBoldState = 0x10;      // TVIS_BOLD
constexpr unsigned kSelectedState = 0x02;  // TVIS_SELECTED

class AdvancedRestoreTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        device().PutFile(kNote, "one");
        device().PutFile(L"\\My Documents\\deep\\b.txt", "two");
        Ask("reg-set \"HKCU\\Software\\Test\" Number REG_DWORD 1");
        states_.BackUp("The first");
        device().PutFile(kNote, "one and more");
        Ask("reg-set \"HKCU\\Software\\Apps\\Acme Notes\" Instl REG_DWORD 1");
        Ask("reg-set \"HKCU\\Software\\Apps\\Acme Notes\" InstlDir REG_SZ \\Windows\\Notes");
        AddContact("Ann");
        states_.BackUp("The second");
        device().Remove(L"\\My Documents\\deep");
        Ask("reg-delete \"HKCU\\Software\\Test\"");
        AddContact("");
        states_.BackUp("The third");
    }
    void AddContact(const std::string& name) {
        sim::databases::DatabaseStore store(device().sim());
        auto database = store.ByName(u"Contacts Database");
        if (!database) {
            sim::databases::Database made;
            made.name = u"Contacts Database";
            made.type = 24;
            ASSERT_EQ(sim::databases::kOk, store.Create(made));
            database = made;
        }
        std::string text;
        for (const char letter : name) {
            text += {letter, '\0'};
        }
        std::uint32_t oid = 0;
        EXPECT_EQ(sim::databases::kOk, store.Write(*database, oid, {{0x4013001F, 0, text}}));
    }
    // Leaves the page in its failed form.
    void TakeBackWithALockedFile() {
        OpenOnItem(1);
        {
            const auto lock = device().Lock(kNote);
            Press(IDC_TAKE_BACK_CHANGES);
            EXPECT_SOON(Sees(IDC_FAILED_OK));
        }
        EXPECT_TRUE(BecomesIdle());
    }
    void OpenAdvanced() { OpenOn("Advanced Restore"); }
    void OpenOnItem(int item) {
        OpenAdvanced();
        DoubleClick(item);
    }
    // A double click with the stylus on an item of the list, also when the list is not seen.
    void DoubleClick(int item) {
        const HWND list = Handle(IDC_STATES);
        const auto height = static_cast<int>(::SendMessageW(list, LB_GETITEMHEIGHT, 0, 0));
        const LPARAM place = MAKELPARAM(5, item * height + height / 2);
        ::SendMessageW(list, WM_LBUTTONDOWN, MK_LBUTTON, place);
        ::SendMessageW(list, WM_LBUTTONUP, 0, place);
        ::SendMessageW(list, WM_LBUTTONDBLCLK, MK_LBUTTON, place);
        ::SendMessageW(list, WM_LBUTTONUP, 0, place);
    }
    struct Line {
        std::size_t depth;
        sim::windows::TreeItem item;
    };
    static void AddLines(const sim::windows::TreeItem& item, std::size_t depth,
                         std::vector<Line>& lines) {
        lines.push_back({depth, item});
        for (const auto& child : item.children) {
            AddLines(child, depth + 1, lines);
        }
    }
    std::vector<Line> ShownTree() {
        std::vector<Line> lines;
        for (const auto& root : sim::windows::Tree(device().sim())) {
            AddLines(root, 0, lines);
        }
        return lines;
    }
    // The tree on the screen, item by item.
    void ExpectTree(const std::vector<TreeLine>& expected) {
        const std::vector<Line> lines = ShownTree();
        ASSERT_EQ(expected.size(), lines.size());
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const auto& item = lines[i].item;
            SCOPED_TRACE(expected[i].text);
            EXPECT_EQ(expected[i].text, item.text);
            EXPECT_EQ(expected[i].depth, lines[i].depth);
            EXPECT_EQ(expected[i].is_bold, (item.state & kBoldState) != 0);
            EXPECT_EQ(expected[i].is_bold, item.bold);
            if ((item.state & kSelectedState) == 0) {
                EXPECT_EQ(expected[i].colour, item.text_color);
            }
        }
    }
    Texts TreeTexts() {
        Texts texts;
        for (const Line& line : ShownTree()) {
            texts.push_back(std::string(line.depth, ' ') + line.item.text);
        }
        return texts;
    }
    // The list that the page works on is empty.
    void ExpectNoDifferences() {
        EXPECT_EQ("", Text(IDC_DIFFERENCES_CAPTION));
        EXPECT_TRUE(TreeTexts().empty());
    }
    void ExpectChange(int older) {
        EXPECT_EQ("Differences from State " + std::to_string(older) + " to State " +
                      std::to_string(older + 1),
                  Text(IDC_DIFFERENCES_CAPTION));
    }
    // The page has its usual form again.
    void ExpectNothingFailed() { EXPECT_SOON(Sees(IDC_STATES) && !Sees(IDC_FAILED_OK)); }
    void ExpectRestored() { RefuseReminder(kRestoredReminder); }

    StoredStates states_{device()};
};

TEST_F(AdvancedRestoreTest, TheTreeIsEmptyUntilAStateIsChosen) {
    OpenAdvanced();
    EXPECT_EQ("Double click an item in the list to view the difference tree.",
              Text(IDC_DIFFERENCES_HINT));
    ExpectNoDifferences();
    EXPECT_EQ((Texts{"State 3", "State 2", "State 1"}), Items(IDC_STATES));
}

TEST_F(AdvancedRestoreTest, ADoubleClickShowsWhatAStateChanged) {
    OpenOnItem(0);
    ExpectChange(2);
    ExpectTree(states_.Tree(2, 3, false));
    DoubleClick(1);
    ExpectChange(1);
    ExpectTree(states_.Tree(1, 2, false));
    DoubleClick(2);  // there is none before it
    EXPECT_EQ("", Text(IDC_DIFFERENCES_CAPTION));
    ExpectTree(states_.Tree(0, 0, false));
    PressAndExpect(IDC_APPLY_CHANGES, kNothingToRestore);
}

TEST_F(AdvancedRestoreTest, EnterInTheListIsADoubleClick) {
    OpenAdvanced();
    ExpectFocus("alt+s", IDC_STATES);
    Keys("down");
    Keys("enter");
    EXPECT_SOON_EQ("Differences from State 1 to State 2", Text(IDC_DIFFERENCES_CAPTION));
}

TEST_F(AdvancedRestoreTest, TheOtherViewIsBuiltWhenTheTabIsShownNext) {
    OpenOnItem(0);
    ShowTab("Options");
    Press(IDC_ADVANCED_TREE);
    EXPECT_SOON_EQ(1u, Dword("AdvancedTreeView"));
    ShowTab("Advanced Restore");
    ExpectChange(2);
    ExpectTree(states_.Tree(2, 3, true));
    // Once: what the user expands stays so.
    Ask("trace on");
    ShowTab("Options");
    ShowTab("Advanced Restore");
    EXPECT_EQ(0u, Calls("SendMessageW", ", 4402, "));  // TVM_INSERTITEM
    Ask("trace off");
    DoubleClick(1);
    ExpectTree(states_.Tree(1, 2, true));
}

// The main thread works meanwhile, so that nobody can be asked what stands on the screen.
TEST_F(AdvancedRestoreTest, ThePopupSaysWhatIsBeingDone) {
    OpenAdvanced();
    Ask("trace on");
    DoubleClick(0);
    EXPECT_FALSE(Shows("Creating tree..."));
    Texts texts;
    for (const Call& call : Traced("SetWindowTextW", "...")) {
        texts.push_back(call.Behind(", "));
    }
    EXPECT_EQ((Texts{"Creating tree...", "Preparing object list...", "Preparing list 1...",
                     "Preparing list 2...", "Finding differences...", "Preparing tree..."}),
              texts);
    EXPECT_EQ(1u, Calls("SendMessageW", ", 1025, 0, 393216"));  // PBM_SETRANGE: 0 to 5 + 1
}

TEST_F(AdvancedRestoreTest, TheButtonsTakeBackAndApplyAgain) {
    SetDword("Reminders", 10);
    OpenOnItem(1);
    Press(IDC_TAKE_BACK_CHANGES);
    ExpectReminder(kRestoreReminder);
    ExpectRestored();
    EXPECT_EQ("one", device().FileBytes(kNote));
    EXPECT_TRUE(BecomesIdle());
    ExpectNoDifferences();  // what was done is no difference any more
    Press(IDC_APPLY_CHANGES);
    ExpectReminder(kRestoreReminder);
    ExpectBox(kNothingToRestore);
    EXPECT_TRUE(BecomesIdle());
    DoubleClick(1);
    Press(IDC_APPLY_CHANGES);
    ExpectReminder(kRestoreReminder);
    ExpectRestored();
    EXPECT_EQ("one and more", device().FileBytes(kNote));
}

TEST_F(AdvancedRestoreTest, ARefusedConfirmationKeepsTheTree) {
    SetDword("Reminders", 10);
    OpenOnItem(1);
    Press(IDC_TAKE_BACK_CHANGES);
    RefuseReminder(kRestoreReminder);
    ExpectChange(1);
    ExpectTree(states_.Tree(1, 2, false));
    EXPECT_EQ("one and more", device().FileBytes(kNote));
}

TEST_F(AdvancedRestoreTest, WhatFailedIsShownAndTriedAgain) {
    TakeBackWithALockedFile();
    EXPECT_EQ("These items could not be restored:", Text(IDC_FAILED_LABEL));
    const Texts left = {"Differences",
                        " Applications",
                        " Documents",
                        "  a.txt (\u00B1)",
                        " Outlook Data",
                        " Other",
                        "  \\My Documents\\a.txt (\u00B1)"};
    EXPECT_EQ(left, TreeTexts());
    DoubleClick(0);  // ignored
    EXPECT_EQ(left, TreeTexts());
    ShowTab("Restore");
    EXPECT_TRUE(Sees(IDC_FAILED_OK));
    EXPECT_FALSE(Sees(IDC_RESTORE));
    Press(IDC_APPLY_CHANGES);
    ExpectRestored();
    EXPECT_EQ("one", device().FileBytes(kNote));
    EXPECT_SOON(Sees(IDC_RESTORE) && !Sees(IDC_FAILED_OK));
}

// What is left has its sense turned round: the button would write the newer file back as it was.
TEST_F(AdvancedRestoreTest, WhatFailedIsNotOfferedTheOtherWayRound) {
    TakeBackWithALockedFile();
    EXPECT_FALSE(Sees(IDC_TAKE_BACK_CHANGES));
    EXPECT_TRUE(FocusComesTo(IDC_APPLY_CHANGES));
    Press(IDC_FAILED_OK);
    ExpectNothingFailed();
    ShowTab("Advanced Restore");
    EXPECT_TRUE(Sees(IDC_TAKE_BACK_CHANGES));
}

TEST_F(AdvancedRestoreTest, OkGivesUpWhatFailed) {
    TakeBackWithALockedFile();
    Press(IDC_FAILED_OK);
    ExpectNothingFailed();
    ExpectNoDifferences();
    PressAndExpect(IDC_APPLY_CHANGES, kNothingToRestore);
}

TEST_F(AdvancedRestoreTest, WithoutATreeThePageGoesOn) {
    device().Fault("CreateWindowExW", 1, 1, 8, "SysTreeView32");
    OpenAdvanced();
    EXPECT_TRUE(Ask("window tree").empty());
    DoubleClick(1);
    ExpectChange(1);
    const auto lock = device().Lock(kNote);
    Press(IDC_TAKE_BACK_CHANGES);
    EXPECT_SOON(Sees(IDC_FAILED_OK));
    EXPECT_TRUE(BecomesIdle());
    Press(IDC_FAILED_OK);
    EXPECT_SOON(Sees(IDC_STATES));
    Keys("alt+x");
    ExpectEnd();
}

// A value of the device alone is described by what the restore's scan found.
TEST_F(AdvancedRestoreTest, ARestoreShowsWhatItCouldNotDelete) {
    Ask("reg-set \"HKCU\\Software\\Only here\" Value REG_DWORD 5");
    Ask("reg-set \"HKCU\\Software\\Apps\\Acme Notes\" More REG_DWORD 5");
    OpenOn("Restore");
    device().Fault("RegDeleteValueW", 1, 1000, 5);
    Press(IDC_RESTORE);
    EXPECT_SOON(Sees(IDC_FAILED_OK));
    EXPECT_TRUE(BecomesIdle());
    LetGo();
    EXPECT_EQ((Texts{"Differences", " Applications", " Documents", " Outlook Data", " Other",
                     "  Software\\Apps\\Acme Notes\u00FFMore (-)"}),
              TreeTexts());
    Press(IDC_APPLY_CHANGES);
    ExpectRestored();
}

TEST_F(AdvancedRestoreTest, WithoutAnInstallationTheDifferencesAreShownAllTheSame) {
    RemoveInstallation();
    OpenOnItem(1);
    ExpectChange(1);
    ExpectTree(states_.Tree(1, 2, false));
    for (const int button : {IDC_APPLY_CHANGES, IDC_TAKE_BACK_CHANGES}) {
        PressAndExpect(button, kNotInstalled);
    }
    EXPECT_EQ("one and more", device().FileBytes(kNote));
}

}  // namespace
}  // namespace tests
