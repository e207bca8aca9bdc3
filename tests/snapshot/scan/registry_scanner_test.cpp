#include "snapshot/scan/registry_scanner.h"

#include "snapshot/compare/exclusion.h"
#include "snapshot/records/checksum.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

Texts visited;

// A key as its path, a value with its name behind a colon.
void NoteEntry(RegistryScan&, const RegistryEntry& entry) {
    visited.push_back(Text(entry.key_path) + (entry.is_key ? u"" : Text(u":") + entry.value_name));
}

class RegistryScannerTest : public EngineTest {
protected:
    RegistryScan scan() { return {*list_, info_, storage_.registry_objects, storage_.left_out}; }

    void Scan(std::uint32_t hive = kHiveCurrentUser, const char16_t* key_path = u"T") {
        list_->ClearList();
        storage_.registry_objects.RegObjectClear();
        RegistryScan whole = scan();
        ScanRegistry(whole, hive, key_path, MakeRegistryObject);
    }

    Texts Walk(const char16_t* key_path) {
        visited.clear();
        RegistryScan whole = scan();
        ScanRegistry(whole, kHiveCurrentUser, key_path, NoteEntry);
        return visited;
    }

    Text NameOf(const ObjectRecord& record) {
        InfoBlock block;
        EXPECT_TRUE(info_.GetOIDInfo(record.TolvOID, 0, block));
        return block.name();
    }

    // The record whose block has this name; null when there is none.
    const ObjectRecord* RecordOf(const Text& name) {
        for (const ObjectList::Node& node : *list_) {
            if (NameOf(*node.record) == name) {
                return node.record;
            }
        }
        return nullptr;
    }

    const std::unique_ptr<ObjectList> list_ = ObjectList::CreateList();
};

TEST_F(RegistryScannerTest, AKeyComesFirstThenItsSubkeysThenItsValues) {
    SetValue(HKEY_CURRENT_USER, L"T", L"v", REG_SZ, "");
    SetValue(HKEY_CURRENT_USER, L"T\\S", L"w", REG_SZ, "");
    EXPECT_EQ((Texts{u"T", u"T\\S", u"T\\S:w", u"T:v"}), Walk(u"T"));
}

TEST_F(RegistryScannerTest, TheEmptyPathIsTheHivesRootAndPutsNoSeparatorBeforeItsSubkeys) {
    SetValue(HKEY_CURRENT_USER, L"T", L"v", REG_SZ, "");
    const Texts all = Walk(u"");
    ASSERT_FALSE(all.empty());
    EXPECT_EQ(u"", all.front());
    EXPECT_EQ(1, std::count(all.begin(), all.end(), Text(u"T")));

    Scan(kHiveCurrentUser, u"");
    const ObjectRecord* root = RecordOf(u"");
    ASSERT_NE(nullptr, root);
    EXPECT_EQ(kKey, root->type);
}

TEST_F(RegistryScannerTest, AKeyThatCannotBeOpenedIsPassedOverWithItsSubtree) {
    SetValue(HKEY_CURRENT_USER, L"T\\S\\U", L"w", REG_SZ, "");
    SetValue(HKEY_CURRENT_USER, L"T", L"v", REG_SZ, "");
    device().Fault("RegOpenKeyExW", 1, 1, 5, "T\\S");
    EXPECT_EQ((Texts{u"T", u"T:v"}), Walk(u"T"));
}

TEST_F(RegistryScannerTest, AKeyThatCannotBeQueriedIsPassedOverAndClosed) {
    SetValue(HKEY_CURRENT_USER, L"T", L"v", REG_SZ, "");
    Fail("RegQueryInfoKeyW", 1, 8);
    EXPECT_TRUE(Walk(u"T").empty());
    device().EndFaults();
    EXPECT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(HKEY_CURRENT_USER, L"T"));
}

