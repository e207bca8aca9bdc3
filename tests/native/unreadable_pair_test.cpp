// Registry pairs whose stored description cannot be read; each try is logged.
#include <gtest/gtest.h>

#include "snapshot/compare/difference.h"
#include "tests/native/recording_log.h"
#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kTolvOID = 0x00120034;
constexpr std::uint32_t kOffset = 500;

class UnreadablePairTest : public testing::Test {
protected:
    UnreadablePairTest() {
        info_.stored[kOffset] = {u"Key", kValue, 0};
        info_.live[{kTolvOID, 0}] = {u"Key", kValue, 0};
        ClearLog();
    }
    // The flags of what differs when the first `failing_reads` reads of the storage file fail.
    std::vector<std::uint16_t> FlagsOfDifferences(int failing_reads) {
        ObjectRecord older = JournalRecord(MakeRecord(kValue, 0, kTolvOID), 1, 0, kOffset);
        older.info_checksum = 7;  // another key in the list of differences
        const auto list1 = ListOf({older});
        const auto list2 = ListOf({MakeRecord(kValue, 0, kTolvOID)});
        const auto diff = ObjectList::CreateList();
        info_.failing_reads = failing_reads;
        EXPECT_TRUE(CmpLists(list1.get(), list2.get(), *diff, info_));
        return FieldsOf(*diff, &ObjectRecord::flags);
    }
    using Flags = std::vector<std::uint16_t>;

    FakeInfoSource info_;
};

// Otherwise a restore would delete the object and have nothing to write back.
TEST_F(UnreadablePairTest, OneThatCouldNotBeReadForAMomentIsNoDifference) {
    EXPECT_EQ(Flags(), FlagsOfDifferences(1));
    EXPECT_EQ(1u, LogLines().size());
}

TEST_F(UnreadablePairTest, OneThatCannotBeReadIsADeletionAndAnAddition) {
    EXPECT_EQ((Flags{JF_DELETE, JF_ADD}), FlagsOfDifferences(2));
    EXPECT_EQ(2u, LogLines().size());
}

}  // namespace
}  // namespace tolvenar
