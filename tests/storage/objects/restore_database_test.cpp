#include "storage/objects/restore_database.h"

#include "storage/objects/stored_record.h"
#include "tests/support/restore_fixture.h"

namespace tolvenar {
namespace {

class RestoreDatabaseTest : public RestoreFixture {
protected:
    CEDBASEINFO InfoOf(const char16_t* name) {
        CEOID oid = 0;
        const UniqueHandle database(databases_.OpenDatabase(oid, name, 0, 0, nullptr));
        CEOIDINFO info;
        EXPECT_TRUE(databases_.GetObjectInfo(oid, info));
        return info.infDatabase;
    }
    ObjectRecord StoredPerson(const char16_t* database, std::uint32_t dwOID, const Text& name,
                              std::uint32_t number) {
        return StoreRecord(database, dwOID, {{kName, 0, Wide(name.c_str())}, {kNumber, number}});
    }
};

TEST_F(RestoreDatabaseTest, AnAbsentDatabaseIsMadeWithTypeAndSortOrders) {
    const ObjectRecord stored =
        StoreDatabase(u"People", 77, {{kName, CEDB_SORT_CASEINSENSITIVE}, {kNumber, 0}});
    EXPECT_EQ(kDone, WriteBack(stored));
    const CEDBASEINFO info = InfoOf(u"People");
    EXPECT_EQ(77u, info.dwDbaseType);
    ASSERT_EQ(2, info.wNumSortOrder);
    EXPECT_EQ(kName, info.rgSortSpecs[0].propid);
    EXPECT_EQ(DWORD{CEDB_SORT_CASEINSENSITIVE}, info.rgSortSpecs[0].dwFlags);
    EXPECT_EQ(kNumber, info.rgSortSpecs[1].propid);
    CEOID oid = 0;
    const UniqueHandle database(databases_.OpenDatabase(oid, u"People", 0, 0, nullptr));
    EXPECT_EQ(oid, newOid());
}

TEST_F(RestoreDatabaseTest, FourSortOrdersComeBackAll) {
    const ObjectRecord stored =
        StoreDatabase(u"People", 1, {{kName, 0}, {kNumber, 0}, {0x00050003, 0}, {0x00060003, 0}});
    EXPECT_EQ(kDone, WriteBack(stored));
    EXPECT_EQ(4, InfoOf(u"People").wNumSortOrder);
}

// A description has room for four.
TEST_F(RestoreDatabaseTest, ABlockThatTellsOfMoreThanFourSortOrdersFails) {
    const ObjectRecord stored = StoreDatabase(
        u"People", 1,
        {{kName, 0}, {kNumber, 0}, {0x00050003, 0}, {0x00060003, 0}, {0x00070003, 0}});
    EXPECT_EQ(kFailed, WriteBack(stored));
    EXPECT_FALSE(DatabaseExists(u"People"));
}

TEST_F(RestoreDatabaseTest, AnExistingDatabaseKeepsItsRecordsAndGetsTheSortOrders) {
    const CEOID oid = MakeDatabase(L"People");
    AddRecord(L"People", L"Ann", 1);
    EXPECT_EQ(kDone, WriteBack(StoreDatabase(u"People", 1, {{kName, 0}})));
    EXPECT_EQ(oid, newOid());
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"People"));
    EXPECT_EQ(1, InfoOf(u"People").wNumSortOrder);
}

// Oddity 17: the type of a database that is there is not changed; the restore reports the database
// because it could not be deleted.
TEST_F(RestoreDatabaseTest, AnExistingDatabaseKeepsItsType) {
    MakeDatabase(L"People", 5);
    EXPECT_EQ(kDone, WriteBack(StoreDatabase(u"People", 6)));
    EXPECT_EQ(5u, InfoOf(u"People").dwDbaseType);
}

TEST_F(RestoreDatabaseTest, ADatabaseThatCannotBeMadeFails) {
    const ObjectRecord stored = StoreDatabase(u"People", 1);
    FailInRun("CeCreateDatabaseEx", 1, ERROR_DISK_FULL);
    EXPECT_EQ(kFailed, WriteBack(stored));
}

