#include "storage/objects/restore_registry.h"

#include "snapshot/compare/exclusion.h"
#include "tests/support/restore_fixture.h"

namespace tolvenar {
namespace {

const Bytes kText = Terminated(u"text");

class RestoreRegistryTest : public RestoreFixture {};

TEST_F(RestoreRegistryTest, AKeyComesBackWithTheKeysAboveIt) {
    EXPECT_EQ(kDone, WriteBack(StoreKey(HKEY_LOCAL_MACHINE, u"Comm\\New\\Below")));
    EXPECT_TRUE(KeyExists(HKEY_LOCAL_MACHINE, L"Comm\\New\\Below"));
}

// Its block is as large as a block may be, and others stand behind it.
TEST_F(RestoreRegistryTest, AValueOfTheLongestNameComesBack) {
    const Text key = Text(100, u'k') + u"\\" + Text(100, u'l');
    const Text name(260 - 202, u'v');
    const ObjectRecord stored_key = StoreKey(HKEY_CURRENT_USER, key);
    const ObjectRecord stored = StoreValue(HKEY_CURRENT_USER, key, name, REG_SZ, kText);
    StoreKey(HKEY_CURRENT_USER, u"Behind");
    EXPECT_EQ(kDone, WriteBack(stored_key));
    EXPECT_EQ(kDone, WriteBack(stored));
    EXPECT_EQ("1:" + kText, Value(HKEY_CURRENT_USER, Wide(key.c_str()), Wide(name.c_str())));
}

// Identifiers of different objects may meet from one scan to the next.
TEST_F(RestoreRegistryTest, AStoredObjectIsNamedByItsBlockWhateverTheTableHolds) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"other", REG_DWORD, Word(1));
    ObjectRecord stored = StoreValue(HKEY_CURRENT_USER, u"Key", u"v", REG_SZ, kText);
    stored.TolvOID = LiveValue(HKEY_CURRENT_USER, u"Key", u"other").TolvOID;
    EXPECT_EQ(kDone, WriteBack(stored));
    EXPECT_EQ("1:" + kText, Value(HKEY_CURRENT_USER, L"Key", L"v"));
    EXPECT_EQ("4:" + Word(1), Value(HKEY_CURRENT_USER, L"Key", L"other"));
}

TEST_F(RestoreRegistryTest, AKeyOfEachHiveComesBackInItsOwn) {
    for (HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS}) {
        EXPECT_FALSE(KeyExists(root, L"Mine"));
    }
    EXPECT_EQ(kDone, WriteBack(StoreKey(HKEY_USERS, u"Mine")));
    EXPECT_TRUE(KeyExists(HKEY_USERS, L"Mine"));
    EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, L"Mine"));
}

TEST_F(RestoreRegistryTest, AKeyIsOpenedOnceForItsValues) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"three", REG_DWORD, Word(3));
    const ObjectRecord one = StoreValue(HKEY_CURRENT_USER, u"Key", u"one", REG_SZ, kText);
    const ObjectRecord two = StoreValue(HKEY_CURRENT_USER, u"Key", u"two", REG_DWORD, Word(2));
    Run();
    const long before = device().Calls("RegOpenKeyExW");
    EXPECT_EQ(kDone, WriteBack(one));
    EXPECT_EQ(kDone, WriteBack(two));
    EXPECT_EQ(kDone, Delete(LiveValue(HKEY_CURRENT_USER, u"Key", u"three")));
    EXPECT_EQ(1, device().Calls("RegOpenKeyExW") - before);
    EXPECT_EQ("4:" + Word(2), Value(HKEY_CURRENT_USER, L"Key", L"two"));
}

TEST_F(RestoreRegistryTest, AKeyWhoseHandleIsOfNoUseAnyMoreIsOpenedOnceMore) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"one", REG_DWORD, Word(1));
    const ObjectRecord one = StoreValue(HKEY_CURRENT_USER, u"Key", u"one", REG_SZ, kText);
    const ObjectRecord two = StoreValue(HKEY_CURRENT_USER, u"Key", u"two", REG_DWORD, Word(2));
    EXPECT_EQ(kDone, WriteBack(one));
    FailInRun("RegSetValueExW", 1, ERROR_INVALID_HANDLE);
    EXPECT_EQ(kDone, WriteBack(two));
    EXPECT_EQ("4:" + Word(2), Value(HKEY_CURRENT_USER, L"Key", L"two"));
}

