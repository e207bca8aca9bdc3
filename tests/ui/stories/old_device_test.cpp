// The card comes from an old device, whose storage is not this one's.
#include "tests/ui/stories/story_test.h"

namespace tests {
namespace {

constexpr std::size_t kProcessorAt = 200;

class OldDeviceStory : public StoryTest {
protected:
    void SetUp() override {
        StoryTest::SetUp();
        BackUpThenChange();
        std::string storage = device().FileBytes(kStorageFile);
        storage[kProcessorAt] = 1;
        device().PutFile(kStorageFile, storage);
        old_storage_ = storage;
        old_journal_ = device().FileBytes(kJournalFile);
    }
    std::string old_storage_;
    std::string old_journal_;
};

TEST_P(OldDeviceStory, ItsStorageIsRefusedAndLeftAloneAndANewOneServes) {
    Ask("trace on");
    StartProgram();
    AnswerBox(kOtherDevice);
    WaitForDialog();
    ExpectTab("Storage file");
    EXPECT_EQ("", Text(IDC_STORAGE_NAME));
    BrowseTo("\\storage card\\tolvenar\\backup.jrn");
    AnswerBox(kOtherDevice);
    EXPECT_EQ("", Text(IDC_STORAGE_NAME));
    MakeStorage("\\storage card\\tolvenar\\new");
    Remember();
    BackUpByHand();
    ExpectTab("Restore");
    LoseTheUsersWork();
    RestoreByHand();
    AnswerReminder(kRestoredReminder, IDCANCEL);
    ExpectRemembered();
    CloseProgram();
    EXPECT_EQ(old_storage_, device().FileBytes(kStorageFile));
    EXPECT_EQ(old_journal_, device().FileBytes(kJournalFile));
    EXPECT_EQ(2u, BoxCount());
}
WITH_BOTH_HANDS(OldDeviceStory);

}  // namespace
}  // namespace tests
