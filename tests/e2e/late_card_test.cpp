// The device wakes for a backup, and its card is not there yet.
#include "tests/e2e/launch_fixture.h"

namespace tests {
namespace {

class LateCardStory : public LaunchFixture {
protected:
    void SetUp() override {
        LaunchFixture::SetUp();
        SetDword("onTime", 1);
        SetDailyTime(9, 30);
        device().PutFile(kNote, "hello");
        ASSERT_EQ(0, BackUp());
        device().PutFile(kNote, "changed");
        storage_ = device().FileBytes(kStorageFile);
        journal_ = device().FileBytes(kJournalFile);
    }
    // A scheduled launch whose prompt is answered at once.
    int BackUpOnTime() {
        Program program = Launch("TolvenarRunAtTime");
        EXPECT_TRUE(PromptAppears());
        Press(IDOK);
        return program.ExitCode();
    }
    void Resume(const std::string& ready) {
        device().Set("card.ready", ready);
        Ask("resume");
    }
    void ExpectPairAsItWas() {
        EXPECT_EQ(storage_, device().FileBytes(kStorageFile));
        EXPECT_EQ(journal_, device().FileBytes(kJournalFile));
    }

    std::string storage_;
    std::string journal_;
};

TEST_F(LateCardStory, AScheduledBackupWaitsForTheCard) {
    for (const char* error : {"5", "55", "3"}) {
        device().PutFile(kNote, std::string("changed before ") + error);
        const std::size_t states = States().size();
        Resume(std::string("3000 ") + error);
        EXPECT_EQ(0, BackUpOnTime()) << error;
        EXPECT_EQ(states + 1, States().size()) << error;
        // Another minute, another launch.
        device().Set("clock", "2026-11-16T09:1" + std::to_string(states) + ":00");
    }
}

// The device goes to sleep while the first block is written.
TEST_F(LateCardStory, ACardThatGoesDuringABackupTakesTheWholeState) {
    device().PutFile(L"\\My Documents\\b.txt", "more");
    device().Set("card.ready", "1500 55");
    HoldFirstBlock();
    Program program = Launch("AutoBackup: External");
    ASSERT_TRUE(RulesAreUsedUp());
    Ask("resume");
    LetGo();
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ((Numbers{1, 2}), States());
    device().Remove(L"\\My Documents\\b.txt");
    device().PutFile(kNote, "other");
    EXPECT_EQ(0, RestoreLast());
    EXPECT_EQ("more", device().FileBytes(L"\\My Documents\\b.txt"));
    EXPECT_EQ("changed", device().FileBytes(kNote));
}

TEST_F(LateCardStory, ABackupForALowBatteryWaitsForTheCard) {
    SetBattery(12);
    Resume("3000 55");
    Program program = Launch("TolvenarRunAfterWakeup");
    ASSERT_TRUE(PromptAppears());
    Press(IDOK);
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ((Numbers{1, 2}), States());
}

TEST_F(LateCardStory, ACardThatDoesNotComeIsGivenUpAfterFifteenSeconds) {
    device().Set("sleep.scale", "500");  // the prompt's seconds as well
    Resume("3600000 3");
    Ask("counters clear");
    EXPECT_EQ(1, Run("TolvenarRunAtTime"));
    EXPECT_EQ(30, Counted("Sleep"));
    ExpectPairAsItWas();
}

// Whoever asks from outside sees the answer and asks again.
TEST_F(LateCardStory, OnlyALaunchOfTheDeviceWaits) {
    Resume("60000 3");
    Ask("counters clear");
    EXPECT_EQ(1, BackUp());
    EXPECT_EQ(0, Counted("Sleep"));
    ExpectPairAsItWas();
}

// The card goes when the storage is opened and is back when a new one would be made.
TEST_F(LateCardStory, AStorageWhosePathIsMissingForAMomentIsNotMadeAnew) {
    Ask("fault CreateFileW 1 1 3 Backup.sav");
    Ask("fault GetFileAttributesW 1 1 3 Backup.sav");
    EXPECT_EQ(1, BackUp());
    ExpectPairAsItWas();
}

TEST_F(LateCardStory, AStorageThatWasTakenForMissingIsNotCut) {
    Ask("fault CreateFileW 1 1 2 Backup.sav");
    Ask("fault GetFileAttributesW 1 1 2 Backup.sav");
    EXPECT_EQ(1, BackUp());
    EXPECT_EQ(storage_, device().FileBytes(kStorageFile));
}

}  // namespace
}  // namespace tests
