#include "snapshot/records/slabs.h"

#include <gtest/gtest.h>
#include <set>
#include <vector>

namespace tolvenar {
namespace {

struct Thing {
    int number = 7;
    char bytes[60] = {};
};

TEST(SlabsTest, EveryThingHasAPlaceOfItsOwnAndKeepsIt) {
    Slabs<Thing> slabs;
    std::vector<Thing*> things;
    for (int i = 0; i < 1000; ++i) {
        things.push_back(slabs.Take());
        ASSERT_NE(nullptr, things.back());
        EXPECT_EQ(7, things.back()->number);
        things.back()->number = i;
    }
    for (int i = 0; i < 1000; ++i) {
        EXPECT_EQ(i, things[static_cast<std::size_t>(i)]->number);
    }
}

TEST(SlabsTest, WhatIsGivenBackIsTakenAgainWithInitialValues) {
    Slabs<Thing> slabs;
    std::set<Thing*> things;
    for (int i = 0; i < 5; ++i) {
        things.insert(slabs.Take());
    }
    for (Thing* thing : things) {
        thing->number = 0;
        thing->bytes[3] = 1;
        slabs.GiveBack(*thing);
    }
    for (int i = 0; i < 5; ++i) {
        Thing* const again = slabs.Take();
        EXPECT_EQ(1u, things.erase(again));
        EXPECT_EQ(7, again->number);
        EXPECT_EQ(0, again->bytes[3]);
    }
}

TEST(SlabsTest, ClearedItBeginsAnew) {
    Slabs<Thing> slabs;
    slabs.GiveBack(*slabs.Take());
    slabs.Clear();
    Thing* const one = slabs.Take();
    Thing* const other = slabs.Take();
    ASSERT_NE(nullptr, one);
    EXPECT_NE(one, other);
    EXPECT_EQ(7, other->number);
}

}  // namespace
}  // namespace tolvenar