TEST_F(RestoreDatabaseTest, ADatabaseWhoseSortOrdersCannotBeSetFails) {
    MakeDatabase(L"People");
    const ObjectRecord stored = StoreDatabase(u"People", 1, {{kName, 0}});
    FailInRun("CeSetDatabaseInfoEx", 1, ERROR_DISK_FULL);
    EXPECT_EQ(kFailed, WriteBack(stored));
    EXPECT_EQ(kSortOrdersRefused, ::GetLastError());
}

// Setting them anew takes the device minutes, and is refused while anybody has the database open.
TEST_F(RestoreDatabaseTest, SortOrdersThatAreThereAreNotSet) {
    const ObjectRecord stored = StoreDatabase(u"People", 1, {{kName, 0}, {kNumber, 0}});
    EXPECT_EQ(kDone, WriteBack(stored));
    CEOID oid = 0;
    const UniqueHandle database(databases_.OpenDatabase(oid, u"People", 0, 0, nullptr));
    device().Set("database.info.open", "refused");
    EXPECT_EQ(kDone, WriteBack(stored));
    EXPECT_EQ(0, device().Calls("CeSetDatabaseInfoEx"));
    // In another order they are others.
    EXPECT_EQ(kFailed, WriteBack(StoreDatabase(u"People", 1, {{kNumber, 0}, {kName, 0}})));
    EXPECT_EQ(1, device().Calls("CeSetDatabaseInfoEx"));
}

TEST_F(RestoreDatabaseTest, ADatabaseWithoutSortOrdersIsMadeWhateverTheDeviceTellsOfIt) {
    for (const char* told : {"none", "placeholder"}) {
        device().Set("database.no.orders", told);
        const std::u16string name = Utf16(told[0] == 'n' ? L"First" : L"Second");
        EXPECT_EQ(kDone, WriteBack(StoreDatabase(name, 1)));
        EXPECT_EQ(kDone, WriteBack(StoreDatabase(name, 1, {{0, 0}})));
        EXPECT_TRUE(DatabaseExists(name.c_str()));
        EXPECT_EQ(0, device().Calls("CeSetDatabaseInfoEx"));
    }
}

TEST_F(RestoreDatabaseTest, ADatabaseWhoseSortOrdersTheDeviceRefusesIsMadeWithoutThem) {
    device().Set("database.unique", "refused");
    EXPECT_EQ(kFailed, WriteBack(StoreDatabase(u"People", 1, {{kName, CEDB_SORT_UNIQUE}})));
    EXPECT_EQ(kSortOrdersRefused, ::GetLastError());
    EXPECT_TRUE(DatabaseExists(u"People"));
    EXPECT_EQ(kDone, WriteBack(StoredPerson(u"People", 900, u"Ann", 1)));
}

TEST_F(RestoreDatabaseTest, AnEmptyDatabaseIsDeletedThoughARecordOfItWasDeletedBefore) {
    const CEOID oid = MakeDatabase(L"People");
    const CEOID record = AddRecord(L"People", L"Ann", 1);
    // Leaves the database open in the handle cache.
    EXPECT_EQ(kDone, Delete(Live(kDbRecord, record)));
    EXPECT_EQ(kDone, Delete(Live(kDatabase, oid)));
    EXPECT_FALSE(DatabaseExists(u"People"));
}

TEST_F(RestoreDatabaseTest, ADatabaseWithRecordsWaits) {
    const CEOID oid = MakeDatabase(L"People");
    AddRecord(L"People", L"Ann", 1);
    EXPECT_EQ(kFailed, Delete(Live(kDatabase, oid)));
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"People"));
}

TEST_F(RestoreDatabaseTest, AnAbsentDatabaseIsDeleted) {
    EXPECT_EQ(kDone, Delete(StoreDatabase(u"Gone", 1)));
}

TEST_F(RestoreDatabaseTest, ADatabaseThatAnotherProgramHasOpenIsNotDeleted) {
    const CEOID oid = MakeDatabase(L"People");
    CEOID held_oid = 0;
    const UniqueHandle held(databases_.OpenDatabase(held_oid, u"People", 0, 0, nullptr));
    EXPECT_EQ(kFailed, Delete(Live(kDatabase, oid)));
}

