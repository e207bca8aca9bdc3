#include "storage/format/page_cache.h"

#include <gtest/gtest.h>

#include "tests/support/memory_bytes.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kPage = PageCache::kPageBytes;

// A file in which every four bytes tell their own place.
class PageCacheTest : public testing::Test {
protected:
    explicit PageCacheTest(std::uint32_t bytes = 200 * kPage + 10) : file_(Content(bytes)) {}

    static std::string Content(std::uint32_t bytes) {
        std::string content(bytes, 0);
        for (std::uint32_t place = 0; place < bytes; ++place) {
            content[place] = static_cast<char>(place / 4 >> place % 4 * 8);
        }
        return content;
    }
    // True when the `bytes` at `offset` came, fewer where the file ends.
    bool Reads(std::uint32_t offset, std::uint32_t bytes) {
        std::string buffer(bytes, 'x');
        std::uint32_t read = 0;
        if (!cache_.ReadAt(offset, buffer.data(), bytes, read)) {
            return false;
        }
        const std::string all = file_.content();
        const std::string wanted = offset < all.size() ? all.substr(offset, bytes) : "";
        EXPECT_EQ(wanted.size(), read);
        EXPECT_TRUE(wanted == buffer.substr(0, read)) << "at " << offset;
        return true;
    }
    // Reads of the file that this costs, and the bytes of them.
    std::pair<int, std::uint64_t> Cost(std::uint32_t offset, std::uint32_t bytes) {
        const int reads = file_.reads;
        const std::uint64_t before = file_.bytes_read;
        EXPECT_TRUE(Reads(offset, bytes));
        return {file_.reads - reads, file_.bytes_read - before};
    }
    using Costs = std::pair<int, std::uint64_t>;

    MemoryBytes file_;
    PageCache cache_{file_};
};

TEST_F(PageCacheTest, ASmallReadCostsOnePageAndItsNeighboursNothing) {
    EXPECT_EQ(Costs(1, kPage), Cost(10 * kPage + 100, 548));
    EXPECT_EQ(Costs(0, 0), Cost(10 * kPage, 548));
    EXPECT_EQ(Costs(0, 0), Cost(11 * kPage - 548, 548));
}

TEST_F(PageCacheTest, ReadsThatGoForwardTakeTwiceAsManyEachTimeUpTo256Kilobytes) {
    std::uint32_t page = 0;
    for (const std::uint32_t pages : {1, 2, 4, 8, 16, 32, 64, 64}) {
        EXPECT_EQ(Costs(1, std::uint64_t{pages} * kPage), Cost(page * kPage, 4)) << pages;
        page += pages;
    }
}

// A list gives what was inserted last first.
TEST_F(PageCacheTest, ReadsThatGoBackTakeTwiceAsManyEachTimeUpTo256Kilobytes) {
    std::uint32_t page = 200;
    for (const std::uint32_t pages : {1, 2, 4, 8, 16, 32, 64, 64}) {
        EXPECT_EQ(Costs(1, std::uint64_t{pages} * kPage), Cost(page * kPage - 4, 4)) << pages;
        EXPECT_EQ(Costs(0, 0), Cost((page - pages) * kPage, 4)) << pages;
        page -= pages;
    }
}

TEST_F(PageCacheTest, ReadsThatGoBackEndAtTheBeginningOfTheFile) {
    Cost(5 * kPage, 4);
    Cost(4 * kPage, 4);
    EXPECT_EQ(Costs(1, 3 * kPage), Cost(2 * kPage, 4));
    EXPECT_EQ(Costs(0, 0), Cost(0, 4));
}

// Or a block that lies across the ends of two long runs would read both each time.
TEST_F(PageCacheTest, ATurnReadsOnePageAgain) {
    for (const std::uint32_t page : {0, 1, 3, 7, 15, 31, 63}) {
        Cost(page * kPage, 4);
    }
    EXPECT_EQ(Costs(1, kPage), Cost(63 * kPage - 4, 4));
    EXPECT_EQ(Costs(1, kPage), Cost(63 * kPage, 4));
    EXPECT_EQ(Costs(0, 0), Cost(63 * kPage - 4, 8));
}

TEST_F(PageCacheTest, AJumpReadsOnePageAgain) {
    Cost(0, 4);
    EXPECT_EQ(Costs(1, 2 * kPage), Cost(kPage, 4));
    EXPECT_EQ(Costs(1, kPage), Cost(100 * kPage, 4));
    EXPECT_EQ(Costs(1, kPage), Cost(50 * kPage, 4));
    EXPECT_EQ(Costs(1, kPage), Cost(48 * kPage, 4));
}

