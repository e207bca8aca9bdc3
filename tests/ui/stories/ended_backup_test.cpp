// What ends a backup in the middle: the card is pulled out, the battery is empty.
#include "tests/ui/stories/story_test.h"

namespace tests {
namespace {

constexpr unsigned kHalfPastNine = 30 << 16 | 21;
const Box kBackupFailed = {"Backup Fail.", kErrorBox};

class EndedBackupStory : public StoryTest {
protected:
    void SetUp() override {
        StoryTest::SetUp();
        SetDword("onTime", 1);
        SetDword("WakeUpTime", kHalfPastNine);
        BackUpThenChange();
    }
    // The backup comes to the databases and no further.
    void BeginABackup() {
        HoldCall("CeFindFirstDatabaseEx");
        BackUpByHand();
        ASSERT_TRUE(RulesAreUsedUp());
        EXPECT_EQ(0u, Dword("onTime"));
    }
    // Nothing is found any more where the card was.
    void PullTheCard() { device().Set("card.name", "Pulled out"); }
    void PutTheCardBack() { device().Set("card.name", "Storage Card"); }
    void ExpectScheduleIsBack() {
        EXPECT_SOON_EQ(1u, Dword("onTime"));
        EXPECT_EQ(kHalfPastNine, Dword("WakeUpTime"));
    }
    // Another backup holds what the device has now, and brings it back.
    void BackUpAndRestore() {
        GoTo("Backup");
        Remember();
        BackUpByHand();
        ExpectTab("Restore");
        EXPECT_EQ((Texts{"State 2", "State 1"}), Items(IDC_STATES));
        LoseTheUsersWork();
        RestoreByHand();
        AnswerReminder(kRestoredReminder, IDCANCEL);
        ExpectRemembered();
    }
};

TEST_P(EndedBackupStory, APulledCardIsToldAndTheNextBackupIsWhole) {
    Open();
    BeginABackup();
    PullTheCard();
    LetGo();
    // Without its storage file the state cannot be compared, let alone be written.
    AnswerBox(kBackupFailed);
    EXPECT_TRUE(BecomesIdle());
    ExpectScheduleIsBack();
    PutTheCardBack();
    BackUpAndRestore();
}

TEST_P(EndedBackupStory, AfterAnEmptyBatteryTheNextStartPutsTheScheduleBack) {
    Open();
    BeginABackup();
    Ask("kill all");
    LetGo();
    Open();
    ExpectScheduleIsBack();
    GoTo("Options");
    EXPECT_TRUE(IsChecked(IDC_ON_TIME));
    BackUpAndRestore();
}
WITH_BOTH_HANDS(EndedBackupStory);

}  // namespace
}  // namespace tests
