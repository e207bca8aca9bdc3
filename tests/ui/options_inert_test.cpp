// The Options page while an operation runs: the schedule belongs to the operation, which has put
// zeros in its place.
#include <map>

#include "tests/support/ui_test.h"

namespace tests {
namespace {

constexpr WPARAM kCountdown = 651211;
constexpr unsigned kHalfPastSeven = 0x001E0007;

class OptionsInertTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("onTime", 1);
        SetDword("WakeUpTime", kHalfPastSeven);
        BackUp();
        device().PutFile(kNote, "hello");
        OpenOn("Options");
        FindControls();
    }
    // Without the list of windows, which asks each for its title: a thread that is held up answers
    // nobody.
    void FindControls() {
        const HWND dialog = MainDialog();
        for (const int id : {IDC_ON_TIME, IDC_ON_BATTERY, IDC_ADVANCED_TREE, IDC_TIME}) {
            HWND page = ::GetWindow(dialog, GW_CHILD);
            while (page != nullptr && ::GetDlgItem(page, id) == nullptr) {
                page = ::GetWindow(page, GW_HWNDNEXT);
            }
            controls_[id] = ::GetDlgItem(page, id);
            ASSERT_NE(nullptr, controls_[id]) << id;
        }
    }
    bool ScheduleIsOff() { return Dword("onTime") == 0u; }
    // As a click does it, without the focus that a disabled dialog does not get.
    void Toggle(HWND box) {
        const LRESULT check = ::SendMessageW(box, BM_GETCHECK, 0, 0);
        ::SendMessageW(box, BM_SETCHECK, check == BST_CHECKED ? BST_UNCHECKED : BST_CHECKED, 0);
        ::SendMessageW(Page(), WM_COMMAND, MAKEWPARAM(::GetDlgCtrlID(box), BN_CLICKED),
                       reinterpret_cast<LPARAM>(box));
    }
    // The timer's messages come from here alone.
    void BeginCountdown() {
        Ask("set sleep.scale 0");
        Press(IDC_ON_BATTERY);
        EXPECT_SOON_EQ(1u, Dword("onBattery"));
    }
    void TickThreeTimes() {
        for (int i = 0; i < 3; ++i) {
            ::SendMessageW(Page(), WM_TIMER, kCountdown, 0);
        }
    }
    HWND Page() { return ::GetParent(controls_[IDC_TIME]); }
    bool HasMark(int id) { return ::SendMessageW(controls_[id], BM_GETCHECK, 0, 0) == BST_CHECKED; }

    std::map<int, HWND> controls_;
};

TEST_F(OptionsInertTest, AnOperationKeepsSwitchesAndTimeAsTheyAreAndReadsNothingAgain) {
    const std::string next_backup = "Next backup: 11/17/26 7:30 AM";
    EXPECT_SOON_EQ(next_backup, AnyControl(IDC_NEXT_BACKUP).text);
    StartHeldBackup();
    for (const int id : {IDC_ON_TIME, IDC_ON_BATTERY, IDC_ADVANCED_TREE}) {
        Toggle(controls_[id]);
    }
    Type(IDC_TIME, "21:45");
    ::SendMessageW(Page(), kActivated, WA_ACTIVE, 0);
    EXPECT_TRUE(HasMark(IDC_ON_TIME));
    EXPECT_FALSE(HasMark(IDC_ON_BATTERY));
    EXPECT_FALSE(HasMark(IDC_ADVANCED_TREE));
    EXPECT_EQ("2026-11-16T07:30:00", AnyControl(IDC_TIME).text);
    EXPECT_EQ(next_backup, AnyControl(IDC_NEXT_BACKUP).text);
    EXPECT_EQ(0u, Dword("onBattery").value_or(0));
    EXPECT_EQ(0u, Dword("WakeUpTime"));
    ASSERT_TRUE(ScheduleIsOff());
    LetGoAndRest();
    EXPECT_EQ(1u, Dword("onTime"));
    EXPECT_EQ(0u, Dword("onBattery").value_or(0));
    EXPECT_EQ(0u, Dword("AdvancedTreeView").value_or(0));
    EXPECT_EQ(kHalfPastSeven, Dword("WakeUpTime"));
}

// The page is made while the registry holds the zeros; the copies of the settings are right.
TEST_F(OptionsInertTest, APageThatIsMadeDuringAnOperationShowsTheSettings) {
    Keys("ctrl+q");
    ExpectEnd();
    Open();
    StartHeldBackup();
    SelectPage(kOptionsTab);
    FindControls();
    EXPECT_TRUE(HasMark(IDC_ON_TIME));
    EXPECT_EQ("2026-11-16T07:30:00", AnyControl(IDC_TIME).text);
    ASSERT_TRUE(ScheduleIsOff());
    LetGoAndRest();
}

// The backup ends with another page, which applies it; what is set then is registered.
TEST_F(OptionsInertTest, ACountdownThatAnOperationMeetsIsAppliedAfterIt) {
    BeginCountdown();
    StartHeldBackup();
    TickThreeTimes();
    EXPECT_EQ(0u, AgentStarts());
    EXPECT_EQ(0u, Ask("notifications").size());
    ASSERT_TRUE(ScheduleIsOff());
    LetGoAndRest();
    EXPECT_SOON_EQ(1u, AgentStarts());
    EXPECT_EQ(1u, Dword("onBattery"));
    EXPECT_SOON_EQ(4u, Ask("notifications").size());
}

TEST_F(OptionsInertTest, APageThatIsLeftDuringAnOperationAppliesNothingYet) {
    BeginCountdown();
    StartHeldBackup();
    SelectPage(kBackupTab);
    EXPECT_FALSE(::IsWindowVisible(Page()));
    EXPECT_EQ(0u, AgentStarts());
    ASSERT_TRUE(ScheduleIsOff());
    LetGoAndRest();
    TickThreeTimes();
    EXPECT_EQ(1u, AgentStarts());
    EXPECT_SOON_EQ(4u, Ask("notifications").size());
}

}  // namespace
}  // namespace tests
