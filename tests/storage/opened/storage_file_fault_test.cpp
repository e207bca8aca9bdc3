// The storage file while the platform fails, and files cut off by such a failure.
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class StorageFileFaultTest : public StorageTest {
protected:
    OpenStorageResult Open() {
        OpenStorageResult result = OpenStorageResult::kOutOfMemory;
        const bool opened = OpenStorage(kSav, storage_, result);
        EXPECT_EQ(opened, result == OpenStorageResult::kOpened);
        return result;
    }
};

class FixedPrompt : public DescriptionPrompt {
public:
    bool AskDescription(const char16_t*, char16_t (&answer)[kMaxDescriptionUnits],
                        std::size_t& units) override {
        units = 4;
        Text(u"text").copy(answer, units);
        return true;
    }
};

TEST_F(StorageFileFaultTest, AFailedWriteIsFoundAtTheNextOpen) {
    Fail("WriteFile", 1, ERROR_DISK_FULL);
    EXPECT_TRUE(CreateStorage(kSav, nullptr));
    EXPECT_EQ(Bytes{}, Content(kSav));
    EXPECT_EQ(OpenStorageResult::kHeaderUnreadable, Open());
    EXPECT_FALSE(storage_.header);
}

TEST_F(StorageFileFaultTest, ADescriptionThatCannotBeWrittenIsFoundAtTheNextOpen) {
    FixedPrompt prompt;
    Fail("WriteFile", 2, ERROR_DISK_FULL);
    EXPECT_TRUE(CreateStorage(kSav, &prompt));
    EXPECT_EQ(232u, Content(kSav).size());
    EXPECT_EQ(OpenStorageResult::kHeaderUnreadable, Open());
}

TEST_F(StorageFileFaultTest, AHeadThatCannotBeReadIsNotOpened) {
    FixedPrompt prompt;
    ASSERT_TRUE(CreateStorage(kSav, &prompt));
    for (int n = 1; n <= 2; ++n) {
        Fail("ReadFile", n, ERROR_READ_FAULT);
        EXPECT_EQ(OpenStorageResult::kHeaderUnreadable, Open());
        EXPECT_TRUE(IsFree(kSav));
    }
}

TEST_F(StorageFileFaultTest, AStorageThatVanishesBetweenTheTwoOpeningsIsUnreadable) {
    ASSERT_TRUE(CreateStorage(kSav, nullptr));
    Fail("CreateFileW", 2, ERROR_SHARING_VIOLATION);
    EXPECT_EQ(OpenStorageResult::kHeaderUnreadable, Open());
}

TEST_F(StorageFileFaultTest, WithoutMemoryNothingIsCreated) {
    FailAllocation(1);
    const auto header = CreateStorage(kSav, nullptr);
    EXPECT_FALSE(header);
    EXPECT_FALSE(Exists(kSav));
}

// The header, then the two lists.
TEST_F(StorageFileFaultTest, WithoutMemoryTheOpenStorageStays) {
    ASSERT_TRUE(CreateStorage(kSav, nullptr));
    ASSERT_EQ(OpenStorageResult::kOpened, Open());
    const StorageHeader* const header = storage_.header.get();
    for (int n = 1; n <= 3; ++n) {
        FailAllocation(n);
        const OpenStorageResult result = Open();
        EXPECT_EQ(n == 1 ? OpenStorageResult::kHeaderUnreadable : OpenStorageResult::kOutOfMemory,
                  result);
        EXPECT_EQ(header, storage_.header.get());
        EXPECT_TRUE(storage_.older && storage_.newer);
    }
}

TEST_F(StorageFileFaultTest, ADeviceWhoseIdentCannotBeReadOpensItsStorage) {
    ASSERT_TRUE(CreateStorage(kSav, nullptr));
    Fail("RegOpenKeyExW", 1, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(OpenStorageResult::kOpened, Open());
}

}  // namespace
}  // namespace tolvenar