// The platform deletes no key that is open.
TEST_F(RestoreRegistryTest, AKeyIsDeletedBehindItsValues) {
    SetValue(HKEY_CURRENT_USER, L"Key\\Below", L"v", REG_DWORD, Word(1));
    EXPECT_EQ(kDone, Delete(LiveValue(HKEY_CURRENT_USER, u"Key\\Below", u"v")));
    EXPECT_EQ(kDone, Delete(LiveKey(HKEY_CURRENT_USER, u"Key\\Below")));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Key\\Below"));
}

TEST_F(RestoreRegistryTest, AKeyThatCannotBeMadeFails) {
    const ObjectRecord stored = StoreKey(HKEY_LOCAL_MACHINE, u"New");
    FailInRun("RegCreateKeyExW", 1, ERROR_DISK_FULL);
    EXPECT_EQ(kFailed, WriteBack(stored));
}

TEST_F(RestoreRegistryTest, AKeyIsDeletedWithAllBelowIt) {
    SetValue(HKEY_CURRENT_USER, L"Old\\Below", L"v", REG_DWORD, Word(1));
    EXPECT_EQ(kDone, Delete(LiveKey(HKEY_CURRENT_USER, u"Old")));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Old"));
}

// What is still there afterwards is found by who asked for it.
TEST_F(RestoreRegistryTest, DeletingAKeyAlwaysSucceeds) {
    SetValue(HKEY_CURRENT_USER, L"Old", L"v", REG_DWORD, Word(1));
    const ObjectRecord key = LiveKey(HKEY_CURRENT_USER, u"Old");
    InfoBlock block;
    ASSERT_TRUE(Run().live.GetOIDInfo(key.TolvOID, key.dwOID, block));
    FailInRun("RegDeleteKeyW", 1, ERROR_ACCESS_DENIED);
    for (const bool is_there : {true, false, false}) {
        EXPECT_EQ(kDone,
                  RestoreRegistryObject(key_, {}, block, {u"Old", nullptr}, RestoreMode::kDelete));
        EXPECT_EQ(is_there, KeyExists(HKEY_CURRENT_USER, L"Old"));
    }
}

TEST_F(RestoreRegistryTest, AKeyIsRestoredAwayOnceItIsGone) {
    EXPECT_EQ(kDone, Delete(LiveKey(HKEY_CURRENT_USER, u"Absent")));
    SetValue(HKEY_CURRENT_USER, L"Old", L"v", REG_DWORD, Word(1));
    FailInRun("RegDeleteKeyW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(kFailed, Delete(LiveKey(HKEY_CURRENT_USER, u"Old")));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), ::GetLastError());
    EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, L"Old"));
    EXPECT_EQ(kDone, Delete(LiveKey(HKEY_CURRENT_USER, u"Old")));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Old"));
}

TEST_F(RestoreRegistryTest, AKeyThatAnotherProgramHasOpenIsNotRestoredAway) {
    SetValue(HKEY_CURRENT_USER, L"Old\\Below", L"v", REG_DWORD, Word(1));
    device().Command("reg-lock HKCU\\Old\\Below");
    EXPECT_EQ(kFailed, Delete(LiveKey(HKEY_CURRENT_USER, u"Old")));
    EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, L"Old\\Below"));
}

TEST_F(RestoreRegistryTest, AHiveIsNotDeleted) {
    EXPECT_EQ(kDone, Delete(LiveKey(HKEY_USERS, u"")));
}

TEST_F(RestoreRegistryTest, AValueComesBackWithTypeAndData) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"other", REG_DWORD, Word(1));
    EXPECT_EQ(kDone, WriteBack(StoreValue(HKEY_CURRENT_USER, u"Key", u"v", REG_SZ, kText)));
    EXPECT_EQ("1:" + kText, Value(HKEY_CURRENT_USER, L"Key", L"v"));
    EXPECT_EQ("4:" + Word(1), Value(HKEY_CURRENT_USER, L"Key", L"other"));
}

TEST_F(RestoreRegistryTest, AValueWithoutDataComesBackEmpty) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_BINARY, "old");
    EXPECT_EQ(kDone, WriteBack(StoreValue(HKEY_CURRENT_USER, u"Key", u"v", REG_BINARY, "")));
    EXPECT_EQ("3:", Value(HKEY_CURRENT_USER, L"Key", L"v"));
}