TEST_F(PageCacheTest, WhatIsExpectedComesInOneRead) {
    cache_.Expect(10 * kPage + 100, 3 * kPage);
    EXPECT_EQ(Costs(1, 4 * kPage), Cost(10 * kPage + 100, kPage));
    EXPECT_EQ(Costs(0, 0), Cost(11 * kPage + 100, 2 * kPage));
    EXPECT_EQ(Costs(1, kPage), Cost(30 * kPage, 4)) << "nothing is expected there";
    cache_.Expect(100 * kPage, 100 * kPage);
    EXPECT_EQ(Costs(1, PageCache::kMaxPages * kPage), Cost(100 * kPage, 4)) << "what is kept";
    cache_.Expect(0xFFFFFFFF, 0xFFFFFFFF);
    EXPECT_EQ(Costs(1, kPage), Cost(50 * kPage, 4));
}

TEST_F(PageCacheTest, ABadPlaceInWhatIsExpectedCostsNothingBeforeIt) {
    file_.bad_begin = 12 * kPage;
    file_.bad_end = 13 * kPage;
    cache_.Expect(10 * kPage, 4 * kPage);
    EXPECT_TRUE(Reads(10 * kPage, kPage));
    EXPECT_TRUE(Reads(11 * kPage, kPage));
    EXPECT_FALSE(Reads(12 * kPage, kPage));
    EXPECT_TRUE(Reads(13 * kPage, kPage));
}

TEST_F(PageCacheTest, GoingToAndFroBetweenPlacesCostsNothingMore) {
    for (std::uint32_t place = 0; place < 30; ++place) {
        Cost(place * 6 * kPage, 4);
    }
    for (std::uint32_t place = 30; place-- > 0;) {
        EXPECT_EQ(Costs(0, 0), Cost(place * 6 * kPage + 8, 4)) << place;
    }
}

TEST_F(PageCacheTest, WhatWasReadFirstGoesFirst) {
    for (std::uint32_t place = 0; place <= PageCache::kMaxPages; ++place) {
        Cost(place * 3 * kPage, 4);
    }
    EXPECT_EQ(Costs(0, 0), Cost(3 * kPage, 4));
    EXPECT_EQ(Costs(1, kPage), Cost(0, 4));
}

TEST_F(PageCacheTest, AReadAcrossPagesIsPutTogether) {
    EXPECT_TRUE(Reads(kPage - 3, 7));
    EXPECT_TRUE(Reads(5 * kPage - 1, 3 * kPage + 2));
    EXPECT_TRUE(Reads(0, 200 * kPage + 10));
}

TEST_F(PageCacheTest, FewerBytesComeWhereTheFileEnds) {
    EXPECT_TRUE(Reads(200 * kPage, 548));
    EXPECT_TRUE(Reads(200 * kPage + 9, 2));
    EXPECT_TRUE(Reads(200 * kPage + 10, 1));
    EXPECT_TRUE(Reads(0xFFFFFFFF, 548));
    EXPECT_TRUE(Reads(0xFFFFFFF0, 548));
    EXPECT_TRUE(Reads(0, 0));
}

TEST_F(PageCacheTest, ABadPlaceCostsNoNeighbourInItsPage) {
    file_.bad_begin = 7 * kPage + 1000;
    file_.bad_end = file_.bad_begin + 1;
    EXPECT_TRUE(Reads(7 * kPage, 1000));
    EXPECT_TRUE(Reads(7 * kPage + 1001, 548));
    EXPECT_FALSE(Reads(7 * kPage + 900, 548));
    EXPECT_TRUE(Reads(8 * kPage, 548));
}

TEST_F(PageCacheTest, ABadPlaceAheadCostsNothingBeforeIt) {
    file_.bad_begin = 3 * kPage;
    file_.bad_end = 4 * kPage;
    for (std::uint32_t place = 0; place + 548 <= 3 * kPage; place += 548) {
        EXPECT_TRUE(Reads(place, 548)) << place;
    }
    EXPECT_FALSE(Reads(3 * kPage, 548));
    EXPECT_TRUE(Reads(4 * kPage, 548));
}

}  // namespace
}  // namespace tolvenar
