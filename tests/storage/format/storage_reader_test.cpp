#include "storage/format/storage_reader.h"

#include <gtest/gtest.h>

#include "tests/support/bytes.h"
#include "tests/support/memory_bytes.h"

namespace tolvenar {
namespace {

using Text = std::u16string;

// A storage file of a head and one block behind it.
class StorageReaderTest : public testing::Test {
protected:
    // "h" in every byte before the name's length, which stands at 22; the name follows at 26.
    static Bytes Block(std::uint16_t name_bytes, const Bytes& name) {
        return Bytes(22, 'h') + Half(name_bytes) + Half(0) + name;
    }
    void Put(const std::string& behind_the_head) {
        file_ = std::make_unique<MemoryBytes>(std::string(236, 0) + behind_the_head);
        reader_ = std::make_unique<StorageReader>(*file_);
    }
    bool Read(std::uint32_t offset) { return reader_->GetInfoFromStorage(offset, block_); }

    std::unique_ptr<MemoryBytes> file_;
    std::unique_ptr<StorageReader> reader_;
    InfoBlock block_;
};

TEST_F(StorageReaderTest, AStoredBlockIsReadWithItsName) {
    Put(Block(4, Terminated(u"ab")));
    ASSERT_TRUE(Read(236));
    EXPECT_EQ(Text(u"ab"), block_.name());
    EXPECT_EQ(32u, block_.size());
    EXPECT_EQ(0x68686868u, block_.head().attributes);
}

TEST_F(StorageReaderTest, ABlockThatCannotBeReadFails) {
    Put(Block(0, Half(0)));
    file_->bad_begin = 240;
    file_->bad_end = 241;
    EXPECT_FALSE(Read(236));
    file_->bad_end = 0;
    EXPECT_TRUE(Read(236));
}

TEST_F(StorageReaderTest, AStoredBlockWithoutANameHasAnEmptyOne) {
    Put(Block(0, Half(0)));
    ASSERT_TRUE(Read(236));
    EXPECT_EQ(Text(), block_.name());
    EXPECT_EQ(28u, block_.size());
}

TEST_F(StorageReaderTest, TheNameEndsAtItsLengthWhateverFollows) {
    Put(Block(4, Units(u"abcd")));
    ASSERT_TRUE(Read(236));
    EXPECT_EQ(Text(u"ab"), block_.name());
}

TEST_F(StorageReaderTest, ABlockThatIsNotWholeInTheFileFails) {
    Put(Block(4, std::string("a\0b\0", 4)));
    for (const std::uint32_t offset : {236u, 246u, 100000u, 0xFFFFFFF0u}) {
        EXPECT_FALSE(Read(offset)) << offset;
    }
}

TEST_F(StorageReaderTest, ANameThatDoesNotFitABlockFails) {
    const struct {
        std::uint16_t name_bytes;
        bool fits;
    } rows[] = {{520, true}, {522, false}, {0xFFFE, false}};
    for (const auto& row : rows) {
        Put(Block(row.name_bytes, std::string(0x10000, 'n')));
        EXPECT_EQ(row.fits, Read(236)) << row.name_bytes;
    }
}

TEST_F(StorageReaderTest, OneBlockAfterTheOtherCostsFewReads) {
    std::string blocks;
    for (int i = 0; i < 1000; ++i) {
        blocks += Block(4, Terminated(u"ab"));
    }
    Put(blocks);
    for (std::uint32_t i = 0; i < 1000; ++i) {
        ASSERT_TRUE(Read(236 + 32 * i));
    }
    EXPECT_EQ(4, file_->reads);  // 1 + 2 + 4 + 8 pages hold 32,236 bytes
}

TEST_F(StorageReaderTest, DataAreAllThereOrNone) {
    Put("0123456789");
    const auto data = reader_->ReadData(238, 5);
    ASSERT_NE(nullptr, data);
    EXPECT_EQ("23456", std::string(reinterpret_cast<const char*>(data.get()), 5));
    EXPECT_NE(nullptr, reader_->ReadData(246, 0));
    EXPECT_EQ(nullptr, reader_->ReadData(238, 9));
    EXPECT_EQ(nullptr, reader_->ReadData(247, 0));
    EXPECT_EQ(nullptr, reader_->ReadData(0xFFFFFFFF, 1));
    EXPECT_EQ(nullptr, reader_->ReadData(238, 0xFFFFFFFF));
}

TEST_F(StorageReaderTest, TheHeadIsReadTwiceWhenItHasADescription) {
    Put("");
    StorageHeader header{};
    EXPECT_TRUE(reader_->ReadHead(header));
    EXPECT_EQ(1, file_->reads);
    std::string content(232, 0);
    content[228] = 4;
    MemoryBytes described(content + std::string("o\0k\0", 4) + "block");
    EXPECT_TRUE(StorageReader(described).ReadHead(header));
    EXPECT_EQ(2, described.reads);
    EXPECT_EQ(Text(u"ok"), header.description);
    MemoryBytes cut(std::string(231, 0));
    EXPECT_FALSE(StorageReader(cut).ReadHead(header));
}

}  // namespace
}  // namespace tolvenar
