// The Options page: what it shows, what it writes and when the automatic backup follows.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

struct Switch {
    int id;
    const char* setting;
    const char* text;
};
constexpr Switch kSwitches[] = {
    {IDC_ON_TIME, "onTime", "every &day at"},
    {IDC_ON_BATTERY, "onBattery", "at &battery low"},
    {IDC_ADVANCED_TREE, "AdvancedTreeView", "&Advanced difference tree"},
    {IDC_RESTORE_DATABASES, "AdvancedDBRestoring", "Databases in advanced &restore"},
    {IDC_DELETE_OLD_STORAGE, "MayDeleteOldStorage", "Delete &old storage on a full card"},
};

constexpr char kStep[] = ", 1029, ";  // PBM_STEPIT

class OptionsPageTest : public UiTest {
protected:
    void OpenOptions() { OpenOn("Options"); }
    // Hours and minutes of the picker.
    std::string Time() {
        const std::string text = Text(IDC_TIME);  // "2026-11-16T07:30:00"
        return text.size() > 16 ? text.substr(11, 5) : text;
    }
    std::string LabelText() { return AnyControl(IDC_AGENT_LABEL).text; }
    int BarPosition() { return AnyControl(IDC_AGENT_BAR).position.value_or(-1); }
    std::size_t Ticks() { return Calls("SendMessageW", kStep); }
    // What a countdown does, in order; a step of the bar with the position that it left.
    Texts Countdown() {
        Texts steps;
        for (const Call& call : Traced()) {
            const bool is_update = call.Has("update:");
            if (call.function == "SetWindowTextW" && (is_update || call.Has("ready:"))) {
                steps.push_back(is_update ? "update:" : "ready:");
            } else if (call.function == "SendMessageW" && call.Has(kStep)) {
                steps.push_back("bar " + call.result);
            } else if (call.function == "CreateProcessW") {
                steps.push_back("agent");
            }
        }
        return steps;
    }
    // The change stays pending until something else than its time applies it.
    void OpenOptionsWithoutCountdown() {
        Ask("set sleep.scale 0");
        OpenOptions();
    }
    void OpenWithPendingChange(int id, const std::string& setting) {
        OpenOptionsWithoutCountdown();
        Press(id);
        EXPECT_SOON_EQ(1u, Dword(setting));
    }
    Json OwnSettings() {
        const Json dump = Ask("dump");
        for (const Json& key : dump["registry"]) {
            if (key["key"] == kSettingsKey) {
                return key;
            }
        }
        return {};
    }
};

TEST_F(OptionsPageTest, EachSwitchShowsItsSetting) {
    for (const Switch& row : kSwitches) {
        SetDword(row.setting, row.id % 2 == 0 ? 1 : 0);
    }
    OpenOptions();
    for (const Switch& row : kSwitches) {
        EXPECT_EQ(row.id % 2 == 0, IsChecked(row.id)) << row.setting;
        EXPECT_EQ(row.text, Text(row.id));
    }
}

TEST_F(OptionsPageTest, EachSwitchWritesItsSettingAlone) {
    SetDword("WakeUpTime", 0x001E0007);
    OpenOptions();
    for (const Switch& row : kSwitches) {
        Press(row.id);
        EXPECT_SOON_EQ(1u, Dword(row.setting)) << row.setting;
        for (const Switch& other : kSwitches) {
            EXPECT_EQ(other.id == row.id ? 1u : 0u, Dword(other.setting).value_or(0))
                << row.setting << " " << other.setting;
        }
        Press(row.id);
        EXPECT_SOON_EQ(0u, Dword(row.setting)) << row.setting;
    }
    EXPECT_EQ(0x001E0007u, Dword("WakeUpTime"));
}

TEST_F(OptionsPageTest, ThePickerShowsTheWakeUpTimeOfToday) {
    SetDword("WakeUpTime", 0x001E0007);
    OpenOptions();
    EXPECT_EQ("2026-11-16T07:30:00", Text(IDC_TIME));
    EXPECT_EQ(1u, Calls("SendMessageW", ", 4176, "));  // DTM_SETFORMATW: it shows no seconds
}

