// Another program holds a file, first during a backup, then during a restore.
#include "tests/ui/stories/story_test.h"

namespace tests {
namespace {

class LockedFileStory : public StoryTest {
protected:
    void SetUp() override {
        StoryTest::SetUp();
        device().PutFile(L"\\My Documents\\b.txt", "beside it");
        BackUpThenChange("second");
    }
};

TEST_P(LockedFileStory, ABackupTellsThatItIsNotSavedAndTheNextOneSavesIt) {
    Open();
    {
        device().PutFile(L"\\My Documents\\b.txt", "changed, too");
        const auto lock = device().Lock(kNote);
        BackUpByHand();
        ExpectTab("Restore");
        GoTo("Backup");
        EXPECT_NE(std::string::npos, Text(IDC_LAST_STATE).find("1 not saved (see the log)"));
    }
    Remember();
    BackUpByHand();
    ExpectTab("Restore");
    EXPECT_EQ((Texts{"State 3", "State 2", "State 1"}), Items(IDC_STATES));
    LoseTheUsersWork();
    RestoreByHand();
    AnswerReminder(kRestoredReminder, IDCANCEL);
    ExpectRemembered();
}

TEST_P(LockedFileStory, ARestoreShowsWhatIsLeftAndPlusTriesAgain) {
    device().PutFile(kNote, "hello");
    Remember();
    device().PutFile(kNote, "second");
    Open();
    GoTo("Restore");
    {
        const auto lock = device().Lock(kNote);
        RestoreByHand();
        EXPECT_SOON(Sees(IDC_FAILED_OK));
        EXPECT_SOON_EQ("Close other programs, then + tries again.", Text(IDC_FAILED_ADVICE));
        EXPECT_TRUE(BecomesIdle());
    }
    Use(IDC_APPLY_CHANGES);
    AnswerReminder(kRestoreReminder);
    AnswerReminder(kRestoredReminder, IDCANCEL);
    EXPECT_SOON(Sees(IDC_RESTORE));
    EXPECT_EQ("hello", device().FileBytes(kNote));
}

TEST_P(LockedFileStory, WhatIsLeftOfARestoreCanBeLeft) {
    Open();
    GoTo("Restore");
    const auto lock = device().Lock(kNote);
    RestoreByHand();
    EXPECT_SOON(Sees(IDC_FAILED_OK));
    EXPECT_TRUE(BecomesIdle());
    Use(IDC_FAILED_OK);
    EXPECT_SOON(Sees(IDC_RESTORE));
    EXPECT_EQ(Texts{"State 1"}, Items(IDC_STATES));
    CloseProgram();
}
WITH_BOTH_HANDS(LockedFileStory);

}  // namespace
}  // namespace tests
