#include "storage/format/storage_appender.h"

#include <gtest/gtest.h>

#include "tests/support/memory_bytes.h"

namespace tolvenar {
namespace {

class StorageAppenderTest : public testing::Test {
protected:
    // A block of 28 bytes and a name of `name_bytes` more.
    static std::string Block(std::uint8_t name_bytes) {
        std::string block(28 + std::size_t{name_bytes}, 'b');
        block[22] = static_cast<char>(name_bytes);
        block[23] = 0;
        return block;
    }
    bool WriteData(const std::string& data) {
        return storage_.WriteBlock(data.data(), static_cast<std::uint32_t>(data.size()), offset_,
                                   false);
    }
    bool WriteHead(const std::string& block) {
        return storage_.WriteBlock(block.data(), 28, offset_, true);
    }

    MemoryBytes file_{"head"};
    StorageAppender storage_{file_, 4};
    std::uint32_t offset_ = 0;
};

TEST_F(StorageAppenderTest, WriteBlockTellsWhereTheBlockBegins) {
    EXPECT_TRUE(WriteData("abcd"));
    EXPECT_EQ(4u, offset_);
    EXPECT_TRUE(WriteData("ef"));
    EXPECT_EQ(8u, offset_);
    EXPECT_EQ(10u, storage_.position());
    EXPECT_TRUE(storage_.Flush());
    EXPECT_EQ("headabcdef", file_.content());
}

TEST_F(StorageAppenderTest, WithItsNameABlockIsAsLongAsTheNameSays) {
    const std::string block = Block(4) + "behind";
    EXPECT_TRUE(WriteHead(block));
    EXPECT_TRUE(storage_.Flush());
    EXPECT_EQ("head" + Block(4), file_.content());
}

TEST_F(StorageAppenderTest, HeadNameAndSmallDataGoOutInOneWrite) {
    EXPECT_TRUE(WriteHead(Block(10)));
    EXPECT_TRUE(WriteData("data"));
    EXPECT_EQ(0, file_.writes);
    EXPECT_TRUE(storage_.Flush());
    EXPECT_EQ(1, file_.writes);
    EXPECT_EQ("head" + Block(10) + "data", file_.content());
}

TEST_F(StorageAppenderTest, DataThatDoNotFitTheBufferGoOutBesideIt) {
    const std::string large(5000, 'l');
    EXPECT_TRUE(WriteHead(Block(10)));
    EXPECT_TRUE(WriteData(large));
    EXPECT_EQ(4u + 38u, offset_);
    EXPECT_TRUE(WriteData("end"));
    EXPECT_TRUE(storage_.Flush());
    EXPECT_EQ("head" + Block(10) + large + "end", file_.content());
    EXPECT_EQ(3, file_.writes);
}

TEST_F(StorageAppenderTest, TheFilesWritingEndIsMovedToOnce) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(WriteData("x"));
        EXPECT_TRUE(storage_.Flush());
    }
    EXPECT_EQ(1, file_.moves);
}

TEST_F(StorageAppenderTest, WhatWasTakenBackBeforeItWentOutIsNeverWritten) {
    EXPECT_TRUE(WriteHead(Block(10)));
    storage_.TakeBack(4);
    EXPECT_EQ(4u, storage_.position());
    EXPECT_TRUE(WriteData("next"));
    EXPECT_TRUE(storage_.Flush());
    EXPECT_EQ("headnext", file_.content());
    EXPECT_EQ(1, file_.writes);
}

TEST_F(StorageAppenderTest, WhatWentOutIsOverwrittenByTheNext) {
    EXPECT_TRUE(WriteData(std::string(6000, 'l')));
    storage_.TakeBack(4);
    EXPECT_EQ(4u, storage_.position());
    EXPECT_TRUE(WriteData("next"));
    EXPECT_EQ(4u, offset_);
    EXPECT_TRUE(storage_.Flush());
    EXPECT_EQ("headnext", file_.content().substr(0, 8));
    EXPECT_EQ(6004u, file_.content().size());
}

TEST_F(StorageAppenderTest, AFailedWriteIsOverwrittenWhereItBegan) {
    file_.room = 3;
    EXPECT_TRUE(WriteData("abcdef"));
    EXPECT_FALSE(storage_.Flush());
    storage_.TakeBack(4);
    file_.room = 100;
    EXPECT_TRUE(WriteData("next"));
    EXPECT_EQ(4u, offset_);
    EXPECT_TRUE(storage_.Flush());
    EXPECT_EQ("headnext", file_.content());
}

TEST_F(StorageAppenderTest, WithoutTheWritingEndNothingIsWrittenUntilItIsReached) {
    file_.refuses_moves = true;
    EXPECT_TRUE(WriteData("lost"));
    EXPECT_FALSE(storage_.Flush());
    EXPECT_EQ(0, file_.writes);
    storage_.TakeBack(4);
    file_.refuses_moves = false;
    EXPECT_TRUE(WriteData("kept"));
    EXPECT_TRUE(storage_.Flush());
    EXPECT_EQ("headkept", file_.content());
}

TEST_F(StorageAppenderTest, NothingIsWrittenBehindTheLastOffset) {
    StorageAppender storage(file_, 0xFFFFFFF0);
    EXPECT_FALSE(storage.Write(std::string(100, 'x').data(), 100));
    EXPECT_TRUE(storage.Write("fits", 4));
    EXPECT_EQ(0xFFFFFFF4, storage.position());
}

}  // namespace
}  // namespace tolvenar
