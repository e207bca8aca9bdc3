#include "snapshot/scan/database_scanner.h"

#include "snapshot/records/checksum.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

constexpr CEPROPID kBool = 0x0003000B;
constexpr CEPROPID kDouble = 0x00040005;
constexpr CEPROPID kBlob = 0x00050041;

std::vector<CEOID> visited;

void NoteEntry(DatabaseScan&, const DatabaseEntry& entry) { visited.push_back(entry.oid); }

class DatabaseScannerTest : public EngineTest {
protected:
    void Scan() {
        list_->ClearList();
        DatabaseScan whole{*list_, info_, databases_, left_out_};
        ScanDatabases(whole, MakeDatabaseObject);
    }

    std::vector<CEOID> Walk() {
        visited.clear();
        DatabaseScan whole{*list_, info_, databases_, left_out_};
        ScanDatabases(whole, NoteEntry);
        return visited;
    }

    // The record of the object; null when there is none.
    const ObjectRecord* RecordOf(CEOID oid) { return StorageTest::RecordOf(*list_, oid); }

    LeftOut left_out_;
    const std::unique_ptr<ObjectList> list_ = ObjectList::CreateList();
};

TEST_F(DatabaseScannerTest, ADatabaseComesBeforeItsRecords) {
    const CEOID first = MakeDatabase(L"First");
    const CEOID one = AddRecord(L"First", {{kNumber, 1}});
    const CEOID two = AddRecord(L"First", {{kNumber, 2}});
    EXPECT_EQ((std::vector<CEOID>{first, one, two}), Walk());
}

TEST_F(DatabaseScannerTest, ADatabasesRecordHasItsNumberOfRecordsAsFingerprint) {
    const CEOID oid = MakeDatabase(L"First");
    AddRecord(L"First", {{kNumber, 1}});
    AddRecord(L"First", {{kNumber, 2}});
    Scan();
    const ObjectRecord* record = RecordOf(oid);
    ASSERT_NE(nullptr, record);
    InfoBlock block;
    ASSERT_TRUE(info_.GetOIDInfo(0, oid, block));
    EXPECT_EQ(28u + 10u, block.size());
    EXPECT_EQ(BytesOf(MakeRecord(kDatabase, oid, 0, Checksum16(block.bytes(), 38), 2)),
              BytesOf(*record));
}

TEST_F(DatabaseScannerTest, ARecordsFingerprintIsTheChecksumOfItsCanonicalForm) {
    MakeDatabase(L"First");
    const CEOID oid = AddRecord(L"First", {{kName, 0, L"ab"}});
    Scan();
    ASSERT_NE(nullptr, RecordOf(oid));
    const unsigned char canonical[] = {0x1F, 0, 1, 0, 0, 0, 'a', 0, 'b', 0};
    EXPECT_EQ(Checksum16(canonical, sizeof canonical), RecordOf(oid)->content_fingerprint);
    EXPECT_EQ(kDbRecord, RecordOf(oid)->type);
    EXPECT_EQ(0, RecordOf(oid)->state_number);
    EXPECT_EQ(JF_PRESENT, RecordOf(oid)->flags);
}

TEST_F(DatabaseScannerTest, ARecordWithoutPropertiesHasTheFingerprintZero) {
    MakeDatabase(L"First");
    const CEOID oid = AddEmptyRecord(L"First");
    Scan();
    ASSERT_NE(nullptr, RecordOf(oid));
    EXPECT_EQ(0, RecordOf(oid)->content_fingerprint);
}

// Whether such a record reads as "no data", and whether that read moves on, is not told.
TEST_F(DatabaseScannerTest, AnEmptyRecordDoesNotHideTheRecordsBehindIt) {
    const struct {
        const char* empty_record;
        const char* no_data;
    } rows[] = {{"", "advances"}, {"no-data", "advances"}, {"no-data", "stays"}};
    for (const auto& row : rows) {
        device().Set("database.empty.record", row.empty_record);
        device().Set("database.no.data", row.no_data);
        const CEOID database = MakeDatabase(L"First");
        const CEOID one = AddRecord(L"First", {{kNumber, 1}});
        const CEOID empty = AddEmptyRecord(L"First");
        const CEOID two = AddRecord(L"First", {{kNumber, 2}});
        EXPECT_EQ((std::vector<CEOID>{database, one, empty, two}), Walk()) << row.no_data;
        EXPECT_TRUE(databases_.DeleteDatabase(database));
    }
}

