// The Options page: what it shows, what it writes and when the automatic backup follows.
#include "platform/win32.h"

#include "tests/ui/ui_test.h"

namespace {

using Json = nlohmann::json;

constexpr int kTime = 1062, kHint = 1066, kBar = 1067, kLabel = 1068;
const std::string kSettings = "HKCU\\Software\\Kestrin2\\Tolvenar";

struct Switch {
    int id;
    const char* setting;
    const char* text;
};
constexpr Switch kSwitches[] = {
    {1060, "onTime", "every &day at"},
    {1061, "onBattery", "at &battery low"},
    {1063, "AdvancedTreeView", "Ad&vanced difference tree"},
    {1064, "AdvancedDBRestoring", "Databases in advanced &restore"},
    {1065, "MayDeleteOldStorage", "Delete &old storage on a full card"},
};

constexpr char kStep[] = ", 1029, ";  // PBM_STEPIT

class OptionsPageTest : public tests::UiTest {
protected:
    void OpenOptions() {
        Open();
        ShowTab("Options");
        EXPECT_TRUE(Eventually([&] { return Sees(kTime); }));
    }
    bool IsChecked(int id) { return Control(id)->at("check") == 1; }
    bool SettingBecomes(const std::string& name, unsigned value) {
        return Eventually([&] { return Dword(name) == value; });
    }
    // Hours and minutes of the picker.
    std::string Time() { return Text(kTime).substr(11, 5); }
    std::string LabelText() { return AnyControl(kLabel)->at("text"); }
    int BarPosition() { return AnyControl(kBar)->at("position"); }
    std::size_t Ticks() { return Calls("SendMessageW", kStep); }
    // What a countdown does, in order; a step of the bar with the position that it left.
    std::vector<std::string> Countdown() {
        std::vector<std::string> steps;
        for (const Json& call : Ask("trace show")) {
            const std::string function = call["function"];
            const std::string arguments = call["arguments"];
            const auto has = [&](const char* text) {
                return arguments.find(text) != std::string::npos;
            };
            if (function == "SetWindowTextW" && (has("update:") || has("ready:"))) {
                steps.push_back(has("update:") ? "update:" : "ready:");
            } else if (function == "SendMessageW" && has(kStep)) {
                steps.push_back("bar " + call["result"].get<std::string>());
            } else if (function == "CreateProcessW") {
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
    Json OwnSettings() {
        const Json dump = Ask("dump");
        for (const Json& key : dump["registry"]) {
            if (key["key"] == kSettings) {
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
        EXPECT_TRUE(SettingBecomes(row.setting, 1)) << row.setting;
        for (const Switch& other : kSwitches) {
            EXPECT_EQ(other.id == row.id ? 1u : 0u, Dword(other.setting).value_or(0))
                << row.setting << " " << other.setting;
        }
        Press(row.id);
        EXPECT_TRUE(SettingBecomes(row.setting, 0)) << row.setting;
    }
    EXPECT_EQ(0x001E0007u, Dword("WakeUpTime"));
}

TEST_F(OptionsPageTest, ThePickerShowsTheWakeUpTimeOfToday) {
    SetDword("WakeUpTime", 0x001E0007);
    OpenOptions();
    EXPECT_EQ("2026-11-16T07:30:00", Text(kTime));
    EXPECT_EQ(1u, Calls("SendMessageW", ", 4146, "));  // DTM_SETFORMATW: it shows no seconds
}

TEST_F(OptionsPageTest, WithoutAWakeUpTimeThePickerShowsMidnight) {
    Ask("reg-delete " + kSettings + " WakeUpTime");
    OpenOptions();
    EXPECT_EQ("00:00", Time());
}

// Its window text is the time; the title stands in the program's resources.
TEST_F(OptionsPageTest, ThePickerIsTitledTime) {
    const std::string program = device().FileBytes(L"\\Program Files\\Tolvenar\\Tolvenar.exe");
    std::string title;
    for (const char c : std::string("SYSDATETIMEPICK32\0Time", 22)) {
        title += {c, '\0'};
    }
    EXPECT_NE(std::string::npos, program.find(title + std::string(2, '\0')));
}

TEST_F(OptionsPageTest, ANewTimeIsWrittenAtOnceAndStartsNoCountdown) {
    OpenOptions();
    Type(kTime, "21:45");
    EXPECT_TRUE(SettingBecomes("WakeUpTime", 0x002D0015));
    EXPECT_EQ("ready:", LabelText());
    EXPECT_EQ(0u, AgentStarts());
    Keys("ctrl+q");
    ExpectEnd();
    EXPECT_EQ(1u, AgentStarts());
}

TEST_F(OptionsPageTest, ANewTimeAppliesAPendingChange) {
    OpenOptionsWithoutCountdown();
    Press(1060);
    EXPECT_TRUE(SettingBecomes("onTime", 1));
    Type(kTime, "21:45");
    EXPECT_TRUE(SettingBecomes("WakeUpTime", 0x002D0015));
    EXPECT_TRUE(Eventually([&] { return AgentStarts() == 1; }));
    EXPECT_EQ(0u, Ticks());
    const Json notifications = Ask("notifications");
    ASSERT_EQ(2u, notifications.size());
    EXPECT_NE(std::string::npos, notifications.dump().find("T21:45:00")) << notifications;
}

TEST_F(OptionsPageTest, AChangeIsAppliedAfterThreeSecondsOutOfSight) {
    Ask("set sleep.scale 4");
    OpenOptions();
    EXPECT_EQ("ready:", LabelText());
    EXPECT_EQ(0, BarPosition());
    Ask("trace on");
    Press(1060);
    EXPECT_TRUE(Eventually([&] { return AgentStarts() == 1 && LabelText() == "ready:"; }));
    EXPECT_EQ((std::vector<std::string>{"update:", "bar 0", "bar 1", "bar 2", "agent", "ready:"}),
              Countdown());
    EXPECT_EQ(0, BarPosition());
    EXPECT_EQ(2u, Ask("notifications").size());
    EXPECT_FALSE(Sees(kBar));
    EXPECT_FALSE(Sees(kLabel));
}

TEST_F(OptionsPageTest, AChangeThatIsUndoneAppliesNothing) {
    OpenOptionsWithoutCountdown();
    Press(1061);
    EXPECT_TRUE(Eventually([&] { return LabelText() == "update:"; }));
    Press(1061);
    EXPECT_TRUE(Eventually([&] { return LabelText() == "ready:"; }));
    ShowTab("Backup");
    EXPECT_EQ(0u, AgentStarts());
    EXPECT_EQ(0u, Ask("notifications").size());
}

TEST_F(OptionsPageTest, LeavingThePageAppliesAtOnce) {
    OpenOptionsWithoutCountdown();
    Press(1061);
    EXPECT_TRUE(SettingBecomes("onBattery", 1));
    ShowTab("About");
    EXPECT_TRUE(Eventually([&] { return AgentStarts() == 1; }));
    EXPECT_EQ(0u, Ticks());
    EXPECT_EQ(4u, Ask("notifications").size());
}

// Once for the pending change, once because the agent always runs when the program has ended; on
// purpose.
TEST_F(OptionsPageTest, ClosingWithAPendingChangeStartsTheAgentTwice) {
    OpenOptionsWithoutCountdown();
    Press(1060);
    EXPECT_TRUE(SettingBecomes("onTime", 1));
    EXPECT_EQ(0u, AgentStarts());
    Keys("ctrl+q");
    ExpectEnd();
    EXPECT_EQ(2u, AgentStarts());
    EXPECT_EQ(2u, Ask("notifications").size());
}

// Another copy takes over: the main window alone is told to close.
TEST_F(OptionsPageTest, ATakeOverAppliesAPendingChange) {
    OpenOptionsWithoutCountdown();
    Press(1061);
    EXPECT_TRUE(SettingBecomes("onBattery", 1));
    ::PostMessageW(::FindWindowW(L"TolvenarClass", nullptr), WM_CLOSE, 0, 0);
    ExpectEnd();
    EXPECT_EQ(0u, Ticks());
    EXPECT_EQ(2u, AgentStarts());
    EXPECT_EQ(4u, Ask("notifications").size());
}

TEST_F(OptionsPageTest, TheHintIsThereWhileNothingIsAutomatic) {
    OpenOptions();
    EXPECT_EQ("Automatic backup is off.", Text(kHint));
    EXPECT_TRUE(Control(kHint)->at("enabled"));
    for (const int id : {1060, 1061}) {
        Press(id);
        EXPECT_TRUE(Eventually([&] { return !Sees(kHint); })) << id;
        EXPECT_FALSE(AnyControl(kHint)->at("enabled"));
        Press(id);
        EXPECT_TRUE(Eventually([&] { return Sees(kHint); })) << id;
    }
}

TEST_F(OptionsPageTest, TheHiddenStatusLeavesNoHoleBetweenTheOthers) {
    OpenOptions();
    const Json hint = *Control(kHint);
    for (const int id : {kBar, kLabel}) {
        const Json hidden = *AnyControl(id);
        EXPECT_FALSE(hidden["visible"]);
        EXPECT_GE(hidden["top"].get<int>(), hint["top"].get<int>() + hint["height"].get<int>());
    }
}

TEST_F(OptionsPageTest, WithoutThePowerFunctionTheBatterySwitchIsOff) {
    device().Set("power.present", "0");
    OpenOptions();
    EXPECT_FALSE(Control(1061)->at("enabled"));
    EXPECT_TRUE(Control(1060)->at("enabled"));
}

TEST_F(OptionsPageTest, WithoutAnInstallationNothingCanBeChanged) {
    Ask("reg-delete " + kSettings + " onTime");
    const Json before = OwnSettings();
    ASSERT_FALSE(before.is_null());
    OpenOptions();
    for (const Switch& row : kSwitches) {
        EXPECT_FALSE(Control(row.id)->at("enabled")) << row.setting;
    }
    EXPECT_FALSE(Control(kTime)->at("enabled"));
    EXPECT_FALSE(Control(kHint)->at("enabled"));
    for (const char* keys : {"alt+d", "alt+b", "alt+v", "alt+r", "alt+o", "ctrl+q"}) {
        Keys(keys);
    }
    ExpectEnd();
    EXPECT_EQ(before, OwnSettings());
}

TEST_F(OptionsPageTest, ASettingThatCannotBeWrittenIsPassedOver) {
    device().Fault("RegSetValueExW", 1, 1, 5, "onBattery");
    OpenOptions();
    Press(1061);
    EXPECT_TRUE(RulesAreUsedUp());
    Press(1060);
    EXPECT_TRUE(SettingBecomes("onTime", 1));
    EXPECT_NE(1u, Dword("onBattery").value_or(0));
    EXPECT_EQ(0u, BoxCount());
}

// Another program may write settings as well: the page reads them when the dialog comes forward.
TEST_F(OptionsPageTest, AnActivationReadsTheSettingsAgain) {
    OpenOptions();
    SetDword("onBattery", 1);
    SetDword("WakeUpTime", 0x000F0006);
    EXPECT_FALSE(IsChecked(1061));
    ::PostMessageW(::FindWindowW(L"Dialog", L"Tolvenar"), WM_ACTIVATE, WA_ACTIVE, 0);
    EXPECT_TRUE(Eventually([&] { return IsChecked(1061); }));
    EXPECT_EQ("06:15", Time());
    EXPECT_FALSE(Sees(kHint));
}

// The picker tells of more than a change; that it got the keyboard is none.
TEST_F(OptionsPageTest, GoingToThePickerAppliesNothing) {
    OpenOptionsWithoutCountdown();
    Keys("alt+d");
    EXPECT_TRUE(Eventually([&] { return LabelText() == "update:"; }));
    Keys("tab");
    EXPECT_TRUE(Eventually([&] { return Control(kTime)->at("focused") == true; }));
    EXPECT_EQ("update:", LabelText());
    EXPECT_EQ(0u, AgentStarts());
}

TEST_F(OptionsPageTest, AShownPageReadsTheSettingsAgain) {
    OpenOptions();
    ShowTab("About");
    SetDword("onBattery", 1);
    SetDword("WakeUpTime", 0x000F0006);
    ShowTab("Options");
    EXPECT_TRUE(Eventually([&] { return Sees(kTime) && IsChecked(1061); }));
    EXPECT_EQ("06:15", Time());
}

}  // namespace