TEST_F(RestoreDatabaseTest, ADatabaseThatIsGoneAfterAFailedDeletionCountsAsDeleted) {
    const CEOID oid = MakeDatabase(L"People");
    const ObjectRecord live = Live(kDatabase, oid);
    FailInRun("CeDeleteDatabaseEx", 1, ERROR_ACCESS_DENIED);
    Fail("CeOpenDatabaseEx", 2, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(kDone, RestoreObject(live));
}

TEST_F(RestoreDatabaseTest, ADatabaseThatCannotBeDescribedIsNotDeleted) {
    MakeDatabase(L"People");
    const ObjectRecord stored = StoreDatabase(u"People", 1);
    FailInRun("CeOidGetInfoEx", 1, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(kFailed, Delete(stored));
    EXPECT_TRUE(DatabaseExists(u"People"));
}

TEST_F(RestoreDatabaseTest, ARecordComesBackWithEveryKindOfProperty) {
    MakeDatabase(L"All");
    const ObjectRecord stored =
        StoreRecord(u"All", 500,
                    {{kName, 0, L"Ann"},
                     {kNumber, 0xFFFFFFFB},
                     {kBytes, 0, {}, std::string("b\0l", 3)},
                     {0x00070012, 60000},  // CEVT_UI2
                     {0x0008000B, 1},      // CEVT_BOOL
                     {0x0009001F, 0}});    // an empty string    // an empty string
    EXPECT_EQ(kDone, WriteBack(stored));
    CEOID oid = 0;
    const UniqueHandle database(databases_.OpenDatabase(oid, u"All", 0, 0, nullptr));
    ASSERT_EQ(newOid(), databases_.SeekRecord(database.get(), CEDB_SEEK_CEOID, newOid()));
    RecordBuffer buffer;
    ASSERT_EQ(newOid(), databases_.ReadRecordProps(database.get(), buffer));
    ASSERT_EQ(6, buffer.count());
    int found = 0;
    const auto* properties = reinterpret_cast<const CEPROPVAL*>(buffer.bytes());
    for (WORD i = 0; i < buffer.count(); ++i) {
        const CEPROPVAL& property = properties[i];
        switch (property.propid) {
            case kName: found += std::wstring(L"Ann") == property.val.lpwstr; break;
            case kNumber: found += property.val.lVal == -5; break;
            case kBytes:
                found += std::string("b\0l", 3) ==
                         std::string(reinterpret_cast<char*>(property.val.blob.lpb),
                                     property.val.blob.dwCount);
                break;
            case 0x00070012: found += property.val.uiVal == 60000; break;
            case 0x0008000B: found += property.val.boolVal == TRUE; break;
            case 0x0009001F: found += std::wstring() == property.val.lpwstr; break;
            default: break;
        }
    }
    EXPECT_EQ(6, found);
}

TEST_F(RestoreDatabaseTest, ARecordWaitsForItsDatabase) {
    EXPECT_EQ(kFailed, WriteBack(StoredPerson(u"None", 5, u"Ann", 1)));
}

TEST_F(RestoreDatabaseTest, ARecordThatStillExistsIsOverwritten) {
    MakeDatabase(L"People");
    const CEOID record = AddRecord(L"People", L"Ann", 1);
    EXPECT_EQ(kDone, WriteBack(StoredPerson(u"People", record, u"Bob", 2)));
    EXPECT_EQ(record, newOid());
    EXPECT_EQ((Lines{"Bob=2"}), Records(u"People"));
}

TEST_F(RestoreDatabaseTest, ARecordThatIsGoneIsMadeAnew) {
    MakeDatabase(L"People");
    AddRecord(L"People", L"Ann", 1);
    EXPECT_EQ(kDone, WriteBack(StoredPerson(u"People", 0x7FFFFFF0, u"Bob", 2)));
    EXPECT_EQ((Lines{"Ann=1", "Bob=2"}), Records(u"People"));
}

TEST_F(RestoreDatabaseTest, ARecordOfThisRestoreIsNeverOverwritten) {
    MakeDatabase(L"People");
    EXPECT_EQ(kDone, WriteBack(StoredPerson(u"People", 0x7FFFFFF0, u"Ann", 1)));
    // On a reset device the next stored record had the id that Ann has now.
    EXPECT_EQ(kDone, WriteBack(StoredPerson(u"People", newOid(), u"Bob", 2)));
    EXPECT_EQ((Lines{"Ann=1", "Bob=2"}), Records(u"People"));
}

TEST_F(RestoreDatabaseTest, ARecordThatCannotBeWrittenFails) {
    MakeDatabase(L"People");
    const ObjectRecord stored = StoredPerson(u"People", 0x7FFFFFF0, u"Ann", 1);
    FailInRun("CeWriteRecordProps", 1, ERROR_DISK_FULL);
    EXPECT_EQ(kFailed, WriteBack(stored));
    EXPECT_EQ(kDone, WriteBack(stored));
}

TEST_F(RestoreDatabaseTest, ARecordIsDeleted) {
    MakeDatabase(L"People");
    const CEOID ann = AddRecord(L"People", L"Ann", 1);
    AddRecord(L"People", L"Bob", 2);
    EXPECT_EQ(kDone, Delete(Live(kDbRecord, ann)));
    EXPECT_EQ((Lines{"Bob=2"}), Records(u"People"));
}

TEST_F(RestoreDatabaseTest, ARecordThatIsGoneOrWhoseDatabaseIsCountsAsDeleted) {
    MakeDatabase(L"People");
    const ObjectRecord gone = StoredPerson(u"People", 0x7FFFFFF0, u"Ann", 1);
    const ObjectRecord nowhere = StoredPerson(u"None", 5, u"Ann", 1);
    EXPECT_EQ(kDone, Delete(gone));
    EXPECT_EQ(kDone, Delete(nowhere));
}

TEST_F(RestoreDatabaseTest, ARecordThatCannotBeDeletedFails) {
    MakeDatabase(L"People");
    const CEOID ann = AddRecord(L"People", L"Ann", 1);
    FailInRun("CeDeleteRecord", 1, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(kFailed, Delete(Live(kDbRecord, ann)));
}

TEST_F(RestoreDatabaseTest, DatabasesAreSkippedWhenAskedSo) {
    const CEOID oid = MakeDatabase(L"People");
    const ObjectRecord database = StoreDatabase(u"Other", 1);
    const ObjectRecord record = StoredPerson(u"People", 0x7FFFFFF0, u"Ann", 1);
    Run().database_restore = DatabaseRestore::kNone;
    EXPECT_EQ(kDone, WriteBack(database));
    EXPECT_EQ(kDone, WriteBack(record));
    EXPECT_EQ(kDone, Delete(Live(kDatabase, oid)));
    EXPECT_FALSE(DatabaseExists(u"Other"));
    EXPECT_TRUE(DatabaseExists(u"People"));
    EXPECT_TRUE(Records(u"People").empty());
}

// A restore of the differences between two states: the device may have given the id to another
// record, or the user may have changed the one that has it.
class RecordOfAStateTest : public RestoreFixture {
protected:
    void SetUp() override {
        RestoreFixture::SetUp();
        MakeDatabase(L"People");
    }
    // The stored form of a record that is on the device now.
    ObjectRecord Stored(CEOID oid, const Text& database,
                        const std::vector<TestProperty>& properties) {
        ObjectRecord record = StoreRecord(database, oid, properties);
        record.content_fingerprint = FingerprintOnDevice(database, oid);
        return record;
    }
    std::uint16_t FingerprintOnDevice(const Text& database, CEOID oid) {
        CEOID database_oid = 0;
        const UniqueHandle handle(
            databases_.OpenDatabase(database_oid, database.c_str(), 0, 0, nullptr));
        RecordBuffer buffer;
        EXPECT_EQ(oid, databases_.SeekRecord(handle.get(), CEDB_SEEK_CEOID, oid));
        databases_.ReadRecordProps(handle.get(), buffer);
        return FingerprintOfProperties(buffer.bytes(), buffer.size(), buffer.count());
    }
    RestoreTools& RunByStates() {
        Run().database_restore = DatabaseRestore::kByStates;
        return Run();
    }
    RestoreOutcome DeleteByStates(const ObjectRecord& stored) {
        RunByStates();
        return Delete(stored);
    }
    RestoreOutcome WriteBackByStates(const ObjectRecord& stored) {
        RunByStates();
        return WriteBack(stored);
    }
    const std::vector<TestProperty> ann_{{kName, 0, L"Ann"}, {kNumber, 1}};
};

TEST_F(RecordOfAStateTest, OneThatIsAsItWasStoredIsDeleted) {
    const CEOID oid = AddRecord(L"People", ann_);
    EXPECT_EQ(kDone, DeleteByStates(Stored(oid, u"People", ann_)));
    EXPECT_EQ(Lines{}, Records(u"People"));
}

TEST_F(RecordOfAStateTest, OneThatWasChangedSinceIsKept) {
    const CEOID oid = AddRecord(L"People", ann_);
    const ObjectRecord stored = Stored(oid, u"People", ann_);
    WriteRecord(L"People", oid, {{kNumber, 2}});
    EXPECT_EQ(kDone, DeleteByStates(stored));
    EXPECT_EQ((Lines{"Ann=2"}), Records(u"People"));
}

TEST_F(RecordOfAStateTest, OneOfAnotherLengthOrNumberOfPropertiesIsKept) {
    const CEOID oid = AddRecord(L"People", ann_);
    ObjectRecord stored = Stored(oid, u"People", {{kName, 0, L"Anne"}, {kNumber, 1}});
    EXPECT_EQ(kDone, DeleteByStates(stored));
    stored = Stored(oid, u"People", {{kNumber, 1}});
    NewRun();
    EXPECT_EQ(kDone, DeleteByStates(stored));
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"People"));
}

TEST_F(RecordOfAStateTest, OneThatIsInAnotherDatabaseNowIsKept) {
    MakeDatabase(L"Others");
    const CEOID oid = AddRecord(L"Others", ann_);
    ObjectRecord stored = Stored(oid, u"Others", ann_);
    const std::uint16_t fingerprint = stored.content_fingerprint;
    stored = StoreRecord(u"People", oid, ann_);
    stored.content_fingerprint = fingerprint;
    EXPECT_EQ(kDone, DeleteByStates(stored));
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"Others"));
}

