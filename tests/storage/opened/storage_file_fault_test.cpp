// The storage file while the platform fails, and files cut off by such a failure.
#include "tests/storage/opened/storage_file_fixture.h"

namespace tolvenar {
namespace {

class StorageFileFaultTest : public StorageFileFixture {};

TEST_F(StorageFileFaultTest, AFailedWriteIsFoundAtTheNextOpen) {
    Fail("WriteFile", 1, ERROR_DISK_FULL);
    EXPECT_TRUE(CreateStorage(kSav, nullptr));
    EXPECT_EQ(Bytes{}, Content(kSav));
    EXPECT_EQ(OpenStorageResult::kHeaderUnreadable, Open());
    EXPECT_FALSE(storage_.header);
}

TEST_F(StorageFileFaultTest, ADescriptionThatCannotBeWrittenIsNone) {
    ScriptedPrompt prompt(true, u"text");
    Fail("WriteFile", 2, ERROR_DISK_FULL);
    const auto header = CreateStorage(kSav, &prompt);
    ASSERT_TRUE(header);
    EXPECT_EQ(0u, header->descriptionBytes);
    EXPECT_EQ(236u, Content(kSav).size());
    ASSERT_EQ(OpenStorageResult::kOpened, Open());
    EXPECT_EQ(Text(), storage_.header->description);
}

TEST_F(StorageFileFaultTest, ADescriptionThatIsWrittenHalfIsNone) {
    ScriptedPrompt prompt(true, Text(100, u'd'));
    device().Short("WriteFile", 2);
    ASSERT_TRUE(CreateStorage(kSav, &prompt));
    EXPECT_EQ(236u, Content(kSav).size());
    EXPECT_EQ(OpenStorageResult::kOpened, Open());
    EXPECT_EQ(0u, storage_.header->descriptionBytes);
}

TEST_F(StorageFileFaultTest, AHeadThatCameToNothingComesWithTheDescription) {
    ScriptedPrompt prompt(true, u"text");
    Fail("WriteFile", 1, ERROR_DISK_FULL);
    ASSERT_TRUE(CreateStorage(kSav, &prompt));
    EXPECT_EQ(OpenStorageResult::kOpened, Open());
    EXPECT_EQ(Text(u"text"), storage_.header->description);
}

TEST_F(StorageFileFaultTest, AHeadThatCannotBeReadIsNotOpened) {
    ScriptedPrompt prompt(true, u"text");
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
