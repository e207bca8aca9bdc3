#include "snapshot/compare/written_records.h"

#include <gtest/gtest.h>

namespace tolvenar {
namespace {

TEST(WrittenRecordsTest, HoldsNothingAtFirst) {
    const WrittenRecords written;
    EXPECT_FALSE(written.Contains(1));
}

TEST(WrittenRecordsTest, HoldsWhatWasAddedAndNothingElse) {
    WrittenRecords written;
    EXPECT_TRUE(written.Add(100));
    EXPECT_TRUE(written.Add(0xFFFFFFFF));
    EXPECT_TRUE(written.Contains(100));
    EXPECT_TRUE(written.Contains(0xFFFFFFFF));
    EXPECT_FALSE(written.Contains(101));
    // The same place in a table of 64.
    EXPECT_FALSE(written.Contains(164));
}

TEST(WrittenRecordsTest, AddingTwiceIsAddingOnce) {
    WrittenRecords written;
    for (int i = 0; i < 1000; ++i) {
        EXPECT_TRUE(written.Add(7));
    }
    EXPECT_TRUE(written.Contains(7));
    EXPECT_FALSE(written.Contains(8));
}

TEST(WrittenRecordsTest, ThousandsOfIdsStayFoundWhileTheTableGrows) {
    WrittenRecords written;
    for (std::uint32_t oid = 3; oid < 30000; oid += 3) {
        ASSERT_TRUE(written.Add(oid));
    }
    for (std::uint32_t oid = 1; oid < 30000; ++oid) {
        ASSERT_EQ(oid % 3 == 0, written.Contains(oid)) << oid;
    }
}

}  // namespace
}  // namespace tolvenar
