// The registry's keys and values as a program sees them.
#include "simulator/registry/registry.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "tests/simulator/registry_fixture.h"

namespace {

constexpr DWORD kUntouched = 0xA5A5A5A5;

class RegistryTest : public RegistryFixture {};

TEST_F(RegistryTest, RootsHaveThePlatformsHandleValues) {
    HKEY key = nullptr;
    for (std::uintptr_t value = 0x80000000; value <= 0x80000003; ++value) {
        HKEY root = reinterpret_cast<HKEY>(value);
        EXPECT_EQ(ERROR_SUCCESS, ::RegOpenKeyExW(root, nullptr, 0, 0, &key));
        EXPECT_NE(root, key);
        EXPECT_EQ(ERROR_SUCCESS, ::RegCloseKey(key));
    }
    for (std::uintptr_t value = 0x80000004; value <= 0x80000006; ++value) {
        EXPECT_EQ(ERROR_INVALID_HANDLE,
                  ::RegOpenKeyExW(reinterpret_cast<HKEY>(value), nullptr, 0, 0, &key));
    }
}

TEST_F(RegistryTest, RootsAreSeparate) {
    Make(HKEY_CURRENT_USER, L"Only\\Here");
    EXPECT_EQ(ERROR_SUCCESS, Open(HKEY_CURRENT_USER, L"Only\\Here"));
    for (HKEY root : {HKEY_CLASSES_ROOT, HKEY_LOCAL_MACHINE, HKEY_USERS}) {
        EXPECT_EQ(ERROR_FILE_NOT_FOUND, Open(root, L"Only\\Here"));
    }
}

TEST_F(RegistryTest, TheHostsRegistryIsNeverSeen) {
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, Open(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows"));
    EXPECT_EQ(L"?259", SubkeyName(HKEY_LOCAL_MACHINE, 0));
    EXPECT_EQ(L"?259", SubkeyName(HKEY_CURRENT_USER, 0));
}

TEST_F(RegistryTest, NamesAreComparedWithoutCaseAndKeepTheirSpelling) {
    HKEY key = Create(HKEY_LOCAL_MACHINE, L"Software\\MiXed \x00C4");
    SetText(key, L"VaLue", L"1");
    SetText(key, L"vALUE", L"22");
    EXPECT_EQ(L"VaLue", ValueName(key, 0));
    EXPECT_EQ(L"?259", ValueName(key, 1));
    DWORD size = 0;
    EXPECT_EQ(ERROR_SUCCESS, ::RegQueryValueExW(key, L"VALUE", nullptr, nullptr, nullptr, &size));
    EXPECT_EQ(6u, size);
    ::RegCloseKey(key);
    EXPECT_EQ(ERROR_SUCCESS, Open(HKEY_LOCAL_MACHINE, L"SOFTWARE\\mIxED \x00E4"));
    Make(HKEY_LOCAL_MACHINE, L"SOFTWARE\\MIXED \x00E4");
    HKEY software = Create(HKEY_LOCAL_MACHINE, L"software");
    EXPECT_EQ(std::vector<std::wstring>{L"MiXed \x00C4"}, SubkeyNames(software));
    ::RegCloseKey(software);
}

TEST_F(RegistryTest, CreatingTellsWhetherTheKeyIsNew) {
    HKEY key = nullptr;
    DWORD disposition = 0;
    ::RegCreateKeyExW(HKEY_USERS, L"a\\b", 0, nullptr, 0, 0, nullptr, &key, &disposition);
    EXPECT_EQ(static_cast<DWORD>(REG_CREATED_NEW_KEY), disposition);
    ::RegCloseKey(key);
    ::RegCreateKeyExW(HKEY_USERS, L"a", 0, nullptr, 0, 0, nullptr, &key, &disposition);
    EXPECT_EQ(static_cast<DWORD>(REG_OPENED_EXISTING_KEY), disposition);
    ::RegCloseKey(key);
}

TEST_F(RegistryTest, AnEmptySubkeyOpensTheKeyOnceMore) {
    HKEY key = Create(HKEY_USERS, L"a");
    HKEY again = nullptr;
    EXPECT_EQ(ERROR_SUCCESS, ::RegOpenKeyExW(key, L"", 0, 0, &again));
    SetText(again, L"v", L"x");
    EXPECT_EQ(L"v", ValueName(key, 0));
    EXPECT_EQ(ERROR_SUCCESS, ::RegCloseKey(again));
    EXPECT_EQ(ERROR_SUCCESS, ::RegCloseKey(key));
}

TEST_F(RegistryTest, AKeyClosesOnceAndItsHandleIsThenInvalid) {
    HKEY key = Create(HKEY_USERS, L"a");
    EXPECT_FALSE(::CloseHandle(key));  // a key is no kernel object
    EXPECT_EQ(ERROR_SUCCESS, ::RegCloseKey(key));
    EXPECT_EQ(ERROR_INVALID_HANDLE, ::RegCloseKey(key));
    EXPECT_EQ(ERROR_INVALID_HANDLE, ::RegDeleteValueW(key, L"v"));
    EXPECT_EQ(ERROR_INVALID_HANDLE, Open(nullptr, L"a"));
    EXPECT_EQ(ERROR_SUCCESS, ::RegCloseKey(HKEY_USERS));
    EXPECT_EQ(ERROR_SUCCESS, Open(HKEY_USERS, L"a"));
}

TEST_F(RegistryTest, AKeyNameHas255CharactersAtMost) {
    Make(HKEY_USERS, std::wstring(255, L'k').c_str());
    EXPECT_EQ(255u, SubkeyName(HKEY_USERS, 0).size());
    HKEY key = nullptr;
    EXPECT_EQ(ERROR_INVALID_PARAMETER,
              ::RegCreateKeyExW(HKEY_USERS, std::wstring(256, L'k').c_str(), 0, nullptr, 0, 0,
                                nullptr, &key, nullptr));
    EXPECT_EQ(nullptr, key);
}

TEST_F(RegistryTest, AKeyPathHasNoEmptyName) {
    EXPECT_EQ(ERROR_INVALID_PARAMETER, Open(HKEY_USERS, L"\\a"));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, Open(HKEY_USERS, L"a\\\\b"));
}

TEST_F(RegistryTest, KeysNestSixteenLevelsDeep) {
    std::wstring path = L"k1";
    for (int level = 2; level <= 16; ++level) {
        path += L"\\k" + std::to_wstring(level);
    }
    Make(HKEY_USERS, path.c_str());
    HKEY deepest = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, ::RegOpenKeyExW(HKEY_USERS, path.c_str(), 0, 0, &deepest));
    HKEY key = nullptr;
    EXPECT_EQ(ERROR_INVALID_PARAMETER,
              ::RegCreateKeyExW(deepest, L"k17", 0, nullptr, 0, 0, nullptr, &key, nullptr));
    ::RegCloseKey(deepest);
}