TEST_F(RestoreRegistryTest, AValueWithoutDataComesBackWhereANullIsRefused) {
    device().Set("registry.null.data", "refused");
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_BINARY, "old");
    EXPECT_EQ(kDone, WriteBack(StoreValue(HKEY_CURRENT_USER, u"Key", u"v", REG_BINARY, "")));
    EXPECT_EQ("3:", Value(HKEY_CURRENT_USER, L"Key", L"v"));
}

TEST_F(RestoreRegistryTest, TheDefaultValueOfARootKeyComesBack) {
    EXPECT_EQ(kDone, WriteBack(StoreValue(HKEY_USERS, u"", u"", REG_SZ, kText)));
    EXPECT_EQ("1:" + kText, Value(HKEY_USERS, L"", L""));
}

TEST_F(RestoreRegistryTest, AValueWaitsForItsKey) {
    const ObjectRecord value =
        ToWriteBack(StoreValue(HKEY_CURRENT_USER, u"New", u"v", REG_SZ, kText));
    const ObjectRecord key = ToWriteBack(StoreKey(HKEY_CURRENT_USER, u"New"));
    EXPECT_EQ(kFailed, RestoreObject(value));
    EXPECT_EQ(kDone, RestoreObject(key));
    EXPECT_EQ(kDone, RestoreObject(value));
}

TEST_F(RestoreRegistryTest, AValueThatCannotBeSetFails) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
    const ObjectRecord stored = StoreValue(HKEY_CURRENT_USER, u"Key", u"v", REG_SZ, kText);
    FailInRun("RegSetValueExW", 1, ERROR_DISK_FULL);
    EXPECT_EQ(kFailed, WriteBack(stored));
    EXPECT_EQ("4:" + Word(1), Value(HKEY_CURRENT_USER, L"Key", L"v"));
}

TEST_F(RestoreRegistryTest, AValueWhoseDataCannotBeMappedFails) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
    const ObjectRecord stored =
        StoreValue(HKEY_CURRENT_USER, u"Key", u"v", REG_SZ, Bytes(2000, 'x'));
    // Neither a window of both, nor another one of the data, nor the data alone.
    FailInRun("MapViewOfFile", 1, ERROR_NOT_ENOUGH_MEMORY);
    device().Fault("MapViewOfFile", 3, 2, ERROR_NOT_ENOUGH_MEMORY);
    const long before = device().Calls("RegSetValueExW");
    EXPECT_EQ(kFailed, WriteBack(stored));
    EXPECT_EQ(before, device().Calls("RegSetValueExW"));
    EXPECT_EQ("4:" + Word(1), Value(HKEY_CURRENT_USER, L"Key", L"v"));
}

TEST_F(RestoreRegistryTest, AValueIsDeletedAndItsKeyStays) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
    EXPECT_EQ(kDone, Delete(LiveValue(HKEY_CURRENT_USER, u"Key", u"v")));
    EXPECT_EQ("", Value(HKEY_CURRENT_USER, L"Key", L"v"));
    EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, L"Key"));
}

TEST_F(RestoreRegistryTest, AValueOfAKeyThatIsGoneIsDeleted) {
    EXPECT_EQ(kDone, Delete(LiveValue(HKEY_CURRENT_USER, u"Gone", u"v")));
}

TEST_F(RestoreRegistryTest, AnAbsentValueOfAKeyThatIsThereIsNotDeleted) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"other", REG_DWORD, Word(1));
    EXPECT_EQ(kFailed, Delete(LiveValue(HKEY_CURRENT_USER, u"Key", u"v")));
}

TEST_F(RestoreRegistryTest, AnInvalidParameterCountsAsDeleted) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
    const ObjectRecord live = LiveValue(HKEY_CURRENT_USER, u"Key", u"v");
    FailInRun("RegDeleteValueW", 1, ERROR_INVALID_PARAMETER);
    EXPECT_EQ(kDone, RestoreObject(live));
}

TEST_F(RestoreRegistryTest, AnErrorOfAnEarlierCallDoesNotPassForADeletion) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
    const ObjectRecord live = LiveValue(HKEY_CURRENT_USER, u"Key", u"v");
    FailInRun("RegDeleteValueW", 1, ERROR_ACCESS_DENIED);
    ::SetLastError(ERROR_INVALID_PARAMETER);
    EXPECT_EQ(kFailed, RestoreObject(live));
}

