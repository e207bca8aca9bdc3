// The listings of the registry as a program sees them.
#include <algorithm>
#include <cstring>

#include "simulator/registry/registry.h"
#include "tests/simulator/registry_fixture.h"

namespace {

constexpr DWORD kUntouched = 0xA5A5A5A5;

class RegistryListingTest : public RegistryFixture {};

TEST_F(RegistryListingTest, KeyEnumerationCountsCharactersWithTheTerminatorInAndWithoutOut) {
    Make(HKEY_USERS, L"abc");
    wchar_t name[4] = L"zz";
    DWORD units = 3;
    EXPECT_EQ(ERROR_MORE_DATA,
              ::RegEnumKeyExW(HKEY_USERS, 0, name, &units, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(L'z', name[0]);
    units = 4;
    EXPECT_EQ(ERROR_SUCCESS,
              ::RegEnumKeyExW(HKEY_USERS, 0, name, &units, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(3u, units);
    EXPECT_STREQ(L"abc", name);
    EXPECT_EQ(ERROR_NO_MORE_ITEMS,
              ::RegEnumKeyExW(HKEY_USERS, 1, name, &units, nullptr, nullptr, nullptr, nullptr));
}

TEST_F(RegistryListingTest, ValueEnumerationTellsNameTypeAndData) {
    HKEY key = Create(HKEY_USERS, L"k");
    SetText(key, L"first", L"ab");
    const DWORD number = 0x01020304;
    ::RegSetValueExW(key, L"n", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), 4);
    wchar_t name[6] = L"zz";
    DWORD units = 5;
    DWORD type = kUntouched;
    BYTE data[8];
    DWORD size = sizeof data;
    EXPECT_EQ(ERROR_MORE_DATA, ::RegEnumValueW(key, 0, name, &units, nullptr, &type, data, &size));
    units = 6;
    EXPECT_EQ(ERROR_SUCCESS, ::RegEnumValueW(key, 0, name, &units, nullptr, &type, data, &size));
    EXPECT_STREQ(L"first", name);
    EXPECT_EQ(5u, units);
    EXPECT_EQ(static_cast<DWORD>(REG_SZ), type);
    EXPECT_EQ(6u, size);
    units = 6;
    size = sizeof data;
    EXPECT_EQ(ERROR_SUCCESS, ::RegEnumValueW(key, 1, name, &units, nullptr, &type, data, &size));
    EXPECT_EQ(static_cast<DWORD>(REG_DWORD), type);
    EXPECT_EQ(0, std::memcmp("\x04\x03\x02\x01", data, 4));
    units = 6;
    EXPECT_EQ(ERROR_NO_MORE_ITEMS,
              ::RegEnumValueW(key, 2, name, &units, nullptr, nullptr, nullptr, nullptr));
    ::RegCloseKey(key);
}

TEST_F(RegistryListingTest, DeletingWhileEnumeratingMovesTheRestUp) {
    for (const wchar_t* name : {L"a", L"b", L"c"}) {
        Make(HKEY_USERS, name);
    }
    EXPECT_EQ(L"a", SubkeyName(HKEY_USERS, 0));
    ::RegDeleteKeyW(HKEY_USERS, L"a");
    EXPECT_EQ(L"b", SubkeyName(HKEY_USERS, 0));
    EXPECT_EQ(L"c", SubkeyName(HKEY_USERS, 1));
    EXPECT_EQ(L"?259", SubkeyName(HKEY_USERS, 2));
}

TEST_F(RegistryListingTest, AListingFollowsWhatAnotherProcessDoes) {
    HKEY key = Create(HKEY_USERS, L"k");
    SetText(key, L"a", L"");
    EXPECT_EQ(L"?259", ValueName(key, 1));
    sim::registry::Registry registry(device().sim());
    sim::registry::KeyId place;
    registry.Place(sim::registry::RootId(3), u"k", place);
    registry.Set(place, {u"b", sim::registry::kDword, std::string(4, '\0')});
    EXPECT_EQ(L"b", ValueName(key, 1));
    ::RegCloseKey(key);
}

TEST_F(RegistryListingTest, TheOrderOfEnumerationIsASetting) {
    HKEY key = Create(HKEY_USERS, L"k");
    for (const wchar_t* name : {L"b", L"c", L"a", L"e", L"d"}) {
        Make(key, name);
        SetText(key, name, L"");
    }
    const std::vector<std::wstring> stored = {L"b", L"c", L"a", L"e", L"d"};
    EXPECT_EQ(stored, SubkeyNames(key));
    device().Set("order", "reversed");
    EXPECT_EQ((std::vector<std::wstring>{L"d", L"e", L"a", L"c", L"b"}), SubkeyNames(key));
    EXPECT_EQ(L"d", ValueName(key, 0));
    device().Set("order", "shuffled:1");
    const std::vector<std::wstring> shuffled = SubkeyNames(key);
    EXPECT_EQ(shuffled, SubkeyNames(key));
    EXPECT_TRUE(std::is_permutation(stored.begin(), stored.end(), shuffled.begin()));
    bool differs = false;
    for (int seed = 2; seed < 10; ++seed) {
        device().Set("order", "shuffled:" + std::to_string(seed));
        differs = differs || SubkeyNames(key) != shuffled;
    }
    EXPECT_TRUE(differs);
    ::RegCloseKey(key);
}

TEST_F(RegistryListingTest, InfoTellsCountsAndLengthsInCharacters) {
    HKEY key = nullptr;
    wchar_t class_of_key[] = L"cls";
    ::RegCreateKeyExW(HKEY_USERS, L"k", 0, class_of_key, 0, 0, nullptr, &key, nullptr);
    Make(key, L"ab");
    Make(key, L"abcd");
    SetText(key, L"four", L"abcdef");
    SetText(key, L"x", L"");
    wchar_t class_name[4];
    DWORD class_units = 4;
    DWORD subkeys, longest, longest_class, values, longest_name, longest_data;
    DWORD security = kUntouched;
    FILETIME time = {1, 1};
    EXPECT_EQ(ERROR_SUCCESS, ::RegQueryInfoKeyW(key, class_name, &class_units, nullptr, &subkeys,
                                                &longest, &longest_class, &values, &longest_name,
                                                &longest_data, &security, &time));
    EXPECT_STREQ(L"cls", class_name);
    EXPECT_EQ(3u, class_units);
    EXPECT_EQ(2u, subkeys);
    EXPECT_EQ(4u, longest);
    EXPECT_EQ(0u, longest_class);
    EXPECT_EQ(2u, values);
    EXPECT_EQ(4u, longest_name);
    EXPECT_EQ(14u, longest_data);
    EXPECT_EQ(0u, security);
    EXPECT_EQ(0u, time.dwLowDateTime | time.dwHighDateTime);
    device().Set("registry.lengths", "with-terminator");
    ::RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, &longest, nullptr, nullptr,
                       &longest_name, nullptr, nullptr, nullptr);
    EXPECT_EQ(5u, longest);
    EXPECT_EQ(5u, longest_name);
    ::RegCloseKey(key);
}

TEST_F(RegistryListingTest, ClassesComeWithTheEnumeration) {
    HKEY key = nullptr;
    wchar_t class_of_key[] = L"cls";
    ::RegCreateKeyExW(HKEY_USERS, L"k", 0, class_of_key, 0, 0, nullptr, &key, nullptr);
    ::RegCloseKey(key);
    wchar_t name[8];
    wchar_t class_name[8];
    DWORD units = 8;
    DWORD class_units = 8;
    EXPECT_EQ(ERROR_SUCCESS, ::RegEnumKeyExW(HKEY_USERS, 0, name, &units, nullptr, class_name,
                                             &class_units, nullptr));
    EXPECT_STREQ(L"cls", class_name);
    EXPECT_EQ(3u, class_units);
}

TEST_F(RegistryListingTest, TheLastErrorStaysAsItWas) {
    ::SetLastError(4711);
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, Open(HKEY_USERS, L"none"));
    Make(HKEY_USERS, L"k");
    EXPECT_EQ(4711u, ::GetLastError());
}

}  // namespace
