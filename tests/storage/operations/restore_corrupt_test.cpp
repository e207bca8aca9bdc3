// Storage files that anything may have damaged: the object fails, nothing beside its buffers is
// touched and the device stays as it is.
#include "storage/objects/restore_record.h"
#include "tests/support/restore_fixture.h"

namespace tolvenar {
namespace {

// Offsets in a block.
constexpr std::size_t kWord0 = 0;
constexpr std::size_t kWord4 = 4;
constexpr std::size_t kDataBytes = 16;
constexpr std::size_t kType = 20;
constexpr std::size_t kNameBytes = 22;

class RestoreCorruptTest : public RestoreFixture {
protected:
    template <typename T>
    void Damage(const ObjectRecord& record, std::size_t offset, T value) {
        Patch(sav_, record.propOffset + offset, value);
    }
    template <typename T>
    void DamageData(const ObjectRecord& record, std::size_t offset, T value) {
        Patch(sav_, record.data_offset + offset, value);
    }
    void ExpectUnreadable(const ObjectRecord& record) {
        EXPECT_EQ(kFailed, WriteBack(record));
        EXPECT_EQ((Lines{"E DoRestoreRecord: Fail GetInfoFromStorage"}), LogLines());
    }
};

TEST_F(RestoreCorruptTest, ABlockBeyondTheFileIsLogged) {
    ObjectRecord record = StoreFile(u"\\a.txt", "x");
    record.propOffset = 0x00ABCDEF;
    EXPECT_EQ(kFailed, WriteBack(record));
    EXPECT_EQ((Lines{"E DoRestoreRecord: MapView..Err:38 ObjType:16 JrnOffs:11259375"}),
              LogLines());
}

TEST_F(RestoreCorruptTest, ABlockThatCannotBeMappedIsLoggedWithTheError) {
    const ObjectRecord record = StoreFile(u"\\a.txt", "x");
    Run();
    // The page that holds the block, then the block alone.
    device().Fault("MapViewOfFile", 1, 2, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(kFailed, WriteBack(record));
    EXPECT_EQ((Lines{"E DoRestoreRecord: MapView..Err:8 ObjType:16 JrnOffs:236"}), LogLines());
}

TEST_F(RestoreCorruptTest, ABlockAtTheVeryEndIsReadable) {
    const ObjectRecord record = StoreFolder(u"\\Sub");
    EXPECT_EQ(kDone, WriteBack(record));
    EXPECT_TRUE(device().Exists(L"\\Sub"));
}

TEST_F(RestoreCorruptTest, ABlockCutOffInItsHeadIsUnreadable) {
    const ObjectRecord record = StoreFolder(u"\\Sub");
    sav_.resize(record.propOffset + 27);
    ExpectUnreadable(record);
}

TEST_F(RestoreCorruptTest, ABlockCutOffInItsNameIsUnreadable) {
    const ObjectRecord record = StoreFolder(u"\\Sub");
    sav_.resize(sav_.size() - 1);
    ExpectUnreadable(record);
}

TEST_F(RestoreCorruptTest, ANameLongerThanABlockIsUnreadable) {
    const ObjectRecord record = StoreFolder(u"\\Sub");
    sav_.resize(0x20000, 'x');
    Damage(record, kNameBytes, std::uint16_t{522});
    ExpectUnreadable(record);
}

TEST_F(RestoreCorruptTest, ANameOfOddLengthIsUnreadable) {
    const ObjectRecord record = StoreFolder(u"\\Sub");
    Damage(record, kNameBytes, std::uint16_t{7});
    ExpectUnreadable(record);
}

TEST_F(RestoreCorruptTest, AnUnknownBlockTypeIsUnreadable) {
    const ObjectRecord record = StoreFolder(u"\\Sub");
    Damage(record, kType, std::uint16_t{77});
    ExpectUnreadable(record);
    EXPECT_FALSE(device().Exists(L"\\Sub"));
}

TEST_F(RestoreCorruptTest, ABlockOfAnotherTypeThanItsRecordIsUnreadable) {
    ObjectRecord record = StoreFolder(u"\\Sub");
    record.type = kKey;
    ExpectUnreadable(record);
}

TEST_F(RestoreCorruptTest, ARecordOfUnknownTypeIsUnreadable) {
    ObjectRecord record = StoreFolder(u"\\Sub");
    record.type = static_cast<ObjectType>(64);
    Damage(record, kType, std::uint16_t{64});
    ExpectUnreadable(record);
}

TEST_F(RestoreCorruptTest, AStateHasNothingToRestore) {
    EXPECT_EQ(kDone, WriteBack(StoreBlock(kState, 0, 0, u"Title", "text")));
    EXPECT_FALSE(DatabaseExists(u"Title"));
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(RestoreCorruptTest, ContentsBeyondTheFileFailTheFile) {
    const ObjectRecord record = StoreFile(u"\\a.txt", "contents");
    Damage(record, kDataBytes, std::uint32_t{9});
    EXPECT_EQ(kFailed, WriteBack(record));
    EXPECT_EQ((Lines{"I Error: WriteFile:38"}), LogLines());
}

TEST_F(RestoreCorruptTest, ContentsNowhereFailTheFile) {
    ObjectRecord record = StoreFile(u"\\a.txt", "contents");
    record.data_offset = kNoData;
    EXPECT_EQ(kFailed, WriteBack(record));
}

// The desktop's and the device's flags that a file can be opened with lie above the attributes.
TEST_F(RestoreCorruptTest, OnlyAttributesAreTakenFromAFoldersBlock) {
    const ObjectRecord record = StoreFolder(u"\\Sub");
    Damage(record, kWord0, std::uint32_t{0xFFFF0010});
    Run();
    device().Command("trace on");
    EXPECT_EQ(kDone, WriteBack(record));
    EXPECT_TRUE(device().Exists(L"\\Sub"));
    EXPECT_EQ(std::string::npos, device().Command("trace show").find(std::to_string(0xFFFF0010)));
}

TEST_F(RestoreCorruptTest, ARootThatIsNoHiveFailsTheObject) {
    for (const std::uint32_t root : {0u, 0x42u, 0x7FFFFFFFu, 0x80000004u}) {
        const ObjectRecord key = StoreKey(HKEY_CURRENT_USER, u"Key");
        const ObjectRecord value = StoreValue(HKEY_CURRENT_USER, u"Key", u"v", REG_DWORD, Word(1));
        Damage(key, kWord0, root);
        Damage(value, kWord0, root);
        NewRun();
        EXPECT_EQ(kFailed, WriteBack(key));
        EXPECT_EQ(kFailed, WriteBack(value));
        EXPECT_EQ(kFailed, Delete(key));
    }
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Key"));
}

TEST_F(RestoreCorruptTest, AValueWithoutSeparatorFails) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
    const ObjectRecord record = StoreBlock(kValue, 0x80000001, REG_SZ, u"Key", Word(2));
    EXPECT_EQ(kFailed, WriteBack(record));
    EXPECT_EQ(kFailed, Delete(record));
    EXPECT_EQ("4:" + Word(1), Value(HKEY_CURRENT_USER, L"Key", L"v"));
}

TEST_F(RestoreCorruptTest, AValuesDataBeyondTheFileFailTheValue) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
    ObjectRecord record = StoreValue(HKEY_CURRENT_USER, u"Key", u"v", REG_DWORD, Word(2));
    Damage(record, kDataBytes, std::uint32_t{0x40000000});
    EXPECT_EQ(kFailed, WriteBack(record));
    EXPECT_EQ("4:" + Word(1), Value(HKEY_CURRENT_USER, L"Key", L"v"));
}

TEST_F(RestoreCorruptTest, MoreThanFourSortOrdersFailTheDatabase) {
    const ObjectRecord record = StoreDatabase(u"People", 1, {{kName, 0}});
    Damage(record, kWord4, std::uint32_t{5});
    EXPECT_EQ(kFailed, WriteBack(record));
    EXPECT_FALSE(DatabaseExists(u"People"));
}

TEST_F(RestoreCorruptTest, SortOrdersShorterThanTheirNumberFailTheDatabase) {
    const ObjectRecord record = StoreDatabase(u"People", 1, {{kName, 0}, {kNumber, 0}});
    Damage(record, kDataBytes, std::uint32_t{15});
    EXPECT_EQ(kFailed, WriteBack(record));
    EXPECT_FALSE(DatabaseExists(u"People"));
}

TEST_F(RestoreCorruptTest, SortOrdersBeyondTheFileFailTheDatabase) {
    ObjectRecord record = StoreDatabase(u"People", 1, {{kName, 0}});
    record.data_offset = 0x00ABCDEF;
    EXPECT_EQ(kFailed, WriteBack(record));
    EXPECT_FALSE(DatabaseExists(u"People"));
}

TEST_F(RestoreCorruptTest, ADatabaseNameLongerThanThePlatformsFailsTheDatabase) {
    const ObjectRecord record = StoreDatabase(Text(32, u'n'), 1);
    EXPECT_EQ(kFailed, WriteBack(record));
    EXPECT_EQ(0, device().Calls("CeCreateDatabaseEx"));
}

class CorruptRecordTest : public RestoreCorruptTest {
protected:
    ObjectRecord Stored() {
        MakeDatabase(L"People");
        return StoreRecord(u"People", 0x7FFFFFF0, {{kName, 0, L"Ann"}, {kBytes, 0, {}, "blob"}});
    }
    void ExpectFailure(const ObjectRecord& record) {
        EXPECT_EQ(kFailed, WriteBack(record));
        EXPECT_EQ(0, device().Calls("CeWriteRecordProps"));
    }
};

TEST_F(CorruptRecordTest, ThePropertiesOfAnUndamagedRecordAreTaken) {
    const ObjectRecord record = Stored();
    EXPECT_EQ(kDone, WriteBack(record));
    EXPECT_EQ((Lines{"Ann=0"}), Records(u"People"));
}

TEST_F(CorruptRecordTest, MorePropertiesThanTheDataHoldFailTheRecord) {
    const ObjectRecord record = Stored();
    Damage(record, kWord0, std::uint32_t{4});
    ExpectFailure(record);
}

TEST_F(CorruptRecordTest, ANumberOfPropertiesOverSixteenBitsFailsTheRecord) {
    const ObjectRecord record = Stored();
    sav_.resize(0x200000, '\0');
    Damage(record, kDataBytes, std::uint32_t{0x100000});
    Damage(record, kWord0, std::uint32_t{0x10001});
    ExpectFailure(record);
}

TEST_F(CorruptRecordTest, AStringOutsideItsBufferFailsTheRecord) {
    for (const std::uint32_t offset : {44u, 0x1000u, 0xFFFFFFFFu, 0x80000000u}) {
        sav_.resize(236);
        NewRun();
        ObjectRecord record = StoreRecord(u"People", 0x7FFFFFF0, {{kName, 0, L"Ann"}});
        DamageData(record, 8, offset);
        if (!DatabaseExists(u"People")) {
            MakeDatabase(L"People");
        }
        ExpectFailure(record);
    }
}

TEST_F(CorruptRecordTest, AStringThatDoesNotEndInItsBufferFailsTheRecord) {
    MakeDatabase(L"People");
    ObjectRecord record = StoreRecord(u"People", 0x7FFFFFF0, {{kName, 0, L"Ann"}});
    DamageData(record, 16 + 6, char16_t{u'!'});  // where the terminator was
    ExpectFailure(record);
}

TEST_F(CorruptRecordTest, ABlobOutsideItsBufferFailsTheRecord) {
    const ObjectRecord record = Stored();
    DamageData(record, 16 + 12, std::uint32_t{0x100});
    ExpectFailure(record);
}

TEST_F(CorruptRecordTest, ABlobLongerThanItsBufferFailsTheRecord) {
    const ObjectRecord record = Stored();
    DamageData(record, 16 + 8, std::uint32_t{0xFFFFFFF0});
    ExpectFailure(record);
}

TEST_F(CorruptRecordTest, PropertiesBeyondTheFileFailTheRecord) {
    ObjectRecord record = Stored();
    record.data_offset = static_cast<std::uint32_t>(sav_.size()) - 4;
    ExpectFailure(record);
}

class UnstoredRecordTest : public RestoreCorruptTest {};

TEST_F(UnstoredRecordTest, AnObjectThatIsGoneNeedsNoDeletion) {
    EXPECT_EQ(kDone, Delete(Live(kFile, 0x7FFFFFF0)));
    EXPECT_TRUE(LogLines().empty());
}

// The id of a file leads to a record now: the file is gone.
TEST_F(UnstoredRecordTest, AnIdThatLeadsToAnotherKindOfObjectNeedsNoDeletion) {
    MakeDatabase(L"People");
    const CEOID ann = AddRecord(L"People", L"Ann", 1);
    EXPECT_EQ(kDone, Delete(Live(kDatabase, ann)));
    EXPECT_EQ(kDone, Delete(Live(kFile, ann)));
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"People"));
}

