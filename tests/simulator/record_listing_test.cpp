// A kept list of records, held against sorting them all.
#include "simulator/databases/record_listing.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <random>

#include "simulator/files/key_number.h"
#include "simulator/store/names.h"

namespace {

using namespace sim::databases;

constexpr std::uint32_t kNumber = (1u << 16) | kI4;

Record WithNumber(std::uint32_t number) {
    Property property;
    property.propid = kNumber;
    property.value.assign(reinterpret_cast<const char*>(&number), sizeof number);
    return {property};
}

class RecordListingTest : public ::testing::TestWithParam<std::tuple<std::uint32_t, std::string>> {
protected:
    SortOrder sort_{kNumber, std::get<0>(GetParam())};
    std::string order_ = std::get<1>(GetParam());
    std::map<std::uint32_t, Record> records_;

    std::vector<std::uint32_t> Sorted() const {
        std::vector<sim::Enumerated> items;
        for (const auto& [oid, record] : records_) {
            items.push_back({oid, sim::files::KeyNumber(oid)});
        }
        sim::Arrange(items, order_);
        std::vector<std::uint32_t> oids;
        for (const sim::Enumerated& item : items) {
            oids.push_back(item.sequence);
        }
        std::stable_sort(oids.begin(), oids.end(), [this](std::uint32_t a, std::uint32_t b) {
            return Compare(sort_, Find(records_.at(a), kNumber), Find(records_.at(b), kNumber)) < 0;
        });
        return oids;
    }
};

TEST_P(RecordListingTest, IsWhatSortingGivesAfterEveryChange) {
    std::mt19937 random(7);
    RecordListing listing(sort_, order_);
    for (int i = 0; i < 400 && !HasFailure(); ++i) {
        const std::uint32_t oid = 1 + random() % 40;
        if (random() % 3 == 0) {
            records_.erase(oid);
            listing.Remove(oid);
        } else {
            records_[oid] = random() % 5 == 0 ? Record() : WithNumber(random() % 10);
            listing.Put(oid, records_[oid]);
        }
        const std::vector<std::uint32_t> sorted = Sorted();
        ASSERT_EQ(sorted.size(), listing.size());
        for (std::size_t at = 0; at < sorted.size(); ++at) {
            EXPECT_EQ(sorted[at], listing.At(at));
            EXPECT_EQ(at, listing.IndexOf(sorted[at]));
        }
        EXPECT_EQ(0u, listing.At(sorted.size()));
        EXPECT_EQ(std::nullopt, listing.IndexOf(41));
    }
}

TEST_P(RecordListingTest, AValueIsFoundWhereItWouldStand) {
    RecordListing listing(sort_, order_);
    for (const std::uint32_t number : {30, 10, 20, 20}) {
        const auto oid = static_cast<std::uint32_t>(records_.size() + 1);
        records_[oid] = WithNumber(number);
        listing.Put(oid, records_[oid]);
    }
    const bool descends = (sort_.flags & kDescending) != 0;
    const auto first = [&](std::uint32_t number) {
        return listing.FirstNotBefore(WithNumber(number)[0]);
    };
    EXPECT_EQ(1u, first(20));
    EXPECT_EQ(descends ? 3u : 0u, first(10));
    EXPECT_EQ(descends ? 1u : 3u, first(25));
    EXPECT_TRUE(listing.IsEqual(2, WithNumber(20)[0]));
    EXPECT_FALSE(listing.IsEqual(3, WithNumber(20)[0]));
    EXPECT_FALSE(listing.IsEqual(4, WithNumber(20)[0]));
}

INSTANTIATE_TEST_SUITE_P(Orders, RecordListingTest,
                         ::testing::Combine(::testing::Values(0u, std::uint32_t{kDescending},
                                                              std::uint32_t{kUnknownFirst}),
                                            ::testing::Values("stored", "reversed", "shuffled:5")));

}  // namespace
