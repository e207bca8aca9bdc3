#include "snapshot/records/hash_index.h"

#include <gtest/gtest.h>
#include <vector>

namespace tolvenar {
namespace {

// The bucket is chosen by the low bits alone.
struct Item {
    std::uint32_t hash;
    int number;
    Item* bucket_next;

    std::uint32_t Hash() const { return hash; }
};

using Numbers = std::vector<int>;

class HashIndexTest : public testing::Test {
protected:
    Numbers Chain(std::uint32_t hash) const {
        Numbers numbers;
        for (const Item* item = index_.ChainOf(hash); item != nullptr; item = item->bucket_next) {
            numbers.push_back(item->number);
        }
        return numbers;
    }
    void Add(Item& item) {
        ASSERT_TRUE(index_.ReserveOneMore());
        index_.Add(item);
    }
    // The number of the first item of the chain with this hash; 0 when there is none.
    int Find(std::uint32_t hash) const {
        const Item* item =
            index_.Find(hash, [hash](const Item& entry) { return entry.hash == hash; });
        return item == nullptr ? 0 : item->number;
    }

    HashIndex<Item> index_;
};

// The low six bits that differ between two hashes, for any of several words with `bit` changed.
template <typename Hash>
std::uint32_t ChangedBits(int bit, Hash hash) {
    std::uint32_t changed = 0;
    for (std::uint32_t word = 0; word < 64; ++word) {
        changed |= (hash(word) ^ hash(word ^ 1u << bit)) & 63;
    }
    return changed;
}

TEST(MixBitsTest, EveryBitOfAnEarlierWordReachesTheLowBits) {
    for (int bit = 0; bit < 32; ++bit) {
        EXPECT_EQ(63u, ChangedBits(bit,
                                   [](std::uint32_t word) {
                                       return MixBits(MixBits(MixBits(0, word), 7), 9);
                                   }))
            << bit;
    }
}

TEST(MixBitsTest, TheLower20BitsOfTheLastWordReachTheLowBits) {
    for (int bit = 0; bit < 20; ++bit) {
        EXPECT_NE(0u, ChangedBits(bit, [](std::uint32_t word) { return MixBits(7, word); })) << bit;
    }
}

TEST(MixBitsTest, TheOrderOfTheWordsCounts) {
    EXPECT_NE(MixBits(MixBits(0, 1), 2), MixBits(MixBits(0, 2), 1));
}

TEST_F(HashIndexTest, ANewIndexHoldsNothing) {
    EXPECT_EQ(0u, index_.count());
    EXPECT_EQ(nullptr, index_.ChainOf(5));
    EXPECT_EQ(0, Find(5));
}

TEST_F(HashIndexTest, RoomForNoEntriesIsRoomAllTheSame) {
    ASSERT_TRUE(index_.Reserve(0));
    EXPECT_EQ(nullptr, index_.LinkOf(5));
    Item item{5, 1, nullptr};
    index_.Add(item);
    EXPECT_EQ(1, Find(5));
}

TEST_F(HashIndexTest, TheNewestStandsInFront) {
    Item items[] = {{5, 1, nullptr}, {5, 2, nullptr}, {6, 3, nullptr}, {5, 4, nullptr}};
    for (Item& item : items) {
        Add(item);
    }
    EXPECT_EQ((Numbers{4, 2, 1}), Chain(5));
    EXPECT_EQ((Numbers{3}), Chain(6));
    EXPECT_EQ(4, Find(5));
    EXPECT_EQ(4u, index_.count());
}

TEST_F(HashIndexTest, AnEntryIsPutBehindThoseThatGoBefore) {
    Item items[] = {{5, 10, nullptr}, {5, 30, nullptr}, {5, 20, nullptr}, {5, 5, nullptr}};
    ASSERT_TRUE(index_.Reserve(4));
    for (Item& item : items) {
        index_.AddBehind(item,
                         [&item](const Item& present) { return present.number > item.number; });
    }
    EXPECT_EQ((Numbers{30, 20, 10, 5}), Chain(5));
    EXPECT_EQ(4u, index_.count());
}

TEST_F(HashIndexTest, EntriesOfOtherHashesShareTheChain) {
    Item items[] = {{5, 1, nullptr}, {5 + 64, 2, nullptr}};
    Add(items[0]);
    Add(items[1]);
    EXPECT_EQ((Numbers{2, 1}), Chain(5));
    EXPECT_EQ(1, Find(5));
    EXPECT_EQ(2, Find(5 + 64));
    EXPECT_EQ(0, Find(5 + 128));
}

TEST_F(HashIndexTest, RemovesAtTheFrontInTheMiddleAndAtTheEnd) {
    std::vector<Item> items;
    for (int i = 1; i <= 5; ++i) {
        items.push_back({7, i, nullptr});
    }
    for (Item& item : items) {
        Add(item);
    }
    for (int i : {4, 2, 0}) {
        index_.Remove(items[static_cast<std::size_t>(i)]);
    }
    EXPECT_EQ((Numbers{4, 2}), Chain(7));
    EXPECT_EQ(2u, index_.count());
}

TEST_F(HashIndexTest, AWalkAlongTheLinksTakesEntriesOut) {
    Item items[] = {{5, 1, nullptr}, {5, 2, nullptr}, {5, 3, nullptr}, {5, 4, nullptr}};
    for (Item& item : items) {
        Add(item);
    }
    for (Item** link = &index_.LinkOf(5); *link != nullptr;) {
        if ((*link)->number % 2 == 0) {
            index_.RemoveAt(*link);
        } else {
            link = &(*link)->bucket_next;
        }
    }
    EXPECT_EQ((Numbers{3, 1}), Chain(5));
    EXPECT_EQ(2u, index_.count());
}

TEST_F(HashIndexTest, ChainsKeepTheirOrderWhileTheIndexGrows) {
    // Pairs of one hash between many others: the buckets double six times.
    constexpr std::uint32_t kHashes = 2000;
    std::vector<Item> items;
    for (std::uint32_t i = 0; i < 2 * kHashes; ++i) {
        items.push_back({i % kHashes, static_cast<int>(i + 1), nullptr});
    }
    for (Item& item : items) {
        Add(item);
    }
    for (std::uint32_t hash = 0; hash < kHashes; ++hash) {
        const int older = static_cast<int>(hash + 1);
        ASSERT_EQ((Numbers{older + static_cast<int>(kHashes), older}), Chain(hash)) << hash;
    }
}

TEST_F(HashIndexTest, AsManyBucketsAsEntriesAreReserved) {
    ASSERT_TRUE(index_.Reserve(1000));
    std::vector<Item> items;
    for (std::uint32_t i = 0; i < 1000; ++i) {
        items.push_back({i, static_cast<int>(i), nullptr});
    }
    for (Item& item : items) {
        index_.Add(item);
    }
    for (std::uint32_t i = 0; i < 1000; ++i) {
        ASSERT_EQ((Numbers{static_cast<int>(i)}), Chain(i));
    }
}

TEST_F(HashIndexTest, AClearedIndexCanBeFilledAgain) {
    Item item{5, 1, nullptr};
    Add(item);
    index_.Clear();
    EXPECT_EQ(0u, index_.count());
    EXPECT_EQ(0, Find(5));
    Add(item);
    EXPECT_EQ((Numbers{1}), Chain(5));
}

}  // namespace
}  // namespace tolvenar