TEST_F(RestoreRegistryTest, AStoredNameIsSplitAtTheFirstSeparator) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"x", REG_DWORD, Word(1));
    EXPECT_EQ(kDone, WriteBack(StoreValue(HKEY_CURRENT_USER, u"Key", u"a\u00FFb", REG_SZ, kText)));
    EXPECT_EQ("1:" + kText, Value(HKEY_CURRENT_USER, L"Key", L"a\u00FFb"));
}

TEST_F(RestoreRegistryTest, ALiveObjectsNamesAreThoseOfTheTableSeparatorsIncluded) {
    SetValue(HKEY_CURRENT_USER, L"K\u00FFey", L"v\u00FFw", REG_DWORD, Word(1));
    SetValue(HKEY_CURRENT_USER, L"K", L"ey\u00FFv\u00FFw", REG_DWORD, Word(2));
    EXPECT_EQ(kDone, Delete(LiveValue(HKEY_CURRENT_USER, u"K\u00FFey", u"v\u00FFw")));
    EXPECT_EQ("", Value(HKEY_CURRENT_USER, L"K\u00FFey", L"v\u00FFw"));
    EXPECT_EQ("4:" + Word(2), Value(HKEY_CURRENT_USER, L"K", L"ey\u00FFv\u00FFw"));
}

struct LocaleCase {
    const char16_t* key;
    const char16_t* value;
    std::uint32_t stored;
    bool written;
};

class LocaleGuardTest : public RestoreFixture, public ::testing::WithParamInterface<LocaleCase> {};

TEST_P(LocaleGuardTest, OnlyWhatTheDeviceHasIsWritten) {
    const LocaleCase& row = GetParam();
    SetValue(HKEY_LOCAL_MACHINE, Wide(row.key), Wide(row.value), REG_DWORD, Word(0x409));
    EXPECT_EQ(kDone, WriteBack(StoreValue(HKEY_LOCAL_MACHINE, row.key, row.value, REG_DWORD,
                                          Word(row.stored))));
    EXPECT_EQ("4:" + Word(row.written ? row.stored : 0x409),
              Value(HKEY_LOCAL_MACHINE, Wide(row.key), Wide(row.value)));
}

INSTANTIATE_TEST_SUITE_P(Rows, LocaleGuardTest,
                         ::testing::Values(LocaleCase{u"nls", u"DefaultLCID", 0x0409, true},
                                           LocaleCase{u"nls", u"DefaultLCID", 0x7777, false},
                                           LocaleCase{u"NLS", u"defaultlcid", 0x7777, false},
                                           LocaleCase{u"nls", u"DefaultACP", 1252, true},
                                           LocaleCase{u"nls", u"DefaultACP", 31999, false},
                                           LocaleCase{u"Nls", u"DEFAULTACP", 31999, false},
                                           LocaleCase{u"nls", u"DefaultOCP", 31999, true},
                                           LocaleCase{u"nls\\overrides", u"DefaultLCID", 0x7777,
                                                      true}));

TEST_F(RestoreRegistryTest, ASystemThatCannotTellWhatItHasKeepsItsLocaleAndCodePage) {
    device().Set("locale.checks", "missing");
    for (const char16_t* name : {u"DefaultLCID", u"DefaultACP"}) {
        SetValue(HKEY_LOCAL_MACHINE, L"nls", Wide(name), REG_DWORD, Word(1));
        EXPECT_EQ(kDone,
                  WriteBack(StoreValue(HKEY_LOCAL_MACHINE, u"nls", name, REG_DWORD, Word(1252))));
        EXPECT_EQ("4:" + Word(1), Value(HKEY_LOCAL_MACHINE, L"nls", Wide(name)));
    }
}

TEST_F(RestoreRegistryTest, LocaleValuesOfAnotherHiveAreOrdinaryOnes) {
    SetValue(HKEY_CURRENT_USER, L"nls", L"DefaultLCID", REG_DWORD, Word(0x409));
    EXPECT_EQ(kDone, WriteBack(StoreValue(HKEY_CURRENT_USER, u"nls", u"DefaultLCID", REG_DWORD,
                                          Word(0x7777))));
    EXPECT_EQ("4:" + Word(0x7777), Value(HKEY_CURRENT_USER, L"nls", L"DefaultLCID"));
}

