// The Advanced Restore page: the differences of a state in the tree, and its two buttons.
#include "platform/win32.h"

#include "simulator/databases/database_store.h"
#include "tests/ui/stored_states.h"
#include "tests/ui/ui_test.h"

namespace {

using tests::TreeLine;
using Texts = std::vector<std::string>;

constexpr unsigned kBoldState = 0x10;      // TVIS_BOLD
constexpr unsigned kSelectedState = 0x02;  // TVIS_SELECTED

class AdvancedRestoreTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        device().PutFile(L"\\My Documents\\a.txt", "one");
        device().PutFile(L"\\My Documents\\deep\\b.txt", "two");
        Ask("reg-set \"HKCU\\Software\\Test\" Number REG_DWORD 1");
        states_.BackUp("The first");
        device().PutFile(L"\\My Documents\\a.txt", "one and more");
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
        OpenAdvanced();
        DoubleClick(1);
        {
            const auto lock = device().Lock(L"\\My Documents\\a.txt");
            Press(1038);
            EXPECT_TRUE(Eventually([&] { return Sees(1043); }));
        }
        EXPECT_TRUE(BecomesIdle());
    }
    void OpenAdvanced() {
        Open();
        ShowTab("Advanced Restore");
        EXPECT_TRUE(Eventually([&] { return Sees(1037); }));
    }
    // A double click with the stylus on an item of the list, also when the list is not seen.
    void DoubleClick(int item) {
        const HWND list = WindowOf(1014);
        const auto height = static_cast<int>(::SendMessageW(list, LB_GETITEMHEIGHT, 0, 0));
        const LPARAM place = MAKELPARAM(5, item * height + height / 2);
        ::SendMessageW(list, WM_LBUTTONDOWN, MK_LBUTTON, place);
        ::SendMessageW(list, WM_LBUTTONUP, 0, place);
        ::SendMessageW(list, WM_LBUTTONDBLCLK, MK_LBUTTON, place);
        ::SendMessageW(list, WM_LBUTTONUP, 0, place);
    }
    HWND WindowOf(int id) {
        for (const Json& window : Windows()) {
            if (window["id"] == id && window["parent"] != 0) {
                return reinterpret_cast<HWND>(window["handle"].get<std::uintptr_t>());
            }
        }
        return nullptr;
    }

    static void AddLines(const Json& item, std::size_t depth, std::vector<Json>& items,
                         std::vector<std::size_t>& depths) {
        items.push_back(item);
        depths.push_back(depth);
        for (const Json& child : item["children"]) {
            AddLines(child, depth + 1, items, depths);
        }
    }
    // The tree on the screen, item by item.
    void ExpectTree(const std::vector<TreeLine>& expected) {
        std::vector<Json> items;
        std::vector<std::size_t> depths;
        for (const Json& root : Ask("window tree")) {
            AddLines(root, 0, items, depths);
        }
        ASSERT_EQ(expected.size(), items.size());
        for (std::size_t i = 0; i < items.size(); ++i) {
            EXPECT_EQ(expected[i].text, items[i]["text"]);
            EXPECT_EQ(expected[i].depth, depths[i]) << expected[i].text;
            const unsigned state = items[i]["state"];
            EXPECT_EQ(expected[i].is_bold, (state & kBoldState) != 0) << expected[i].text;
            EXPECT_EQ(expected[i].is_bold, items[i]["bold"]) << expected[i].text;
            if ((state & kSelectedState) == 0) {
                EXPECT_EQ(expected[i].colour, items[i]["text_color"]) << expected[i].text;
            }
        }
    }
    Texts TreeTexts() {
        std::vector<Json> items;
        std::vector<std::size_t> depths;
        for (const Json& root : Ask("window tree")) {
            AddLines(root, 0, items, depths);
        }
        Texts texts;
        for (std::size_t i = 0; i < items.size(); ++i) {
            texts.push_back(std::string(depths[i], ' ') + items[i]["text"].get<std::string>());
        }
        return texts;
    }
    void ExpectRestored() { ExpectReminder(tests::kRestoredReminder, tests::kCancel); }

    tests::StoredStates states_{device()};
};

