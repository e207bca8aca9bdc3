#include "storage/files/block_io.h"

#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class BlockIoTest : public StorageTest {
protected:
    void SetUp() override {
        StorageTest::SetUp();
        Put(kSav, "123");
        file_ = OpenFile(kSav, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING);
        ASSERT_TRUE(file_);
        ASSERT_TRUE(MoveToEnd(file_.get()));
    }
    void TearDown() override {
        file_.Reset();
        StorageTest::TearDown();
    }
    UniqueHandle file_;
    std::uint32_t offset_ = 0;
};

TEST_F(BlockIoTest, WriteBlockTellsWhereTheBlockBegins) {
    EXPECT_EQ(1, WriteBlock(file_.get(), "abcd", 4, offset_, false));
    EXPECT_EQ(3u, offset_);
    EXPECT_EQ(1, WriteBlock(file_.get(), "ef", 2, offset_, false));
    EXPECT_EQ(7u, offset_);
    file_.Reset();
    EXPECT_EQ("123abcdef", Content(kSav));
}

TEST_F(BlockIoTest, WithItsNameABlockGoesOutInOneWrite) {
    Bytes block(28 + 4 + 10, 'x');
    Patch(block, 22, std::uint16_t{4});
    Fail("WriteFile", 2, ERROR_DISK_FULL);
    EXPECT_EQ(1, WriteBlock(file_.get(), block.data(), 28, offset_, true));
    device().DropFaults();  // one write was all
    EXPECT_EQ(3u, offset_);
    file_.Reset();
    EXPECT_EQ("123" + block.substr(0, 32), Content(kSav));
}

TEST_F(BlockIoTest, AFailedWriteOfABlockIs0AndTellsItsPlace) {
    Fail("WriteFile", 1, ERROR_DISK_FULL);
    EXPECT_EQ(0, WriteBlock(file_.get(), "abcd", 4, offset_, false));
    EXPECT_EQ(3u, offset_);
}

TEST_F(BlockIoTest, WithoutAPositionNothingIsWritten) {
    Fail("SetFilePointer", 1, ERROR_INVALID_HANDLE);
    EXPECT_EQ(0, WriteBlock(file_.get(), "abcd", 4, offset_, false));
    file_.Reset();
    EXPECT_EQ("123", Content(kSav));
}

TEST_F(BlockIoTest, PositionAndSizeAreInBytes) {
    std::uint32_t bytes = 0;
    EXPECT_TRUE(FileBytes(file_.get(), bytes));
    EXPECT_EQ(3u, bytes);
    EXPECT_TRUE(MoveTo(file_.get(), 1));
    EXPECT_TRUE(FilePosition(file_.get(), offset_));
    EXPECT_EQ(1u, offset_);
}

// Without the high word the distance would be a negative number.
TEST_F(BlockIoTest, APlaceBeyondTwoGigabytesCanBeReached) {
    EXPECT_TRUE(MoveTo(file_.get(), 0x90000000));
    EXPECT_TRUE(FilePosition(file_.get(), offset_));
    EXPECT_EQ(0x90000000u, offset_);
    EXPECT_TRUE(MoveTo(file_.get(), 0xFFFFFFFF));
    EXPECT_TRUE(FilePosition(file_.get(), offset_));
    EXPECT_EQ(0xFFFFFFFFu, offset_);
}

TEST_F(BlockIoTest, ReadAllWantsAllOfIt) {
    char buffer[4] = {};
    EXPECT_TRUE(MoveTo(file_.get(), 0));
    EXPECT_TRUE(ReadAll(file_.get(), buffer, 3));
    EXPECT_EQ('3', buffer[2]);
    EXPECT_TRUE(MoveTo(file_.get(), 0));
    EXPECT_FALSE(ReadAll(file_.get(), buffer, 4));
    EXPECT_FALSE(ReadAll(file_.get(), buffer, 1));
}

}  // namespace
}  // namespace tolvenar