TEST_F(RegistryScannerTest, TheFirstEnumerationErrorEndsTheSubkeys) {
    SetValue(HKEY_CURRENT_USER, L"T\\1", L"", REG_SZ, "");
    SetValue(HKEY_CURRENT_USER, L"T\\2", L"", REG_SZ, "");
    SetValue(HKEY_CURRENT_USER, L"T\\3", L"", REG_SZ, "");
    SetValue(HKEY_CURRENT_USER, L"T", L"v", REG_SZ, "");
    Fail("RegEnumKeyExW", 2, 8);
    const Texts all = Walk(u"T");
    ASSERT_EQ(4u, all.size());  // the key, one subkey, its value and the key's value
    EXPECT_EQ(u"T:v", all.back());
}

TEST_F(RegistryScannerTest, AValueThatCannotBeReadIsSkippedAndTheNextIsNot) {
    for (const wchar_t* name : {L"1", L"2", L"3"}) {
        SetValue(HKEY_CURRENT_USER, L"T", name, REG_SZ, "x");
    }
    Fail("RegEnumValueW", 2, 8);
    EXPECT_EQ(3u, Walk(u"T").size());
}

TEST_F(RegistryScannerTest, DataThatMemoryIsShortForHidesNoOtherKeysValues) {
    SetValue(HKEY_CURRENT_USER, L"T\\1", L"v", REG_BINARY, "x");
    SetValue(HKEY_CURRENT_USER, L"T\\2", L"v", REG_BINARY, std::string(7000, 'x'));
    SetValue(HKEY_CURRENT_USER, L"T\\3", L"v", REG_BINARY, "123456789");
    device().Fault("HeapAlloc", 1, 1, ERROR_NOT_ENOUGH_MEMORY, ", 7002");
    Scan();
    EXPECT_NE(nullptr, RecordOf(u"T\\2"));
    EXPECT_EQ(nullptr, RecordOf(u"T\\2\u00FFv"));
    ASSERT_NE(nullptr, RecordOf(u"T\\3\u00FFv"));
    EXPECT_EQ(0x6F91, RecordOf(u"T\\3\u00FFv")->content_fingerprint);
}

TEST_F(RegistryScannerTest, AValuesRecordHoldsIdentifierChecksumsAndTheMarkOfAScan) {
    SetValue(HKEY_CURRENT_USER, L"T", L"nine", REG_BINARY, "123456789");
    Scan();
    const ObjectRecord* record = RecordOf(u"T\u00FFnine");
    ASSERT_NE(nullptr, record);
    const Text full_name = u"80000001T\u00FFnine";
    InfoBlock block;
    ASSERT_TRUE(info_.GetOIDInfo(record->TolvOID, 0, block));
    EXPECT_EQ(28u + 12u, block.size());
    const ObjectRecord expected =
        MakeRecord(kValue, 0, Checksum16(full_name.c_str(), 2 * full_name.size() + 2) | 0x00910000u,
                   Checksum16(block.bytes(), 40), 0x6F91);
    EXPECT_EQ(BytesOf(expected), BytesOf(*record));
}

TEST_F(RegistryScannerTest, AKeysRecordHasTheFingerprintFfffAndItsPathAsData) {
    SetValue(HKEY_LOCAL_MACHINE, L"T\\S", L"v", REG_SZ, "");
    Scan(kHiveLocalMachine, u"T");
    const ObjectRecord* record = RecordOf(u"T\\S");
    ASSERT_NE(nullptr, record);
    const Text full_name = u"80000002T\\S";
    EXPECT_EQ(Checksum16(full_name.c_str(), 2 * full_name.size() + 2) |
                  (Checksum16(u"T\\S", 6) & 0xFFu) << 16,
              record->TolvOID);
    EXPECT_EQ(0xFFFF, record->content_fingerprint);
    EXPECT_EQ(kKey, record->type);
    EXPECT_EQ(0, record->state_number);
    const RegistryObject* object = storage_.registry_objects.RegObjectFind(record->TolvOID);
    ASSERT_NE(nullptr, object);
    EXPECT_TRUE(object->is_key);
    EXPECT_EQ(0u, object->value_type);
    EXPECT_EQ(JF_PRESENT, record->flags);
}

