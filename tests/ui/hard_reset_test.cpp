// A device without its installation: the program is started from the card, as the manual says.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

const std::wstring kLetter = L"\\My Documents\\letter.txt";
const std::string kOnCard = "\\Storage Card\\Tolvenar.exe";

class HardResetTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        device().PutFile(kLetter, "Dear reader");
        SetDword("onTime", 1);
        BackUp();
        device().PutFile(L"\\Storage Card\\Tolvenar.exe", device().FileBytes(kProgramPath));
        device().PutFile(L"\\Storage Card\\Storage\\Backup.sav", device().FileBytes(kStorageFile));
        device().PutFile(L"\\Storage Card\\Storage\\Backup.jrn", device().FileBytes(kJournalFile));
        Ask("reg-delete HKCU\\Software\\Kestrin2");
        device().Remove(L"\\Program Files\\Tolvenar");
        device().Remove(kLetter);
    }
    bool Runs() { return Ask("ps").dump().find("Storage Card") != std::string::npos; }
};

TEST_F(HardResetTest, TheStorageBesideTheProgramBringsTheDeviceBack) {
    Ask("trace on");
    Ask("start \"" + kOnCard + "\"");
    ASSERT_SOON(Sees(IDC_TABS) && SelectedTab() == "Storage file");
    EXPECT_EQ("", Text(IDC_STORAGE_NAME));
    EXPECT_EQ("\\Storage Card\\Storage\\", Text(IDC_STORAGE_SECOND_NOTE));
    // To choose a storage would not help a backup: the restore comes first.
    ShowTab("Backup");
    PressAndExpect(IDC_BACKUP, kNotInstalled);
    ShowTab("Storage file");
    Press(IDC_BROWSE);
    ASSERT_SOON(Shows(kOpenTitle));
    Type(kOpenName, "\\Storage Card\\Storage\\Backup.jrn");
    Press(IDOK);
    EXPECT_SOON_EQ("Backup", Text(IDC_STORAGE_NAME));
    ShowTab("Restore");
    RestoreInDialog();
    RefuseReminder(kRestoredReminder);
    EXPECT_SOON(!Runs());
    EXPECT_EQ("Dear reader", device().FileBytes(kLetter));
    EXPECT_TRUE(device().Exists(kProgramPath));
    EXPECT_EQ(1u, BoxCount());
    EXPECT_EQ(0u, Dword("onTime"));  // there again, and off
}

}  // namespace
}  // namespace tests
