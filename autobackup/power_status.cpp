#include "autobackup/power_status.h"

#include <utility>

#include "platform/keep_awake.h"

namespace tolvenar {
namespace {

constexpr BYTE kOnMains = 1;
constexpr BYTE kUnknownBattery = 255;
constexpr BYTE kBatteryHigh = 0x01;
constexpr BYTE kLowBelowPercent = 30;
constexpr BYTE kTooWeakPercent = 5;  // a backup might not be finished
constexpr int kRereads = 5;
constexpr DWORD kRereadDelayMs = 3000;

constexpr wchar_t kLibrary[] = L"coredll.dll";
constexpr wchar_t kFunction[] = L"GetSystemPowerStatusEx";

bool IsLowEnough(const SYSTEM_POWER_STATUS_EX& status) {
    // 255, unknown, has the high bit set too and so counts as high.
    return (status.BatteryFlag & kBatteryHigh) == 0 &&
           status.BatteryLifePercent < kLowBelowPercent &&
           status.BatteryLifePercent > kTooWeakPercent;
}

}  // namespace

void PowerStatus::LoadLibraryOnce() {
    if (library_ == nullptr) {
        library_ = ::LoadLibraryW(kLibrary);
    }
}

void PowerStatus::Load() {
    LoadLibraryOnce();
    if (library_ == nullptr || function_ != nullptr) {
        return;
    }
    function_ =
        reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddressW(library_, kFunction)));
}

bool PowerStatus::Read(SYSTEM_POWER_STATUS_EX& status) {
    Load();
    if (function_ == nullptr) {
        return false;
    }
    SYSTEM_POWER_STATUS_EX read{};
    if (!function_(&read, TRUE)) {
        return false;
    }
    status = read;
    return true;
}

void PowerStatus::Unload() {
    const UniqueModule given_back(std::exchange(library_, nullptr));
    function_ = nullptr;
}

bool PowerStatus::IsAvailable() {
    LoadLibraryOnce();
    const UniqueModule given_back(library_);
    return given_back && ::GetProcAddressW(library_, kFunction) != nullptr;
}

BatteryCheckResult CheckBatteryForBackup(PowerStatus& power) {
    SYSTEM_POWER_STATUS_EX status;
    // Nothing is unloaded here: a first read that fails leaves the library as it is.
    if (!power.Read(status)) {
        return BatteryCheckResult::kUnreadable;
    }
    if (status.ACLineStatus == kOnMains) {
        power.Unload();
        return BatteryCheckResult::kNoBackup;
    }
    // Mains power that comes back during the wait is not looked for; a read that fails leaves the
    // status unknown.
    for (int i = 0; i < kRereads && status.BatteryFlag == kUnknownBattery; ++i) {
        KeepAwake();
        ::Sleep(kRereadDelayMs);
        power.Read(status);
    }
    power.Unload();
    return IsLowEnough(status) ? BatteryCheckResult::kLow : BatteryCheckResult::kNoBackup;
}

}  // namespace tolvenar