TEST_F(RegistryTest, AValueReadsBackWithTypeAndBytes) {
    HKEY key = Create(HKEY_CURRENT_USER, L"v");
    const BYTE bytes[] = {1, 0, 255};
    for (DWORD type : {0ul, 1ul, 3ul, 7ul, 8ul, 0x12345678ul}) {
        EXPECT_EQ(ERROR_SUCCESS, ::RegSetValueExW(key, L"x", 0, type, bytes, sizeof bytes));
        BYTE read[4] = {9, 9, 9, 9};
        DWORD read_type = kUntouched;
        DWORD size = sizeof read;
        EXPECT_EQ(ERROR_SUCCESS, ::RegQueryValueExW(key, L"x", nullptr, &read_type, read, &size));
        EXPECT_EQ(type, read_type);
        EXPECT_EQ(3u, size);
        EXPECT_EQ(0, std::memcmp(bytes, read, 3));
        EXPECT_EQ(9, read[3]);
    }
    ::RegCloseKey(key);
}

TEST_F(RegistryTest, ANullOrEmptyNameIsTheDefaultValue) {
    HKEY key = Create(HKEY_CURRENT_USER, L"v");
    DWORD size = 0;
    EXPECT_EQ(ERROR_FILE_NOT_FOUND,
              ::RegQueryValueExW(key, nullptr, nullptr, nullptr, nullptr, &size));
    SetText(key, nullptr, L"abc");
    EXPECT_EQ(ERROR_SUCCESS, ::RegQueryValueExW(key, L"", nullptr, nullptr, nullptr, &size));
    EXPECT_EQ(8u, size);
    EXPECT_EQ(L"", ValueName(key, 0));
    EXPECT_EQ(ERROR_SUCCESS, ::RegDeleteValueW(key, nullptr));
    EXPECT_EQ(L"?259", ValueName(key, 0));
    ::RegCloseKey(key);
}

TEST_F(RegistryTest, AQueryWithoutABufferTellsTheSize) {
    HKEY key = Create(HKEY_CURRENT_USER, L"v");
    SetText(key, L"x", L"abc");
    DWORD type = kUntouched;
    DWORD size = 0;
    EXPECT_EQ(ERROR_SUCCESS, ::RegQueryValueExW(key, L"x", nullptr, &type, nullptr, &size));
    EXPECT_EQ(static_cast<DWORD>(REG_SZ), type);
    EXPECT_EQ(8u, size);
    EXPECT_EQ(ERROR_SUCCESS, ::RegQueryValueExW(key, L"x", nullptr, nullptr, nullptr, nullptr));
    BYTE data[8];
    EXPECT_EQ(ERROR_INVALID_PARAMETER,
              ::RegQueryValueExW(key, L"x", nullptr, nullptr, data, nullptr));
    ::RegCloseKey(key);
}