TEST_F(RegistryScannerTest, TheBlockOfARegistryObjectHasNoTime) {
    SetValue(HKEY_CURRENT_USER, L"T", L"v", REG_DWORD, "1234");
    Scan();
    for (const Text& name : {Text(u"T"), Text(u"T\u00FFv")}) {
        InfoBlock block;
        ASSERT_NE(nullptr, RecordOf(name));
        ASSERT_TRUE(info_.GetOIDInfo(RecordOf(name)->TolvOID, 0, block));
        for (std::size_t i = 8; i < 16; ++i) {
            EXPECT_EQ(0, block.bytes()[i]);
        }
    }
}

TEST_F(RegistryScannerTest, ChangedDataChangesOnlyBits16To23OfTheIdentifier) {
    SetValue(HKEY_CURRENT_USER, L"T", L"v", REG_SZ, "first");
    Scan();
    const std::uint32_t before = RecordOf(u"T\u00FFv")->TolvOID;
    SetValue(HKEY_CURRENT_USER, L"T", L"v", REG_SZ, "second");
    Scan();
    const std::uint32_t after = RecordOf(u"T\u00FFv")->TolvOID;
    EXPECT_EQ(before & 0xFF00FFFF, after & 0xFF00FFFF);
    EXPECT_NE(before, after);
}

TEST_F(RegistryScannerTest, AnEmptyDefaultValueIsRecorded) {
    SetValue(HKEY_CURRENT_USER, L"T", L"", REG_SZ, "");
    Scan();
    const ObjectRecord* record = RecordOf(u"T\u00FF");
    ASSERT_NE(nullptr, record);
    EXPECT_EQ(0xFFFF, record->content_fingerprint);
}

TEST_F(RegistryScannerTest, TheMachinesExcludedKeysAndValuesAreLeftOutOfItsHiveOnly) {
    for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        SetValue(root, L"Drivers\\Active\\01", L"v", REG_SZ, "");
        SetValue(root, L"Comm\\SecurityProviders\\SCHANNEL", L"Seed", REG_SZ, "");
        SetValue(root, L"Comm\\SecurityProviders\\SCHANNEL", L"Other", REG_SZ, "");
    }
    Scan(kHiveLocalMachine, u"");
    EXPECT_EQ(nullptr, RecordOf(u"Drivers\\Active"));
    EXPECT_EQ(nullptr, RecordOf(u"Drivers\\Active\\01\u00FFv"));
    EXPECT_EQ(nullptr, RecordOf(u"Comm\\SecurityProviders\\SCHANNEL\u00FFSeed"));
    EXPECT_NE(nullptr, RecordOf(u"Comm\\SecurityProviders\\SCHANNEL\u00FFOther"));
    Scan(kHiveCurrentUser, u"");
    EXPECT_NE(nullptr, RecordOf(u"Drivers\\Active\\01\u00FFv"));
    EXPECT_NE(nullptr, RecordOf(u"Comm\\SecurityProviders\\SCHANNEL\u00FFSeed"));
}

TEST_F(RegistryScannerTest, TheValuesExcludedInTheirHiveAreLeftOut) {
    SetValue(HKEY_CURRENT_USER, L"Software\\Microsoft\\AirSync\\Connection", L"LastAutoSyncTime",
             REG_SZ, "");
    Scan(kHiveCurrentUser, u"Software");
    EXPECT_NE(nullptr, RecordOf(u"Software\\Microsoft\\AirSync\\Connection"));
    EXPECT_EQ(nullptr, RecordOf(u"Software\\Microsoft\\AirSync\\Connection\u00FFLastAutoSyncTime"));
}

