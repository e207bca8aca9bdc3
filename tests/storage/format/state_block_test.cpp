#include "storage/format/state_block.h"

#include <gtest/gtest.h>

#include "tests/support/bytes.h"
#include "tests/support/memory_bytes.h"

namespace tolvenar {
namespace {

constexpr std::uint64_t kTime = 0x01DD7583957AC700;

class StateBlockTest : public testing::Test {
protected:
    StateBlockTest() {
        record_.propOffset = 2;
        record_.data_offset = 40;
        record_.type = ObjectType::kState;
    }
    // Two bytes of something else, the block of a state and its description.
    static Bytes File(const Bytes& description, std::size_t claimed_bytes) {
        return Raw({7, 7}) + Block(0, 0, kTime, claimed_bytes, ObjectType::kState, u"Title") +
               description;
    }
    bool Read(const Bytes& content) {
        MemoryBytes file(content);
        file.bad_begin = bad_begin_;
        file.bad_end = bad_begin_ == 0 ? 0 : bad_begin_ + 1;
        StorageReader storage(file);
        return ReadStateBlock(storage, record_, block_);
    }
    std::u16string Description() const { return block_.description; }

    ObjectRecord record_{};
    StateBlock block_{};
    std::uint32_t bad_begin_ = 0;  // a byte that cannot be read; 0 for none
};

TEST_F(StateBlockTest, ItHasATimeAndADescription) {
    ASSERT_TRUE(Read(File(Units(u"before the journey"), 36)));
    EXPECT_EQ(kTime, std::uint64_t{block_.time_high} << 32 | block_.time_low);
    EXPECT_EQ(u"before the journey", Description());
}

TEST_F(StateBlockTest, TheDescriptionEndsWhereTheBlockSays) {
    ASSERT_TRUE(Read(File(Units(u"before the journey"), 12)));
    EXPECT_EQ(u"before", Description());
}

TEST_F(StateBlockTest, HalfAUnitIsLeftOut) {
    ASSERT_TRUE(Read(File(Units(u"abc"), 5)));
    EXPECT_EQ(u"ab", Description());
    ASSERT_TRUE(Read(File(Units(u"ab") + "c", 6)));
    EXPECT_EQ(u"ab", Description());
}

TEST_F(StateBlockTest, AStateWithoutDataHasNoDescription) {
    record_.data_offset = kNoData;
    ASSERT_TRUE(Read(File(Units(u"xyz"), 6)));
    EXPECT_EQ(u"", Description());
}

TEST_F(StateBlockTest, ADescriptionHas199UnitsAtMost) {
    for (const std::size_t claim : {398u, 400u, 0xFFFFFFFFu}) {
        ASSERT_TRUE(Read(File(Units(std::u16string(1000, u'd')), claim)));
        EXPECT_EQ(std::u16string(199, u'd'), Description()) << claim;
    }
}

TEST_F(StateBlockTest, ADescriptionBehindTheFilesEndIsEmpty) {
    record_.data_offset = 0x10000;
    ASSERT_TRUE(Read(File(Units(u"abc"), 6)));
    EXPECT_EQ(u"", Description());
}

TEST_F(StateBlockTest, ADescriptionThatCannotBeReadIsEmpty) {
    bad_begin_ = 43;
    ASSERT_TRUE(Read(File(Units(u"abc"), 6)));
    EXPECT_EQ(u"", Description());
    EXPECT_NE(0u, block_.time_high);
}

TEST_F(StateBlockTest, WithoutAWholeHeadThereIsNothing) {
    const Bytes file = File(Units(u"abc"), 6);
    for (const std::uint32_t offset : {20u, 0x10000u, 0xFFFFFFFFu}) {
        record_.propOffset = offset;
        block_.time_low = 1;
        block_.description[0] = u'x';
        EXPECT_FALSE(Read(file.substr(0, 46))) << offset;
        EXPECT_EQ(0u, block_.time_low);
        EXPECT_EQ(u"", Description());
    }
    record_.propOffset = 2;
    bad_begin_ = 29;
    EXPECT_FALSE(Read(file));
}

}  // namespace
}  // namespace tolvenar