TEST_F(RecordOfAStateTest, OneThatCannotBeReadIsKept) {
    const CEOID oid = AddRecord(L"People", ann_);
    const ObjectRecord stored = Stored(oid, u"People", ann_);
    RunByStates();
    FailInRun("CeReadRecordPropsEx", 1, ERROR_GEN_FAILURE);
    EXPECT_EQ(kDone, Delete(stored));
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"People"));
}

TEST_F(RecordOfAStateTest, AnEmptyOneThatIsStillEmptyIsDeleted) {
    const CEOID oid = AddEmptyRecord(L"People");
    EXPECT_EQ(kDone, DeleteByStates(StoreRecord(u"People", oid, {})));
    CEOIDINFO info;
    EXPECT_FALSE(databases_.GetObjectInfo(oid, info));
}

TEST_F(RecordOfAStateTest, OneThatIsWrittenBackOverAnotherBecomesANewRecord) {
    const CEOID oid = AddRecord(L"People", ann_);
    const ObjectRecord stored = Stored(oid, u"People", ann_);
    WriteRecord(L"People", oid, {{kNumber, 2}});
    EXPECT_EQ(kDone, WriteBackByStates(stored));
    EXPECT_EQ((Lines{"Ann=1", "Ann=2"}), Records(u"People"));
    EXPECT_NE(oid, newOid());
}

