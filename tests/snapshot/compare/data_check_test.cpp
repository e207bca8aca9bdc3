#include "snapshot/compare/data_check.h"

#include <gtest/gtest.h>

#include "tests/support/memory_bytes.h"
#include "tests/support/pair_builder.h"

namespace tolvenar {
namespace {

class DataCheckTest : public testing::Test {
protected:
    bool IsSound(const ObjectRecord& record) {
        MemoryBytes file(pair_.sav);
        StorageReader stored(file);
        InfoBlock block;
        EXPECT_TRUE(stored.GetInfoFromStorage(record.propOffset, block));
        return DataAreSound(stored, record, block);
    }
    // The same with one bit of its data turned.
    bool IsSoundWithout(const ObjectRecord& record, std::size_t bit) {
        const Bytes before = pair_.sav;
        pair_.sav[record.data_offset + bit / 8] ^= static_cast<char>(1 << bit % 8);
        const bool is_sound = IsSound(record);
        pair_.sav = before;
        return is_sound;
    }
    DataCheckTest() { pair_.BeginState("description"); }
    PairBuilder pair_;
};

TEST_F(DataCheckTest, WhatWasWrittenIsSound) {
    EXPECT_TRUE(IsSound(pair_.AddFile(u"\\a", "contents", 5)));
    EXPECT_TRUE(IsSound(pair_.AddFile(u"\\empty", "", 6)));
    EXPECT_TRUE(IsSound(pair_.AddFile(u"\\large", RandomBytes(10000, 1), 7)));
    EXPECT_TRUE(IsSound(pair_.AddFolder(u"\\Sub", 8)));
    EXPECT_TRUE(IsSound(pair_.AddKey(u"Key")));
    EXPECT_TRUE(IsSound(pair_.AddValue(u"Key", u"v", "data")));
    EXPECT_TRUE(IsSound(pair_.AddValue(u"Key", u"none", "")));
    EXPECT_TRUE(IsSound(pair_.AddDatabase(u"People", 9)));
    EXPECT_TRUE(IsSound(pair_.AddRecord(u"People", 1, 10)));
}

TEST_F(DataCheckTest, EveryBitOfAFileAndAValueCounts) {
    const ObjectRecord file = pair_.AddFile(u"\\a", "contents", 5);
    const ObjectRecord value = pair_.AddValue(u"Key", u"v", "data");
    for (std::size_t bit = 0; bit < 8 * 8; ++bit) {
        EXPECT_FALSE(IsSoundWithout(file, bit)) << bit;
        EXPECT_TRUE(bit >= 8 * 4 || !IsSoundWithout(value, bit)) << bit;
    }
}

TEST_F(DataCheckTest, ABitBehindTheFirstChunkOfAFileCounts) {
    const ObjectRecord file = pair_.AddFile(u"\\a", RandomBytes(10000, 1), 5);
    EXPECT_FALSE(IsSoundWithout(file, 8 * 4096));
    EXPECT_FALSE(IsSoundWithout(file, 8 * 9999 + 7));
}

// Its length and the upper half of a number's place are used by no property of this kind.
TEST_F(DataCheckTest, EveryBitOfARecordsPropertiesCountsThatIsUsed) {
    const ObjectRecord record = pair_.AddRecord(u"People", 1, 10);
    for (std::size_t bit = 0; bit < 8 * 16; ++bit) {
        const std::size_t byte = bit / 8;
        const bool is_used = byte < 4 || (byte >= 6 && byte < 12);
        EXPECT_EQ(!is_used, IsSoundWithout(record, bit)) << bit;
    }
}

TEST_F(DataCheckTest, DataBehindTheEndAreNone) {
    for (const ObjectRecord& record :
         {pair_.AddFile(u"\\a", "contents", 5), pair_.AddValue(u"Key", u"v", "data"),
          pair_.AddRecord(u"People", 1, 10)}) {
        const Bytes before = pair_.sav;
        pair_.sav.resize(record.data_offset + 3);
        EXPECT_FALSE(IsSound(record));
        pair_.sav = before;
    }
}

TEST_F(DataCheckTest, APathThatHoldsAZeroIsNone) {
    EXPECT_FALSE(IsSound(pair_.AddFile(std::u16string(u"\\a\0b", 4), "x", 5)));
    EXPECT_FALSE(IsSound(pair_.AddFolder(std::u16string(u"\\a\0b", 4), 5)));
}

// It would be written over by the places of the array.
TEST_F(DataCheckTest, ATextInThePropertyArrayItselfIsDamage) {
    const ObjectRecord record = pair_.AddRecord(u"People", 1, 10);
    pair_.sav.replace(record.data_offset, 16, Property(0x0001001F, 8));
    ObjectRecord with_checksum = record;
    for (unsigned checksum = 0; checksum <= 0xFFFF; ++checksum) {
        with_checksum.content_fingerprint = static_cast<std::uint16_t>(checksum);
        ASSERT_FALSE(IsSound(with_checksum));
    }
}

}  // namespace
}  // namespace tolvenar
