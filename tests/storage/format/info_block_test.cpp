// Blocks as they stand in a storage file, written by hand.
#include "storage/format/info_block.h"

#include <gtest/gtest.h>

#include "tests/support/bytes.h"

namespace tolvenar {
namespace {

using Text = std::u16string;

// The value "v" of the key "K" under HKEY_CURRENT_USER, a REG_DWORD.
const Bytes kValue =
    Raw({1, 0, 0, 0x80, 4, 0, 0, 0, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 4,
         0, 0, 0, 1,    0, 6, 0, 0, 0,    'K',  0,    0xFF, 0,    'v',  0,    0,    0});

Bytes WithName(std::uint16_t name_bytes, std::size_t size) {
    Bytes bytes(size, 'n');
    Patch(bytes, 22, name_bytes);
    return bytes;
}

bool Parse(const Bytes& bytes, InfoBlock& block) {
    std::memset(block.bytes(), 0xCC, kInfoBlockBytes);
    return ParseInfoBlock(Exactly(bytes).data(), bytes.size(), block);
}

TEST(InfoBlockTest, EveryFieldComesFromItsPlace) {
    InfoBlock block;
    ASSERT_TRUE(Parse(kValue, block));
    EXPECT_EQ(0x80000001u, block.head().hive);
    EXPECT_EQ(4u, block.head().value_type);
    EXPECT_EQ(0x44332211u, block.head().time_low);
    EXPECT_EQ(0x88776655u, block.head().time_high);
    EXPECT_EQ(4u, block.head().data_bytes);
    EXPECT_EQ(ObjectType::kRegistryValue, block.type());
    EXPECT_EQ(6u, block.head().name_bytes);
    EXPECT_EQ(Text(u"K\u00FFv"), block.name());
    EXPECT_EQ(kValue.size(), block.size());
}

TEST(InfoBlockTest, ABlockWithoutANameHasAnEmptyOne) {
    InfoBlock block;
    ASSERT_TRUE(Parse(WithName(0, 28), block));
    EXPECT_EQ(Text(), block.name());
    EXPECT_EQ(28u, block.size());
}

TEST(InfoBlockTest, TheNameEndsAtItsLengthWhateverFollows) {
    InfoBlock block;
    ASSERT_TRUE(Parse(WithName(4, 100), block));
    EXPECT_EQ(2u, Text(block.name()).size());
}

TEST(InfoBlockTest, ABlockThatIsNotWholeIsRefusedAndEmpty) {
    InfoBlock block;
    for (std::size_t size = 0; size < kValue.size(); ++size) {
        EXPECT_FALSE(Parse(kValue.substr(0, size), block)) << size;
        EXPECT_EQ(0u, block.head().hive) << size;
        EXPECT_EQ(28u, block.size()) << size;
    }
}

TEST(InfoBlockTest, ANameOfOddLengthIsRefused) {
    InfoBlock block;
    EXPECT_FALSE(Parse(WithName(5, 100), block));
    EXPECT_TRUE(Parse(WithName(6, 100), block));
}

TEST(InfoBlockTest, ANameOf260UnitsIsTheLongest) {
    InfoBlock block;
    ASSERT_TRUE(Parse(WithName(520, 0x10000), block));
    EXPECT_EQ(260u, Text(block.name()).size());
    EXPECT_FALSE(Parse(WithName(522, 0x10000), block));
    EXPECT_FALSE(Parse(WithName(0xFFFE, 0x10100), block));
}

TEST(InfoBlockTest, ANameIsSetAndAddedToUpToItsLimit) {
    const Text name(260, u'n');
    InfoBlock block;
    EXPECT_TRUE(block.SetName(name.data(), 259));
    EXPECT_FALSE(block.AppendName(name.data(), 2));
    EXPECT_EQ(Text(259, u'n'), block.name());
    EXPECT_TRUE(block.AppendName(name.data(), 1));
    EXPECT_EQ(name, block.name());
    EXPECT_EQ(548u, block.size());
    EXPECT_TRUE(block.SetName(u"ab", 1));
    EXPECT_EQ(Text(u"a"), block.name());
    EXPECT_FALSE(block.SetName(Text(261, u'n').data(), 261));
    EXPECT_EQ(Text(), block.name());
}

}  // namespace
}  // namespace tolvenar
