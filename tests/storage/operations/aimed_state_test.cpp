// Files that an advanced restore must not delete, since the state that it leads to has them.
#include "snapshot/engine/difference_engine.h"
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

class AimedStateTest : public RestoreEngineTest {
protected:
    // The contents alone change: both versions have one key, and the differences hold one of them.
    void MakeTwoStatesOfOneKey() {
        for (const char* contents : {"one", "two"}) {
            device().PutFile(L"\\a.txt", contents);
            device().Touch(L"\\a.txt", 0x01C0000011223300);
            ASSERT_EQ(Done(), Backup());
        }
        ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
        ASSERT_EQ(std::vector<std::uint16_t>{JF_DELETE}, DifferenceFlags());
    }
    Answer RestoreWhileHeld(bool invert) {
        const auto lock = device().Lock(L"\\a.txt");
        return RestoreAdvanced(invert);
    }
    // The file is deleted in neither phase and written back in the second: what is left is a
    // deletion of what is there now.
    Answer RestoreWithoutDeleting(std::uint32_t state) {
        device().Fault("DeleteFileW", 1, 1000, ERROR_ACCESS_DENIED, "a.txt");
        const Answer answer = Restore(state);
        device().EndFaults();
        return answer;
    }
};

TEST_F(AimedStateTest, AChangeOfContentsAloneIsTakenBackAndAppliedAgain) {
    MakeTwoStatesOfOneKey();
    EXPECT_EQ(Done(), RestoreAdvanced(false));
    EXPECT_EQ("one", Content(u"\\a.txt"));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_EQ(Done(), RestoreAdvanced(true));
    EXPECT_EQ("two", Content(u"\\a.txt"));
}

TEST_F(AimedStateTest, WhatCouldNotBeAppliedIsAppliedByTheNextTry) {
    MakeTwoStatesOfOneKey();
    ASSERT_EQ(Done(), RestoreAdvanced(false));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(Done(ResultCode::kFailed), RestoreWhileHeld(true));
    }
    EXPECT_EQ("one", Content(u"\\a.txt"));
    EXPECT_EQ(Done(), RestoreAdvanced(true));
    EXPECT_EQ("two", Content(u"\\a.txt"));
}

TEST_F(AimedStateTest, WhatCouldNotBeAppliedIsTakenBackWithTheOtherButton) {
    MakeTwoStatesOfOneKey();
    EXPECT_EQ(Done(ResultCode::kFailed), RestoreWhileHeld(true));
    EXPECT_EQ(Done(), RestoreAdvanced(false));
    EXPECT_EQ("one", Content(u"\\a.txt"));
}

TEST_F(AimedStateTest, WhatCouldNotBeTakenBackIsTakenBackByTheNextTryOrAppliedWithTheOtherButton) {
    MakeTwoStatesOfOneKey();
    EXPECT_EQ(Done(ResultCode::kFailed), RestoreWhileHeld(false));
    EXPECT_EQ(Done(), RestoreAdvanced(true));
    EXPECT_EQ("one", Content(u"\\a.txt"));

    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_EQ(Done(ResultCode::kFailed), RestoreWhileHeld(false));
    EXPECT_EQ(Done(), RestoreAdvanced(false));
    EXPECT_EQ("two", Content(u"\\a.txt"));
}

TEST_F(AimedStateTest, AFileThatCameBackIsNotDeletedByTheNextTry) {
    BackUpWith(L"\\a.txt", "stored");
    device().PutFile(L"\\A.TXT", "changed since");
    EXPECT_EQ(Done(ResultCode::kFailed), RestoreWithoutDeleting(1));
    EXPECT_EQ("stored", Content(u"\\a.txt"));
    EXPECT_EQ(Done(), RestoreAdvanced(true));
    EXPECT_EQ("stored", Content(u"\\a.txt"));
}

// The other button leads back to the device as it was, of which there is no list.
TEST_F(AimedStateTest, TheOtherButtonAfterARestoreAsksNoState) {
    BackUpWith(L"\\a.txt", "stored");
    device().PutFile(L"\\new.txt", "new");
    device().Fault("DeleteFileW", 1, 1000, ERROR_ACCESS_DENIED, "new.txt");
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    device().EndFaults();
    EXPECT_EQ(1u, storage_.opposite_state);
    EXPECT_EQ(0u, storage_.aimed_state);
}

TEST_F(AimedStateTest, AFileThatTheStateDoesNotHoldIsDeleted) {
    ASSERT_EQ(Done(), Backup(1));
    device().PutFile(L"\\a.txt", "in two only");
    ASSERT_EQ(Done(), Backup(2));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_EQ(Done(), RestoreAdvanced(false));
    EXPECT_FALSE(Exists(u"\\a.txt"));
}

TEST_F(AimedStateTest, AStorageFileThatCannotBeReadForItKeepsTheListAndItsDirection) {
    MakeTwoStatesOfOneKey();
    ASSERT_EQ(Done(), RestoreAdvanced(false));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    device().Fault("CreateFileW", 1, 1, ERROR_SHARING_VIOLATION, "Home.sav");
    EXPECT_EQ(Failed(), RestoreAdvanced(true));
    device().EndFaults();
    EXPECT_EQ("one", Content(u"\\a.txt"));
    EXPECT_EQ(Done(), RestoreAdvanced(true));
    EXPECT_EQ("two", Content(u"\\a.txt"));
}

}  // namespace
}  // namespace tolvenar
