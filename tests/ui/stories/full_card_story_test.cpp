// The card has no room for a backup; the old storage may go only when the user says so.
#include "tests/ui/stories/story_test.h"

namespace tests {
namespace {

class FullCardStory : public StoryTest {};

TEST_P(FullCardStory, TheOldStorageStaysOnNoAndMakesRoomOnYes) {
    BackUpThenChange();
    HaveAStorageOfWhatIsGone();
    Open();
    GoTo("Options");
    Use(IDC_DELETE_OLD_STORAGE);
    EXPECT_SOON_EQ(1u, Dword("MayDeleteOldStorage"));
    GoTo("Backup");
    device().Set("card.free", "20000");
    BackUpByHand();
    AnswerBox(kMayOldStorageGo, IDNO);
    EXPECT_SOON(BoxIsUp());  // how much room is missing
    Use(IDOK);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ((Numbers{1, 2}), States());
    Remember();
    BackUpByHand();
    AnswerBox(kMayOldStorageGo, IDYES);
    ExpectTab("Restore");
    ExpectStates({1});
    LoseTheUsersWork();
    RestoreByHand();
    AnswerReminder(kRestoredReminder, IDCANCEL);
    ExpectRemembered();
}
WITH_BOTH_HANDS(FullCardStory);

}  // namespace
}  // namespace tests
