#include "autobackup/next_occurrence.h"

#include <string>

#include "tests/support/device_test.h"

namespace tolvenar {
namespace {

std::string Text(const SYSTEMTIME& t) {
    char text[64];
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u.%03u", t.wYear, t.wMonth,
                  t.wDay, t.wHour, t.wMinute, t.wSecond, t.wMilliseconds);
    return text;
}

class NextOccurrenceTest : public tests::DeviceTest {
protected:
    // The device's zone is UTC, so that local times can be written down.
    void SetClock(const std::string& time) { device().Command("set clock " + time); }
    std::string Next(WORD hour, WORD minute) {
        SYSTEMTIME start;
        return NextOccurrence(hour, minute, &start) ? Text(start) : "none";
    }
};

TEST_F(NextOccurrenceTest, ALaterMinuteIsToday) {
    SetClock("2026-11-16T09:00:42");
    EXPECT_EQ("2026-11-16 09:01:00.000", Next(9, 1));
    EXPECT_EQ("2026-11-16 23:00:00.000", Next(23, 0));
}

TEST_F(NextOccurrenceTest, AnExactHitIsTomorrow) {
    SetClock("2026-11-16T09:00:00");
    EXPECT_EQ("2026-11-17 09:00:00.000", Next(9, 0));
}

TEST_F(NextOccurrenceTest, AnEarlierTimeIsTomorrow) {
    SetClock("2026-11-16T09:30:00");
    EXPECT_EQ("2026-11-17 09:29:00.000", Next(9, 29));
    EXPECT_EQ("2026-11-17 08:59:00.000", Next(8, 59));
}

TEST_F(NextOccurrenceTest, TodayKeepsTheMillisecondsAndTomorrowDropsThem) {
    SetClock("2026-11-16T09:00:42.250");
    EXPECT_EQ("2026-11-16 10:00:00.250", Next(10, 0));
    EXPECT_EQ("2026-11-17 08:00:00.000", Next(8, 0));
}

TEST_F(NextOccurrenceTest, MidnightRollsTheDateOver) {
    SetClock("2026-11-16T23:59:59");
    EXPECT_EQ("2026-11-17 00:00:00.000", Next(0, 0));
}

TEST_F(NextOccurrenceTest, MonthsAndYearsEnd) {
    SetClock("2026-11-30T23:59:00");
    EXPECT_EQ("2026-12-01 00:00:00.000", Next(0, 0));
    SetClock("2026-12-31T12:00:00");
    EXPECT_EQ("2027-01-01 12:00:00.000", Next(12, 0));
}

TEST_F(NextOccurrenceTest, ALeapDayIsThereInItsYearOnly) {
    SetClock("2028-02-28T12:00:00");
    EXPECT_EQ("2028-02-29 12:00:00.000", Next(12, 0));
    SetClock("2027-02-28T12:00:00");
    EXPECT_EQ("2027-03-01 12:00:00.000", Next(12, 0));
}

TEST_F(NextOccurrenceTest, AChangeOfDaylightSavingKeepsTheWallClock) {
    // The date is moved on as local time, so the day of the change has the same time of day.
    SetClock("2026-03-28T12:00:00");
    EXPECT_EQ("2026-03-29 02:30:00.000", Next(2, 30));
    SetClock("2026-10-24T12:00:00");
    EXPECT_EQ("2026-10-25 02:30:00.000", Next(2, 30));
}

TEST_F(NextOccurrenceTest, TheOutputMayBeAbsent) {
    SetClock("2026-11-16T09:00:00");
    EXPECT_TRUE(NextOccurrence(10, 0, nullptr));
}

TEST_F(NextOccurrenceTest, AConversionThatFailsIsTold) {
    SetClock("2026-11-16T09:00:00");
    SYSTEMTIME start;
    device().Fault("SystemTimeToFileTime", 1, 1, ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(NextOccurrence(8, 0, &start));
    device().Fault("FileTimeToSystemTime", 1, 1, ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(NextOccurrence(8, 0, &start));
}

TEST_F(NextOccurrenceTest, AddingSecondsDropsTheFraction) {
    const FILETIME in = {15000001, 0};  // 1.5000001 s
    FILETIME out;
    AddSecondsToFileTime(in, out, 2);
    EXPECT_EQ(30000000u, out.dwLowDateTime);
    EXPECT_EQ(0u, out.dwHighDateTime);
}

TEST_F(NextOccurrenceTest, AddingSecondsCarriesIntoTheHighWord) {
    const FILETIME in = {0xFFFFFFFF, 1};  // 858.9934591 s behind the carry: 858 whole seconds
    FILETIME out;
    AddSecondsToFileTime(in, out, 86400);
    const unsigned long long ticks = (0x1FFFFFFFFull / 10000000 + 86400) * 10000000;
    EXPECT_EQ(static_cast<DWORD>(ticks), out.dwLowDateTime);
    EXPECT_EQ(static_cast<DWORD>(ticks >> 32), out.dwHighDateTime);
}

}  // namespace
}  // namespace tolvenar
