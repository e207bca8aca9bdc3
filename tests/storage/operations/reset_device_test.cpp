// Restores of a device that was reset and gives out the ids of stored objects again.
#include "platform/unique_resource.h"
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

// The ids that are given out again on a reset device meet those that were stored.
class ResetDeviceTest : public RestoreEngineTest, public ::testing::WithParamInterface<int> {};

TEST_P(ResetDeviceTest, EveryRecordComesBack) {
    MakeDatabase(u"People");
    std::vector<std::string> people;
    CEOID first = 0;
    for (int i = 10; i < 40; ++i) {
        const std::wstring name = L"Person " + std::to_wstring(i);
        const CEOID oid = AddRecord(u"People", name, i);
        first = first == 0 ? oid : first;
        people.push_back("Person " + std::to_string(i) + "=" + std::to_string(i));
    }
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    CEOID oid = 0;
    UniqueHandle(databases_.OpenDatabase(oid, u"People", 0, 0, nullptr));
    ASSERT_TRUE(databases_.DeleteDatabase(oid));
    const int next = GetParam() > 0 ? GetParam() : static_cast<int>(first) + GetParam();
    device().Set("oid.next", std::to_string(next));
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kSuccess, code_);
    EXPECT_EQ(people, Records(u"People"));
    EXPECT_EQ(ResultCode::kNoDifference, Backup(2));
}

INSTANTIATE_TEST_SUITE_P(NextIds, ResetDeviceTest, ::testing::Values(100, -8, -2, -1));

}  // namespace
}  // namespace tolvenar