TEST_F(OptionsPageTest, WithoutAWakeUpTimeThePickerShowsMidnight) {
    DeleteSetting("WakeUpTime");
    OpenOptions();
    EXPECT_EQ("00:00", Time());
}

// Its window text is the time; the title stands in the program's resources.
TEST_F(OptionsPageTest, ThePickerIsTitledTime) {
    const std::string program = device().FileBytes(kProgramPath);
    std::string title;
    for (const char c : std::string("SYSDATETIMEPICK32\0Time", 22)) {
        title += {c, '\0'};
    }
    EXPECT_NE(std::string::npos, program.find(title + std::string(2, '\0')));
}

TEST_F(OptionsPageTest, ANewTimeIsWrittenAtOnceAndStartsNoCountdown) {
    OpenOptions();
    Type(IDC_TIME, "21:45");
    EXPECT_SOON_EQ(0x002D0015u, Dword("WakeUpTime"));
    EXPECT_EQ("ready:", LabelText());
    EXPECT_EQ(0u, AgentStarts());
    Keys("ctrl+q");
    ExpectEnd();
    EXPECT_EQ(1u, AgentStarts());
}

TEST_F(OptionsPageTest, ANewTimeAppliesAPendingChange) {
    OpenWithPendingChange(IDC_ON_TIME, "onTime");
    Type(IDC_TIME, "21:45");
    EXPECT_SOON_EQ(0x002D0015u, Dword("WakeUpTime"));
    EXPECT_SOON_EQ(1u, AgentStarts());
    EXPECT_EQ(0u, Ticks());
    const Json notifications = Await([&] { return Ask("notifications"); },
                                     [](const Json& all) { return all.size() == 2; });
    EXPECT_NE(std::string::npos, notifications.dump().find("T21:45:00")) << notifications;
}

TEST_F(OptionsPageTest, AChangeIsAppliedAfterThreeSecondsOutOfSight) {
    Ask("set sleep.scale 4");
    OpenOptions();
    EXPECT_EQ("ready:", LabelText());
    EXPECT_EQ(0, BarPosition());
    Ask("trace on");
    Press(IDC_ON_TIME);
    EXPECT_SOON(AgentStarts() == 1 && LabelText() == "ready:");
    EXPECT_SOON_EQ((Texts{"update:", "bar 0", "bar 1", "bar 2", "agent", "ready:"}), Countdown());
    EXPECT_SOON_EQ(0, BarPosition());
    EXPECT_SOON_EQ(2u, Ask("notifications").size());
    EXPECT_FALSE(Sees(IDC_AGENT_BAR));
    EXPECT_FALSE(Sees(IDC_AGENT_LABEL));
}

TEST_F(OptionsPageTest, AChangeThatIsUndoneAppliesNothing) {
    OpenOptionsWithoutCountdown();
    Press(IDC_ON_BATTERY);
    EXPECT_SOON_EQ("update:", LabelText());
    Press(IDC_ON_BATTERY);
    EXPECT_SOON_EQ("ready:", LabelText());
    ShowTab("Backup");
    EXPECT_EQ(0u, AgentStarts());
    EXPECT_EQ(0u, Ask("notifications").size());
}

TEST_F(OptionsPageTest, LeavingThePageAppliesAtOnce) {
    OpenWithPendingChange(IDC_ON_BATTERY, "onBattery");
    ShowTab("About");
    EXPECT_SOON_EQ(1u, AgentStarts());
    EXPECT_EQ(0u, Ticks());
    EXPECT_SOON_EQ(4u, Ask("notifications").size());
}

// Once for the pending change, once because the agent always runs when the program has ended; on
// purpose.
TEST_F(OptionsPageTest, ClosingWithAPendingChangeStartsTheAgentTwice) {
    OpenWithPendingChange(IDC_ON_TIME, "onTime");
    EXPECT_EQ(0u, AgentStarts());
    Keys("ctrl+q");
    ExpectEnd();
    EXPECT_EQ(2u, AgentStarts());
    EXPECT_SOON_EQ(2u, Ask("notifications").size());
}

