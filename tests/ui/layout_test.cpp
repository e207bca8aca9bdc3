// Every page on every screen, at its own size and full.
#include "tests/ui/page_fit.h"

namespace tests {
namespace {

class LayoutTest : public PageFitTest {
protected:
    void ExpectPagesFitBothWays() {
        ExpectOnScreen();
        ExpectPagesFit();
        SCOPED_TRACE("full");
        Keys("alt+enter");
        EXPECT_TRUE(DialogIsDone());
        ExpectOnScreen();
        ExpectPagesFit();
    }
};

TEST_P(LayoutTest, EveryPageFits) {
    TakeFirstState();
    Open();
    ExpectPagesFitBothWays();
}

// The lines of the pages say more of a storage that is not on a card, and with a schedule.
TEST_P(LayoutTest, EveryPageFitsWithAStorageInTheDevicesMemory) {
    device().MakeFolder(L"\\My Documents");
    SetText("StoragePath", "\\My Documents\\");
    SetDword("onTime", 1);
    SetDword("WakeUpTime", 0x002D0015);
    SetDword("Reminders", 0);
    device().Set("locale.shortdate", "yyyy. MM. dd.");
    EXPECT_EQ(0, BackUp());
    Open();
    EXPECT_EQ("Free in device memory:", Text(IDC_CARD_FREE_LABEL));
    ExpectPagesFitBothWays();
    ShowTab("Options");
    EXPECT_EQ("Next backup: 2026. 11. 16. 9:45 PM", Text(IDC_NEXT_BACKUP));
}

TEST_P(LayoutTest, EveryPageFitsOnABareDevice) {
    RemoveInstallation();
    DeleteSetting("StoragePath");
    DeleteSetting("StorageFile");
    Open();
    ExpectPagesFitBothWays();
}

TEST_P(LayoutTest, EveryPageFitsWhileTheStorageIsNotThere) {
    SetText("StoragePath", "\\Storage Card\\Backups\\");
    Open();
    ShowTab("Storage file");
    EXPECT_NE(std::string::npos, Text(IDC_STORAGE_FOLDER).find(" is not there. Put its card in"));
    ExpectPagesFitBothWays();
}

TEST_P(LayoutTest, EveryPageFitsWithATree) {
    BackUpThenChange();
    BackUp();
    Open();
    ShowTree();
    ExpectPagesFitBothWays();
}

TEST_P(LayoutTest, TheFailedPanelFits) {
    SetDword("Reminders", 2);
    BackUpThenChange();
    OpenOn("Restore");
    const auto lock = device().Lock(kNote);
    Press(IDC_RESTORE);
    EXPECT_SOON(Sees(IDC_FAILED_OK));
    EXPECT_TRUE(BecomesIdle());
    ExpectPageFits();
    Keys("alt+enter");
    EXPECT_SOON(Sees(IDC_OLD_CONTENTS));
    ExpectPageFits();
}

// With the longest lines that a device with 10 MB to come back has.
TEST_P(LayoutTest, WhatWouldChangeFits) {
    device().PutFile(kNote, std::string(10485760, 'x'));
    EXPECT_EQ(0, BackUp());
    device().Remove(kNote);
    OpenOn("Restore");
    device().Set("memory.free", "8388608");
    device().Set("store.free", "1048576");
    Press(IDC_PREVIEW);
    EXPECT_SOON(Sees(IDC_PREVIEW_CLOSE));
    EXPECT_TRUE(BecomesIdle());
    ExpectPageFits();
}

INSTANTIATE_TEST_SUITE_P(Screens, LayoutTest, ::testing::ValuesIn(kScreens));

}  // namespace
}  // namespace tests