TEST_F(AdvancedRestoreTest, TheTreeIsEmptyUntilAStateIsChosen) {
    OpenAdvanced();
    EXPECT_EQ("Double click an item in the list to view the difference tree.", Text(1113));
    EXPECT_EQ("", Text(1041));
    EXPECT_TRUE(TreeTexts().empty());
    EXPECT_EQ((Texts{"State 3", "State 2", "State 1"}), Items(1014));
}

TEST_F(AdvancedRestoreTest, ADoubleClickShowsWhatAStateChanged) {
    OpenAdvanced();
    DoubleClick(0);
    EXPECT_EQ("Differences from State 2 to State 3", Text(1041));
    ExpectTree(states_.Tree(2, 3, false));
    DoubleClick(1);
    EXPECT_EQ("Differences from State 1 to State 2", Text(1041));
    ExpectTree(states_.Tree(1, 2, false));
    DoubleClick(2);  // there is none before it
    EXPECT_EQ("", Text(1041));
    ExpectTree(states_.Tree(0, 0, false));
    Press(1037);
    ExpectBox(tests::kInformationBox, "Difference not found. There is nothing to Restore.");
}

TEST_F(AdvancedRestoreTest, EnterInTheListIsADoubleClick) {
    OpenAdvanced();
    Keys("alt+s");
    EXPECT_TRUE(FocusComesTo(1014));
    Keys("down");
    Keys("enter");
    EXPECT_TRUE(Eventually([&] { return Text(1041) == "Differences from State 1 to State 2"; }));
}

TEST_F(AdvancedRestoreTest, TheOtherViewIsBuiltWhenTheTabIsShownNext) {
    OpenAdvanced();
    DoubleClick(0);
    ShowTab("Options");
    Press(1063);
    EXPECT_TRUE(Eventually([&] { return Dword("AdvancedTreeView") == 1u; }));
    ShowTab("Advanced Restore");
    EXPECT_TRUE(Eventually([&] { return Sees(1037); }));
    EXPECT_EQ("Differences from State 2 to State 3", Text(1041));
    ExpectTree(states_.Tree(2, 3, true));
    // Once: what the user expands stays so.
    Ask("trace on");
    ShowTab("Options");
    ShowTab("Advanced Restore");
    EXPECT_TRUE(Eventually([&] { return Sees(1037); }));
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
    for (const Json& line : Ask("trace show SetWindowTextW")) {
        const std::string arguments = line["arguments"];
        if (arguments.find("...") != arguments.npos) {
            texts.push_back(arguments.substr(arguments.find(", ") + 2));
        }
    }
    EXPECT_EQ((Texts{"Creating tree...", "Preparing object list...", "Preparing list 1...",
                     "Preparing list 2...", "Finding differences...", "Preparing tree..."}),
              texts);
    EXPECT_EQ(1u, Calls("SendMessageW", ", 1025, 0, 393216"));  // PBM_SETRANGE: 0 to 5 + 1
}

TEST_F(AdvancedRestoreTest, TheButtonsTakeBackAndApplyAgain) {
    SetDword("Reminders", 10);
    OpenAdvanced();
    DoubleClick(1);
    Press(1038);
    ExpectReminder(tests::kRestoreReminder);
    ExpectRestored();
    EXPECT_EQ("one", device().FileBytes(L"\\My Documents\\a.txt"));
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ("", Text(1041));  // what was done is no difference any more
    EXPECT_TRUE(TreeTexts().empty());
    Press(1037);
    ExpectReminder(tests::kRestoreReminder);
    ExpectBox(tests::kInformationBox, "Difference not found. There is nothing to Restore.");
    EXPECT_TRUE(BecomesIdle());
    DoubleClick(1);
    Press(1037);
    ExpectReminder(tests::kRestoreReminder);
    ExpectRestored();
    EXPECT_EQ("one and more", device().FileBytes(L"\\My Documents\\a.txt"));
}

TEST_F(AdvancedRestoreTest, ARefusedConfirmationKeepsTheTree) {
    SetDword("Reminders", 10);
    OpenAdvanced();
    DoubleClick(1);
    Press(1038);
    ExpectReminder(tests::kRestoreReminder, tests::kCancel);
    EXPECT_EQ("Differences from State 1 to State 2", Text(1041));
    ExpectTree(states_.Tree(1, 2, false));
    EXPECT_EQ("one and more", device().FileBytes(L"\\My Documents\\a.txt"));
}

