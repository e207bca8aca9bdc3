// Restores of a device that was reset and gives out the ids of stored objects again.
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

// The ids that are given out again on a reset device meet those that were stored.
class ResetDeviceTest : public RestoreEngineTest, public ::testing::WithParamInterface<int> {};

TEST_P(ResetDeviceTest, EveryRecordComesBack) {
    MakeDatabase(L"People");
    Lines people;
    CEOID first = 0;
    for (int i = 10; i < 40; ++i) {
        const std::wstring name = L"Person " + std::to_wstring(i);
        const CEOID oid = AddRecord(L"People", name, i);
        first = first == 0 ? oid : first;
        people.push_back("Person " + std::to_string(i) + "=" + std::to_string(i));
    }
    ASSERT_EQ(Done(), Backup(1));
    device().Command("db-delete People");
    const int next = GetParam() > 0 ? GetParam() : static_cast<int>(first) + GetParam();
    device().Set("oid.next", std::to_string(next));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ(people, Records(u"People"));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
}

INSTANTIATE_TEST_SUITE_P(NextIds, ResetDeviceTest, ::testing::Values(100, -8, -2, -1));

}  // namespace
}  // namespace tolvenar
