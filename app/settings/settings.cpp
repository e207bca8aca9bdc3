#include "app/settings/settings.h"

#include <string_view>

#include "platform/registry_key.h"
#include "platform/text.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

constexpr char16_t kDefaultFolder[] = u"\\Storage\\";

bool QueryText(HKEY hkey, const char16_t* name, char16_t* buffer, std::size_t limit_bytes) {
    DWORD type = 0;
    DWORD bytes = static_cast<DWORD>(limit_bytes);
    if (::RegQueryValueExW(hkey, Wide(name), nullptr, &type, reinterpret_cast<BYTE*>(buffer),
                           &bytes) != ERROR_SUCCESS) {
        return false;
    }
    const std::size_t length = bytes / sizeof(char16_t);
    if (type != REG_SZ || length * sizeof(char16_t) > limit_bytes) {
        return false;
    }
    // A value may be stored without its terminator; there must be room for one then.
    if (length > 0 && buffer[length - 1] == 0) {
        return true;
    }
    if ((length + 1) * sizeof(char16_t) > limit_bytes) {
        return false;
    }
    buffer[length] = 0;
    return true;
}

UniqueHkey CreateSettingsKey(HKEY root, const char16_t* key) {
    UniqueHkey hkey;
    DWORD disposition = 0;
    ::RegCreateKeyExW(root, Wide(key), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, hkey.Put(),
                      &disposition);
    return hkey;
}

bool SetText(HKEY hkey, const char16_t* name, std::u16string_view terminated) {
    const DWORD bytes = static_cast<DWORD>((terminated.size() + 1) * sizeof(char16_t));
    return ::RegSetValueExW(hkey, Wide(name), 0, REG_SZ,
                            reinterpret_cast<const BYTE*>(terminated.data()),
                            bytes) == ERROR_SUCCESS;
}

// The folder that the program's own file lies in, and the storage's folder in it.
std::size_t DefaultStorageFolder(char16_t (&buffer)[kSettingPathUnits]) {
    char16_t program[kSettingPathUnits];
    const DWORD length = ::GetModuleFileNameW(nullptr, Wide(program), kSettingPathUnits);
    const std::u16string_view path{program, length < kSettingPathUnits ? length : 0};
    const std::size_t backslash = path.rfind(u'\\');
    TextBuilder folder(buffer, kSettingPathUnits);
    folder.Clear();
    if (backslash != path.npos) {
        folder.Append(path.data(), backslash);
    }
    folder.Append(kDefaultFolder);
    if (folder.cut()) {
        folder.Clear();
        folder.Append(kDefaultFolder);
    }
    return folder.length();
}

}  // namespace

std::uint32_t ReadDword(HKEY root, const char16_t* key, const char16_t* name) {
    const UniqueHkey hkey = OpenKey(root, Wide(key));
    if (!hkey) {
        return kSettingAbsent;
    }
    std::uint32_t value = 0;
    DWORD type = 0;
    DWORD bytes = sizeof value;
    const LONG error = ::RegQueryValueExW(hkey.get(), Wide(name), nullptr, &type,
                                          reinterpret_cast<BYTE*>(&value), &bytes);
    const bool is_dword = type == REG_DWORD && bytes == sizeof value;
    return error == ERROR_SUCCESS && is_dword ? value : kSettingAbsent;
}

bool WriteDword(HKEY root, const char16_t* key, const char16_t* name, std::uint32_t value) {
    const UniqueHkey hkey = CreateSettingsKey(root, key);
    return hkey &&
           ::RegSetValueExW(hkey.get(), Wide(name), 0, REG_DWORD,
                            reinterpret_cast<const BYTE*>(&value), sizeof value) == ERROR_SUCCESS;
}

bool ReadText(HKEY root, const char16_t* key, const char16_t* name, char16_t* buffer,
              std::size_t units, std::size_t limit_bytes) {
    const std::size_t room = units * sizeof(char16_t);
    const UniqueHkey hkey = OpenKey(root, Wide(key));
    if (hkey && QueryText(hkey.get(), name, buffer, limit_bytes < room ? limit_bytes : room)) {
        return true;
    }
    buffer[0] = 0;
    return false;
}

std::uint32_t ReadSetting(const char16_t* name) {
    return ReadDword(HKEY_CURRENT_USER, kSettingsKey, name);
}

bool WriteSetting(const char16_t* name, std::uint32_t value) {
    return WriteDword(HKEY_CURRENT_USER, kSettingsKey, name, value);
}

bool ReadSettingText(const char16_t* name, char16_t (&buffer)[kSettingTextUnits]) {
    return ReadText(HKEY_CURRENT_USER, kSettingsKey, name, buffer, kSettingTextUnits,
                    sizeof buffer);
}

bool WriteSettingText(const char16_t* name, const char16_t* text) {
    const UniqueHkey hkey = CreateSettingsKey(HKEY_CURRENT_USER, kSettingsKey);
    return hkey && SetText(hkey.get(), name, text);
}