// Another copy takes over: the main window alone is told to close.
TEST_F(OptionsPageTest, ATakeOverAppliesAPendingChange) {
    OpenWithPendingChange(IDC_ON_BATTERY, "onBattery");
    ::PostMessageW(MainWindow(), WM_CLOSE, 0, 0);
    ExpectEnd();
    EXPECT_EQ(0u, Ticks());
    EXPECT_EQ(2u, AgentStarts());
    EXPECT_SOON_EQ(4u, Ask("notifications").size());
}

TEST_F(OptionsPageTest, TheHintIsThereWhileNothingIsAutomatic) {
    OpenOptions();
    EXPECT_EQ("Automatic backup is off.", Text(IDC_AUTOMATIC_OFF_HINT));
    EXPECT_TRUE(AnyControl(IDC_AUTOMATIC_OFF_HINT).enabled);
    for (const int id : {IDC_ON_TIME, IDC_ON_BATTERY}) {
        Press(id);
        EXPECT_SOON(!Sees(IDC_AUTOMATIC_OFF_HINT)) << id;
        EXPECT_SOON(!AnyControl(IDC_AUTOMATIC_OFF_HINT).enabled);
        Press(id);
        EXPECT_SOON(Sees(IDC_AUTOMATIC_OFF_HINT)) << id;
    }
}

TEST_F(OptionsPageTest, TheHiddenStatusLeavesNoHoleBetweenTheOthers) {
    OpenOptions();
    const Window hint = AnyControl(IDC_AUTOMATIC_OFF_HINT);
    for (const int id : {IDC_AGENT_BAR, IDC_AGENT_LABEL}) {
        const Window hidden = AnyControl(id);
        EXPECT_FALSE(hidden.visible);
        EXPECT_GE(hidden.top, hint.top + hint.height);
    }
}

TEST_F(OptionsPageTest, WithoutThePowerFunctionTheBatterySwitchIsOff) {
    device().Set("power.present", "0");
    OpenOptions();
    EXPECT_FALSE(AnyControl(IDC_ON_BATTERY).enabled);
    EXPECT_TRUE(AnyControl(IDC_ON_TIME).enabled);
}

TEST_F(OptionsPageTest, WithoutAnInstallationNothingCanBeChanged) {
    RemoveInstallation();
    const Json before = OwnSettings();
    ASSERT_FALSE(before.is_null());
    OpenOptions();
    for (const Switch& row : kSwitches) {
        EXPECT_FALSE(AnyControl(row.id).enabled) << row.setting;
    }
    EXPECT_FALSE(AnyControl(IDC_TIME).enabled);
    EXPECT_FALSE(AnyControl(IDC_SHOW_REMINDERS).enabled);
    EXPECT_FALSE(AnyControl(IDC_AUTOMATIC_OFF_HINT).enabled);
    for (const char* keys : {"alt+d", "alt+b", "alt+a", "alt+m", "alt+r", "alt+o", "ctrl+q"}) {
        Keys(keys);
    }
    ExpectEnd();
    EXPECT_EQ(before, OwnSettings());
}

TEST_F(OptionsPageTest, ASettingThatCannotBeWrittenIsPassedOver) {
    device().Fault("RegSetValueExW", 1, 1, 5, "onBattery");
    OpenOptions();
    Press(IDC_ON_BATTERY);
    EXPECT_TRUE(RulesAreUsedUp());
    Press(IDC_ON_TIME);
    EXPECT_SOON_EQ(1u, Dword("onTime"));
    EXPECT_NE(1u, Dword("onBattery").value_or(0));
    EXPECT_EQ(0u, BoxCount());
}

// The clock of the device stands at 9 o'clock of November 16.
TEST_F(OptionsPageTest, TheNextBackupIsTheRegisteredOne) {
    SetDword("WakeUpTime", 0x001E0007);
    SetDword("onTime", 1);
    OpenOptions();
    EXPECT_FALSE(Sees(IDC_AUTOMATIC_OFF_HINT));
    EXPECT_SOON_EQ("Next backup: not registered yet", Text(IDC_NEXT_BACKUP));
    Keys("ctrl+q");  // registers it
    ExpectEnd();
    SetDword("WakeUpTime", 0x002D0015);  // another program's: nothing is registered for it yet
    OpenOptions();
    EXPECT_SOON_EQ("Next backup: 11/17/26 7:30 AM", Text(IDC_NEXT_BACKUP));
    Press(IDC_ON_TIME);
    EXPECT_SOON(!Sees(IDC_NEXT_BACKUP));
}

