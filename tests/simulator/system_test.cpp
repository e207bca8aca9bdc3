// What the device says about itself.
#include "platform/win32.h"

#include "tests/support/device_test.h"

namespace {

class SystemTest : public tests::DeviceTest {};

TEST_F(SystemTest, SystemInfoTellsProcessorAndGranularity) {
    SYSTEM_INFO info{};
    ::GetSystemInfo(&info);
    EXPECT_EQ(2577u, info.dwProcessorType);
    EXPECT_EQ(0x10000u, info.dwAllocationGranularity);
    device().Command("set processor 4000");
    ::GetSystemInfo(&info);
    EXPECT_EQ(4000u, info.dwProcessorType);
}

TEST_F(SystemTest, VersionIsASetting) {
    OSVERSIONINFOW info{};
    info.dwOSVersionInfoSize = sizeof info;
    device().Command("set os.version 2.11");
    ASSERT_TRUE(::GetVersionExW(&info));
    EXPECT_EQ(2u, info.dwMajorVersion);
    EXPECT_EQ(11u, info.dwMinorVersion);
    EXPECT_EQ(3u, info.dwPlatformId);
    info.dwOSVersionInfoSize = 4;
    EXPECT_FALSE(::GetVersionExW(&info));
}

TEST_F(SystemTest, FreeMemoryIsASetting) {
    device().Command("set memory.free 1234567");
    MEMORYSTATUS status{};
    ::GlobalMemoryStatus(&status);
    EXPECT_EQ(32u, status.dwLength);
    EXPECT_EQ(1234567u, status.dwAvailPhys);
    EXPECT_EQ(16777216u, status.dwTotalPhys);
    EXPECT_EQ(92u, status.dwMemoryLoad);
}

// What a heap has at first is taken at once; it grows all the same.
TEST_F(SystemTest, AHeapThatBeginsTooLargeIsRefused) {
    device().Set("heap.first", "4000");
    EXPECT_EQ(nullptr, ::HeapCreate(0, 4001, 0));
    EXPECT_EQ(DWORD{ERROR_NOT_ENOUGH_MEMORY}, ::GetLastError());
    HANDLE heap = ::HeapCreate(0, 4000, 0);
    ASSERT_NE(nullptr, heap);
    EXPECT_NE(nullptr, ::HeapAlloc(heap, 0, 100000));
    EXPECT_TRUE(::HeapDestroy(heap));
}

TEST_F(SystemTest, PowerStatusIsSettings) {
    device().Command("set power.ac 0");
    device().Command("set power.flag 2");
    device().Command("set power.percent 17");
    SYSTEM_POWER_STATUS_EX status{};
    ASSERT_TRUE(::GetSystemPowerStatusEx(&status, TRUE));
    EXPECT_EQ(0, status.ACLineStatus);
    EXPECT_EQ(2, status.BatteryFlag);
    EXPECT_EQ(17, status.BatteryLifePercent);
}

TEST_F(SystemTest, ADeviceWithoutPowerStatusLacksTheFunction) {
    HMODULE module = ::LoadLibraryW(L"coredll.dll");
    ASSERT_NE(nullptr, module);
    EXPECT_NE(nullptr, ::GetProcAddressW(module, L"GetSystemPowerStatusEx"));
    device().Command("set power.present 0");
    EXPECT_EQ(nullptr, ::GetProcAddressW(module, L"GetSystemPowerStatusEx"));
    EXPECT_EQ(static_cast<DWORD>(ERROR_PROC_NOT_FOUND), ::GetLastError());
    EXPECT_NE(nullptr, ::GetProcAddressW(module, L"GetSystemInfo"));
    SYSTEM_POWER_STATUS_EX status{};
    EXPECT_FALSE(::GetSystemPowerStatusEx(&status, TRUE));
    ::FreeLibrary(module);
}

TEST_F(SystemTest, AnOlderSystemLacksNewerFunctions) {
    const struct {
        const wchar_t* name;
        const char* last_without;
        const char* first_with;
    } kRows[] = {
        {L"CeSetUserNotificationEx", "2.11", "2.12"},
        {L"CeGetUserNotification", "2.11", "2.12"},
        {L"CeGetUserNotificationHandles", "2.11", "2.12"},
        {L"CeSeekDatabaseEx", "3.0", "4.20"},
    };
    const HMODULE module = ::GetModuleHandleW(L"coredll.dll");
    for (const auto& row : kRows) {
        device().Set("os.version", row.last_without);
        EXPECT_EQ(nullptr, ::GetProcAddressW(module, row.name)) << row.name;
        EXPECT_NE(nullptr, ::GetProcAddressW(module, L"CeSeekDatabase"));
        device().Set("os.version", row.first_with);
        EXPECT_NE(nullptr, ::GetProcAddressW(module, row.name)) << row.name;
    }
}

TEST_F(SystemTest, TheWindowToChooseAFileIsInEitherDll) {
    constexpr wchar_t kName[] = L"GetOpenFileNameW";
    const HMODULE coredll = ::GetModuleHandleW(L"coredll.dll");
    const HMODULE commdlg = ::LoadLibraryW(L"commdlg.dll");
    ASSERT_NE(nullptr, commdlg);
    EXPECT_NE(nullptr, ::GetProcAddressW(coredll, kName));
    EXPECT_NE(nullptr, ::GetProcAddressW(commdlg, kName));
    device().Set("file.chooser", "coredll");
    EXPECT_NE(nullptr, ::GetProcAddressW(coredll, kName));
    EXPECT_EQ(nullptr, ::GetProcAddressW(commdlg, kName));
    device().Set("file.chooser", "commdlg");
    EXPECT_EQ(nullptr, ::GetProcAddressW(coredll, kName));
    EXPECT_NE(nullptr, ::GetProcAddressW(commdlg, kName));
    const wchar_t* const number = MAKEINTRESOURCEW(488);
    EXPECT_EQ(nullptr, ::GetProcAddressW(coredll, number));
    device().Set("file.chooser", "number");
    EXPECT_EQ(nullptr, ::GetProcAddressW(coredll, kName));
    EXPECT_EQ(nullptr, ::GetProcAddressW(commdlg, kName));
    EXPECT_NE(nullptr, ::GetProcAddressW(coredll, number));
    EXPECT_EQ(nullptr, ::GetProcAddressW(commdlg, number));
    EXPECT_EQ(nullptr, ::GetProcAddressW(coredll, MAKEINTRESOURCEW(489)));
    ::FreeLibrary(commdlg);
}

TEST_F(SystemTest, AColourHasTheSystemsMark) {
    EXPECT_NE(0u, ::GetSysColor(COLOR_WINDOW));
    EXPECT_EQ(0u, ::GetSysColor(COLOR_WINDOW & 0xFF));
    EXPECT_NE(nullptr, ::GetSysColorBrush(COLOR_3DFACE));
    EXPECT_EQ(nullptr, ::GetSysColorBrush(COLOR_3DFACE & 0xFF));
}

TEST_F(SystemTest, AnUnknownNameIsNoFunction) {
    HMODULE module = ::GetModuleHandleW(L"coredll.dll");
    EXPECT_EQ(nullptr, ::GetProcAddressW(module, L"NoSuchFunction"));
    EXPECT_EQ(nullptr, ::GetProcAddressW(module, nullptr));
}

TEST_F(SystemTest, AModulesFileNameIsADevicePath) {
    wchar_t path[MAX_PATH] = L"";
    const DWORD length = ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    EXPECT_STREQ(L"\\Windows\\simulator_test.exe", path);
    EXPECT_EQ(27u, length);
    wchar_t small[9];
    EXPECT_EQ(8u, ::GetModuleFileNameW(nullptr, small, 9));
    EXPECT_STREQ(L"\\Windows", small);
    device().Set("program.name", "filled");
    EXPECT_EQ(9u, ::GetModuleFileNameW(nullptr, small, 9));
    EXPECT_EQ(L"\\Windows\\", std::wstring(small, 9));
}

class LocaleTest : public tests::DeviceTest {
protected:
    std::wstring Date(DWORD flags, const wchar_t* pattern) {
        const SYSTEMTIME time = {2003, 2, 0, 8, 9, 5, 7, 0};
        wchar_t text[64] = L"";
        return ::GetDateFormatW(LOCALE_USER_DEFAULT, flags, &time, pattern, text, 64) != 0 ? text
                                                                                           : L"?";
    }
    std::wstring Time(WORD hour, DWORD flags, const wchar_t* pattern) {
        const SYSTEMTIME time = {2003, 2, 0, 8, hour, 5, 7, 0};
        wchar_t text[64] = L"";
        return ::GetTimeFormatW(LOCALE_USER_DEFAULT, flags, &time, pattern, text, 64) != 0 ? text
                                                                                           : L"?";
    }
    std::wstring Info(LCTYPE type) {
        wchar_t text[64] = L"";
        return ::GetLocaleInfoW(LOCALE_USER_DEFAULT, type, text, 64) != 0 ? text : L"?";
    }
};

TEST_F(LocaleTest, PatternsAreTheDevices) {
    EXPECT_EQ(L"M/d/yy", Info(LOCALE_SSHORTDATE));
    EXPECT_EQ(L"dddd, MMMM dd, yyyy", Info(LOCALE_SLONGDATE));
    EXPECT_EQ(L"h:mm:ss tt", Info(LOCALE_STIMEFORMAT));
    EXPECT_EQ(L"Monday", Info(LOCALE_SDAYNAME1));
    device().Command("set locale.shortdate dd.MM.yyyy");
    EXPECT_EQ(L"dd.MM.yyyy", Info(LOCALE_SSHORTDATE));
    EXPECT_EQ(L"08.02.2003", Date(0, nullptr));
}

TEST_F(LocaleTest, DatesFollowThePattern) {
    EXPECT_EQ(L"2/8/03", Date(0, nullptr));
    EXPECT_EQ(L"Saturday, February 08, 2003", Date(DATE_LONGDATE, nullptr));
    EXPECT_EQ(L"Sat d'08 Feb", Date(0, L"ddd 'd'''dd MMM"));
    EXPECT_EQ(L"?", Date(DATE_LONGDATE, L"d"));
}

TEST_F(LocaleTest, TimesFollowThePatternAndItsFlags) {
    EXPECT_EQ(L"9:05:07 AM", Time(9, 0, nullptr));
    EXPECT_EQ(L"12:05:07 AM", Time(0, 0, nullptr));
    EXPECT_EQ(L"12:05:07 PM", Time(12, 0, nullptr));
    EXPECT_EQ(L"1:05 PM", Time(13, TIME_NOSECONDS, nullptr));
    EXPECT_EQ(L"1 PM", Time(13, TIME_NOMINUTESORSECONDS, nullptr));
    EXPECT_EQ(L"13:05:07", Time(13, TIME_FORCE24HOURFORMAT | TIME_NOTIMEMARKER, nullptr));
    EXPECT_EQ(L"09-05 A", Time(9, 0, L"HH-mm t"));
    EXPECT_EQ(L"?", Time(24, 0, nullptr));
}

TEST_F(LocaleTest, ADayThatIsNotIsRefused) {
    const SYSTEMTIME time = {2003, 2, 0, 29, 0, 0, 0, 0};
    wchar_t text[64];
    EXPECT_EQ(0, ::GetDateFormatW(LOCALE_USER_DEFAULT, 0, &time, nullptr, text, 64));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), ::GetLastError());
}