TEST_F(RestoreRegistryTest, LocaleValuesAreNeverDeleted) {
    SetValue(HKEY_LOCAL_MACHINE, L"nls", L"DefaultLCID", REG_DWORD, Word(0x409));
    SetValue(HKEY_LOCAL_MACHINE, L"nls", L"DefaultACP", REG_DWORD, Word(1252));
    EXPECT_EQ(kDone, Delete(LiveValue(HKEY_LOCAL_MACHINE, u"nls", u"DefaultLCID")));
    EXPECT_EQ(kDone, Delete(LiveValue(HKEY_LOCAL_MACHINE, u"nls", u"DefaultACP")));
    EXPECT_EQ("4:" + Word(0x409), Value(HKEY_LOCAL_MACHINE, L"nls", L"DefaultLCID"));
    EXPECT_EQ("4:" + Word(1252), Value(HKEY_LOCAL_MACHINE, L"nls", L"DefaultACP"));
}

TEST_F(RestoreRegistryTest, ALocaleValueOfAnotherLengthIsSkipped) {
    SetValue(HKEY_LOCAL_MACHINE, L"nls", L"DefaultLCID", REG_DWORD, Word(0x409));
    EXPECT_EQ(kDone, WriteBack(StoreValue(HKEY_LOCAL_MACHINE, u"nls", u"DefaultLCID", REG_SZ,
                                          std::string("\x09\x04", 2))));
    EXPECT_EQ(kDone, WriteBack(StoreValue(HKEY_LOCAL_MACHINE, u"nls", u"DefaultLCID", REG_BINARY,
                                          Word(0x409) + Word(0))));
    EXPECT_EQ("4:" + Word(0x409), Value(HKEY_LOCAL_MACHINE, L"nls", L"DefaultLCID"));
}

TEST_F(RestoreRegistryTest, ALocaleValueWaitsForItsKeyToo) {
    EXPECT_EQ(kFailed, WriteBack(StoreValue(HKEY_LOCAL_MACHINE, u"nls", u"DefaultLCID", REG_DWORD,
                                            Word(0x409))));
}

// The key of the value's own state tells which separator is the one between key and name.
TEST_F(RestoreRegistryTest, AValueWhoseNamesHoldTheSeparatorComesBackToItsKey) {
    ObjectRecord key = StoreKey(HKEY_CURRENT_USER, u"Key\u00FFa");
    key.TolvOID = MakeKeyTolvOID(kHiveCurrentUser, u"Key\u00FFa");
    storage_.journal = ListOf({key});
    EXPECT_EQ(kDone, WriteBack(StoreKey(HKEY_CURRENT_USER, u"Key")));
    EXPECT_EQ(kDone, WriteBack(key));
    EXPECT_EQ(kDone,
              WriteBack(StoreValue(HKEY_CURRENT_USER, u"Key\u00FFa", u"v\u00FFw", REG_SZ, kText)));
    EXPECT_EQ("1:" + kText, Value(HKEY_CURRENT_USER, L"Key\u00FFa", L"v\u00FFw"));
    EXPECT_EQ("", Value(HKEY_CURRENT_USER, L"Key", L"a\u00FFv\u00FFw"));
    NewRun();
    EXPECT_EQ(kDone,
              Delete(StoreValue(HKEY_CURRENT_USER, u"Key\u00FFa", u"v\u00FFw", REG_SZ, kText)));
    EXPECT_EQ("", Value(HKEY_CURRENT_USER, L"Key\u00FFa", L"v\u00FFw"));
}

TEST_F(RestoreRegistryTest, TheLocaleGuardLooksAtTheKeyOfTheState) {
    ObjectRecord key = StoreKey(HKEY_LOCAL_MACHINE, u"nls\u00FFx");
    key.TolvOID = MakeKeyTolvOID(kHiveLocalMachine, u"nls\u00FFx");
    storage_.journal = ListOf({key});
    EXPECT_EQ(kDone, WriteBack(key));
    EXPECT_EQ(kDone, WriteBack(StoreValue(HKEY_LOCAL_MACHINE, u"nls\u00FFx", u"DefaultLCID",
                                          REG_DWORD, Word(1))));
    EXPECT_EQ("4:" + Word(1), Value(HKEY_LOCAL_MACHINE, L"nls\u00FFx", L"DefaultLCID"));
}

}  // namespace
}  // namespace tolvenar
