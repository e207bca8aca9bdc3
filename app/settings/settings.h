// The program's settings: values of one registry key, read afresh at each use, so that what another
// process wrote (the agent, a notification's launch) is seen at once.
#pragma once

#include "platform/win32.h"

#include <cstddef>
#include <cstdint>

namespace tolvenar {

constexpr char16_t kSettingsKey[] = u"Software\\Kestrin2\\Tolvenar";  // under HKEY_CURRENT_USER

namespace setting {
constexpr char16_t kStorageFile[] = u"StorageFile";
constexpr char16_t kStoragePath[] = u"StoragePath";
constexpr char16_t kInstDir[] = u"InstDir";
constexpr char16_t kOnTime[] = u"onTime";
constexpr char16_t kOnBattery[] = u"onBattery";
constexpr char16_t kWakeUpTime[] = u"WakeUpTime";
constexpr char16_t kAdvancedTreeView[] = u"AdvancedTreeView";
constexpr char16_t kAdvancedDBRestoring[] = u"AdvancedDBRestoring";
constexpr char16_t kMayDeleteOldStorage[] = u"MayDeleteOldStorage";
constexpr char16_t kReminders[] = u"Reminders";
}  // namespace setting

constexpr std::uint32_t kSettingAbsent = 0x80000000;
constexpr std::uint32_t kSettingMask = 0x7FFFFFFF;  // an absent value reads as 0 behind it
constexpr std::uint32_t kDefaultReminders = 14;
// A text value is read into 260 bytes: 129 units and the terminator.
constexpr std::size_t kSettingTextUnits = 130;
// Folder and stem of the storage with the terminator.
constexpr std::size_t kSettingPathUnits = 260;

// The value, or kSettingAbsent when the key cannot be opened or holds no 4-byte REG_DWORD of the
// name.
std::uint32_t ReadDword(HKEY root, const char16_t* key, const char16_t* name);
// Creates the key when needed. True on success.
bool WriteDword(HKEY root, const char16_t* key, const char16_t* name, std::uint32_t value);
// Reads a REG_SZ of at most `limit_bytes` bytes (2 * `units` at most) with its terminator into
// `buffer`, which holds `units`. False, and an empty text, when it is absent, longer or of another
// type.
bool ReadText(HKEY root, const char16_t* key, const char16_t* name, char16_t* buffer,
              std::size_t units, std::size_t limit_bytes);

// The same for the program's own key.
std::uint32_t ReadSetting(const char16_t* name);
bool WriteSetting(const char16_t* name, std::uint32_t value);
bool ReadSettingText(const char16_t* name, char16_t (&buffer)[kSettingTextUnits]);
bool WriteSettingText(const char16_t* name, const char16_t* text);

// True while the program runs without its installation: `onTime` is absent or has bit 31 set.
bool InstallationIsMissing();

// The confirmations to show, a bit each; all of them when the value is absent or has bit 31 set.
std::uint32_t ReadReminders();

// The stem of the storage file; false, and an empty text, when none is chosen.
bool ReadStorageFileName(char16_t (&buffer)[kSettingTextUnits]);
bool WriteStorageFileName(const char16_t* text);
// The storage's folder with its backslash, or "\Storage\" in the program's own folder. Returns its
// length in units; never fails.
std::size_t ReadStorageFolder(char16_t (&buffer)[kSettingPathUnits]);
// Adds the backslash when it is missing. Refused while the value does not exist: only an
// installation creates it.
bool WriteStorageFolder(const char16_t* text);
// Folder and stem, nothing between them. False, and an empty text, when no storage is chosen.
bool ReadStoragePath(char16_t (&buffer)[kSettingPathUnits]);

// The copies that pages and drivers work with.
struct Settings {
    std::uint32_t onTime;
    std::uint32_t onBattery;
    std::uint32_t WakeUpTime;  // hour | minute << 16, local time
    std::uint32_t AdvancedTreeView;
    std::uint32_t AdvancedDBRestoring;
    std::uint32_t MayDeleteOldStorage;
    // New xor old of the last change of AdvancedTreeView; the difference tree rebuilds its view
    // then.
    std::uint32_t AdvancedTreeViewChange;
};

// Where ReadAllSettings puts each value; a null slot is skipped.
struct SettingSlots {
    std::uint32_t* onTime;
    std::uint32_t* onBattery;
    std::uint32_t* WakeUpTime;
    std::uint32_t* AdvancedTreeView;
    std::uint32_t* AdvancedDBRestoring;
    std::uint32_t* MayDeleteOldStorage;
};
SettingSlots SlotsOf(Settings& settings);

// Reads each value behind kSettingMask. Without an installation nothing is read and the copies keep
// what they had. Always true.
bool ReadAllSettings(const SettingSlots& slots, bool installationMissing);

// What the options page changed, a bit each.
constexpr std::uint32_t kChangedOnBattery = 1;
constexpr std::uint32_t kChangedOnTime = 2;
constexpr std::uint32_t kAdvancedTreeViewOn = 4;
constexpr std::uint32_t kAdvancedTreeViewOff = 8;
constexpr std::uint32_t kChangedAdvancedDBRestoring = 16;
constexpr std::uint32_t kChangedMayDeleteOldStorage = 32;

// Writes the copies that `changes` names; kAdvancedTreeViewOn and -Off set the copy first. True
// when every value was written.
bool SaveChangedOptions(std::uint32_t changes, Settings& settings);
// Writes WakeUpTime when it differs from the copy, and takes it into the copy. False when the write
// failed.
bool SaveWakeUpTime(std::uint32_t value, Settings& settings);

}  // namespace tolvenar