TEST_F(AdvancedRestoreTest, WhatFailedIsShownAndTriedAgain) {
    TakeBackWithALockedFile();
    EXPECT_EQ("These items could not be restored:", Text(1114));
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
    EXPECT_TRUE(Sees(1043));
    EXPECT_FALSE(Sees(1002));
    Press(1037);
    ExpectRestored();
    EXPECT_EQ("one", device().FileBytes(L"\\My Documents\\a.txt"));
    EXPECT_TRUE(Eventually([&] { return Sees(1002) && !Sees(1043); }));
}

TEST_F(AdvancedRestoreTest, TheOtherButtonUndoesWhatFailed) {
    TakeBackWithALockedFile();
    Press(1038);
    ExpectRestored();
    EXPECT_EQ("one and more", device().FileBytes(L"\\My Documents\\a.txt"));
    EXPECT_TRUE(Eventually([&] { return Sees(1014) && !Sees(1043); }));
}

TEST_F(AdvancedRestoreTest, OkGivesUpWhatFailed) {
    TakeBackWithALockedFile();
    Press(1043);
    EXPECT_TRUE(Eventually([&] { return Sees(1014) && !Sees(1043); }));
    EXPECT_EQ("", Text(1041));
    EXPECT_TRUE(TreeTexts().empty());
    Press(1037);
    ExpectBox(tests::kInformationBox, "Difference not found. There is nothing to Restore.");
}

// A comparison that fails must leave nothing that passes for its result.
TEST_F(AdvancedRestoreTest, AComparisonThatFailsShowsNoDifferences) {
    OpenAdvanced();
    DoubleClick(0);
    device().Fault("CreateFileW", 1, 1000, 32, "Backup.sav, 3221225472");
    DoubleClick(1);
    EXPECT_EQ("[]", device().Faults());
    Ask("faults clear");
    EXPECT_EQ("", Text(1041));
    ExpectTree(states_.Tree(0, 0, false));
    Press(1038);
    ExpectBox(tests::kInformationBox, "Difference not found. There is nothing to Restore.");
}

TEST_F(AdvancedRestoreTest, WithoutATreeThePageGoesOn) {
    device().Fault("CreateWindowExW", 1, 1, 8, "SysTreeView32");
    OpenAdvanced();
    EXPECT_EQ("[]", device().Faults());
    EXPECT_TRUE(Ask("window tree").empty());
    DoubleClick(1);
    EXPECT_EQ("Differences from State 1 to State 2", Text(1041));
    const auto lock = device().Lock(L"\\My Documents\\a.txt");
    Press(1038);
    EXPECT_TRUE(Eventually([&] { return Sees(1043); }));
    EXPECT_TRUE(BecomesIdle());
    Press(1043);
    EXPECT_TRUE(Eventually([&] { return Sees(1014); }));
    Keys("alt+x");
    ExpectEnd();
}

// A value of the device alone is described by what the restore's scan found.
TEST_F(AdvancedRestoreTest, ARestoreShowsWhatItCouldNotDelete) {
    Ask("reg-set \"HKCU\\Software\\Only here\" Value REG_DWORD 5");
    Ask("reg-set \"HKCU\\Software\\Apps\\Acme Notes\" More REG_DWORD 5");
    Open();
    ShowTab("Restore");
    device().Fault("RegDeleteValueW", 1, 1000, 5);
    Press(1002);
    EXPECT_TRUE(Eventually([&] { return Sees(1043); }));
    EXPECT_TRUE(BecomesIdle());
    Ask("faults clear");
    EXPECT_EQ((Texts{"Differences", " Applications", " Documents", " Outlook Data", " Other",
                     "  Software\\Apps\\Acme Notes\u00FFMore (-)"}),
              TreeTexts());
    Press(1037);
    ExpectRestored();
}

TEST_F(AdvancedRestoreTest, WithoutAnInstallationTheDifferencesAreShownAllTheSame) {
    Ask("reg-delete HKCU\\Software\\Kestrin2\\Tolvenar onTime");
    OpenAdvanced();
    DoubleClick(1);
    EXPECT_EQ("Differences from State 1 to State 2", Text(1041));
    ExpectTree(states_.Tree(1, 2, false));
    for (const int button : {1037, 1038}) {
        Press(button);
        ExpectBox(tests::kWarningBox, tests::kInstallationText);
    }
    EXPECT_EQ("one and more", device().FileBytes(L"\\My Documents\\a.txt"));
}

}  // namespace
