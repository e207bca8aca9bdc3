// The hash index without memory.
#include <gtest/gtest.h>

#include "snapshot/records/hash_index.h"
#include "tests/native/failing_new.h"

namespace tolvenar {
namespace {

struct Item {
    std::uint32_t hash;
    Item* bucket_next;

    std::uint32_t Hash() const { return hash; }
};

class HashIndexAllocationTest : public testing::Test {
protected:
    ~HashIndexAllocationTest() override { FailAllocationsFrom(0); }

    // Fills the first buckets.
    void Fill() {
        for (std::uint32_t i = 0; i < 64; ++i) {
            items_[i] = {i, nullptr};
            ASSERT_TRUE(index_.ReserveOneMore());
            index_.Add(items_[i]);
        }
    }
    void ExpectFilled() {
        for (std::uint32_t i = 0; i < 64; ++i) {
            EXPECT_EQ(&items_[i], index_.ChainOf(i)) << i;
        }
    }

    Item items_[64];
    HashIndex<Item> index_;
};

TEST_F(HashIndexAllocationTest, WithoutBucketsThereIsNoRoom) {
    FailAllocationsFrom(1);
    EXPECT_FALSE(index_.ReserveOneMore());
    EXPECT_FALSE(index_.Reserve(0));
    FailAllocationsFrom(0);
    EXPECT_EQ(nullptr, index_.ChainOf(0));
    EXPECT_TRUE(index_.ReserveOneMore());
}

TEST_F(HashIndexAllocationTest, WithoutMoreBucketsTheIndexIsAsItWas) {
    Fill();
    FailAllocationsFrom(1);
    EXPECT_FALSE(index_.Reserve(65));
    FailAllocationsFrom(0);
    ExpectFilled();
}

TEST_F(HashIndexAllocationTest, WithoutMoreBucketsThereIsRoomForOneMore) {
    Fill();
    FailAllocationsFrom(1);
    EXPECT_TRUE(index_.ReserveOneMore());
    EXPECT_EQ(1u, CountedAllocations());
    FailAllocationsFrom(0);
    Item more{64, nullptr};
    index_.Add(more);
    EXPECT_EQ(&more, index_.ChainOf(0));
    EXPECT_EQ(&items_[0], more.bucket_next);
}

}  // namespace
}  // namespace tolvenar