bool InstallationIsMissing() { return (ReadSetting(setting::kOnTime) & kSettingAbsent) != 0; }

std::uint32_t ReadReminders() {
    const std::uint32_t value = ReadSetting(setting::kReminders);
    return (value & kSettingAbsent) != 0 ? kDefaultReminders : value;
}

bool ReadStorageFileName(char16_t (&buffer)[kSettingTextUnits]) {
    return ReadSettingText(setting::kStorageFile, buffer);
}

bool WriteStorageFileName(const char16_t* text) {
    return WriteSettingText(setting::kStorageFile, text);
}

std::size_t ReadStorageFolder(char16_t (&buffer)[kSettingPathUnits]) {
    if (ReadText(HKEY_CURRENT_USER, kSettingsKey, setting::kStoragePath, buffer, kSettingPathUnits,
                 kSettingTextUnits * sizeof(char16_t))) {
        return std::u16string_view(buffer).size();
    }
    return DefaultStorageFolder(buffer);
}

bool WriteStorageFolder(const char16_t* text) {
    const UniqueHkey hkey = CreateSettingsKey(HKEY_CURRENT_USER, kSettingsKey);
    if (!hkey || ::RegQueryValueExW(hkey.get(), Wide(setting::kStoragePath), nullptr, nullptr,
                                    nullptr, nullptr) != ERROR_SUCCESS) {
        return false;
    }
    TextBuffer<kSettingPathUnits> folder;
    folder.Append(text);
    const bool ends_in_backslash =
        folder.length() > 0 && folder.text()[folder.length() - 1] == u'\\';
    if (!ends_in_backslash) {
        folder.AppendUnit(u'\\');
    }
    return !folder.cut() &&
           SetText(hkey.get(), setting::kStoragePath, {folder.text(), folder.length()});
}

bool ReadStoragePath(char16_t (&buffer)[kSettingPathUnits]) {
    char16_t stem[kSettingTextUnits];
    const std::size_t folder_length = ReadStorageFolder(buffer);
    TextBuilder path(buffer + folder_length, kSettingPathUnits - folder_length);
    if (folder_length > 0 && ReadStorageFileName(stem) && !path.Append(stem).cut()) {
        return true;
    }
    buffer[0] = 0;
    return false;
}

SettingSlots SlotsOf(Settings& settings) {
    return {
        &settings.onTime,           &settings.onBattery,           &settings.WakeUpTime,
        &settings.AdvancedTreeView, &settings.AdvancedDBRestoring, &settings.MayDeleteOldStorage};
}

bool ReadAllSettings(const SettingSlots& slots, bool installationMissing) {
    if (installationMissing) {
        return true;
    }
    const struct {
        std::uint32_t* slot;
        const char16_t* name;
    } rows[] = {
        {slots.onTime, setting::kOnTime},
        {slots.onBattery, setting::kOnBattery},
        {slots.WakeUpTime, setting::kWakeUpTime},
        {slots.AdvancedTreeView, setting::kAdvancedTreeView},
        {slots.AdvancedDBRestoring, setting::kAdvancedDBRestoring},
        {slots.MayDeleteOldStorage, setting::kMayDeleteOldStorage},
    };
    for (const auto& row : rows) {
        if (row.slot != nullptr) {
            *row.slot = ReadSetting(row.name) & kSettingMask;
        }
    }
    return true;
}

bool SaveChangedOptions(std::uint32_t changes, Settings& settings) {
    const std::uint32_t old_view = settings.AdvancedTreeView;
    if (changes & kAdvancedTreeViewOn) {
        settings.AdvancedTreeView = 1;
    }
    if (changes & kAdvancedTreeViewOff) {
        settings.AdvancedTreeView = 0;
    }
    if (changes & (kAdvancedTreeViewOn | kAdvancedTreeViewOff)) {
        settings.AdvancedTreeViewChange = settings.AdvancedTreeView ^ old_view;
    }
    const struct {
        std::uint32_t bits;
        const char16_t* name;
        std::uint32_t value;
    } rows[] = {
        {kChangedOnBattery, setting::kOnBattery, settings.onBattery},
        {kChangedOnTime, setting::kOnTime, settings.onTime},
        {kAdvancedTreeViewOn | kAdvancedTreeViewOff, setting::kAdvancedTreeView,
         settings.AdvancedTreeView},
        {kChangedAdvancedDBRestoring, setting::kAdvancedDBRestoring, settings.AdvancedDBRestoring},
        {kChangedMayDeleteOldStorage, setting::kMayDeleteOldStorage, settings.MayDeleteOldStorage},
    };
    bool all_written = true;
    for (const auto& row : rows) {
        if ((changes & row.bits) != 0 && !WriteSetting(row.name, row.value)) {
            all_written = false;
        }
    }
    return all_written;
}

bool SaveWakeUpTime(std::uint32_t value, Settings& settings) {
    if (value == settings.WakeUpTime) {
        return true;
    }
    settings.WakeUpTime = value;
    return WriteSetting(setting::kWakeUpTime, value);
}

}  // namespace tolvenar
