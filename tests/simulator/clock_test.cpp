// The device's clock: standing, stepping, running from another time, with a zone.
#include "platform/win32.h"

#include <stdexcept>

#include "simulator/system/speed.h"
#include "simulator/system/zone.h"
#include "tests/support/device_test.h"

namespace {

constexpr char kBerlin[] = "CET-1CEST,M3.5.0/2,M10.5.0/3";

class ClockTest : public tests::DeviceTest {
protected:
    SYSTEMTIME Local() {
        SYSTEMTIME time{};
        ::GetLocalTime(&time);
        return time;
    }
    SYSTEMTIME Utc() {
        SYSTEMTIME time{};
        ::GetSystemTime(&time);
        return time;
    }
    void SetZone(const std::string& zone) { device().Command("set zone \"" + zone + "\""); }
};

TEST_F(ClockTest, AStandingClockStands) {
    device().Command("set clock 2003-02-28T07:30:15");
    for (int i = 0; i < 2; ++i) {
        const SYSTEMTIME time = Utc();
        EXPECT_EQ(2003, time.wYear);
        EXPECT_EQ(2, time.wMonth);
        EXPECT_EQ(28, time.wDay);
        EXPECT_EQ(5, time.wDayOfWeek);
        EXPECT_EQ(7, time.wHour);
        EXPECT_EQ(30, time.wMinute);
        EXPECT_EQ(15, time.wSecond);
        EXPECT_EQ(0, time.wMilliseconds);
        ::Sleep(20);
    }
}

TEST_F(ClockTest, ARunningClockGoesOnFromItsTime) {
    device().Command("set clock +1999-12-31T23:00:00Z");
    const SYSTEMTIME time = Utc();
    EXPECT_EQ(1999, time.wYear);
    EXPECT_EQ(23, time.wHour);
    ::Sleep(30);
    const SYSTEMTIME later = Utc();
    EXPECT_NE(time.wSecond * 1000 + time.wMilliseconds, later.wSecond * 1000 + later.wMilliseconds);
}

TEST_F(ClockTest, RealTakesTheHostsTimeAgain) {
    device().Command("set clock 1999-12-31T23:00:00");
    device().Command("set clock real");
    EXPECT_GT(Utc().wYear, 2020);
}

TEST_F(ClockTest, AStandingClockStepsAtEveryWrite) {
    device().Command("set clock 2003-01-01T00:00:00Z");
    device().Command("set clock.step 2000");
    device().PutFile(L"\\a", "x");
    device().PutFile(L"\\b", "x");
    EXPECT_EQ(device().Info(L"\\a").modified + 20000000, device().Info(L"\\b").modified);
}

TEST_F(ClockTest, LocalTimeFollowsDaylightSaving) {
    SetZone(kBerlin);
    const struct {
        const char* utc;
        int local_hour;
    } kRows[] = {
        {"2003-01-15T12:00:00Z", 13}, {"2003-07-15T12:00:00Z", 14}, {"2003-03-30T00:59:59Z", 1},
        {"2003-03-30T01:00:00Z", 3},  {"2003-10-26T00:59:59Z", 2},  {"2003-10-26T01:00:00Z", 2},
        {"2003-10-26T02:00:00Z", 3},
    };
    for (const auto& row : kRows) {
        device().Command(std::string("set clock ") + row.utc);
        EXPECT_EQ(row.local_hour, Local().wHour) << row.utc;
    }
}

TEST_F(ClockTest, ATimeWithoutZIsTheDevicesLocalTime) {
    SetZone(kBerlin);
    device().Command("set clock 2003-07-15T12:00:00");
    EXPECT_EQ(12, Local().wHour);
    EXPECT_EQ(10, Utc().wHour);
}

TEST_F(ClockTest, TheZoneIsTold) {
    SetZone(kBerlin);
    device().Command("set clock 2003-07-15T12:00:00Z");
    TIME_ZONE_INFORMATION info{};
    EXPECT_EQ(static_cast<DWORD>(TIME_ZONE_ID_DAYLIGHT), ::GetTimeZoneInformation(&info));
    EXPECT_EQ(-60, info.Bias);
    EXPECT_EQ(-60, info.DaylightBias);
    EXPECT_STREQ(L"CET", info.StandardName);
    EXPECT_STREQ(L"CEST", info.DaylightName);
    EXPECT_EQ(3, info.DaylightDate.wMonth);
    EXPECT_EQ(5, info.DaylightDate.wDay);
    EXPECT_EQ(2, info.DaylightDate.wHour);
    EXPECT_EQ(10, info.StandardDate.wMonth);
}

TEST_F(ClockTest, ConversionsUseTheBiasOfNow) {
    SetZone(kBerlin);
    device().Command("set clock 2003-07-15T12:00:00Z");
    const SYSTEMTIME winter = {2003, 1, 3, 15, 12, 0, 0, 0};
    FILETIME utc{};
    FILETIME local{};
    FILETIME back{};
    SYSTEMTIME shown{};
    ASSERT_TRUE(::SystemTimeToFileTime(&winter, &utc));
    ASSERT_TRUE(::FileTimeToLocalFileTime(&utc, &local));
    ASSERT_TRUE(::FileTimeToSystemTime(&local, &shown));
    EXPECT_EQ(14, shown.wHour);
    ASSERT_TRUE(::LocalFileTimeToFileTime(&local, &back));
    EXPECT_EQ(0, ::CompareFileTime(&utc, &back));
}

TEST_F(ClockTest, OnlyLongWaitingIsShortened) {
    device().Command("set sleep.scale 10");
    sim::Device& sim = device().sim();
    EXPECT_EQ(499u, sim::ScaledInterval(sim, 499));
    EXPECT_EQ(50u, sim::ScaledInterval(sim, 500));
    EXPECT_EQ(100u, sim::ScaledInterval(sim, 1000));
    EXPECT_EQ(0xFFFFFFFFu, sim::ScaledInterval(sim, 0xFFFFFFFF));
    device().Command("set sleep.scale 1000");
    EXPECT_EQ(20u, sim::ScaledInterval(sim, 1000));
}

TEST_F(ClockTest, LongWaitingCanBeMadeEndless) {
    device().Command("set sleep.scale 0");
    sim::Device& sim = device().sim();
    EXPECT_EQ(499u, sim::ScaledInterval(sim, 499));
    EXPECT_EQ(0x7FFFFFFFu, sim::ScaledInterval(sim, 500));
}

TEST_F(ClockTest, SleepIsShortened) {
    device().Command("set sleep.scale 100");
    const DWORD begin = ::GetTickCount();
    ::Sleep(10000);
    EXPECT_LT(::GetTickCount() - begin, 5000u);
}

TEST(ZoneTest, SouthernSummerSpansTheYearsEnd) {
    const sim::Zone zone = sim::ParseZone("AEST-10AEDT,M10.1.0,M4.1.0/3");
    EXPECT_TRUE(sim::IsDaylight(zone, sim::ParseIsoTime("2010-01-15T00:00:00Z", zone)));
    EXPECT_FALSE(sim::IsDaylight(zone, sim::ParseIsoTime("2010-07-15T00:00:00Z", zone)));
    EXPECT_TRUE(sim::IsDaylight(zone, sim::ParseIsoTime("2010-12-15T00:00:00Z", zone)));
}

TEST(ZoneTest, DatesCountFrom1601) {
    EXPECT_EQ(0, sim::DaysFromDate(1601, 1, 1));
    EXPECT_EQ(145731, sim::DaysFromDate(2000, 1, 1));
    EXPECT_EQ("2000-02-29T23:59:58.120Z",
              sim::IsoTime(sim::ParseIsoTime("2000-02-29T23:59:58.120Z", sim::Zone())));
    for (std::int64_t day = 0; day < 400000; day += 97) {
        const sim::Date date = sim::DateFromDays(day);
        EXPECT_EQ(day, sim::DaysFromDate(date.year, date.month, date.day));
    }
}

TEST(ZoneTest, WhatIsNoZoneOrTimeIsRefused) {
    for (const char* rule : {"", "UTC", "1", "CET-1CEST", "CET-1CEST,M13.5.0,M10.5.0"}) {
        EXPECT_THROW(sim::ParseZone(rule), std::runtime_error) << rule;
    }
    for (const char* text :
         {"", "2003-02-28", "2003-13-01T00:00:00", "2003-02-28T24:00:00", "2003-02-28T00:00:00X"}) {
        EXPECT_THROW(sim::ParseIsoTime(text, sim::Zone()), std::runtime_error) << text;
    }
}

}  // namespace
