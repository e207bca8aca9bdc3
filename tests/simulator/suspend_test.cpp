// A device goes to sleep when no key came for its limit, also beside a program that works. It has a
// time of its own, in which slow calls take long although nobody waits for them.
#include <nlohmann/json.hpp>

#include "tests/simulator/file_helpers.h"
#include "tests/support/device_test.h"

namespace tests {
namespace {

constexpr DWORD kMinute = 60000;
constexpr wchar_t kFile[] = L"\\Storage Card\\a.txt";

class SuspendTest : public DeviceTest {
protected:
    using Json = nlohmann::json;

    Json Counters() { return Json::parse(device().Command("counters")); }
    long Suspends() { return Counters()["suspends"]; }
    long LongestQuiet() { return Counters()["longestQuiet"]; }
    void Pass(DWORD milliseconds) { device().Command("pass " + std::to_string(milliseconds)); }
    static void PressKey() { ::keybd_event(VK_SHIFT, 0, KEYEVENTF_SILENT, 0); }
    // Any call that tells the device that a program is at work.
    static void Call() { ::GetFileAttributesW(L"\\"); }
};

TEST_F(SuspendTest, SlowCallsMoveTheTicksOn) {
    device().Set("time.call", "5000");
    const DWORD begin = ::GetTickCount();
    for (int i = 0; i < 10; ++i) {
        ::GetFileAttributesW(L"\\");
    }
    const DWORD passed = ::GetTickCount() - begin;
    EXPECT_LE(50000u, passed);
    EXPECT_GT(100000u, passed);
}

TEST_F(SuspendTest, WhatIsOnlyReckonedTakesNoTime) {
    device().Set("time.call", "50000");
    const DWORD begin = ::GetTickCount();
    ::LocalFree(::LocalAlloc(LMEM_FIXED, 10));
    ::GetSystemMetrics(SM_CXSCREEN);
    EXPECT_GT(50000u, ::GetTickCount() - begin);
}

TEST_F(SuspendTest, ATransferTakesWhatItsBytesTake) {
    HANDLE file = Open(kFile, GENERIC_WRITE, 0, CREATE_NEW);
    device().Set("time.bytes", "100");
    const std::string bytes(10000, 'x');
    DWORD written = 0;
    const DWORD begin = ::GetTickCount();
    EXPECT_TRUE(::WriteFile(file, bytes.data(), 10000, &written, nullptr));
    const DWORD passed = ::GetTickCount() - begin;
    ::CloseHandle(file);
    EXPECT_LE(100000u, passed);
    EXPECT_GT(150000u, passed);
}

TEST_F(SuspendTest, TheLongestTimeWithoutAKeyIsTold) {
    device().Command("counters clear");
    Pass(20000);
    PressKey();
    Pass(50000);
    PressKey();
    Pass(30000);
    Call();
    const long quiet = LongestQuiet();
    EXPECT_LE(50000, quiet);
    EXPECT_GT(70000, quiet);
    device().Command("counters clear");
    Call();
    EXPECT_GT(20000, LongestQuiet());
}

TEST_F(SuspendTest, ByDefaultItNeverSleeps) {
    Pass(100 * kMinute);
    Call();
    EXPECT_EQ(0, Suspends());
}

TEST_F(SuspendTest, WithoutAKeyForItsLimitItSleepsOnce) {
    device().Set("suspend.after", std::to_string(2 * kMinute));
    Pass(kMinute);
    Call();
    EXPECT_EQ(0, Suspends());
    Pass(3 * kMinute);
    Call();
    Call();
    EXPECT_EQ(1, Suspends());
}

TEST_F(SuspendTest, AKeyKeepsItAwake) {
    device().Set("suspend.after", std::to_string(2 * kMinute));
    for (int i = 0; i < 5; ++i) {
        Pass(kMinute);
        PressKey();
    }
    EXPECT_EQ(0, Suspends());
}

// The shorter time ends with the first key.
TEST_F(SuspendTest, AStartByANotificationKeepsItAwakeForATimeOfItsOwn) {
    device().Set("suspend.after", std::to_string(5 * kMinute));
    device().Set("suspend.started", std::to_string(kMinute));
    CE_NOTIFICATION_TRIGGER trigger{};
    trigger.dwSize = sizeof trigger;
    trigger.dwType = CNT_EVENT;
    trigger.dwEvent = NOTIFICATION_EVENT_WAKEUP;
    trigger.lpszApplication = const_cast<wchar_t*>(L"missing.exe");
    trigger.lpszArguments = const_cast<wchar_t*>(L"Wake");
    ASSERT_NE(nullptr, ::CeSetUserNotificationEx(nullptr, &trigger, nullptr));
    device().Command("fire Wake");
    PressKey();
    Pass(2 * kMinute);
    Call();
    EXPECT_EQ(0, Suspends());
    device().Command("fire Wake");
    Pass(2 * kMinute);
    Call();
    EXPECT_EQ(1, Suspends());
}

TEST_F(SuspendTest, WhileItSleepsTheClockRunsOnAndTheCardGoes) {
    device().PutFile(kFile, "0123456789");
    device().Set("clock", "2003-02-28T07:30:00");
    device().Set("card.ready", "60000 55");
    device().Set("suspend.lasts", "7200");
    device().Set("suspend.after", std::to_string(kMinute));
    Pass(2 * kMinute);
    ::SetLastError(1234);
    EXPECT_EQ(1234u, ::GetLastError()) << "the caller does not see it";
    EXPECT_EQ(ERROR_DEV_NOT_EXIST, OpenError(kFile, GENERIC_READ));
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    EXPECT_EQ(9, now.wHour);
    EXPECT_EQ(30, now.wMinute);
}

TEST_F(SuspendTest, ACommandPutsItToSleepAtOnce) {
    device().Set("clock", "2003-02-28T07:30:00");
    device().Command("suspend");
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    EXPECT_EQ(8, now.wHour);
}

}  // namespace
}  // namespace tests
