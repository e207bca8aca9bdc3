// What the restore page says while it shows what a restore left over.
#include <algorithm>

#include "simulator/databases/database_store.h"
#include "tests/support/log_lines.h"
#include "tests/support/ui_test.h"

namespace tests {
namespace {

const std::string kTryAgain = "Close other programs, then + tries again.";
const std::string kBeginAnew = "OK, then restore the state again.";
const std::string kSelectOne = "Select an item to see why it failed.";

class FailedPanelTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUpThenChange();
    }
    // A restore of the state leaves the file over that another program holds.
    void FailToRestore() {
        OpenOn("Restore");
        {
            const auto lock = device().Lock(kNote);
            PressRestore();
        }
        EXPECT_TRUE(BecomesIdle());
    }
    // The restore of a state with a record leaves the record over.
    void FailToRestoreARecord() {
        sim::databases::DatabaseStore store(device().sim());
        sim::databases::Database database;
        database.name = u"Some Database";
        std::uint32_t oid = 0;
        ASSERT_EQ(sim::databases::kOk, store.Create(database));
        ASSERT_EQ(sim::databases::kOk, store.Write(database, oid, {{0x00010003, 5, ""}}));
        BackUp();
        Ask("db-delete \"Some Database\"");
        OpenOn("Restore");
        device().Fault("CeWriteRecordProps", 1, 1000, ERROR_DISK_FULL);
        PressRestore();
        LetGoAndRest();
    }
    void PressRestore() {
        Press(IDC_RESTORE);
        EXPECT_SOON(Sees(IDC_FAILED_OK));
    }
    void ExpectAdvice(const std::string& text, int focus) {
        EXPECT_SOON_EQ(text, Text(IDC_FAILED_ADVICE));
        EXPECT_TRUE(FocusComesTo(focus));
    }
    static const sim::windows::TreeItem* Child(const sim::windows::TreeItem& item,
                                               const std::string& text) {
        for (const auto& child : item.children) {
            if (child.text == text) {
                return &child;
            }
        }
        return nullptr;
    }
};

TEST_F(FailedPanelTest, PlusHasTheFocusAndTheLineSaysWhatItDoes) {
    FailToRestore();
    ExpectAdvice(kTryAgain, IDC_APPLY_CHANGES);
    EXPECT_FALSE(Sees(IDC_TAKE_BACK_CHANGES));
    Keys("enter");
    RefuseReminder(kRestoredReminder);
    EXPECT_EQ("hello", device().FileBytes(kNote));
    EXPECT_SOON(Sees(IDC_RESTORE) && !Sees(IDC_FAILED_ADVICE));
}

TEST_F(FailedPanelTest, AltWithKPressesOkWhereverTheFocusIs) {
    FailToRestore();
    ExpectAdvice(kTryAgain, IDC_APPLY_CHANGES);
    Keys("alt+k");
    EXPECT_SOON(Sees(IDC_RESTORE) && !Sees(IDC_FAILED_ADVICE));
}

TEST_F(FailedPanelTest, BranchesThatHoldSomethingAreOpen) {
    FailToRestore();
    const auto tree = sim::windows::Tree(device().sim());
    ASSERT_EQ(1u, tree.size());
    const auto* documents = Child(tree[0], "Documents");
    ASSERT_NE(nullptr, documents);
    EXPECT_TRUE(tree[0].expanded);
    EXPECT_TRUE(documents->expanded);
    EXPECT_FALSE(Child(tree[0], "Applications")->expanded);
}

TEST_F(FailedPanelTest, TheLineOfTheSelectedItemSaysWhyItFailed) {
    FailToRestore();
    EXPECT_SOON_EQ(kSelectOne, Text(IDC_FAILED_REASON));
    Keys("shift+tab home down down");
    EXPECT_SOON_EQ(kSelectOne, Text(IDC_FAILED_REASON));  // a category
    Keys("down");
    EXPECT_SOON_EQ("Another program has it open.", Text(IDC_FAILED_REASON));
    const auto log = LogLinesIn(device().FileBytes(L"\\Storage Card\\Tolvenar\\tolvenar_log.txt"));
    EXPECT_EQ(1, std::count(log.begin(), log.end(),
                            "E DoRestore: Not restored, in use: \\My Documents\\a.txt"));
}

TEST_F(FailedPanelTest, WithoutAnInstallationOkLeadsOn) {
    RemoveInstallation();
    FailToRestore();
    ExpectAdvice(kBeginAnew, IDC_FAILED_OK);
    Keys("enter");
    EXPECT_SOON(Sees(IDC_RESTORE));
}

TEST_F(FailedPanelTest, WhatAnotherTryWouldPassOverIsRestoredAnew) {
    FailToRestoreARecord();
    ExpectAdvice(kBeginAnew, IDC_FAILED_OK);
    ShowTab("Options");
    Press(IDC_RESTORE_DATABASES);
    EXPECT_SOON_EQ(1u, Dword("AdvancedDBRestoring"));
    ShowTab("Restore");
    EXPECT_SOON_EQ(kTryAgain, Text(IDC_FAILED_ADVICE));
}

TEST_F(FailedPanelTest, ViewShowsOneKindAndPlusActsOnAll) {
    FailToRestore();
    ASSERT_TRUE(FocusComesTo(IDC_APPLY_CHANGES));
    Keys("alt+v");
    EXPECT_SOON(IsActive("Show"));
    Keys("e");
    EXPECT_SOON_EQ("Shows 0 of 2 that could not be restored; + acts on all.",
                   Text(IDC_FAILED_LABEL));
    EXPECT_TRUE(MainDialogBecomesActive());
    Press(IDC_SHOW);
    EXPECT_SOON(IsActive("Show"));
    Press(IDC_SHOW_FAILED);
    EXPECT_SOON_EQ("Shows 2 of 2 that could not be restored; + acts on all.",
                   Text(IDC_FAILED_LABEL));
    Press(IDC_APPLY_CHANGES);
    RefuseReminder(kRestoredReminder);
    EXPECT_EQ("hello", device().FileBytes(kNote));
}

TEST_F(FailedPanelTest, NothingFailedThereIsNothingOfThatKindToChoose) {
    BackUp();
    OpenOn("Advanced Restore");
    ::SendMessageW(PageOf(IDC_STATES), WM_COMMAND, MAKEWPARAM(IDC_STATES, LBN_DBLCLK), 0);
    Press(IDC_SHOW);
    EXPECT_SOON(IsActive("Show"));
    EXPECT_FALSE(AnyControl(IDC_SHOW_FAILED).enabled);
    EXPECT_TRUE(AnyControl(IDC_SHOW_DELETED).enabled);
}

}  // namespace
}  // namespace tests
