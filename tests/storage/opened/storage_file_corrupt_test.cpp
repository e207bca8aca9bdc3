// Storage files from a card that anything may have damaged.
#include "tests/storage/opened/storage_file_fixture.h"

namespace tolvenar {
namespace {

class StorageFileCorruptTest : public StorageFileFixture {
protected:
    void SetUp() override {
        StorageTest::SetUp();
        ASSERT_TRUE(CreateStorage(kSav, nullptr));
        head_ = Content(kSav);
    }
    Bytes head_;
};

TEST_F(StorageFileCorruptTest, AShortHeadIsUnreadable) {
    for (const std::size_t size : {0u, 1u, 100u, 231u, 232u, 235u}) {
        Put(kSav, head_.substr(0, size));
        EXPECT_EQ(OpenStorageResult::kHeaderUnreadable, Open()) << size;
        EXPECT_TRUE(IsFree(kSav));
    }
}

TEST_F(StorageFileCorruptTest, ADescriptionThatClaimsTooMuchIsCut) {
    for (const std::uint32_t claim : {402u, 1000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        Bytes bytes = head_;
        Patch(bytes, 228, claim);
        bytes.resize(232);
        Put(kSav, bytes + Units(Text(400, u'd')));
        ASSERT_EQ(OpenStorageResult::kOpened, Open()) << claim;
        EXPECT_EQ(400u, storage_.header->descriptionBytes);
        EXPECT_EQ(Text(199, u'd'), storage_.header->description);
    }
}

TEST_F(StorageFileCorruptTest, ADescriptionBehindTheFilesEndIsWhatIsThere) {
    Bytes bytes = head_;
    bytes[228] = 100;
    bytes[232] = 'a';
    bytes[234] = 'b';
    Put(kSav, bytes);
    ASSERT_EQ(OpenStorageResult::kOpened, Open());
    EXPECT_EQ(Text(u"ab"), storage_.header->description);
}

TEST_F(StorageFileCorruptTest, AnyBytesAreRefusedOrOpened) {
    std::mt19937 generator(1);
    for (unsigned i = 0; i < 50; ++i) {
        const Bytes bytes = RandomBytes(generator() % 700, i);
        Put(kSav, bytes);
        const OpenStorageResult expected = bytes.size() < 236 ? OpenStorageResult::kHeaderUnreadable
                                                              : OpenStorageResult::kOtherDevice;
        EXPECT_EQ(expected, Open()) << i;
    }
    EXPECT_FALSE(storage_.header);
}

}  // namespace
}  // namespace tolvenar
