// A device that is left alone: its notifications start the agent, the agent the program, the
// program backs up and arms the next day's notification.
#include <cstdio>

#include "tests/e2e/launch_fixture.h"

namespace tests {
namespace {

class MonthTest : public LaunchFixture {
protected:
    void SetUp() override {
        LaunchFixture::SetUp();
        device().Set("zone", "CET-1CEST,M3.5.0/2,M10.5.0/3");
        device().Set("sleep.scale", "500");
        // The starts are counted: none comes twice.
        device().Set("notification.early", "0");
    }
    // Registers the notifications of these settings; the device then rests.
    void Arm(const std::string& time, unsigned on_time, unsigned on_battery) {
        device().Set("clock", time);
        SetDword("onTime", on_time);
        SetDword("onBattery", on_battery);
        SetDailyTime(21, 30);
        ASSERT_EQ(0, BackUp());
    }
    // The day of March; what is behind its end is in April.
    static std::string Date(int day) {
        char text[16];
        std::snprintf(text, sizeof text, "2027-%02d-%02d", day > 31 ? 4 : 3,
                      day > 31 ? day - 31 : day);
        return text;
    }
    void Change() { device().PutFile(kNote, std::string(++changes_, 'x')); }
    // All that was started has ended, but for the agent, which stays and does nothing.
    void ExpectRest() { EXPECT_SOON(!IsRunning("Tolvenar.exe") && !IsRunning("CloseOther.exe")); }
    void ExpectReached(const Numbers& states) {
        EXPECT_SOON_EQ(states, States());
        ExpectRest();
    }
    std::string Daily() {
        const std::string name = "TolvenarRunAtTime ";
        for (const std::string& text : Notifications()) {
            if (text.compare(0, name.size(), name) == 0) {
                return text.substr(name.size());
            }
        }
        return "";
    }

    // From the 5th of March on: each evening's start is met, and what it made is added to `states`.
    void PassFourWeeks(Numbers& states) {
        bool is_late = false;
        for (int day = 5; day <= 33; day += 4) {
            // The days in between have nothing to back up but what a missed evening left over.
            EXPECT_EQ(day == 5 ? 0u : 3u, Ask("tick " + Date(day) + "T12:00:00").size()) << day;
            if (is_late) {
                states.push_back(static_cast<int>(states.size()) + 1);
            }
            ASSERT_EQ(states, States()) << day;
            Change();
            // One evening the device is off, and comes back when the time is long past.
            is_late = day == 17;
            if (is_late) {
                device().Set("clock", Date(day) + "T23:10:00");
            } else {
                states.push_back(static_cast<int>(states.size()) + 1);
            }
            EXPECT_EQ(1u, Ask("tick " + Date(day) + "T23:11:00").size()) << day;
            ASSERT_EQ(states, States()) << day;
            ASSERT_EQ(Date(day + 1) + "T21:30:00", Daily());
        }
    }

