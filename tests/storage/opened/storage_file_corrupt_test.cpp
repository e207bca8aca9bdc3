// Storage files from a card that anything may have damaged.
#include <cstring>
#include <random>

#include "storage/opened/storage_file.h"
#include "tests/storage/opened/storage_fixture.h"

namespace tolvenar {
namespace {

class StorageFileCorruptTest : public StorageTest {
protected:
    void SetUp() override {
        StorageTest::SetUp();
        ASSERT_TRUE(CreateStorage(kSav, nullptr));
        head_ = Content(kSav);
    }
    OpenStorageResult Open() {
        OpenStorageResult result = OpenStorageResult::kOutOfMemory;
        OpenStorage(kSav, storage_, result);
        return result;
    }
    Bytes head_;
};

TEST_F(StorageFileCorruptTest, AShortHeadIsUnreadable) {
    for (const std::size_t size : {0u, 1u, 100u, 231u, 232u, 235u}) {
        Put(kSav, Bytes(head_.begin(), head_.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_EQ(OpenStorageResult::kHeaderUnreadable, Open()) << size;
        EXPECT_TRUE(IsFree(kSav));
    }
}

TEST_F(StorageFileCorruptTest, ADescriptionThatClaimsTooMuchIsCut) {
    for (const std::uint32_t claim : {402u, 1000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        Bytes bytes = head_;
        std::memcpy(bytes.data() + 228, &claim, 4);
        bytes.resize(232);
        for (int i = 0; i < 400; ++i) {
            bytes.push_back('d');
            bytes.push_back(0);
        }
        Put(kSav, bytes);
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
    for (int i = 0; i < 50; ++i) {
        Bytes bytes(generator() % 700);
        for (std::uint8_t& byte : bytes) {
            byte = static_cast<std::uint8_t>(generator());
        }
        Put(kSav, bytes);
        const OpenStorageResult expected = bytes.size() < 236 ? OpenStorageResult::kHeaderUnreadable
                                                              : OpenStorageResult::kOtherDevice;
        EXPECT_EQ(expected, Open()) << i;
    }
    EXPECT_FALSE(storage_.header);
}

}  // namespace
}  // namespace tolvenar