TEST_F(OptionsPageTest, AChangeShowsTheNextBackupWhenItIsApplied) {
    SetDword("WakeUpTime", 0x001E0015);
    Ask("set sleep.scale 4");
    OpenOptions();
    EXPECT_FALSE(Sees(IDC_NEXT_BACKUP));
    Press(IDC_ON_TIME);
    EXPECT_SOON_EQ("Next backup: 11/16/26 9:30 PM", Text(IDC_NEXT_BACKUP));
}

// A time that has passed starts nothing any more.
TEST_F(OptionsPageTest, ARegistrationThatHasPassedIsNone) {
    SetDword("WakeUpTime", 0x001E0007);
    SetDword("onTime", 1);
    OpenOptions();
    Keys("ctrl+q");
    ExpectEnd();
    Ask("set clock 2026-11-19T12:00:00Z");
    OpenOptions();
    EXPECT_SOON_EQ("Next backup: not registered yet", Text(IDC_NEXT_BACKUP));
}

TEST_F(OptionsPageTest, WithTheBatteryAloneTheNextBackupHasNoTime) {
    SetDword("onBattery", 1);
    OpenOptions();
    EXPECT_SOON_EQ("Next backup: at battery low", Text(IDC_NEXT_BACKUP));
}

TEST_F(OptionsPageTest, TheButtonBringsTheRemindersBack) {
    SetDword("Reminders", 2);
    OpenOptions();
    EXPECT_EQ("Some are hidden.", Text(IDC_REMINDERS_HINT));
    Keys("alt+m");
    EXPECT_SOON_EQ(14u, Dword("Reminders"));
    EXPECT_SOON_EQ("All are shown.", Text(IDC_REMINDERS_HINT));
}

// Without the value all are shown; nothing is written before the button is pressed.
TEST_F(OptionsPageTest, WithoutTheSettingAllRemindersAreShown) {
    OpenOptions();
    EXPECT_EQ("All are shown.", Text(IDC_REMINDERS_HINT));
    EXPECT_FALSE(Dword("Reminders").has_value());
}

TEST_F(OptionsPageTest, EachLineSaysWhatItsSwitchMeans) {
    OpenOptions();
    EXPECT_EQ("Shows databases, keys, files in full.", Text(IDC_ADVANCED_TREE_HINT));
    EXPECT_EQ("+ and -- restore databases, too.", Text(IDC_RESTORE_DATABASES_HINT));
    EXPECT_EQ("Close Tolvenar to use a new &time.", Text(IDC_NEW_TIME_HINT));
}

// Another program may write settings as well: the page reads them when the dialog comes forward.
TEST_F(OptionsPageTest, AnActivationReadsTheSettingsAgain) {
    OpenOptions();
    SetDword("onBattery", 1);
    SetDword("WakeUpTime", 0x000F0006);
    EXPECT_FALSE(IsChecked(IDC_ON_BATTERY));
    ::PostMessageW(MainDialog(), WM_ACTIVATE, WA_ACTIVE, 0);
    EXPECT_SOON(IsChecked(IDC_ON_BATTERY));
    EXPECT_SOON_EQ("06:15", Time());
    EXPECT_SOON(!Sees(IDC_AUTOMATIC_OFF_HINT));
}

// The picker tells of more than a change; that it got the keyboard is none.
TEST_F(OptionsPageTest, GoingToThePickerAppliesNothing) {
    OpenOptionsWithoutCountdown();
    Keys("alt+d");
    EXPECT_SOON_EQ("update:", LabelText());
    ExpectFocus("tab", IDC_TIME);
    EXPECT_EQ("update:", LabelText());
    EXPECT_EQ(0u, AgentStarts());
}

TEST_F(OptionsPageTest, AShownPageReadsTheSettingsAgain) {
    OpenOptions();
    ShowTab("About");
    SetDword("onBattery", 1);
    SetDword("WakeUpTime", 0x000F0006);
    ShowTab("Options");
    EXPECT_SOON(Sees(IDC_TIME) && IsChecked(IDC_ON_BATTERY));
    EXPECT_SOON_EQ("06:15", Time());
}

}  // namespace
}  // namespace tests