// Oddity 8: only the identifier of such a property counts.
TEST_F(DatabaseScannerTest, AChangedBooleanOrDoubleIsNotSeen) {
    MakeDatabase(L"First");
    const CEOID oid = AddRecord(L"First", {{kBool, 1}, {kDouble, 0, {}, {}, 1.5}});
    Scan();
    ASSERT_NE(nullptr, RecordOf(oid));
    const ObjectRecord before = *RecordOf(oid);
    WriteRecord(L"First", oid, {{kBool, 0}, {kDouble, 0, {}, {}, 2.5}});
    Scan();
    ASSERT_NE(nullptr, RecordOf(oid));
    EXPECT_EQ(before.content_fingerprint, RecordOf(oid)->content_fingerprint);
    EXPECT_EQ(before.info_checksum, RecordOf(oid)->info_checksum);
}

TEST_F(DatabaseScannerTest, AChangedNumberStringOrBlobIsSeen) {
    MakeDatabase(L"First");
    const CEOID oid = AddRecord(L"First", {{kNumber, 1}, {kName, 0, L"ab"}, {kBlob, 0, {}, "xy"}});
    Scan();
    const std::uint16_t before = RecordOf(oid)->content_fingerprint;
    const std::vector<TestProperty> changes = {
        {kNumber, 2}, {kName, 0, L"ac"}, {kBlob, 0, {}, "xz"}};
    std::uint16_t last = before;
    for (const TestProperty& change : changes) {
        WriteRecord(L"First", oid, {change});
        Scan();
        EXPECT_NE(last, RecordOf(oid)->content_fingerprint);
        last = RecordOf(oid)->content_fingerprint;
    }
}

TEST_F(DatabaseScannerTest, ADatabaseOfTheRecycleBinIsNeverScanned) {
    MakeDatabase(L"a\\RecycleInfo1");
    AddRecord(L"a\\RecycleInfo1", {{kNumber, 1}});
    const CEOID other = MakeDatabase(L"\\recycleinfo");
    EXPECT_EQ(std::vector<CEOID>{other}, Walk());
}

TEST_F(DatabaseScannerTest, AnEnumerationThatDoesNotStartGivesNothingAndIsNoted) {
    MakeDatabase(L"First");
    Fail("CeFindFirstDatabaseEx", 1, 8);
    EXPECT_TRUE(Walk().empty());
    EXPECT_TRUE(left_out_.has_unlisted_databases());
}

TEST_F(DatabaseScannerTest, ADatabaseDeletedWhileTheyAreListedStartsTheListingAgain) {
    const CEOID first = MakeDatabase(L"First");
    const CEOID second = MakeDatabase(L"Second");
    device().Fault("CeFindNextDatabaseEx", 2, 3, ERROR_KEY_DELETED);
    EXPECT_EQ((std::vector<CEOID>{first, second}), Walk());
    EXPECT_FALSE(left_out_.has_unlisted_databases());
}

TEST_F(DatabaseScannerTest, AListingThatIsDisturbedAFourthTimeIsCut) {
    const CEOID first = MakeDatabase(L"First");
    MakeDatabase(L"Second");
    device().Fault("CeFindNextDatabaseEx", 2, 3, ERROR_KEY_DELETED);
    device().Fault("CeFindNextDatabaseEx", 6, 1, ERROR_KEY_DELETED);
    EXPECT_EQ(std::vector<CEOID>{first}, Walk());
    EXPECT_TRUE(left_out_.has_unlisted_databases());
}