TEST_F(RegistryTest, ATooSmallBufferIsLeftAloneAndTheSizeTold) {
    HKEY key = Create(HKEY_CURRENT_USER, L"v");
    SetText(key, L"x", L"abc");
    BYTE data[8] = {0x55, 0x55};
    DWORD size = 7;
    EXPECT_EQ(ERROR_MORE_DATA, ::RegQueryValueExW(key, L"x", nullptr, nullptr, data, &size));
    EXPECT_EQ(8u, size);
    EXPECT_EQ(0x55, data[0]);
    wchar_t name[2];
    DWORD units = 2;
    size = 0;
    EXPECT_EQ(ERROR_MORE_DATA,
              ::RegEnumValueW(key, 0, name, &units, nullptr, nullptr, data, &size));
    EXPECT_EQ(8u, size);
    EXPECT_EQ(0x55, data[0]);
    ::RegCloseKey(key);
}

TEST_F(RegistryTest, AnEmptyValueHasNoBytes) {
    HKEY key = Create(HKEY_CURRENT_USER, L"v");
    EXPECT_EQ(ERROR_SUCCESS, ::RegSetValueExW(key, L"x", 0, REG_BINARY, nullptr, 0));
    BYTE data = 0x55;
    DWORD size = 0;
    EXPECT_EQ(ERROR_SUCCESS, ::RegQueryValueExW(key, L"x", nullptr, nullptr, &data, &size));
    EXPECT_EQ(0u, size);
    EXPECT_EQ(0x55, data);
    EXPECT_EQ(ERROR_INVALID_PARAMETER, ::RegSetValueExW(key, L"x", 0, REG_BINARY, nullptr, 1));
    ::RegCloseKey(key);
}

// Documented is a pointer to the data.
TEST_F(RegistryTest, ANullForNoDataMayBeRefused) {
    device().Set("registry.null.data", "refused");
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, ::RegCreateKeyExW(HKEY_CURRENT_USER, L"Key", 0, nullptr, 0, 0, nullptr,
                                               &key, nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, ::RegSetValueExW(key, L"x", 0, REG_BINARY, nullptr, 0));
    EXPECT_EQ(ERROR_SUCCESS,
              ::RegSetValueExW(key, L"x", 0, REG_BINARY, reinterpret_cast<const BYTE*>(""), 0));
    EXPECT_EQ(ERROR_SUCCESS, ::RegCloseKey(key));
}

TEST_F(RegistryTest, AnAbsentValueOrKeyAnswersTwo) {
    HKEY key = Create(HKEY_CURRENT_USER, L"v");
    EXPECT_EQ(2, ::RegDeleteValueW(key, L"none"));
    EXPECT_EQ(2, ::RegDeleteKeyW(key, L"none"));
    EXPECT_EQ(2, Open(key, L"none"));
    DWORD size = kUntouched;
    EXPECT_EQ(2, ::RegQueryValueExW(key, L"none", nullptr, nullptr, nullptr, &size));
    EXPECT_EQ(kUntouched, size);
    ::RegCloseKey(key);
}

TEST_F(RegistryTest, AKeyIsDeletedWithEverythingBelowIt) {
    HKEY key = Create(HKEY_CURRENT_USER, L"top\\middle\\bottom");
    SetText(key, L"v", L"x");
    ::RegCloseKey(key);
    Make(HKEY_CURRENT_USER, L"top2\\middle");
    EXPECT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(HKEY_CURRENT_USER, L"top"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, Open(HKEY_CURRENT_USER, L"top"));
    EXPECT_EQ(ERROR_SUCCESS, Open(HKEY_CURRENT_USER, L"top2\\middle"));
    key = Create(HKEY_CURRENT_USER, L"top\\middle\\bottom");
    EXPECT_EQ(L"?259", ValueName(key, 0));
    ::RegCloseKey(key);
}

TEST_F(RegistryTest, AnEmptyNameIsNotDeleted) {
    HKEY key = Create(HKEY_CURRENT_USER, L"a");
    EXPECT_EQ(ERROR_INVALID_PARAMETER, ::RegDeleteKeyW(key, L""));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, ::RegDeleteKeyW(key, nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, ::RegDeleteKeyW(HKEY_CURRENT_USER, L""));
    ::RegCloseKey(key);
    EXPECT_EQ(ERROR_SUCCESS, Open(HKEY_CURRENT_USER, L"a"));
}

