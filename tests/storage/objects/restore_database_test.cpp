#include "storage/objects/restore_database.h"

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
    ObjectRecord StoredPerson(const char16_t* database, std::uint32_t dwOID,
                              const std::u16string& name, std::uint32_t number) {
        return StoreRecord(database, dwOID, {{kName, 0, name, ""}, {kNumber, number, u"", ""}});
    }
};

TEST_F(RestoreDatabaseTest, AnAbsentDatabaseIsMadeWithTypeAndSortOrders) {
    const ObjectRecord stored =
        StoreDatabase(u"People", 77, {{kName, CEDB_SORT_CASEINSENSITIVE}, {kNumber, 0}});
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(stored)));
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
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(stored)));
    EXPECT_EQ(4, InfoOf(u"People").wNumSortOrder);
}

TEST_F(RestoreDatabaseTest, AnExistingDatabaseKeepsItsRecordsAndGetsTheSortOrders) {
    const CEOID oid = MakeDatabase(u"People");
    AddRecord(u"People", L"Ann", 1);
    EXPECT_EQ(RestoreOutcome::kDone,
              Restore(ToWriteBack(StoreDatabase(u"People", 1, {{kName, 0}}))));
    EXPECT_EQ(oid, newOid());
    EXPECT_EQ((std::vector<std::string>{"Ann=1"}), Records(u"People"));
    EXPECT_EQ(1, InfoOf(u"People").wNumSortOrder);
}

// Kept so: the type of a database that is there is not changed; the restore reports the database
// because it could not be deleted.
TEST_F(RestoreDatabaseTest, AnExistingDatabaseKeepsItsType) {
    MakeDatabase(u"People", 5);
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(StoreDatabase(u"People", 6))));
    EXPECT_EQ(5u, InfoOf(u"People").dwDbaseType);
}

TEST_F(RestoreDatabaseTest, ADatabaseThatCannotBeMadeFails) {
    const ObjectRecord stored = StoreDatabase(u"People", 1);
    Run();
    device().Fault("CeCreateDatabaseEx", 1, 1, ERROR_DISK_FULL);
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(ToWriteBack(stored)));
}

TEST_F(RestoreDatabaseTest, ADatabaseWhoseSortOrdersCannotBeSetFails) {
    const ObjectRecord stored = StoreDatabase(u"People", 1, {{kName, 0}});
    Run();
    device().Fault("CeSetDatabaseInfoEx", 1, 1, ERROR_DISK_FULL);
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(ToWriteBack(stored)));
}

TEST_F(RestoreDatabaseTest, AnEmptyDatabaseIsDeletedThoughARecordOfItWasDeletedBefore) {
    const CEOID oid = MakeDatabase(u"People");
    const CEOID record = AddRecord(u"People", L"Ann", 1);
    // Leaves the database open in the handle cache.
    EXPECT_EQ(RestoreOutcome::kDone, Restore(Live(ObjectType::kDatabaseRecord, record)));
    EXPECT_EQ(RestoreOutcome::kDone, Restore(Live(ObjectType::kDatabase, oid)));
    EXPECT_FALSE(DatabaseExists(u"People"));
}

TEST_F(RestoreDatabaseTest, ADatabaseWithRecordsWaits) {
    const CEOID oid = MakeDatabase(u"People");
    AddRecord(u"People", L"Ann", 1);
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(Live(ObjectType::kDatabase, oid)));
    EXPECT_EQ((std::vector<std::string>{"Ann=1"}), Records(u"People"));
}

TEST_F(RestoreDatabaseTest, AnAbsentDatabaseIsDeleted) {
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToDelete(StoreDatabase(u"Gone", 1))));
}

TEST_F(RestoreDatabaseTest, ADatabaseThatAnotherProgramHasOpenIsNotDeleted) {
    const CEOID oid = MakeDatabase(u"People");
    CEOID held_oid = 0;
    const UniqueHandle held(databases_.OpenDatabase(held_oid, u"People", 0, 0, nullptr));
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(Live(ObjectType::kDatabase, oid)));
}

TEST_F(RestoreDatabaseTest, ADatabaseThatIsGoneAfterAFailedDeletionCountsAsDeleted) {
    const CEOID oid = MakeDatabase(u"People");
    const ObjectRecord live = Live(ObjectType::kDatabase, oid);
    Run();
    device().Fault("CeDeleteDatabaseEx", 1, 1, ERROR_ACCESS_DENIED);
    device().Fault("CeOpenDatabaseEx", 2, 1, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RestoreOutcome::kDone, Restore(live));
}

TEST_F(RestoreDatabaseTest, ADatabaseThatCannotBeDescribedIsNotDeleted) {
    MakeDatabase(u"People");
    const ObjectRecord stored = StoreDatabase(u"People", 1);
    Run();
    device().Fault("CeOidGetInfoEx", 1, 1, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(ToDelete(stored)));
    EXPECT_TRUE(DatabaseExists(u"People"));
}