TEST_F(RecordOfAStateTest, OneThatIsAsItWasStoredIsWrittenOver) {
    const CEOID oid = AddRecord(L"People", ann_);
    EXPECT_EQ(kDone, WriteBackByStates(Stored(oid, u"People", ann_)));
    EXPECT_EQ(oid, newOid());
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"People"));
}

TEST_F(RecordOfAStateTest, ALiveOneIsDeletedByItsId) {
    const CEOID oid = AddRecord(L"People", ann_);
    EXPECT_EQ(kDone, DeleteByStates(Live(kDbRecord, oid)));
    EXPECT_EQ(Lines{}, Records(u"People"));
}

TEST_F(RecordOfAStateTest, DesktopPositionsGoByTheirKeyAllTheSame) {
    constexpr CEPROPID kPositionKey = 0x4021001F;
    MakeDatabase(L"\\DesktopPositions");
    const CEOID oid = AddRecord(L"\\DesktopPositions", {{kPositionKey, 0, L"icon"}, {kNumber, 2}});
    const ObjectRecord stored =
        StoreRecord(u"\\DesktopPositions", oid + 1, {{kPositionKey, 0, L"icon"}, {kNumber, 1}});
    EXPECT_EQ(kDone, WriteBackByStates(stored));
    EXPECT_EQ(oid, newOid());
}

}  // namespace
}  // namespace tolvenar
