// A device without its installation: the program is started from the card, as the manual says.
#include "tests/ui/ui_test.h"

namespace {

const std::wstring kLetter = L"\\My Documents\\letter.txt";
const std::wstring kInstalled = L"\\Program Files\\Tolvenar\\Tolvenar.exe";
const std::string kOnCard = "\\Storage Card\\Tolvenar.exe";

class HardResetTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        device().PutFile(kLetter, "Dear reader");
        SetDword("onTime", 1);
        BackUp();
        device().PutFile(L"\\Storage Card\\Tolvenar.exe", device().FileBytes(kInstalled));
        device().PutFile(L"\\Storage Card\\Storage\\Backup.sav",
                         device().FileBytes(tests::kStorageFile));
        device().PutFile(L"\\Storage Card\\Storage\\Backup.jrn",
                         device().FileBytes(tests::kJournalFile));
        Ask("reg-delete HKCU\\Software\\Kestrin2");
        device().Remove(L"\\Program Files\\Tolvenar");
        device().Remove(kLetter);
    }
    bool Runs() { return Ask("ps").dump().find("Storage Card") != std::string::npos; }
};

TEST_F(HardResetTest, TheStorageBesideTheProgramBringsTheDeviceBack) {
    Ask("trace on");
    Ask("start \"" + kOnCard + "\"");
    ASSERT_TRUE(Eventually([&] { return Sees(1000) && SelectedTab() == "Storage file"; }));
    EXPECT_EQ("", Text(1019));
    // A storage comes first: what else is missing is told when there is one.
    ShowTab("Backup");
    Press(1001);
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Storage file"; }));
    Press(1012);
    ASSERT_TRUE(Eventually([&] { return Shows("Choose backup file"); }));
    Type(0x480, "\\Storage Card\\Storage\\Backup.jrn");
    Press(tests::kOk);
    EXPECT_TRUE(Eventually([&] { return Text(1019) == "Backup"; }));
    ShowTab("Restore");
    RestoreInDialog();
    ExpectReminder(tests::kRestoredReminder, tests::kCancel);
    EXPECT_TRUE(Eventually([&] { return !Runs(); }));
    EXPECT_EQ("Dear reader", device().FileBytes(kLetter));
    EXPECT_TRUE(device().Exists(kInstalled));
    EXPECT_EQ(0u, BoxCount());
    EXPECT_EQ(0u, Dword("onTime"));  // there again, and off
}

}  // namespace
