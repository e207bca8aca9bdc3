// What the device says about itself: version, processor, memory, power, modules.
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <optional>
#include <string>
#include <windows.h>

#include "simulator/exports/gated.h"
#include "simulator/system/host_calls.h"
#include "simulator/system/missing_names.h"
#include "simulator/system/settings.h"

namespace {

using sim::SettingNumber;

constexpr DWORD kGranularity = 0x10000;

bool IsCoredll(const std::wstring& name) {
    return ::_wcsicmp(name.c_str(), L"coredll.dll") == 0 ||
           ::_wcsicmp(name.c_str(), L"coredll") == 0;
}

DWORD ProcessorLevel(DWORD type) {
    constexpr DWORD kStrongArm = 2577;
    return type == kStrongArm ? 4 : 0;
}

void FillSystemInfo(SYSTEM_INFO& info) {
    constexpr WORD kArm = 5;
    std::memset(&info, 0, sizeof info);
    info.dwProcessorType = static_cast<DWORD>(SettingNumber(Device::Current(), "processor"));
    info.wProcessorArchitecture = info.dwProcessorType < 1000 ? 0 : kArm;
    info.dwPageSize = 0x1000;
    info.lpMinimumApplicationAddress = reinterpret_cast<void*>(0x10000);
    info.lpMaximumApplicationAddress = reinterpret_cast<void*>(0x7FFFFFFF);
    info.dwActiveProcessorMask = 1;
    info.dwNumberOfProcessors = 1;
    info.dwAllocationGranularity = kGranularity;
    info.wProcessorLevel = static_cast<WORD>(ProcessorLevel(info.dwProcessorType));
}

BOOL FillVersion(OSVERSIONINFOW* info) {
    if (info->dwOSVersionInfoSize < sizeof *info) {
        sim::SetHostError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    unsigned major = 0;
    unsigned minor = 0;
    std::sscanf(sim::SettingText(Device::Current(), "os.version").c_str(), "%u.%u", &major, &minor);
    constexpr DWORD kPlatformCe = 3;
    info->dwMajorVersion = major;
    info->dwMinorVersion = minor;
    info->dwBuildNumber = static_cast<DWORD>(SettingNumber(Device::Current(), "os.build"));
    info->dwPlatformId = kPlatformCe;
    info->szCSDVersion[0] = L'\0';
    return TRUE;
}

void FillMemoryStatus(MEMORYSTATUS& status) {
    const auto size = static_cast<DWORD>(SettingNumber(Device::Current(), "memory.size"));
    const auto free = static_cast<DWORD>(SettingNumber(Device::Current(), "memory.free"));
    constexpr DWORD kSlot = 32 * 1024 * 1024;  // a process's address space
    status.dwLength = sizeof status;
    status.dwMemoryLoad =
        size == 0 || free > size
            ? 0
            : static_cast<DWORD>((static_cast<ULONGLONG>(size - free) * 100) / size);
    status.dwTotalPhys = size;
    status.dwAvailPhys = free;
    status.dwTotalPageFile = 0;
    status.dwAvailPageFile = 0;
    status.dwTotalVirtual = kSlot;
    status.dwAvailVirtual = kSlot;
}

// Times are unknown on every device.
BOOL FillPower(SYSTEM_POWER_STATUS_EX* status) {
    const Device& device = Device::Current();
    if (status == nullptr || SettingNumber(device, "power.present") == 0) {
        sim::SetHostError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    constexpr DWORD kUnknown = 0xFFFFFFFF;
    std::memset(status, 0, sizeof *status);
    status->ACLineStatus = static_cast<BYTE>(SettingNumber(device, "power.ac"));
    status->BatteryFlag = static_cast<BYTE>(SettingNumber(device, "power.flag"));
    status->BatteryLifePercent = static_cast<BYTE>(SettingNumber(device, "power.percent"));
    status->BatteryLifeTime = kUnknown;
    status->BatteryFullLifeTime = kUnknown;
    status->BackupBatteryFlag = status->BatteryFlag;
    status->BackupBatteryLifePercent = status->BatteryLifePercent;
    status->BackupBatteryLifeTime = kUnknown;
    status->BackupBatteryFullLifeTime = kUnknown;
    return TRUE;
}

bool IsAbsent(HMODULE module, LPCWSTR name) {
    const bool is_commdlg = module == sim::host::FindModule(L"commdlg.dll");
    return sim::IsMissing(Device::Current(), is_commdlg ? L"commdlg.dll" : L"coredll.dll", name);
}

// What stands in the place of a name when a number is meant; null for a name.
std::optional<WORD> NumberIn(LPCWSTR name) {
    const auto value = reinterpret_cast<ULONG_PTR>(name);
    return value <= 0xFFFF ? std::optional(static_cast<WORD>(value)) : std::nullopt;
}

const wchar_t* ExportedName(HMODULE module, LPCWSTR name) {
    if (const auto number = NumberIn(name)) {
        return module == sim::host::FindModule(L"coredll.dll")
                   ? sim::NameOfNumber(Device::Current(), *number)
                   : nullptr;
    }
    return IsAbsent(module, name) ? nullptr : name;
}

FARPROC FindProcedure(HMODULE module, LPCWSTR name) {
    if (const wchar_t* const exported = ExportedName(module, name)) {
        return reinterpret_cast<FARPROC>(sim::host::FindFunction(module, exported));
    }
    sim::SetHostError(ERROR_PROC_NOT_FOUND);
    return nullptr;
}

DWORD CopyModulePath(HMODULE module, LPWSTR buffer, DWORD units) {
    const std::wstring path = sim::host::ModulePath(module);
    if (path.empty() || buffer == nullptr || units == 0) {
        return 0;
    }
    const auto whole = static_cast<DWORD>(path.size());
    const bool is_filled = sim::SettingText(Device::Current(), "program.name") == "filled";
    const DWORD length = whole < units ? whole : is_filled ? units : units - 1;
    std::memcpy(buffer, path.data(), length * sizeof(wchar_t));
    if (length < units) {
        buffer[length] = L'\0';
    }
    return length;
}

const wchar_t* HostModuleName(LPCWSTR name) {
    return name != nullptr && IsCoredll(name) ? L"coredll.dll" : name;
}

}  // namespace

void WINAPI GetSystemInfo(LPSYSTEM_INFO info) {
    GatedVoid(Call::GetSystemInfo, [&] { FillSystemInfo(*info); });
}

BOOL WINAPI GetVersionExW(LPOSVERSIONINFOW info) {
    return Gated(Call::GetVersionExW, FALSE, [&] { return FillVersion(info); });
}

void WINAPI GlobalMemoryStatus(LPMEMORYSTATUS status) {
    GatedVoid(Call::GlobalMemoryStatus, [&] { FillMemoryStatus(*status); });
}

BOOL WINAPI GetSystemPowerStatusEx(PSYSTEM_POWER_STATUS_EX status, BOOL update) {
    return Gated(
        Call::GetSystemPowerStatusEx, FALSE, [&] { return FillPower(status); }, update);
}

FARPROC WINAPI GetProcAddressW(HMODULE module, LPCWSTR name) {
    return Gated(
        Call::GetProcAddressW, FARPROC{}, [&] { return FindProcedure(module, name); },
        NumberIn(name) ? L"a number" : name);
}

HMODULE WINAPI LoadLibraryW(LPCWSTR name) {
    return Gated(
        Call::LoadLibraryW, HMODULE{},
        [&] { return static_cast<HMODULE>(sim::host::LoadModule(HostModuleName(name))); }, name);
}

HMODULE WINAPI GetModuleHandleW(LPCWSTR name) {
    return Gated(
        Call::GetModuleHandleW, HMODULE{},
        [&] { return static_cast<HMODULE>(sim::host::FindModule(HostModuleName(name))); }, name);
}

BOOL WINAPI FreeLibrary(HMODULE module) {
    return Gated(Call::FreeLibrary, FALSE,
                 [&]() -> BOOL { return sim::host::UnloadModule(module); });
}

DWORD WINAPI GetModuleFileNameW(HMODULE module, LPWSTR buffer, DWORD units) {
    return Gated(Call::GetModuleFileNameW, DWORD{0},
                 [&] { return CopyModulePath(module, buffer, units); });
}