TEST_F(DatabaseScannerTest, OnlyTheEndEndsAListing) {
    const CEOID first = MakeDatabase(L"First");
    MakeDatabase(L"Second");
    Fail("CeFindNextDatabaseEx", 2, ERROR_ACCESS_DENIED);
    EXPECT_EQ(std::vector<CEOID>{first}, Walk());
    EXPECT_TRUE(left_out_.has_unlisted_databases());
}

TEST_F(DatabaseScannerTest, AWholeListingIsNotNoted) {
    MakeDatabase(L"First");
    Walk();
    EXPECT_FALSE(left_out_.has_unlisted_databases());
    EXPECT_FALSE(left_out_.lacks_memory());
    EXPECT_EQ(nullptr, left_out_.First());
}

// 65 are more than the first room for their ids.
TEST_F(DatabaseScannerTest, ManyDatabasesAreListed) {
    std::vector<CEOID> expected;
    for (int i = 0; i < 65; ++i) {
        expected.push_back(MakeDatabase(L"Database" + std::to_wstring(i)));
    }
    EXPECT_EQ(expected, Walk());
}

// Both calls that walk them may write the volume's id that they are given.
TEST_F(DatabaseScannerTest, AWrittenVolumeIdIsNotPassedOn) {
    device().Set("database.volume", "written");
    const CEOID first = MakeDatabase(L"First");
    const CEOID record = AddRecord(L"First", {{kNumber, 1}});
    const CEOID second = MakeDatabase(L"Second");
    EXPECT_EQ((std::vector<CEOID>{first, record, second}), Walk());
}

TEST_F(DatabaseScannerTest, ADatabaseThatCannotBeOpenedIsLeftOutAndTheNextIsNot) {
    const CEOID first = MakeDatabase(L"First");
    AddRecord(L"First", {{kNumber, 1}});
    const CEOID second = MakeDatabase(L"Second");
    const CEOID record = AddRecord(L"Second", {{kNumber, 1}});
    Fail("CeOpenDatabaseEx", 1, 8);
    const std::vector<CEOID> all = Walk();
    ASSERT_FALSE(all.empty());
    EXPECT_EQ(second, all.front());
    EXPECT_EQ(record, all.back());
    EXPECT_NE(first, all.front());
    ASSERT_NE(nullptr, left_out_.First());
    EXPECT_EQ(kDatabase, left_out_.First()->type);
    EXPECT_EQ(u"First", Text(left_out_.First()->name));
    EXPECT_EQ(nullptr, left_out_.First()->next);
}

