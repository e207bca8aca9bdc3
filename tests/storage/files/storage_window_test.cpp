#include "storage/files/storage_window.h"

#include "tests/support/restore_fixture.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kWindow = StorageWindow::kWindowBytes;

class StorageWindowTest : public RestoreFixture {
protected:
    // A storage file of ten windows and a bit, each byte made of its place.
    void SetUp() override {
        RestoreFixture::SetUp();
        sav_.resize(10 * kWindow + 100);
        for (std::size_t i = 0; i < sav_.size(); ++i) {
            sav_[i] = static_cast<char>(i + (i >> 8) + (i >> 16));
        }
        SaveStorage();
        ASSERT_TRUE(mapping_.Open(storage_.names.sav));
    }
    bool Shows(std::uint32_t offset, std::uint32_t length) {
        const std::uint8_t* const bytes = window_.At(offset, length);
        return bytes != nullptr &&
               sav_.compare(offset, length, reinterpret_cast<const char*>(bytes), length) == 0;
    }
    // The views that are made for bytes at these places, one after the other.
    long ViewsFor(const std::vector<std::uint32_t>& offsets) {
        const long before = device().Calls("MapViewOfFile");
        for (const std::uint32_t offset : offsets) {
            EXPECT_TRUE(Shows(offset, 548)) << offset;
        }
        return device().Calls("MapViewOfFile") - before;
    }
};

TEST_F(StorageWindowTest, WhatIsNearCostsNoView) {
    EXPECT_EQ(1, ViewsFor({236, 1000, 400, kWindow / 2, 236 + kWindow - 548, 0}));
}

TEST_F(StorageWindowTest, AWalkMakesAViewForEachWindow) {
    std::vector<std::uint32_t> forward;
    for (std::uint32_t offset = 236; offset < 10 * kWindow - 548; offset += 3000) {
        forward.push_back(offset);
    }
    EXPECT_GE(13, ViewsFor(forward));
    const std::vector<std::uint32_t> back(forward.rbegin(), forward.rend());
    EXPECT_GE(13, ViewsFor(back));
}

TEST_F(StorageWindowTest, TheEndOfTheFileIsReached) {
    const auto size = static_cast<std::uint32_t>(sav_.size());
    EXPECT_TRUE(Shows(size - 1, 1));
    EXPECT_TRUE(Shows(size - 548, 548));
}

TEST_F(StorageWindowTest, BytesBeyondTheFileAreNone) {
    const auto size = static_cast<std::uint32_t>(sav_.size());
    EXPECT_TRUE(Shows(size - 10, 10));
    EXPECT_EQ(nullptr, window_.At(size - 10, 11));
    EXPECT_EQ(static_cast<DWORD>(ERROR_HANDLE_EOF), ::GetLastError());
    EXPECT_EQ(nullptr, window_.At(size, 1));
    EXPECT_EQ(nullptr, window_.At(0xFFFFFFFF, 0xFFFFFFFF));
    EXPECT_EQ(nullptr, window_.At(236, 0));
}

TEST_F(StorageWindowTest, MoreThanAWindowIsShownWhole) {
    EXPECT_TRUE(Shows(1000, kWindow));
    EXPECT_TRUE(Shows(1000, 3 * kWindow + 5));
    EXPECT_EQ(0, ViewsFor({kWindow, 1000}));
}

// One bad place of the file costs nothing beside it.
TEST_F(StorageWindowTest, WhereNoWindowIsToBeHadTheBytesAloneAre) {
    Fail("MapViewOfFile", 1, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_TRUE(Shows(236, 548));
    device().EndFaults();
    device().Fault("MapViewOfFile", 1, 2, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(nullptr, window_.At(5 * kWindow, 548));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY), ::GetLastError());
    device().EndFaults();
    EXPECT_TRUE(Shows(5 * kWindow, 548));
}

TEST_F(StorageWindowTest, ClosedItShowsTheBytesThroughANewView) {
    EXPECT_TRUE(Shows(236, 548));
    window_.Close();
    EXPECT_EQ(1, ViewsFor({236}));
}

}  // namespace
}  // namespace tolvenar
