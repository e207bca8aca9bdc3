#include "storage/files/handle_bytes.h"

#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class HandleBytesTest : public StorageTest {
protected:
    void SetUp() override {
        StorageTest::SetUp();
        Put(kSav, "\1\2\3");
        file_ = OpenFile(kSav, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING);
        ASSERT_TRUE(file_);
    }
    void TearDown() override {
        file_.Reset();
        StorageTest::TearDown();
    }
    // What is at `offset`, "failed" for a read that fails.
    static Bytes ReadAt(HandleBytes& bytes, std::uint32_t offset, std::uint32_t count) {
        char buffer[16] = {};
        std::uint32_t read = 99;
        return bytes.ReadAt(offset, buffer, count, read) ? std::string(buffer, read) : "failed";
    }

    UniqueHandle file_;
};

TEST_F(HandleBytesTest, BytesAreReadWhereTheyStandAndFewerAtTheEnd) {
    HandleBytes bytes(file_.get());
    EXPECT_EQ("\1\2", ReadAt(bytes, 0, 2));
    EXPECT_EQ("\2\3", ReadAt(bytes, 1, 8));
    EXPECT_EQ("\1", ReadAt(bytes, 0, 1));
    EXPECT_EQ("", ReadAt(bytes, 3, 1));
    EXPECT_EQ("", ReadAt(bytes, 100, 1));
}

TEST_F(HandleBytesTest, WhatGoesOnWhereTheLastCallEndedCostsNoSeek) {
    HandleBytes bytes(file_.get());
    Fail("SetFilePointer", 1, ERROR_SEEK);
    EXPECT_EQ("\1", ReadAt(bytes, 0, 1));
    EXPECT_EQ("\2\3", ReadAt(bytes, 1, 2));
    EXPECT_TRUE(bytes.Append("ab", 2));
    EXPECT_TRUE(bytes.Append("c", 1));
    device().DropFaults();
    EXPECT_EQ("\3abc", ReadAt(bytes, 2, 8));
}

TEST_F(HandleBytesTest, AFailedSeekOrReadFailsAndTheNextSeeksAgain) {
    HandleBytes bytes(file_.get());
    for (const char* function : {"SetFilePointer", "ReadFile"}) {
        Fail(function, 1, ERROR_READ_FAULT);
        EXPECT_EQ("failed", ReadAt(bytes, 1, 1)) << function;
        device().EndFaults();
        EXPECT_EQ("\2", ReadAt(bytes, 1, 1)) << function;
    }
}

TEST_F(HandleBytesTest, BytesAreAppendedAtTheWritingEnd) {
    HandleBytes bytes(file_.get());
    ASSERT_TRUE(bytes.MoveTo(2));
    EXPECT_TRUE(bytes.Append("abcd", 4));
    EXPECT_TRUE(bytes.Append("e", 1));
    file_.Reset();
    EXPECT_EQ("\1\2abcde", Content(kSav));
}

TEST_F(HandleBytesTest, AFailedWriteFails) {
    HandleBytes bytes(file_.get());
    Fail("WriteFile", 1, ERROR_DISK_FULL);
    EXPECT_FALSE(bytes.Append("abcd", 4));
    ASSERT_TRUE(bytes.MoveTo(0));
    EXPECT_TRUE(bytes.Append("x", 1));
    file_.Reset();
    EXPECT_EQ("x\2\3", Content(kSav));
}

// After a resume a card's driver is loaded again, and open files fail for seconds.
TEST_F(HandleBytesTest, AWriteWaitsForACardThatIsLoadedAgain) {
    LetTimePass();
    for (const std::uint32_t error : {ERROR_ACCESS_DENIED, ERROR_DEV_NOT_EXIST}) {
        HandleBytes bytes(file_.get());
        ASSERT_TRUE(bytes.MoveTo(1));
        const long waits = device().Calls("Sleep");
        device().Fault("WriteFile", 1, 4, error);
        EXPECT_TRUE(bytes.Append("abc", 3));
        EXPECT_EQ(4, device().Calls("Sleep") - waits);
        EXPECT_TRUE(bytes.Append("d", 1));
        EXPECT_EQ("\1abcd", ReadAt(bytes, 0, 8));
        ::SetFilePointer(file_.get(), 0, nullptr, FILE_BEGIN);
    }
}

// The first half of what failed is overwritten.
TEST_F(HandleBytesTest, AWriteThatIsTriedAgainBeginsWhereItStood) {
    LetTimePass();
    HandleBytes bytes(file_.get());
    ASSERT_TRUE(bytes.MoveTo(1));
    device().Fault("WriteFile", 1, 1, ERROR_DEV_NOT_EXIST);
    device().Fault("SetFilePointer", 1, 1, ERROR_DEV_NOT_EXIST);
    EXPECT_TRUE(bytes.Append("abc", 3));
    EXPECT_EQ("\1abc", ReadAt(bytes, 0, 8));
}

TEST_F(HandleBytesTest, AFifthFailureAndAnyOtherOneFail) {
    LetTimePass();
    HandleBytes bytes(file_.get());
    device().Fault("WriteFile", 1, 5, ERROR_DEV_NOT_EXIST);
    EXPECT_FALSE(bytes.Append("abcd", 4));
    EXPECT_EQ(static_cast<DWORD>(ERROR_DEV_NOT_EXIST), ::GetLastError());
    const long waits = device().Calls("Sleep");
    device().Fault("WriteFile", 1, 1, ERROR_WRITE_FAULT);
    EXPECT_FALSE(bytes.Append("abcd", 4));
    // A short write has no error of its own, and an older one may stand.
    ::SetLastError(ERROR_ACCESS_DENIED);
    device().Short("WriteFile", 1);
    EXPECT_FALSE(bytes.Append("abcd", 4));
    EXPECT_EQ(waits, device().Calls("Sleep"));
}

TEST_F(HandleBytesTest, ADriverThatKnowsNoFlushingHasFlushed) {
    LetTimePass();
    EXPECT_TRUE(Flush(file_.get()));
    for (const char* error : {"50", "120"}) {
        device().Set("card.flush.error", error);
        EXPECT_TRUE(Flush(file_.get())) << error;
    }
    device().Set("card.flush.error", "29");
    EXPECT_FALSE(Flush(file_.get()));
    device().Set("card.flush.error", "");
    device().Fault("FlushFileBuffers", 1, 4, ERROR_DEV_NOT_EXIST);
    EXPECT_TRUE(Flush(file_.get()));
}

TEST_F(HandleBytesTest, WithoutAPositionNothingIsWritten) {
    HandleBytes bytes(file_.get());
    Fail("SetFilePointer", 1, ERROR_INVALID_HANDLE);
    EXPECT_FALSE(bytes.MoveTo(3));
    file_.Reset();
    EXPECT_EQ("\1\2\3", Content(kSav));
}

TEST_F(HandleBytesTest, TheSizeIsInBytes) {
    HandleBytes bytes(file_.get());
    std::uint32_t size = 0;
    EXPECT_TRUE(bytes.Size(size));
    EXPECT_EQ(3u, size);
}

// Without the high word the distance would be a negative number.
TEST_F(HandleBytesTest, APlaceBeyondTwoGigabytesCanBeReached) {
    HandleBytes bytes(file_.get());
    for (const std::uint32_t place : {0x90000000u, 0xFFFFFFFFu}) {
        EXPECT_TRUE(bytes.MoveTo(place));
        LONG high = 0;
        EXPECT_EQ(place, ::SetFilePointer(file_.get(), 0, &high, FILE_CURRENT));
    }
}

}  // namespace
}  // namespace tolvenar
