// What the program keeps for itself in the registry is in no state.
#include "app/settings/own_values.h"
#include "snapshot/engine/difference_engine.h"
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

class ProgramValuesTest : public RestoreEngineTest {
protected:
    static void Keep(std::uint32_t value) { WriteSetting(own_value::kSuspendedOnTime, value); }
    static std::uint32_t Kept() { return ReadSetting(own_value::kSuspendedOnTime); }
};

TEST_F(ProgramValuesTest, ABackupDoesNotStoreThem) {
    BackUpWith(L"\\a.txt", "one");
    Keep(5);
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
    DeleteOwnValue(own_value::kSuspendedOnTime);
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
}

TEST_F(ProgramValuesTest, ARestoreLeavesThemAlone) {
    Keep(5);
    BackUpWith(L"\\a.txt", "one");
    Keep(7);
    EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(1));
    EXPECT_EQ(7u, Kept());
    DeleteOwnValue(own_value::kSuspendedOnTime);
    device().Remove(L"\\a.txt");
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ(kSettingAbsent, Kept());
}

// An older state may hold such values all the same.
TEST_F(ProgramValuesTest, TheChangesOfTwoStatesDoNotShowThem) {
    const std::vector<ObjectRecord> values = {
        StoreValue(HKEY_CURRENT_USER, kSettingsKey, own_value::kSuspendedOnTime, REG_DWORD, "5678"),
        StoreValue(HKEY_CURRENT_USER, kSettingsKey, u"Other", REG_DWORD, "5678")};
    SaveStorage();
    SaveJournal(values);
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 0, 1));
    EXPECT_EQ(1u, storage_.difference->CountRecords());
}

}  // namespace
}  // namespace tolvenar