TEST_F(LocaleTest, TooSmallABufferTellsAndZeroAsks) {
    const SYSTEMTIME time = {2003, 2, 0, 8, 0, 0, 0, 0};
    wchar_t text[6];
    EXPECT_EQ(7, ::GetDateFormatW(LOCALE_USER_DEFAULT, 0, &time, nullptr, nullptr, 0));
    EXPECT_EQ(0, ::GetDateFormatW(LOCALE_USER_DEFAULT, 0, &time, nullptr, text, 6));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER), ::GetLastError());
    EXPECT_EQ(7, ::GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SSHORTDATE, nullptr, 0));
}

TEST_F(LocaleTest, OnlyKnownLocalesAndCodePagesAreValid) {
    EXPECT_TRUE(::IsValidLocale(0x409, LCID_INSTALLED));
    EXPECT_FALSE(::IsValidLocale(0xFFFF, LCID_INSTALLED));
    EXPECT_TRUE(::IsValidCodePage(1252));
    EXPECT_FALSE(::IsValidCodePage(4711));
    EXPECT_EQ(0x409u, ::GetUserDefaultLCID());
}

// The documents call both newer than the first systems, although their numbers speak against it.
TEST_F(LocaleTest, ASystemMayLackTheChecksOfLocalesAndCodePages) {
    const HMODULE module = ::GetModuleHandleW(L"coredll.dll");
    for (const wchar_t* name : {L"IsValidLocale", L"IsValidCodePage"}) {
        device().Set("locale.checks", "there");
        EXPECT_NE(nullptr, ::GetProcAddressW(module, name));
        device().Set("locale.checks", "missing");
        EXPECT_EQ(nullptr, ::GetProcAddressW(module, name));
    }
}

}  // namespace