    std::size_t changes_ = 0;
};

TEST_F(MonthTest, TheDailyTimeBacksUpEveryDayOfAMonth) {
    Arm("2027-03-05T12:00:00", 1, 1);  // the clock goes forward on the 28th
    Numbers states = {1};
    PassFourWeeks(states);
    ASSERT_FALSE(HasFatalFailure());
    EXPECT_TRUE(HasState("AutoBackup: Time"));

    // The battery runs low when the mains goes.
    Change();
    SetBattery(20);
    Ask("fire TolvenarRunAtAcPowerOff");
    states.push_back(static_cast<int>(states.size()) + 1);
    ExpectReached(states);
    EXPECT_TRUE(HasState("AutoBackup: Battery Low"));

    // The clock is set back.
    device().Set("clock", "2027-04-01T12:00:00");
    Ask("fire TolvenarRunAfterTimeChange");
    EXPECT_SOON_EQ("2027-04-01T21:30:00", Daily());
    ExpectRest();

    // Other programs ask in between; the schedule stands afterwards.
    const std::string armed = Daily();
    Change();
    EXPECT_EQ(0, BackUp());
    const std::string content = device().FileBytes(kNote);
    device().Remove(kNote);
    EXPECT_EQ(0, RestoreLast());
    EXPECT_EQ(content, device().FileBytes(kNote));
    EXPECT_EQ(armed, Daily());
}

TEST_F(MonthTest, ALowBatteryBacksUpWhenPowerGoesOrTheDeviceWakes) {
    Arm("2027-03-05T12:00:00", 0, 1);
    SetBattery(20);
    Change();
    Ask("fire TolvenarRunAtAcPowerOff");
    ExpectReached({1, 2});
    Change();
    Ask("fire TolvenarRunAfterWakeup");
    ExpectReached({1, 2, 3});
    EXPECT_TRUE(HasState("AutoBackup: Battery Low"));
    EXPECT_EQ(4u, Notifications().size());
}

TEST_F(MonthTest, AChangedClockMovesTheDailyTimeOn) {
    Arm("2027-03-05T12:00:00", 1, 0);
    device().Set("clock", "2027-03-20T12:00:00");
    Ask("fire TolvenarRunAfterTimeChange");
    EXPECT_SOON_EQ("2027-03-20T21:30:00", Daily());
    ExpectRest();
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(MonthTest, NothingRunsWhileNoNotificationIsDue) {
    Arm("2027-03-05T12:00:00", 1, 1);
    ExpectRest();
    Ask("counters clear");
    EXPECT_EQ(Json::array(), Ask("tick 2027-03-05T21:29:00"));
    Pause(300);
    EXPECT_EQ(Texts(), Running());
    for (const char* call : {"CreateProcessW", "GetMessageW", "Sleep", "FindWindowW"}) {
        EXPECT_EQ(0, Counted(call)) << call;
    }
}

TEST_F(MonthTest, AnAgentThatStaysDoesNothing) {
    Ask("start " + kAgentPath);
    // Its window is there a moment before it waits for messages.
    ASSERT_SOON(Counted("GetMessageW") == 1);
    ASSERT_EQ(1u, WindowCount("TolvenarAgentClass"));
    Ask("counters clear");
    Pause(300);
    EXPECT_EQ(0, Counted("SetTimer"));
    EXPECT_EQ(0, Counted("Sleep"));
    EXPECT_EQ(0, Counted("GetMessageW"));
}

// The saved schedule lives in the process alone.
TEST_F(MonthTest, AProgramThatDiesInABackupLeavesTheScheduleOff) {
    Arm("2027-03-05T12:00:00", 1, 1);
    Change();
    Ask("crash WriteFile 2");  // the first writes the line of the log that each start leaves
    EXPECT_EQ(205, BackUp());
    for (const char* name : {"onTime", "onBattery", "WakeUpTime"}) {
        EXPECT_EQ(0u, Dword(name)) << name;
    }
    EXPECT_EQ(Texts(), Notifications());
}

TEST_F(MonthTest, AFailedBackupPutsTheScheduleBack) {
    Arm("2027-03-05T12:00:00", 1, 1);
    DeleteSetting("onBattery");
    Change();
    device().Fault("WriteFile", 1, 100000, 5);
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(1u, Dword("onTime"));
    EXPECT_EQ(0u, Dword("onBattery"));  // absent before
    EXPECT_EQ(30u << 16 | 21, Dword("WakeUpTime"));
    EXPECT_EQ("2027-03-05T21:30:00", Daily());
}

TEST_F(MonthTest, AScheduleThatCannotBeTakenOffStopsTheBackupAndIsPutBack) {
    Arm("2027-03-05T12:00:00", 1, 1);
    Change();
    device().Fault("CeClearUserNotification", 1, 1, 5);
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_EQ(1u, Dword("onTime"));
    EXPECT_EQ(4u, Notifications().size());
}

TEST_F(MonthTest, ARestoreThatFailsPutsTheScheduleBack) {
    Arm("2027-03-05T12:00:00", 1, 1);
    device().Fault("CreateFileForMappingW", 1, 100000, 5);
    device().PutFile(L"\\My Documents\\New.txt", "new");
    Program program = Launch("AutoRestore: Last State");
    EXPECT_SOON(BoxIsUp() || !program.Runs());
    if (program.Runs()) {
        Press(IDOK);
    }
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ(1u, Dword("onTime"));
    EXPECT_EQ(1u, Dword("onBattery"));
    EXPECT_EQ(4u, Notifications().size());
}

}  // namespace
}  // namespace tests
