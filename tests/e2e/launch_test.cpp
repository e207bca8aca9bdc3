// What a start of the program does for each command line, and with which exit code it ends.
#include "tests/e2e/launch_fixture.h"

namespace tests {
namespace {

class LaunchTest : public LaunchFixture {
protected:
    void SetUp() override {
        LaunchFixture::SetUp();
        SetDword("onTime", 1);
        SetDailyTime(9, 30);
        device().PutFile(kNote, "hello");
    }
    // The launch ends with 0 and has shown nothing.
    void ExpectDropped(const std::string& arguments) {
        Ask("counters clear");
        EXPECT_EQ(0, Run(arguments)) << arguments;
        EXPECT_EQ(0, Counted("DialogBoxIndirectParamW")) << arguments;
        EXPECT_EQ(0, Counted("CreateDialogIndirectParamW")) << arguments;
        EXPECT_EQ(Numbers(), States()) << arguments;
    }
    // The prompt names `reason`; `button` ends it and the launch goes on to its end with 0.
    void ExpectPrompt(const std::string& arguments, const std::string& reason, int button) {
        Program program = Launch(arguments);
        EXPECT_SOON_EQ("Reason: " + reason, Text(IDC_PROMPT_REASON)) << arguments;
        Press(button);
        EXPECT_EQ(0, program.ExitCode()) << arguments;
    }
    // The launch comes up with the main dialog, which is closed again.
    void ExpectInteractive(const std::string& arguments) {
        Program program = Launch(arguments);
        EXPECT_TRUE(MainDialogAppears(program.pid())) << arguments;
        CloseMainDialog();
        EXPECT_EQ(0, program.ExitCode()) << arguments;
    }
    // The launch ends with `exit` and without a message while a platform call fails.
    void ExpectFailure(int exit, const std::string& arguments, const std::string& fault) {
        Ask("counters clear");
        Ask("fault " + fault);
        Program program = Launch(arguments);
        EXPECT_EQ(exit, program.ExitCode()) << fault;
        EXPECT_EQ(0, Counted("MessageBoxW")) << fault;
        LetGo();
    }
    void ExpectToldAndNotOpened(const Box& box) {
        Program program = Launch();
        AnswerMessage(box);
        ExpectTab("Storage file");  // one is to be chosen
        CloseMainDialog();
        EXPECT_EQ(0, program.ExitCode());
    }
    void MakeStorage() { ASSERT_EQ(0, BackUp()); }
};

TEST_F(LaunchTest, NoCommandLineIsInteractive) {
    ExpectInteractive("");
    EXPECT_EQ(Numbers(), States());
}

TEST_F(LaunchTest, AChangedClockOrZoneOnlyMovesTheDailyNotificationOn) {
    BackUp();  // registers the notifications
    for (const char* argument : {"TolvenarRunAfterTimeChange", "TolvenarRunAfterTzChange"}) {
        device().Set("clock", "2026-11-18T10:00:00");
        EXPECT_EQ(0, Run(argument)) << argument;
        EXPECT_EQ((Texts{"TolvenarRunAfterTimeChange", "TolvenarRunAtTime 2026-11-19T09:30:00"}),
                  Notifications())
            << argument;
        device().Set("clock", "2026-11-16T09:00:00");
    }
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(LaunchTest, TheDailyTimeBacksUpAndNamesItself) {
    ExpectPrompt("TolvenarRunAtTime", "Schedule", IDOK);
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_TRUE(HasState("AutoBackup: Time"));
}

TEST_F(LaunchTest, ACancelledPromptLeavesWithoutABackup) {
    ExpectPrompt("TolvenarRunAtTime", "Schedule", IDCANCEL);
    EXPECT_EQ(Numbers(), States());
}

TEST_F(LaunchTest, ADailyTimeOfAnotherHourIsDropped) {
    SetDailyTime(8, 30);
    device().Set("clock", "2026-11-16T09:05:00");
    ExpectDropped("TolvenarRunAtTime");
}

TEST_F(LaunchTest, TheDailyTimeIsABatteryCheckWhileTheDailyBackupIsOff) {
    SetDword("onTime", 0);
    SetBattery(20);
    ExpectPrompt("TolvenarRunAtTime", "Battery Low", IDCANCEL);
    SetBattery(80);
    ExpectDropped("TolvenarRunAtTime");
}

TEST_F(LaunchTest, ALowBatteryBacksUpAndNamesItself) {
    SetBattery(12);
    ExpectPrompt("TolvenarRunAtAcPowerOff", "Battery Low", IDOK);
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_TRUE(HasState("AutoBackup: Battery Low"));
}

TEST_F(LaunchTest, TheBatteryIsLowFromSixToTwentyNinePerCent) {
    for (const int percent : {6, 29}) {
        SetBattery(percent);
        ExpectPrompt("TolvenarRunAfterWakeup", "Battery Low", IDCANCEL);
    }
    for (const int percent : {5, 30}) {
        SetBattery(percent);
        ExpectDropped("TolvenarRunAfterWakeup");
    }
}

TEST_F(LaunchTest, OnMainsOrHighOrUnreadableTheBatteryIsNoReason) {
    SetBattery(12, 1);
    ExpectDropped("TolvenarRunAtAcPowerOff");
    SetBattery(12);
    device().Set("power.ac", "1");
    ExpectDropped("TolvenarRunAtAcPowerOff");
    SetBattery(12);
    device().Set("power.present", "0");
    ExpectDropped("TolvenarRunAtAcPowerOff");
}

TEST_F(LaunchTest, AnUnknownBatteryIsReadAgainFiveTimes) {
    SetBattery(12, 255);
    device().Set("sleep.scale", "100");
    ExpectDropped("TolvenarRunAtAcPowerOff");
    EXPECT_EQ(6, Counted("GetSystemPowerStatusEx"));
}

TEST_F(LaunchTest, OneOfTwoScheduledLaunchesWorks) {
    Program first = Launch("TolvenarRunAtTime");
    ASSERT_TRUE(PromptAppears());
    SetBattery(12);
    device().Set("clock", "2026-11-16T09:10:00");
    EXPECT_EQ(0, Run("TolvenarRunAtTime"));
    EXPECT_EQ(0, Run("TolvenarRunAtAcPowerOff"));
    EXPECT_EQ(1u, WindowCount("Dialog", "Autobackup"));
    Press(IDOK);
    EXPECT_EQ(0, first.ExitCode());
    EXPECT_EQ(Numbers{1}, States());
}

// Also when it came up with the dialog.
TEST_F(LaunchTest, AScheduledLaunchHoldsTheMutexToItsEnd) {
    DeleteSetting("StorageFile");
    device().Set("sleep.scale", "100");
    Program first = Launch("TolvenarRunAtTime");
    ASSERT_TRUE(MainDialogAppears(first.pid()));
    device().Set("clock", "2026-11-16T09:10:00");
    ExpectDropped("TolvenarRunAtTime");
    EXPECT_TRUE(first.Runs());
    CloseMainDialog();
    EXPECT_EQ(0, first.ExitCode());
}

TEST_F(LaunchTest, OtherLaunchesDoNotAskForTheMutex) {
    Program scheduled = Launch("TolvenarRunAtTime");
    ASSERT_TRUE(PromptAppears());
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_TRUE(scheduled.Runs());
}

TEST_F(LaunchTest, AnotherProgramsBackupNeedsNoPrompt) {
    Ask("counters clear");
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(0, Counted("SetTimer"));
    EXPECT_TRUE(HasState("AutoBackup: External"));
}

TEST_F(LaunchTest, AnythingElseIsInteractive) {
    for (const char* text : {"tolvenarrunattime", "TolvenarRunAtTime ", "\"TolvenarRunAtTime\"",
                             "autobackup: external", "AutoBackup: External now"}) {
        ExpectInteractive(text);
    }
    EXPECT_EQ(Numbers(), States());
}

TEST_F(LaunchTest, ATextThatIsTooLongIsInteractive) {
    ExpectInteractive("AutoBackup: External" + std::string(400, 'x'));
}

TEST_F(LaunchTest, WithoutAChosenStorageABackupTurnsInteractive) {
    DeleteSetting("StorageFile");
    for (const char* text : {"AutoBackup: External", "TolvenarRunAtTime"}) {
        device().Set("sleep.scale", "100");
        ExpectInteractive(text);
    }
}

TEST_F(LaunchTest, WithoutAChosenStorageARestoreEndsQuietly) {
    DeleteSetting("StorageFile");
    Ask("counters clear");
    EXPECT_EQ(1, RestoreLast());
    EXPECT_EQ(0, Counted("MessageBoxW"));
}

TEST_F(LaunchTest, WithoutAnyHeapALaunchForAReasonEndsWithoutAWord) {
    ExpectFailure(1, "AutoBackup: External", "HeapCreate 1 2 8");
    ExpectFailure(1, "TolvenarRunAtTime", "HeapCreate 1 2 8");
    EXPECT_EQ(Numbers(), States());
}

TEST_F(LaunchTest, WithoutAnyHeapTheUserIsTold) {
    Ask("fault HeapCreate 1 2 8");
    Program program = Launch();
    AnswerMessage(
        {"Not enough memory to start operation. You need to free at least the 8.0 Mb of "
         "the device memory.",
         kErrorBox});
    EXPECT_EQ(1, program.ExitCode());
}

TEST_F(LaunchTest, OnAFullDeviceTheHeapBeginsEmpty) {
    device().Set("heap.first", "4000000");
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers{1}, States());
    ExpectInteractive("");
}

// Then the end of the first thread is the program's.
TEST_F(LaunchTest, ADeviceThatRefusesAProgramItsEndIsLeftAllTheSame) {
    device().Set("terminate.self", "nothing");
    Program backup = Launch("AutoBackup: External");
    EXPECT_EQ(0, backup.ExitCode());
    EXPECT_EQ(Numbers{1}, States());
    ExpectInteractive("");
}

TEST_F(LaunchTest, AWindowOrThreadThatCannotBeMadeEndsTheStart) {
    for (const char* fault : {"RegisterClassW 1 8", "RegisterClassW 2 8", "CreateWindowExW 1 8",
                              "CreateThread 1 8", "CreateDialogIndirectParamW 1 8"}) {
        ExpectFailure(1, "", fault);
    }
}

TEST_F(LaunchTest, AnUnreadableJournalEndsEveryStart) {
    MakeStorage();
    const std::string storage = device().FileBytes(kStorageFile);
    const auto lock = device().Lock(kJournalFile);
    for (const char* text : {"AutoBackup: External", "AutoRestore: Last State"}) {
        Ask("counters clear");
        Program program = Launch(text);
        EXPECT_EQ(1, program.ExitCode()) << text;
        EXPECT_EQ(0, Counted("MessageBoxW")) << text;
    }
    Program program = Launch();
    AnswerMessage(UnreadableJournal("\\Storage Card\\Tolvenar\\Backup.jrn"));
    EXPECT_EQ(1, program.ExitCode());
    EXPECT_EQ(storage, device().FileBytes(kStorageFile));
}

TEST_F(LaunchTest, AStorageThatCannotBeCreatedEndsTheBackup) {
    Ask("fault CreateFileW 2 1 5 Backup.sav");
    EXPECT_EQ(1, BackUp());
}

TEST_F(LaunchTest, AStorageOfAnotherDeviceIsToldAndNotOpened) {
    MakeStorage();
    device().Set("processor", "10005");
    ExpectToldAndNotOpened(kOtherDevice);
}

TEST_F(LaunchTest, AStorageOfRevisionZeroIsToldAndNotOpened) {
    constexpr std::size_t kFormatRevision = 216;
    MakeStorage();
    std::string storage = device().FileBytes(kStorageFile);
    storage[kFormatRevision] = 0;
    device().PutFile(kStorageFile, storage);
    ExpectToldAndNotOpened(kOtherVersion);
}

TEST_F(LaunchTest, AnyOtherStorageThatCannotBeOpenedIsNoMessage) {
    MakeStorage();
    const auto lock = device().Lock(kStorageFile);
    Ask("counters clear");
    ExpectInteractive("");
    EXPECT_EQ(0, Counted("MessageBoxW"));
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(LaunchTest, ClosingArmsTheNotificationsAndStartsTheAgent) {
    ExpectInteractive("");
    EXPECT_EQ((Texts{"TolvenarRunAfterTimeChange", "TolvenarRunAtTime 2026-11-16T09:30:00"}),
              Notifications());
    EXPECT_EQ(Texts{kAgentPath}, Running());
}

}  // namespace
}  // namespace tests
