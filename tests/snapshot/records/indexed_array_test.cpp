#include "snapshot/records/indexed_array.h"

#include <gtest/gtest.h>
#include <vector>

namespace tolvenar {
namespace {

struct Number {
    std::uint32_t number;
    Number* bucket_next;
    std::uint32_t Hash() const { return number % 3; }
};

TEST(IndexedArrayTest, EntriesAreFoundByHashAndStandInTheirOrder) {
    IndexedArray<Number> numbers;
    ASSERT_TRUE(numbers.Reserve(5));
    for (const std::uint32_t number : {7u, 4u, 9u, 1u, 12u}) {
        numbers.Add({number, nullptr});
    }
    EXPECT_EQ(5u, numbers.count());
    std::vector<std::uint32_t> in_order;
    for (const Number& number : numbers) {
        in_order.push_back(number.number);
    }
    EXPECT_EQ((std::vector<std::uint32_t>{7, 4, 9, 1, 12}), in_order);
    const Number* four = numbers.Find(1, [](const Number& n) { return n.number == 4; });
    ASSERT_NE(nullptr, four);
    EXPECT_EQ(4u, four->number);
    EXPECT_EQ(nullptr, numbers.Find(1, [](const Number& n) { return n.number == 9; }));
}

TEST(IndexedArrayTest, WithoutRoomNothingIsFound) {
    const IndexedArray<Number> none;
    EXPECT_EQ(0u, none.count());
    EXPECT_EQ(nullptr, none.ChainOf(1));
}

}  // namespace
}  // namespace tolvenar
