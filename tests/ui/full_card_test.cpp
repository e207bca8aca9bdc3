// A backup for which the card has no room, and what the user says to it.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

class FullCardTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUpThenChange(std::string(5000, 'a'));
    }
    // How many bytes the message of the full card asks for.
    long AskedFor() {
        const std::string begin = "Not enough disk space to backup. You need to free ";
        const Box box = Answer();
        EXPECT_EQ(0u, box.text.find(begin));
        EXPECT_EQ(unsigned(kErrorBox), box.style);
        const std::string rest = box.text.substr(begin.size());
        EXPECT_EQ(" bytes on the storage card.", rest.substr(rest.find(' ')));
        return std::stol(rest);
    }
};

// Whether the old storage may go is what the Options page had when it was last read.
TEST_F(FullCardTest, ItTellsWhatIsMissingOnce) {
    Open();
    SetDword("MayDeleteOldStorage", 1);
    device().Set("card.free", "12000");
    Press(IDC_BACKUP);
    EXPECT_LT(0, AskedFor());
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(1u, BoxCount());
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(FullCardTest, ItAsksForTheOldStorageAndKeepsItOnNo) {
    SetDword("MayDeleteOldStorage", 1);
    Open();
    device().Set("card.free", "12000");
    const std::string before = device().FileBytes(kStorageFile);
    PressAndExpect(IDC_BACKUP, kMayOldStorageGo, IDNO);
    EXPECT_LT(0, AskedFor());
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
}

TEST_F(FullCardTest, ItGivesUpTheOldStorageOnYes) {
    device().PutFile(L"\\My Documents\\big.txt", std::string(200000, 'b'));
    BackUp();
    device().Remove(L"\\My Documents\\big.txt");
    device().PutFile(L"\\My Documents\\b.txt", std::string(50000, 'b'));
    SetDword("MayDeleteOldStorage", 1);
    Open();
    device().Set("card.free", "20000");
    PressAndExpect(IDC_BACKUP, kMayOldStorageGo, IDYES);
    ExpectStates({1});
    ExpectTab("Restore");
    EXPECT_EQ(Texts{"State 1"}, Items(IDC_STATES));
    EXPECT_EQ(2u, Calls("SetWindowTextW", ", Backing up in progress"));
    EXPECT_EQ(4u, Calls("RegSetValueExW", "onTime"));
}

// What is missing then is what the new storage lacks.
TEST_F(FullCardTest, OneThatIsStillTooFullIsTold) {
    SetDword("MayDeleteOldStorage", 1);
    Open();
    device().Set("card.free", "100");
    Press(IDC_BACKUP);
    Answer(IDYES);
    const long missing = AskedFor();
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(Numbers(), States());
    EXPECT_EQ("Backup", SelectedTab());
    ULARGE_INTEGER free{};
    ASSERT_TRUE(::GetDiskFreeSpaceExW(L"\\Storage Card", &free, nullptr, nullptr));
    device().Set("card.free", std::to_string(free.QuadPart + missing));
    Press(IDC_BACKUP);
    ExpectStates({1});
    EXPECT_EQ(2u, BoxCount());
}

}  // namespace
}  // namespace tests
