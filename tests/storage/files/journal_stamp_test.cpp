#include "storage/files/journal_stamp.h"

#include <gtest/gtest.h>

namespace tolvenar {
namespace {

constexpr std::uint64_t kTime = 126227808000000000;
constexpr JournalStamp kLoaded{true, 96, kTime};

TEST(JournalStampTest, TheSameFileIsTheSame) { EXPECT_TRUE(IsSameJournal(kLoaded, kLoaded)); }

// Another card's journal may have been written in the same moment.
TEST(JournalStampTest, AFileOfAnotherSizeIsAnother) {
    EXPECT_FALSE(IsSameJournal(kLoaded, {true, 128, kTime}));
    EXPECT_FALSE(IsSameJournal({true, 64, kTime}, kLoaded));
}

TEST(JournalStampTest, AFileOfAnotherTimeIsAnother) {
    EXPECT_FALSE(IsSameJournal(kLoaded, {true, 96, kTime + 20000000}));
    EXPECT_FALSE(IsSameJournal(kLoaded, {true, 96, kTime - 1}));
}

TEST(JournalStampTest, AnotherTimeZoneMovesTheTimeByQuartersOfAnHour) {
    EXPECT_TRUE(IsSameJournal(kLoaded, {true, 96, kTime + 4 * kTimeZoneStep}));
    EXPECT_TRUE(IsSameJournal(kLoaded, {true, 96, kTime - 5 * kTimeZoneStep}));
}

TEST(JournalStampTest, AMissingFileIsNoneNotEvenAsAnotherMissingOne) {
    EXPECT_FALSE(IsSameJournal(kLoaded, {}));
    EXPECT_FALSE(IsSameJournal({}, {}));
}

}  // namespace
}  // namespace tolvenar
