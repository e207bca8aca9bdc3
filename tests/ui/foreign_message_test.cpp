// Messages of other programs in which an address is no address: the program goes on as if nothing
// had come.
#include "simulator/host/inside_program.h"
#include "tests/support/ui_test.h"

namespace tests {
namespace {

constexpr UINT kTakeDescription = WM_APP + 131;  // to the main dialog
// Nothing, what nobody may read, and what can be read but is something else: the program itself.
constexpr LPARAM kJunk[] = {0, 1, 0x10, 0x400000, 0x400001, -1, -8};

class ForeignMessageTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUpThenChange();
    }
    // Starts the program and shows this tab.
    void Begin(const std::string& tab) {
        OpenOn(tab);
        tab_ = tab;
        inside_.emplace(MainDialog());
    }
    void SendJunk(HWND window, UINT message, WPARAM wparam = 0) {
        for (const LPARAM junk : kJunk) {
            EXPECT_TRUE(inside_->Send(window, message, wparam, junk)) << junk;
        }
    }
    // The answer to a message with the address of this structure.
    template <typename Structure>
    std::optional<std::uint32_t> SendAddress(HWND window, UINT message,
                                             const Structure& structure) {
        return inside_->Send(window, message, 0, inside_->Put(&structure, sizeof structure));
    }
    void ExpectNothingHappened() {
        EXPECT_EQ(0u, inside_->Faults());
        EXPECT_TRUE(DialogIsDone());
        EXPECT_EQ(tab_, SelectedTab());
        EXPECT_FALSE(IsBusy());
        Keys("ctrl+q");
        ExpectEnd();
    }

    std::string tab_;
    std::optional<sim::host::InsideProgram> inside_;
};

TEST_F(ForeignMessageTest, ADescriptionIsWrittenNowhere) {
    Begin("Backup");
    Type(IDC_NEW_DESCRIPTION, "mine");
    SendJunk(MainDialog(), kTakeDescription);
    const std::string mine(520, 'x');
    for (const HWND window : {MainDialog(), PageOf(IDC_NEW_DESCRIPTION)}) {
        inside_->Send(window, kTakeDescription, 0, inside_->Put(mine.data(), mine.size()));
        EXPECT_EQ(mine, inside_->Kept(mine.size()));
    }
    ExpectNothingHappened();
}

TEST_F(ForeignMessageTest, ADialogIsNotMadeAgain) {
    Begin("Options");
    SendJunk(MainDialog(), WM_INITDIALOG);
    SendJunk(PageOf(IDC_TIME), WM_INITDIALOG);
    ExpectNothingHappened();
}

TEST_F(ForeignMessageTest, AReminderIsNotMadeAgain) {
    SetDword("Reminders", 14);
    Begin("Backup");
    PressForReminder(IDC_BACKUP);
    SendJunk(Reminder(), WM_INITDIALOG);
    RefuseReminder(kBackupReminder);
    ExpectNothingHappened();
}

TEST_F(ForeignMessageTest, AHiddenWindowIsNotMadeAgain) {
    Begin("Backup");
    for (const HWND window : {MainWindow(), OperationWindow()}) {
        SendJunk(window, WM_CREATE);
        CREATESTRUCTW creation{};
        creation.lpCreateParams = reinterpret_cast<void*>(0x10);
        EXPECT_EQ(0u, SendAddress(window, WM_CREATE, creation));
    }
    ExpectNothingHappened();
}

TEST_F(ForeignMessageTest, ANotificationOfNoControlIsNone) {
    Begin("Options");
    SendJunk(MainDialog(), WM_NOTIFY, IDC_TABS);
    SendJunk(PageOf(IDC_TIME), WM_NOTIFY, IDC_TIME);
    ExpectNothingHappened();
}

TEST_F(ForeignMessageTest, ATreeItemOfNoTreeIsNone) {
    BackUp();
    Begin("Restore");
    ShowDifferences();
    tab_ = "Advanced Restore";
    const HWND parent = ::GetParent(HandleOf(
        AwaitWindow([](const Window& window) { return window.class_name == "SysTreeView32"; })));
    SendJunk(parent, WM_NOTIFY);
    NMTREEVIEWW deletion{};
    deletion.hdr.code = static_cast<UINT>(TVN_DELETEITEMW);
    deletion.itemOld.lParam = 0x10;
    EXPECT_EQ(0u, SendAddress(parent, WM_NOTIFY, deletion));
    NMTVCUSTOMDRAW drawing{};
    drawing.nmcd.hdr.code = static_cast<UINT>(NM_CUSTOMDRAW);
    drawing.nmcd.lItemlParam = 0x10;
    for (const DWORD stage : {CDDS_PREPAINT, CDDS_ITEMPREPAINT, CDDS_ITEMPOSTPAINT}) {
        drawing.nmcd.dwDrawStage = stage;
        EXPECT_EQ(0u, SendAddress(parent, WM_NOTIFY, drawing)) << stage;
    }
    ExpectNothingHappened();
}

TEST_F(ForeignMessageTest, ADrawingOfNoPictureIsNone) {
    Begin("About");
    SendJunk(PageOf(IDC_ABOUT_PICTURE), WM_DRAWITEM, IDC_ABOUT_PICTURE);
    ExpectNothingHappened();
}

}  // namespace
}  // namespace tests