TEST_F(RegistryTest, AnOpenKeyRefusesItsDeletion) {
    HKEY key = Create(HKEY_CURRENT_USER, L"a\\b");
    Make(HKEY_CURRENT_USER, L"a\\bc");
    EXPECT_EQ(ERROR_ACCESS_DENIED, ::RegDeleteKeyW(HKEY_CURRENT_USER, L"a\\b"));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ::RegDeleteKeyW(HKEY_CURRENT_USER, L"A"));
    EXPECT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(HKEY_CURRENT_USER, L"a\\bc"));
    ::RegCloseKey(key);
    EXPECT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(HKEY_CURRENT_USER, L"a\\b"));
    EXPECT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(HKEY_CURRENT_USER, L"a"));
}

TEST_F(RegistryTest, AHandleWhoseKeyAnotherDeletedAnswersKeyDeleted) {
    HKEY key = Create(HKEY_CURRENT_USER, L"a");
    sim::registry::Registry registry(device().sim());
    sim::registry::KeyId place;
    registry.Place(sim::registry::RootId(1), u"a", place);
    ASSERT_TRUE(registry.Delete(place));
    const BYTE byte = 0;
    EXPECT_EQ(ERROR_KEY_DELETED, ::RegSetValueExW(key, L"x", 0, REG_BINARY, &byte, 1));
    EXPECT_EQ(ERROR_SUCCESS, ::RegCloseKey(key));
}

// A desktop's refuses a key with subkeys, and no version of the documents speaks of all devices.
TEST_F(RegistryTest, AKeyWithSubkeysGoesWithThemOrIsRefused) {
    Make(HKEY_USERS, L"k\\below");
    device().Set("registry.delete.key", "refused");
    EXPECT_EQ(ERROR_ACCESS_DENIED, ::RegDeleteKeyW(HKEY_USERS, L"k"));
    EXPECT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(HKEY_USERS, L"k\\below"));
    EXPECT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(HKEY_USERS, L"k"));
    Make(HKEY_USERS, L"k\\below");
    device().Set("registry.delete.key", "");
    EXPECT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(HKEY_USERS, L"k"));
}

// An open key cannot be deleted, whoever has it open.
TEST_F(RegistryTest, AKeyThatAnotherProgramHoldsStays) {
    Make(HKEY_USERS, L"k\\below");
    Make(HKEY_USERS, L"k\\belows");
    device().Command("reg-lock HKU\\K\\Below");
    EXPECT_EQ(ERROR_ACCESS_DENIED, ::RegDeleteKeyW(HKEY_USERS, L"k"));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ::RegDeleteKeyW(HKEY_USERS, L"k\\below"));
    EXPECT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(HKEY_USERS, L"k\\belows"));
    device().Command("reg-unlock HKU\\k\\below");
    EXPECT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(HKEY_USERS, L"k"));
    EXPECT_THROW(device().Command("reg-lock HKU\\k"), std::runtime_error);
}

// 4096 bytes are documented as the most for a value.
TEST_F(RegistryTest, AValueOfMoreBytesThanTheLimitIsRefused) {
    device().Set("registry.value.limit", "4096");
    HKEY key = Create(HKEY_USERS, L"k");
    const std::vector<BYTE> data(4097);
    EXPECT_EQ(ERROR_INVALID_PARAMETER,
              ::RegSetValueExW(key, L"v", 0, REG_BINARY, data.data(), 4097));
    EXPECT_EQ(ERROR_SUCCESS, ::RegSetValueExW(key, L"v", 0, REG_BINARY, data.data(), 4096));
    device().Set("registry.value.limit", "");
    EXPECT_EQ(ERROR_SUCCESS, ::RegSetValueExW(key, L"v", 0, REG_BINARY, data.data(), 4097));
    ::RegCloseKey(key);
}

// The documents name the value without a name "Default"; whether calls know that name is open.
TEST_F(RegistryTest, TheValueWithoutANameIsListedAsTheDeviceHasIt) {
    HKEY key = Create(HKEY_USERS, L"k");
    SetText(key, L"", L"text");
    const auto query = [&](const wchar_t* name) {
        return ::RegQueryValueExW(key, name, nullptr, nullptr, nullptr, nullptr);
    };
    EXPECT_EQ(L"", ValueName(key, 0));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, query(L"Default"));
    device().Set("registry.unnamed", "listed");
    EXPECT_EQ(L"Default", ValueName(key, 0));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, query(L"Default"));
    EXPECT_EQ(ERROR_SUCCESS, query(nullptr));
    device().Set("registry.unnamed", "default");
    EXPECT_EQ(L"Default", ValueName(key, 0));
    EXPECT_EQ(ERROR_SUCCESS, query(L"default"));
    EXPECT_EQ(ERROR_SUCCESS, query(L""));
    EXPECT_EQ(ERROR_SUCCESS, ::RegDeleteValueW(key, L"Default"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, query(L""));
    ::RegCloseKey(key);
}

}  // namespace