TEST_F(RestoreDatabaseTest, ARecordComesBackWithEveryKindOfProperty) {
    MakeDatabase(u"All");
    const ObjectRecord stored = StoreRecord(u"All", 500,
                                            {{kName, 0, u"Ann", ""},
                                             {kNumber, 0xFFFFFFFB, u"", ""},
                                             {kBytes, 0, u"", std::string("b\0l", 3)},
                                             {0x00070012, 60000, u"", ""},  // CEVT_UI2
                                             {0x0008000B, 1, u"", ""},      // CEVT_BOOL
                                             {0x0009001F, 0, u"", ""}});    // an empty string
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(stored)));
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
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(ToWriteBack(StoredPerson(u"None", 5, u"Ann", 1))));
}

TEST_F(RestoreDatabaseTest, ARecordThatStillExistsIsOverwritten) {
    MakeDatabase(u"People");
    const CEOID record = AddRecord(u"People", L"Ann", 1);
    EXPECT_EQ(RestoreOutcome::kDone,
              Restore(ToWriteBack(StoredPerson(u"People", record, u"Bob", 2))));
    EXPECT_EQ(record, newOid());
    EXPECT_EQ((std::vector<std::string>{"Bob=2"}), Records(u"People"));
}

TEST_F(RestoreDatabaseTest, ARecordThatIsGoneIsMadeAnew) {
    MakeDatabase(u"People");
    AddRecord(u"People", L"Ann", 1);
    EXPECT_EQ(RestoreOutcome::kDone,
              Restore(ToWriteBack(StoredPerson(u"People", 0x7FFFFFF0, u"Bob", 2))));
    EXPECT_EQ((std::vector<std::string>{"Ann=1", "Bob=2"}), Records(u"People"));
}

TEST_F(RestoreDatabaseTest, ARecordOfThisRestoreIsNeverOverwritten) {
    MakeDatabase(u"People");
    EXPECT_EQ(RestoreOutcome::kDone,
              Restore(ToWriteBack(StoredPerson(u"People", 0x7FFFFFF0, u"Ann", 1))));
    // On a reset device the next stored record had the id that Ann has now.
    EXPECT_EQ(RestoreOutcome::kDone,
              Restore(ToWriteBack(StoredPerson(u"People", newOid(), u"Bob", 2))));
    EXPECT_EQ((std::vector<std::string>{"Ann=1", "Bob=2"}), Records(u"People"));
}

TEST_F(RestoreDatabaseTest, ARecordThatCannotBeWrittenFails) {
    MakeDatabase(u"People");
    const ObjectRecord stored = StoredPerson(u"People", 0x7FFFFFF0, u"Ann", 1);
    Run();
    device().Fault("CeWriteRecordProps", 1, 1, ERROR_DISK_FULL);
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(ToWriteBack(stored)));
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(stored)));
}

TEST_F(RestoreDatabaseTest, ARecordIsDeleted) {
    MakeDatabase(u"People");
    const CEOID ann = AddRecord(u"People", L"Ann", 1);
    AddRecord(u"People", L"Bob", 2);
    EXPECT_EQ(RestoreOutcome::kDone, Restore(Live(ObjectType::kDatabaseRecord, ann)));
    EXPECT_EQ((std::vector<std::string>{"Bob=2"}), Records(u"People"));
}

TEST_F(RestoreDatabaseTest, ARecordThatIsGoneOrWhoseDatabaseIsCountsAsDeleted) {
    MakeDatabase(u"People");
    const ObjectRecord gone = StoredPerson(u"People", 0x7FFFFFF0, u"Ann", 1);
    const ObjectRecord nowhere = StoredPerson(u"None", 5, u"Ann", 1);
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToDelete(gone)));
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToDelete(nowhere)));
}

TEST_F(RestoreDatabaseTest, ARecordThatCannotBeDeletedFails) {
    MakeDatabase(u"People");
    const CEOID ann = AddRecord(u"People", L"Ann", 1);
    Run();
    device().Fault("CeDeleteRecord", 1, 1, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(Live(ObjectType::kDatabaseRecord, ann)));
}

TEST_F(RestoreDatabaseTest, DatabasesAreSkippedWhenAskedSo) {
    const CEOID oid = MakeDatabase(u"People");
    const ObjectRecord database = StoreDatabase(u"Other", 1);
    const ObjectRecord record = StoredPerson(u"People", 0x7FFFFFF0, u"Ann", 1);
    Run().skip_databases = true;
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(database)));
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(record)));
    EXPECT_EQ(RestoreOutcome::kDone, Restore(Live(ObjectType::kDatabase, oid)));
    EXPECT_FALSE(DatabaseExists(u"Other"));
    EXPECT_TRUE(DatabaseExists(u"People"));
    EXPECT_TRUE(Records(u"People").empty());
}

}  // namespace
}  // namespace tolvenar
