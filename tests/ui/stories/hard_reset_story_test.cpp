// A hard reset took everything but the card: the program runs from there and brings it back.
#include "tests/ui/stories/story_test.h"

namespace tests {
namespace {

const std::string kOnCard = "\\Storage Card\\Tolvenar.exe";

class HardResetStory : public StoryTest {
protected:
    void SetUp() override {
        StoryTest::SetUp();
        device().PutFile(kNote, "hello");
        SetDword("onTime", 1);
        Remember();
        BackUp();
        device().PutFile(L"\\Storage Card\\Tolvenar.exe", device().FileBytes(kProgramPath));
        device().PutFile(L"\\Storage Card\\Storage\\Backup.sav", device().FileBytes(kStorageFile));
        device().PutFile(L"\\Storage Card\\Storage\\Backup.jrn", device().FileBytes(kJournalFile));
        Ask("reg-delete HKCU\\Software\\Kestrin2");
        device().Remove(L"\\Program Files");
        LoseTheUsersWork();
    }
    bool RunsFromCard() { return Ask("ps").dump().find("Storage Card") != std::string::npos; }
};

TEST_P(HardResetStory, TheProgramOnTheCardBringsEverythingBackAndEnds) {
    Ask("trace on");
    Ask("start \"" + kOnCard + "\"");
    WaitForDialog();
    ExpectTab("Storage file");
    EXPECT_EQ("\\Storage Card\\Storage\\", Text(IDC_STORAGE_SECOND_NOTE));
    BrowseTo("\\storage card\\storage\\backup.jrn");
    EXPECT_SOON_EQ("backup", Text(IDC_STORAGE_NAME));
    GoTo("Restore");
    EXPECT_EQ(Texts{"State 1"}, Items(IDC_STATES));
    RestoreByHand();
    AnswerReminder(kRestoredReminder);
    EXPECT_SOON(!RunsFromCard());
    ExpectRemembered();
    EXPECT_EQ(0u, BoxCount());
}
WITH_BOTH_HANDS(HardResetStory);

}  // namespace
}  // namespace tests
