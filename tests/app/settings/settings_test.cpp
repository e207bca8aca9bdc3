#include "app/settings/settings.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string>

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "tests/support/device_test.h"

namespace tolvenar {
namespace {

using Text = std::u16string;

// This process as a program of the device that lies there.
class RunningAs {
public:
    explicit RunningAs(const std::wstring& path) { ::_wputenv((L"CEPROGRAM=" + path).c_str()); }
    ~RunningAs() { ::_wputenv(L"CEPROGRAM="); }
};

class SettingsTest : public tests::DeviceTest {
protected:
    static UniqueHkey Key() {
        HKEY hkey = nullptr;
        DWORD disposition = 0;
        ::RegCreateKeyExW(HKEY_CURRENT_USER, Wide(kSettingsKey), 0, nullptr, 0, KEY_ALL_ACCESS,
                          nullptr, &hkey, &disposition);
        return UniqueHkey(hkey);
    }
    static void Set(const char16_t* name, DWORD type, const void* data, std::size_t bytes) {
        const UniqueHkey hkey = Key();
        ASSERT_EQ(ERROR_SUCCESS,
                  ::RegSetValueExW(hkey.get(), Wide(name), 0, type, static_cast<const BYTE*>(data),
                                   static_cast<DWORD>(bytes)));
    }
    static void SetText(const char16_t* name, const Text& text) {
        Set(name, REG_SZ, text.c_str(), (text.size() + 1) * 2);
    }
    static void SetNumber(const char16_t* name, DWORD value) {
        Set(name, REG_DWORD, &value, sizeof value);
    }
    // The stored bytes as text, terminator included.
    static Text Stored(const char16_t* name) {
        const UniqueHkey hkey = Key();
        char16_t buffer[400];
        DWORD bytes = sizeof buffer;
        DWORD type = 0;
        if (::RegQueryValueExW(hkey.get(), Wide(name), nullptr, &type,
                               reinterpret_cast<BYTE*>(buffer), &bytes) != ERROR_SUCCESS) {
            return u"(absent)";
        }
        EXPECT_EQ(DWORD{REG_SZ}, type);
        return Text(buffer, bytes / 2);
    }
    static bool KeyExists() {
        UniqueHkey hkey;
        return ::RegOpenKeyExW(HKEY_CURRENT_USER, Wide(kSettingsKey), 0, 0, hkey.Put()) ==
               ERROR_SUCCESS;
    }
    // The folder that this test program is said to lie in.
    static Text ProgramFolder() {
        char16_t name[260];
        ::GetModuleFileNameW(nullptr, Wide(name), 260);
        const Text path = name;
        return path.substr(0, path.rfind(u'\\'));
    }
    static Text Folder() {
        char16_t buffer[kSettingPathUnits];
        const std::size_t length = ReadStorageFolder(buffer);
        EXPECT_EQ(length, Text(buffer).size());
        return buffer;
    }
    static Text Path() {
        char16_t buffer[kSettingPathUnits];
        return ReadStoragePath(buffer) ? buffer : u"(none)";
    }
};

TEST_F(SettingsTest, AFreshRegistryHasTheDefaults) {
    EXPECT_EQ(ProgramFolder() + u"\\Storage\\", Folder());
    char16_t path[kSettingPathUnits] = u"before";
    EXPECT_FALSE(ReadStoragePath(path));
    EXPECT_EQ(Text(), path);
    char16_t stem[kSettingTextUnits] = u"before";
    EXPECT_FALSE(ReadStorageFileName(stem));
    EXPECT_EQ(Text(), stem);
    EXPECT_EQ(14u, ReadReminders());
    EXPECT_TRUE(InstallationIsMissing());
    for (const char16_t* name :
         {setting::kOnTime, setting::kOnBattery, setting::kWakeUpTime, setting::kAdvancedTreeView,
          setting::kAdvancedDBRestoring, setting::kMayDeleteOldStorage}) {
        EXPECT_EQ(kSettingAbsent, ReadSetting(name));
        EXPECT_EQ(0u, ReadSetting(name) & kSettingMask);
    }
    EXPECT_FALSE(KeyExists());
}

TEST_F(SettingsTest, AWrittenNumberIsReadAfreshAndWritingMakesTheKey) {
    EXPECT_TRUE(WriteSetting(setting::kOnTime, 1));
    EXPECT_EQ(1u, ReadSetting(setting::kOnTime));
    SetNumber(setting::kOnTime, 7);
    EXPECT_EQ(7u, ReadSetting(setting::kOnTime));
    EXPECT_TRUE(WriteDword(HKEY_LOCAL_MACHINE, u"Software\\Other\\Deep", u"n", 0xFFFFFFFF));
    EXPECT_EQ(0xFFFFFFFFu, ReadDword(HKEY_LOCAL_MACHINE, u"Software\\Other\\Deep", u"n"));
}

TEST_F(SettingsTest, AValueThatIsNoNumberReadsAsAbsent) {
    SetText(setting::kOnTime, u"1");
    EXPECT_EQ(kSettingAbsent, ReadSetting(setting::kOnTime));
    Set(setting::kOnTime, REG_DWORD, "ab", 2);
    EXPECT_EQ(kSettingAbsent, ReadSetting(setting::kOnTime));
    Set(setting::kOnTime, REG_BINARY, "abcdefgh", 8);
    EXPECT_EQ(kSettingAbsent, ReadSetting(setting::kOnTime));
}

TEST_F(SettingsTest, AFailedReadIsAbsentAndAFailedWriteIsFalse) {
    ASSERT_TRUE(WriteSetting(setting::kOnTime, 1));
    device().Fault("RegOpenKeyExW", 1, 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(kSettingAbsent, ReadSetting(setting::kOnTime));
    device().Fault("RegQueryValueExW", 1, 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(kSettingAbsent, ReadSetting(setting::kOnTime));
    device().Fault("RegCreateKeyExW", 1, 1, ERROR_ACCESS_DENIED);
    EXPECT_FALSE(WriteSetting(setting::kOnTime, 2));
    device().Fault("RegSetValueExW", 1, 1, ERROR_ACCESS_DENIED);
    EXPECT_FALSE(WriteSetting(setting::kOnTime, 2));
    EXPECT_EQ(1u, ReadSetting(setting::kOnTime));
}

TEST_F(SettingsTest, TheInstallationIsMissingWithoutOnTimeOrWithItsBit31) {
    SetNumber(setting::kOnTime, 0);
    EXPECT_FALSE(InstallationIsMissing());
    SetNumber(setting::kOnTime, 0x80000001);
    EXPECT_TRUE(InstallationIsMissing());
}

TEST_F(SettingsTest, RemindersWithBit31AreAllOfThem) {
    SetNumber(setting::kReminders, 0x80000000);
    EXPECT_EQ(14u, ReadReminders());
    SetNumber(setting::kReminders, 0x80000004);
    EXPECT_EQ(14u, ReadReminders());
    SetNumber(setting::kReminders, 0);
    EXPECT_EQ(0u, ReadReminders());
    SetNumber(setting::kReminders, 10);
    EXPECT_EQ(10u, ReadReminders());
}

TEST_F(SettingsTest, AStorageFileOf129CharactersIsReadAndOneMoreIsAbsent) {
    char16_t buffer[kSettingTextUnits];
    SetText(setting::kStorageFile, Text(129, u's'));
    EXPECT_TRUE(ReadStorageFileName(buffer));
    EXPECT_EQ(Text(129, u's'), buffer);
    SetText(setting::kStorageFile, Text(130, u's'));
    EXPECT_FALSE(ReadStorageFileName(buffer));
    EXPECT_EQ(Text(), buffer);
}

TEST_F(SettingsTest, ATextStoredWithoutTerminatorEndsWhereItsBytesEnd) {
    char16_t buffer[kSettingTextUnits];
    std::fill(std::begin(buffer), std::end(buffer), u'x');
    Set(setting::kStorageFile, REG_SZ, u"Home", 8);
    EXPECT_TRUE(ReadStorageFileName(buffer));
    EXPECT_EQ(Text(u"Home"), buffer);
    Set(setting::kStorageFile, REG_SZ, Text(129, u's').c_str(), 258);
    EXPECT_TRUE(ReadStorageFileName(buffer));
    EXPECT_EQ(Text(129, u's'), buffer);
    Set(setting::kStorageFile, REG_SZ, Text(130, u's').c_str(), 260);
    EXPECT_FALSE(ReadStorageFileName(buffer));
    Set(setting::kStorageFile, REG_SZ, u"", 0);
    EXPECT_TRUE(ReadStorageFileName(buffer));
    EXPECT_EQ(Text(), buffer);
}

TEST_F(SettingsTest, AStorageFileThatIsNoTextIsAbsent) {
    char16_t buffer[kSettingTextUnits];
    SetNumber(setting::kStorageFile, 5);
    EXPECT_FALSE(ReadStorageFileName(buffer));
}

TEST_F(SettingsTest, AStorageFileIsWrittenWithItsTerminator) {
    EXPECT_TRUE(WriteStorageFileName(u"Home"));
    EXPECT_EQ(Text(u"Home\0", 5), Stored(setting::kStorageFile));
}

TEST_F(SettingsTest, ReadTextAsksForNoMoreThanItsLimit) {
    SetText(setting::kInstDir, Text(128, u'i'));
    char16_t buffer[260];
    EXPECT_TRUE(ReadText(HKEY_CURRENT_USER, kSettingsKey, setting::kInstDir, buffer, 260, 259));
    SetText(setting::kInstDir, Text(129, u'i'));
    EXPECT_FALSE(ReadText(HKEY_CURRENT_USER, kSettingsKey, setting::kInstDir, buffer, 260, 259));
    EXPECT_EQ(Text(), buffer);
}

TEST_F(SettingsTest, TheFolderIsWrittenOnlyWhereAnInstallationMadeIt) {
    EXPECT_FALSE(WriteStorageFolder(u"\\Storage Card\\Backups"));
    EXPECT_EQ(Text(u"(absent)"), Stored(setting::kStoragePath));
    SetText(setting::kStoragePath, u"\\Old\\");
    EXPECT_TRUE(WriteStorageFolder(u"\\Storage Card\\Backups"));
    EXPECT_EQ(Text(u"\\Storage Card\\Backups\\\0", 23), Stored(setting::kStoragePath));
    EXPECT_EQ(Text(u"\\Storage Card\\Backups\\"), Folder());
}

TEST_F(SettingsTest, AFolderThatEndsInABackslashGetsNoSecond) {
    SetText(setting::kStoragePath, u"\\Old\\");
    EXPECT_TRUE(WriteStorageFolder(u"\\Card\\"));
    EXPECT_EQ(Text(u"\\Card\\"), Folder());
    for (const char16_t* root : {u"", u"\\"}) {
        EXPECT_TRUE(WriteStorageFolder(root));
        EXPECT_EQ(Text(u"\\"), Folder());
    }
    SetText(setting::kStorageFile, u"Home");
    EXPECT_EQ(Text(u"\\Home"), Path());
}

TEST_F(SettingsTest, AFolderTooLongToBeReadGivesTheDefault) {
    SetText(setting::kStoragePath, Text(130, u'f'));
    EXPECT_EQ(ProgramFolder() + u"\\Storage\\", Folder());
}

TEST_F(SettingsTest, AProgramWithoutANameHasItsStorageInTheRoot) {
    device().Fault("GetModuleFileNameW", 1, 1, ERROR_INVALID_HANDLE);
    EXPECT_EQ(Text(u"\\Storage\\"), Folder());
}

TEST_F(SettingsTest, TheDefaultFolderLiesBesideTheProgramWhereverThatIs) {
    const RunningAs in_root(L"\\Tolvenar.exe");
    EXPECT_EQ(Text(u"\\Storage\\"), Folder());
    const std::wstring longest = L"\\" + std::wstring(249, L'p');
    const RunningAs deep(longest + L"\\T.exe");
    EXPECT_EQ(Text(longest.begin(), longest.end()) + u"\\Storage\\", Folder());
    const RunningAs deeper(longest + L"p\\T.exe");
    EXPECT_EQ(Text(u"\\Storage\\"), Folder());
}

// Nothing says then where the path ends.
TEST_F(SettingsTest, AProgramWhosePathFillsTheBufferHasItsStorageInTheRoot) {
    device().Set("program.name", "filled");
    const RunningAs too_deep(L"\\p\\" + std::wstring(257, L'T'));
    EXPECT_EQ(Text(u"\\Storage\\"), Folder());
}

TEST_F(SettingsTest, TheStoragePathIsFolderAndStemWithNothingBetween) {
    SetText(setting::kStorageFile, u"Home");
    EXPECT_EQ(ProgramFolder() + u"\\Storage\\Home", Path());
    SetText(setting::kStoragePath, u"\\Card\\Backups");
    EXPECT_EQ(Text(u"\\Card\\BackupsHome"), Path());
    SetText(setting::kStoragePath, u"\\Card\\Backups\\");
    EXPECT_EQ(Text(u"\\Card\\Backups\\Home"), Path());
}

TEST_F(SettingsTest, AnEmptyFolderHasNoStoragePath) {
    SetText(setting::kStorageFile, u"Home");
    SetText(setting::kStoragePath, u"");
    EXPECT_EQ(Text(u"(none)"), Path());
}

TEST_F(SettingsTest, TheLongestFolderAndStemFitTogether) {
    SetText(setting::kStoragePath, u"\\" + Text(127, u'f') + u"\\");
    SetText(setting::kStorageFile, Text(129, u's'));
    EXPECT_EQ(u"\\" + Text(127, u'f') + u"\\" + Text(129, u's'), Path());
}

TEST_F(SettingsTest, AllSettingsAreReadBehindTheMask) {
    SetNumber(setting::kOnTime, 0x80000001);
    SetNumber(setting::kOnBattery, 2);
    SetNumber(setting::kWakeUpTime, 0x001E0007);  // 07:30
    SetNumber(setting::kAdvancedTreeView, 4);
    SetNumber(setting::kAdvancedDBRestoring, 5);
    Settings settings{9, 9, 9, 9, 9, 9, 9};
    EXPECT_TRUE(ReadAllSettings(SlotsOf(settings), false));
    EXPECT_EQ(1u, settings.onTime);
    EXPECT_EQ(2u, settings.onBattery);
    EXPECT_EQ(7u, settings.WakeUpTime & 0xFFFF);
    EXPECT_EQ(30u, settings.WakeUpTime >> 16);
    EXPECT_EQ(4u, settings.AdvancedTreeView);
    EXPECT_EQ(5u, settings.AdvancedDBRestoring);
    EXPECT_EQ(0u, settings.MayDeleteOldStorage);
    EXPECT_EQ(9u, settings.AdvancedTreeViewChange);
}

TEST_F(SettingsTest, ASlotThatIsNotGivenIsSkipped) {
    SetNumber(setting::kMayDeleteOldStorage, 3);
    std::uint32_t value = 9;
    SettingSlots slots{};
    slots.MayDeleteOldStorage = &value;
    EXPECT_TRUE(ReadAllSettings(slots, false));
    EXPECT_EQ(3u, value);
}

TEST_F(SettingsTest, WithoutAnInstallationTheCopiesKeepWhatTheyHad) {
    SetNumber(setting::kOnBattery, 2);
    Settings settings{9, 9, 9, 9, 9, 9, 9};
    EXPECT_TRUE(ReadAllSettings(SlotsOf(settings), true));
    EXPECT_EQ(9u, settings.onTime);
    EXPECT_EQ(9u, settings.onBattery);
    EXPECT_EQ(9u, settings.MayDeleteOldStorage);
}

struct ChangeRow {
    std::uint32_t bit;
    const char16_t* name;
    std::uint32_t value;
};

TEST_F(SettingsTest, EachBitOfAChangeWritesItsValueAlone) {
    const ChangeRow rows[] = {{1, setting::kOnBattery, 12},
                              {2, setting::kOnTime, 11},
                              {4, setting::kAdvancedTreeView, 1},
                              {8, setting::kAdvancedTreeView, 0},
                              {16, setting::kAdvancedDBRestoring, 15},
                              {32, setting::kMayDeleteOldStorage, 16}};
    for (const ChangeRow& row : rows) {
        ::RegDeleteKeyW(HKEY_CURRENT_USER, Wide(kSettingsKey));
        Settings settings{11, 12, 13, 14, 15, 16, 0};
        EXPECT_TRUE(SaveChangedOptions(row.bit, settings)) << row.bit;
        for (const ChangeRow& other : rows) {
            const bool same = Text(other.name) == row.name;
            EXPECT_EQ(same ? row.value : kSettingAbsent, ReadSetting(other.name)) << row.bit;
        }
    }
}

TEST_F(SettingsTest, NoChangeWritesNothing) {
    Settings settings{11, 12, 13, 14, 15, 16, 0};
    EXPECT_TRUE(SaveChangedOptions(0, settings));
    EXPECT_FALSE(KeyExists());
}

TEST_F(SettingsTest, AChangedTreeViewIsRemembered) {
    Settings settings{};
    EXPECT_TRUE(SaveChangedOptions(kAdvancedTreeViewOn, settings));
    EXPECT_EQ(1u, settings.AdvancedTreeView);
    EXPECT_EQ(1u, settings.AdvancedTreeViewChange);
    EXPECT_TRUE(SaveChangedOptions(kAdvancedTreeViewOn, settings));
    EXPECT_EQ(0u, settings.AdvancedTreeViewChange);
    EXPECT_TRUE(SaveChangedOptions(kAdvancedTreeViewOff, settings));
    EXPECT_EQ(0u, settings.AdvancedTreeView);
    EXPECT_EQ(1u, settings.AdvancedTreeViewChange);
    EXPECT_TRUE(SaveChangedOptions(kChangedOnTime, settings));
    EXPECT_EQ(1u, settings.AdvancedTreeViewChange);
}

TEST_F(SettingsTest, AFailedWriteOfOneOptionDoesNotStopTheOthers) {
    Settings settings{11, 12, 13, 14, 15, 16, 0};
    device().Fault("RegSetValueExW", 1, 1, ERROR_ACCESS_DENIED);
    EXPECT_FALSE(SaveChangedOptions(kChangedOnBattery | kChangedOnTime, settings));
    EXPECT_EQ(kSettingAbsent, ReadSetting(setting::kOnBattery));
    EXPECT_EQ(11u, ReadSetting(setting::kOnTime));
}

TEST_F(SettingsTest, TheWakeUpTimeIsWrittenOnlyWhenItDiffersFromTheCopy) {
    Settings settings{};
    settings.WakeUpTime = 0x001E0007;
    EXPECT_TRUE(SaveWakeUpTime(0x001E0007, settings));
    EXPECT_FALSE(KeyExists());
    EXPECT_TRUE(SaveWakeUpTime(0x000F0008, settings));
    EXPECT_EQ(0x000F0008u, settings.WakeUpTime);
    EXPECT_EQ(0x000F0008u, ReadSetting(setting::kWakeUpTime));
}

TEST_F(SettingsTest, AWakeUpTimeThatCannotBeWrittenIsInTheCopyAllTheSame) {
    Settings settings{};
    device().Fault("RegSetValueExW", 1, 1, ERROR_ACCESS_DENIED);
    EXPECT_FALSE(SaveWakeUpTime(0x000F0008, settings));
    EXPECT_EQ(0x000F0008u, settings.WakeUpTime);
    EXPECT_EQ(kSettingAbsent, ReadSetting(setting::kWakeUpTime));
}

TEST_F(SettingsTest, AFolderOrStemThatCannotBeWrittenLeavesTheOldOne) {
    SetText(setting::kStoragePath, u"\\Old\\");
    SetText(setting::kStorageFile, u"Old");
    EXPECT_FALSE(WriteStorageFolder(Text(259, u'f').c_str()));  // no room for its backslash
    for (const char* call : {"RegCreateKeyExW", "RegSetValueExW"}) {
        device().Fault(call, 1, 1, ERROR_ACCESS_DENIED);
        EXPECT_FALSE(WriteStorageFolder(u"\\New")) << call;
        device().Fault(call, 1, 1, ERROR_ACCESS_DENIED);
        EXPECT_FALSE(WriteStorageFileName(u"New")) << call;
    }
    EXPECT_EQ(Text(u"\\Old\\Old"), Path());
}

}  // namespace
}  // namespace tolvenar
