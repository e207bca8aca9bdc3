// The battery, asked through a function that not every device has.
#pragma once

#include "platform/unique_resource.h"

namespace tolvenar {

enum class BatteryCheckResult {
    kUnreadable = 0,
    kNoBackup = 1,  // on mains, high, unknown, or too low to risk a backup
    kLow = 2,       // low enough to back up now
};

// The platform's power-status function, looked up by name and kept until it is unloaded.
class PowerStatus {
public:
    // Reads the status afresh from the battery driver. False when the device cannot tell;
    // `status` is left alone then.
    bool Read(SYSTEM_POWER_STATUS_EX& status);
    void Unload();
    // Whether the device has the function at all. Gives its library back and leaves the kept
    // handle as it is (docs/oddities.md, 29).
    bool IsAvailable();

private:
    using Function = BOOL(WINAPI*)(PSYSTEM_POWER_STATUS_EX, BOOL);
    void LoadLibraryOnce();
    void Load();

    HMODULE library_ = nullptr;
    Function function_ = nullptr;
};

// Tests the battery. A backup is worth it at 6 to 29 per cent and not on mains; an unknown status
// is read again up to five times, three seconds apart.
BatteryCheckResult CheckBatteryForBackup(PowerStatus& power);

}  // namespace tolvenar
