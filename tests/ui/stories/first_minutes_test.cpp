// The first five minutes: no storage yet, a first backup, a restore.
#include "tests/ui/stories/story_test.h"

namespace tests {
namespace {

class FirstMinutesStory : public StoryTest {};

TEST_P(FirstMinutesStory, AStorageIsMadeTheDeviceBackedUpAndBroughtBack) {
    DeleteSetting("StorageFile");
    device().PutFile(kNote, "hello");
    Open();
    ExpectTab("Storage file");
    MakeStorage("\\storage card\\mine");
    Write(IDC_NEW_DESCRIPTION, "the first one");
    Remember();
    BackUpByHand();
    ExpectTab("Restore");
    EXPECT_SOON_EQ(0u, Text(IDC_RESTORE_NOTICE).find("State 1: "));
    EXPECT_EQ("the first one", Text(IDC_STATE_DESCRIPTION));
    LoseTheUsersWork();
    RestoreByHand();
    AnswerReminder(kRestoredReminder, IDCANCEL);
    ExpectRemembered();
    CloseProgram();
    EXPECT_TRUE(device().Exists(L"\\Storage Card\\mine.sav"));
    EXPECT_EQ(0u, BoxCount());  // the program's own; the system asked for the new file
}
WITH_BOTH_HANDS(FirstMinutesStory);

}  // namespace
}  // namespace tests
