// The program on systems that lack some of the platform's functions.
#include "tests/ui/storage_ui_test.h"

namespace tests {
namespace {

// The first system on which the program starts has no notification calls.
class OlderSystemTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        device().Set("os.version", "2.11");
    }
    bool IsEnabledControl(int id) { return ::IsWindowEnabled(Handle(id)) != FALSE; }
};

TEST_F(OlderSystemTest, WithoutNotificationCallsNoAutomaticBackupCanBeSwitchedOn) {
    OpenOn("Options");
    EXPECT_SOON_EQ("Not available on this system.", Text(IDC_NEXT_BACKUP));
    for (const int id : {IDC_ON_TIME, IDC_ON_BATTERY, IDC_TIME}) {
        EXPECT_FALSE(IsEnabledControl(id)) << id;
    }
    EXPECT_TRUE(IsEnabledControl(IDC_ADVANCED_TREE));
    EXPECT_FALSE(Sees(IDC_AUTOMATIC_OFF_HINT));
    EXPECT_FALSE(Sees(IDC_NEW_TIME_HINT));
}

TEST_F(OlderSystemTest, WithNotificationCallsItCan) {
    device().Set("os.version", "2.12");
    OpenOn("Options");
    EXPECT_TRUE(IsEnabledControl(IDC_ON_TIME));
    EXPECT_TRUE(Sees(IDC_AUTOMATIC_OFF_HINT));
    EXPECT_TRUE(Sees(IDC_NEW_TIME_HINT));
}

TEST_F(OlderSystemTest, ABackupAndARestoreByHandNeedNoNotificationCalls) {
    SetDword("onTime", 1);
    device().PutFile(kNote, "hello");
    EXPECT_EQ(0, BackUp());
    device().PutFile(kNote, "changed");
    EXPECT_EQ(0, RestoreLast());
    EXPECT_EQ("hello", device().FileBytes(kNote));
    EXPECT_EQ(1u, Dword("onTime"));
}

TEST_F(OlderSystemTest, ItStartsWhereLocalesCannotBeChecked) {
    device().Set("locale.checks", "missing");
    device().PutFile(kNote, "hello");
    EXPECT_EQ(0, BackUp());
}

class FileChooserTest : public StorageUiTest {};

TEST_F(FileChooserTest, AFileIsChosenWhereverTheSystemHasTheWindow) {
    for (const char* dll : {"coredll", "commdlg", "number"}) {
        device().Set("file.chooser", dll);
        OpenPage();
        Browse();
        Press(IDCANCEL);
        EXPECT_SOON(!Shows(kOpenTitle)) << dll;
        EXPECT_TRUE(DialogIsDone());
        PressCloseBox();
        ExpectEnd();
    }
}

TEST_F(FileChooserTest, WithoutTheWindowBrowsingSaysSo) {
    device().Set("file.chooser", "none");
    OpenPage();
    PressAndExpect(IDC_BROWSE, {"This system has no window in which to choose a file.", kPlainBox});
    ExpectFirstOpen();
}

}  // namespace
}  // namespace tests