TEST_F(DatabaseScannerTest, AReadWithoutMemoryEndsItsDatabaseAndIsNoted) {
    const CEOID first = MakeDatabase(L"First");
    const CEOID one = AddRecord(L"First", {{kNumber, 1}});
    AddRecord(L"First", {{kNumber, 2}});
    AddRecord(L"First", {{kNumber, 3}});
    const CEOID second = MakeDatabase(L"Second");
    const CEOID other = AddRecord(L"Second", {{kNumber, 1}});
    Fail("CeReadRecordPropsEx", 2, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ((std::vector<CEOID>{first, one, second, other}), Walk());
    EXPECT_TRUE(left_out_.lacks_memory());
}

// Whether the last one or another, and wherever a failed seek leaves the handle.
TEST_F(DatabaseScannerTest, ARecordThatCannotBeReadIsLeftOutAndItsNeighboursAreNot) {
    const CEOID first = MakeDatabase(L"First");
    std::vector<CEOID> records;
    for (std::uint32_t i = 0; i < 3; ++i) {
        records.push_back(AddRecord(L"First", {{kNumber, i}}));
    }
    for (const char* place : {"end", "stay"}) {
        device().Set("database.seek.fails", place);
        for (int bad = 0; bad < 3; ++bad) {
            SCOPED_TRACE(place + std::to_string(bad));
            left_out_.Clear();
            std::vector<CEOID> expected{first};
            expected.insert(expected.end(), records.begin(), records.end());
            expected.erase(expected.begin() + 1 + bad);
            Fail("CeReadRecordPropsEx", 1 + bad, ERROR_CRC);
            EXPECT_EQ(expected, Walk());
            device().EndFaults();
            ASSERT_NE(nullptr, left_out_.First());
            EXPECT_EQ(kDbRecord, left_out_.First()->type);
            EXPECT_EQ(records[bad], left_out_.First()->dwOID);
            EXPECT_EQ(u"First", Text(left_out_.First()->name));
            EXPECT_EQ(nullptr, left_out_.First()->next);
        }
    }
}

TEST_F(DatabaseScannerTest, RecordsThatCannotBeReachedAreLeftOutTogether) {
    const CEOID first = MakeDatabase(L"First");
    const CEOID one = AddRecord(L"First", {{kNumber, 1}});
    AddRecord(L"First", {{kNumber, 2}});
    Fail("CeReadRecordPropsEx", 2, ERROR_CRC);
    Fail("CeSeekDatabase", 1, ERROR_CRC);
    EXPECT_EQ((std::vector<CEOID>{first, one}), Walk());
    ASSERT_NE(nullptr, left_out_.First());
    EXPECT_EQ(kDbRecord, left_out_.First()->type);
    EXPECT_EQ(0u, left_out_.First()->dwOID);
}

TEST_F(DatabaseScannerTest, ADeletedRecordStartsTheWalkAgain) {
    MakeDatabase(L"First");
    AddRecord(L"First", {{kNumber, 1}});
    AddRecord(L"First", {{kNumber, 2}});
    device().Fault("CeReadRecordPropsEx", 2, 3, ERROR_KEY_DELETED);
    Scan();
    EXPECT_EQ(3u, list_->CountRecords());
    EXPECT_EQ(nullptr, left_out_.First());
    device().EndFaults();
    device().Fault("CeReadRecordPropsEx", 1, 4, ERROR_KEY_DELETED);
    Scan();
    ASSERT_NE(nullptr, left_out_.First());
    EXPECT_EQ(0u, left_out_.First()->dwOID);
}

TEST_F(DatabaseScannerTest, ARecordThatCannotBeDescribedIsLeftOut) {
    const CEOID database = MakeDatabase(L"First");
    const CEOID oid = AddRecord(L"First", {{kNumber, 1}});
    DatabaseScan whole{*list_, info_, databases_, left_out_};
    MakeDatabaseObject(whole, {false, oid + 1000, database, u"First", 0, nullptr, 0});
    MakeDatabaseObject(whole, {false, oid, database + 1000, u"First", 0, nullptr, 0});
    EXPECT_EQ(0u, list_->CountRecords());
    ASSERT_NE(nullptr, left_out_.First());
    EXPECT_EQ(oid + 1000, left_out_.First()->dwOID);
    MakeDatabaseObject(whole, {false, oid, database, u"First", 0, nullptr, 0});
    EXPECT_EQ(1u, list_->CountRecords());
}

// The size of the buffer is in the description, and a backup describes the record by itself.
TEST_F(DatabaseScannerTest, ARecordIsDescribedAsIfItWasReadAlone) {
    MakeDatabase(L"First");
    const CEOID large = AddRecord(L"First", {{kNumber, 1}, {0x0002001F, 0, L"a long name"}});
    const CEOID small = AddRecord(L"First", {{kNumber, 2}});
    device().Set("database.empty.record", "no-data");
    const CEOID empty = AddEmptyRecord(L"First");
    Scan();
    for (const CEOID oid : {large, small, empty}) {
        InfoBlock block;
        ASSERT_TRUE(info_.GetOIDInfo(0, oid, block));
        ASSERT_NE(nullptr, RecordOf(oid));
        EXPECT_EQ(Checksum16(block.bytes(), block.size()), RecordOf(oid)->info_checksum);
    }
}

TEST_F(DatabaseScannerTest, TheScanClosesWhatItOpens) {
    const CEOID database = MakeDatabase(L"First");
    AddRecord(L"First", {{kNumber, 1}});
    Scan();
    EXPECT_TRUE(databases_.DeleteDatabase(database)) << ::GetLastError();
}

}  // namespace
}  // namespace tolvenar
