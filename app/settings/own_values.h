// Values that the program keeps for itself beside its settings. They tell of one device and one
// moment and are in no state: a backup does not store them and a restore leaves them alone.
#pragma once

#include "app/settings/settings.h"

namespace tolvenar {

// What their names begin with, and no setting's does.
constexpr char16_t kOwnValuePrefix[] = u"Own";

namespace own_value {
// The schedule that an operation took away, until it has been put back.
constexpr char16_t kSuspendedOnTime[] = u"OwnSuspendedOnTime";
constexpr char16_t kSuspendedOnBattery[] = u"OwnSuspendedOnBattery";
constexpr char16_t kSuspendedWakeUpTime[] = u"OwnSuspendedWakeUpTime";
// How the last unattended backup ended, and what the last backup could not save.
constexpr char16_t kLastAutomatic[] = u"OwnLastAutomatic";
constexpr char16_t kLastUnsaved[] = u"OwnLastUnsaved";
// The minute of the last daily start, counted from the first that a FILETIME has.
constexpr char16_t kLastDailyStart[] = u"OwnLastDailyStart";
// What stood in the description's field when another copy took over.
constexpr char16_t kDescription[] = u"OwnDescription";
}  // namespace own_value

// A REG_BINARY of `bytes` bytes. Reading fails when it is absent or of another type or size.
bool ReadOwnBytes(const char16_t* name, void* buffer, std::uint32_t bytes);
bool WriteOwnBytes(const char16_t* name, const void* data, std::uint32_t bytes);
// False when the value is not there any more, or cannot be taken away.
bool DeleteOwnValue(const char16_t* name);
// Of a setting, too.
bool ValueExists(const char16_t* name);
// Has what was written reach the medium before what is written next.
void FlushSettings();

}  // namespace tolvenar