TEST_F(UnstoredRecordTest, AnUnknownRegistryObjectNeedsNoDeletion) {
    ObjectRecord record = Live(kValue, 0);
    record.TolvOID = 0x123456;
    EXPECT_EQ(kDone, RestoreObject(record));
}

TEST_F(UnstoredRecordTest, AnObjectThatIsGoneAndWasNeverStoredCannotBeWrittenBack) {
    ObjectRecord record = Live(kFile, 0x7FFFFFF0);
    record.flags = JF_DELETE;
    EXPECT_EQ(kFailed, RestoreObject(record));
    EXPECT_EQ((Lines{"E DoRestoreRecord: Fail GetOIDInfo"}), LogLines());
}

// A file that could not be deleted stands in the list of what failed with its sense reversed. Its
// data offset is 0, where the storage file's head is.
TEST_F(UnstoredRecordTest, ALiveObjectThatWasNeverStoredIsLeftAsItIs) {
    device().PutFile(L"\\a.txt", "precious");
    ObjectRecord record = LiveFile(L"\\a.txt");
    record.flags = JF_DELETE;
    EXPECT_EQ(kDone, RestoreObject(record));
    EXPECT_EQ("precious", device().FileBytes(L"\\a.txt"));
}

}  // namespace
}  // namespace tolvenar