// 260 units are what a block can name, the character between the names included.
TEST_F(RegistryScannerTest, NamesThatAreTooLongForABlockAreLeftOut) {
    const std::wstring longest(200, L'v');
    const std::wstring fitting_key = L"T\\" + std::wstring(57, L'k');
    const std::wstring long_key = L"T\\" + std::wstring(58, L'k');
    SetValue(HKEY_CURRENT_USER, fitting_key, longest, REG_SZ, "x");
    SetValue(HKEY_CURRENT_USER, long_key, longest, REG_SZ, "x");
    SetValue(HKEY_CURRENT_USER, long_key, L"short", REG_SZ, "x");
    Scan();
    const Text name = Text(u"\u00FF") + Text(200, u'v');
    EXPECT_NE(nullptr, RecordOf(u"T\\" + Text(57, u'k') + name));
    EXPECT_EQ(nullptr, RecordOf(u"T\\" + Text(58, u'k') + name));
    EXPECT_NE(nullptr, RecordOf(u"T\\" + Text(58, u'k') + u"\u00FFshort"));
    EXPECT_EQ(5u, list_->CountRecords());
}

TEST_F(RegistryScannerTest, AKeyOf260UnitsIsRecordedAndALongerOneIsNot) {
    const std::wstring parent = L"T\\" + std::wstring(200, L'k') + L"\\";  // 203 units
    SetValue(HKEY_CURRENT_USER, parent + std::wstring(57, L'a'), L"v", REG_SZ, "x");
    SetValue(HKEY_CURRENT_USER, parent + std::wstring(58, L'b'), L"v", REG_SZ, "x");
    Scan();
    const Text start = u"T\\" + Text(200, u'k') + u"\\";
    EXPECT_NE(nullptr, RecordOf(start + Text(57, u'a')));
    EXPECT_EQ(3u, list_->CountRecords());
}

TEST_F(RegistryScannerTest, ASubkeyWhosePathIsTooLongDoesNotHideItsSiblings) {
    const std::wstring first = L"T\\" + std::wstring(200, L'k');
    SetValue(HKEY_CURRENT_USER, first + L"\\" + std::wstring(100, L'a'), L"v", REG_SZ, "x");
    SetValue(HKEY_CURRENT_USER, first + L"\\b", L"v", REG_SZ, "x");
    SetValue(HKEY_CURRENT_USER, L"T\\z", L"v", REG_SZ, "x");
    Scan();
    EXPECT_NE(nullptr, RecordOf(u"T\\" + Text(200, u'k') + u"\\b\u00FFv"));
    EXPECT_NE(nullptr, RecordOf(u"T\\z\u00FFv"));
    EXPECT_EQ(6u, list_->CountRecords());
}

// The table's two strings are used, so that a key whose name holds the separator stays whole.
TEST_F(RegistryScannerTest, AKeyPathMayHoldTheSeparator) {
    SetValue(HKEY_CURRENT_USER, L"T\\a\u00FFb", L"v", REG_SZ, "x");
    Scan();
    const ObjectRecord* record = RecordOf(u"T\\a\u00FFb\u00FFv");
    ASSERT_NE(nullptr, record);
    const RegistryObject* object = storage_.registry_objects.RegObjectFind(record->TolvOID);
    ASSERT_NE(nullptr, object);
    EXPECT_EQ(Text(u"T\\a\u00FFb"), object->key_path);
    EXPECT_EQ(Text(u"v"), object->value_name);
}

TEST_F(RegistryScannerTest, CollidingObjectsGetCountersInTheOrderOfTheScanAndALogLine) {
    RegistryScan whole = scan();
    const RegistryEntry value{false, kHiveCurrentUser, u"T", u"v", REG_SZ, "x", 1};
    MakeRegistryObject(whole, value);
    MakeRegistryObject(whole, value);
    const std::vector<ObjectRecord> records = RecordsOf(*list_);
    ASSERT_EQ(2u, records.size());
    EXPECT_EQ(0u, records[1].TolvOID >> 24);
    EXPECT_EQ(records[1].TolvOID | 0x01000000, records[0].TolvOID);
    EXPECT_NE(Text::npos, Log().find(u"Module: OID generation; Message: 80000001T\u00FFv\r\nT!v"));
}

}  // namespace
}  // namespace tolvenar
