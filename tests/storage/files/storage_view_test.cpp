#include "storage/files/storage_view.h"

#include "tests/support/restore_fixture.h"

namespace tolvenar {
namespace {

class StorageViewTest : public RestoreFixture {
protected:
    // A storage file of 0x28000 bytes, each the low byte of a sum of its place.
    void Open() {
        sav_.resize(0x28000);
        for (std::size_t i = 0; i < sav_.size(); ++i) {
            sav_[i] = static_cast<char>(i + (i >> 8) + (i >> 16));
        }
        SaveStorage();
        ASSERT_TRUE(mapping_.Open(storage_.names.sav));
    }
    Bytes Mapped(std::uint32_t offset, std::uint32_t length) {
        std::uint32_t adjust = 0;
        const UniqueView view = MapStorageView(mapping_, offset, length, adjust);
        if (!view) {
            return "none";
        }
        return std::string(static_cast<const char*>(view.get()) + adjust, length);
    }
    bool Copy(std::uint32_t offset, std::uint32_t length) {
        const UniqueHandle file(::CreateFileW(L"\\copy", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                              FILE_ATTRIBUTE_NORMAL, nullptr));
        return WriteStoredData(file.get(), mapping_, offset, length, written_);
    }
    std::uint32_t written_ = 0;
};

TEST_F(StorageViewTest, BytesAtAnyOffsetAreReachedThroughAnAlignedView) {
    Open();
    std::uint32_t adjust = 0;
    const UniqueView view = MapStorageView(mapping_, 0x10005, 16, adjust);
    ASSERT_TRUE(view);
    EXPECT_EQ(5u, adjust);
    EXPECT_EQ(sav_.substr(0x10005, 16),
              std::string(static_cast<const char*>(view.get()) + adjust, 16));
}

TEST_F(StorageViewTest, ARangeOverAGranulesEndIsMappedWhole) {
    Open();
    EXPECT_EQ(sav_.substr(0xFFF0, 0x10020), Mapped(0xFFF0, 0x10020));
}

TEST_F(StorageViewTest, TheLastByteCanBeMapped) {
    Open();
    EXPECT_EQ(sav_.substr(0x27FFF, 1), Mapped(0x27FFF, 1));
}

TEST_F(StorageViewTest, NoLengthGivesNoView) {
    Open();
    EXPECT_EQ("none", Mapped(0, 0));
}

TEST_F(StorageViewTest, WithoutAMappingThereIsNoView) { EXPECT_EQ("none", Mapped(0, 16)); }

TEST_F(StorageViewTest, BytesBeyondTheFileGiveNoViewAndNoCall) {
    Open();
    EXPECT_EQ("none", Mapped(0x28000, 1));
    EXPECT_EQ("none", Mapped(0x27FFF, 2));
    EXPECT_EQ("none", Mapped(0x30000, 0x10));
    EXPECT_EQ("none", Mapped(0xFFFFFFFF, 1));
    EXPECT_EQ("none", Mapped(0x10, 0xFFFFFFF8));  // the sum passes 32 bits
    EXPECT_EQ(0, device().Calls("MapViewOfFile"));
}

TEST_F(StorageViewTest, AnAbsentStorageFileCannotBeMapped) {
    EXPECT_FALSE(mapping_.Open(storage_.names.sav));
}

TEST_F(StorageViewTest, AFileWhoseSizeIsNotToBeHadCannotBeMapped) {
    SaveStorage();
    Fail("GetFileSize", 1, ERROR_GEN_FAILURE);
    EXPECT_FALSE(mapping_.Open(storage_.names.sav));
}

TEST_F(StorageViewTest, StoredBytesTellWhetherTheyAreAllThere) {
    Open();
    EXPECT_TRUE(MapStoredBytes(mapping_, 16, 4).complete());
    EXPECT_TRUE(MapStoredBytes(mapping_, 16, 0).complete());
    EXPECT_TRUE(MapStoredBytes(mapping_, kNoData, 0).complete());
    EXPECT_FALSE(MapStoredBytes(mapping_, kNoData, 4).complete());
}

TEST_F(StorageViewTest, StoredDataAreCopiedWhole) {
    Open();
    EXPECT_TRUE(Copy(0x123, 0x20001));
    EXPECT_EQ(0x20001u, written_);
    EXPECT_EQ(sav_.substr(0x123, 0x20001), device().FileBytes(L"\\copy"));
}

TEST_F(StorageViewTest, NoDataIsCopiedWithoutAskingForRoom) {
    Open();
    EXPECT_TRUE(Copy(kNoData, 0));
    EXPECT_EQ(0u, written_);
    EXPECT_EQ(0, device().Calls("GetStoreInformation"));
}

TEST_F(StorageViewTest, ACopyGoesInChunksOfTheSmallerOfMemoryAndStore) {
    Open();
    device().Set("memory.free", std::to_string(0x1FFFF));  // one whole granule
    EXPECT_TRUE(Copy(0, 0x28000));
    EXPECT_EQ(sav_, device().FileBytes(L"\\copy"));
    EXPECT_EQ(3, device().Calls("WriteFile"));
    EXPECT_EQ(3, device().Calls("FlushFileBuffers"));
}

TEST_F(StorageViewTest, WithLessThanAGranuleFreeNothingIsCopiedAndTheLastErrorStays) {
    Open();
    device().Set("memory.free", std::to_string(0xFFFF));
    const UniqueHandle file(::CreateFileW(L"\\copy", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL, nullptr));
    ::SetLastError(4711);
    EXPECT_FALSE(WriteStoredData(file.get(), mapping_, 0, 16, written_));
    EXPECT_EQ(4711u, ::GetLastError());
    EXPECT_EQ(0u, written_);
}

TEST_F(StorageViewTest, WhenMemoryAndStoreTogetherAreTooSmallNothingIsCopied) {
    Open();
    device().Set("memory.free", std::to_string(0x10000));
    device().Set("store.free", std::to_string(0x1FFFF));
    EXPECT_FALSE(Copy(0, 0x20001));
    EXPECT_EQ(0u, written_);
    EXPECT_EQ(0, device().Calls("WriteFile"));
}

TEST_F(StorageViewTest, WhenTheyAreJustLargeEnoughTogetherTheCopyBegins) {
    Open();
    device().Set("memory.free", std::to_string(0x10000));
    device().Set("store.free", std::to_string(0x1FFFF));
    Copy(0, 0x20000);
    EXPECT_LE(0x10000u, written_);
}

TEST_F(StorageViewTest, TheStorageFileIsOpenedForReadingHereAndThereAndShared) {
    SaveStorage();
    device().Command("trace on");
    EXPECT_TRUE(mapping_.Open(storage_.names.sav));
    // GENERIC_READ, shared for reading and writing, OPEN_EXISTING, random access.
    EXPECT_NE(std::string::npos, device()
                                     .Command("trace show CreateFileForMappingW")
                                     .find("Home.sav, 2147483648, 3, 3, 268435584\""));
}

TEST_F(StorageViewTest, DataBeyondTheFileFailTheCopy) {
    Open();
    EXPECT_FALSE(Copy(0x27FF0, 0x11));
    EXPECT_FALSE(Copy(kNoData, 1));
    EXPECT_EQ(0u, written_);
}

TEST_F(StorageViewTest, AFailedMapFailsTheCopy) {
    Open();
    Fail("MapViewOfFile", 1, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_FALSE(Copy(0, 16));
}

TEST_F(StorageViewTest, AFailedWriteFailsTheCopyAfterWhatWasWritten) {
    Open();
    device().Set("memory.free", std::to_string(0x10000));
    Fail("WriteFile", 2, ERROR_DISK_FULL);
    EXPECT_FALSE(Copy(0, 0x28000));
    EXPECT_EQ(0x10000u, written_);
}

TEST_F(StorageViewTest, AStoreThatIsFullAfterAChunkFailsTheCopy) {
    Open();
    device().Set("store.free", std::to_string(0x10000));
    EXPECT_FALSE(Copy(0, 0x28000));
    EXPECT_EQ(0x10000u, written_);
}

TEST_F(StorageViewTest, TheStoreRestsForEveryWholeMebibyte) {
    sav_.resize(0x200000 + 0xFFFFF, 'x');
    SaveStorage();
    ASSERT_TRUE(mapping_.Open(storage_.names.sav));
    device().Command("trace on");
    EXPECT_TRUE(Copy(0, 0x2FFFFF));
    EXPECT_TRUE(Copy(0, 0xFFFFF));  // less than one: no rest
    EXPECT_EQ(1, device().Calls("Sleep"));
    EXPECT_NE(std::string::npos, device().Command("trace show").find("1000"));
}

}  // namespace
}  // namespace tolvenar
