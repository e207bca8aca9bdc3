#include "storage/opened/journal.h"

#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

ObjectRecord FileRecord(std::uint32_t dwOID, std::uint16_t state) {
    ObjectRecord record{};
    record.dwOID = dwOID;
    record.info_checksum = 0x1234;
    record.propOffset = 236;
    record.data_offset = kNoData;
    record.state_number = state;
    record.flags = JF_ADD;
    record.type = kFile;
    return record;
}

// Three records written by hand: a file of state 1, a value of state 1, the record of state 2.
const Bytes kThreeRecords =
    Raw({0x4D, 0,    0,    1,    0,    0,    0,    0,    0xE5, 0xE7, 0x42, 0xCB, 0x3A, 1, 0, 0,
         0x7C, 1,    0,    0,    1,    0,    5,    0,    16,   0,    0,    0,    0,    0, 0, 0,
         0,    0,    0,    0,    0x78, 0x56, 0x34, 0x12, 0x11, 0x22, 0x33, 0x44, 0xEC, 0, 0, 0,
         0xFF, 0xFF, 0xFF, 0xFF, 1,    0,    4,    0,    1,    1,    2,    3,    4,    5, 6, 7,
         0,    0,    0,    0,    0,    0,    0,    0,    0x8F, 0x66, 0,    0,    0xEC, 2, 0, 0,
         0x12, 3,    0,    0,    2,    0,    4,    0,    32,   0,    0,    0,    0,    0, 0, 0});

Bytes InOrder(const Bytes& records, std::initializer_list<std::size_t> order) {
    Bytes result;
    for (const std::size_t index : order) {
        result += records.substr(index * 32, 32);
    }
    return result;
}

class JournalTest : public StorageTest {
protected:
    bool Open() { return OpenJournal(storage_, nullptr); }
    int Save() { return CloseJournal(storage_.names, storage_.journal, true, nullptr); }
    const ObjectRecord& Front() { return *storage_.journal->First()->record; }
};

TEST_F(JournalTest, AMissingJournalIsCreatedEmpty) {
    ASSERT_TRUE(Open());
    EXPECT_EQ(0u, storage_.journal->CountRecords());
    EXPECT_EQ(1u, NextStateNumber(storage_.journal.get()));
    EXPECT_EQ(Bytes{}, Content(kJournal));
    EXPECT_TRUE(IsFree(kJournal));
    EXPECT_EQ(Text(), Log());
}

TEST_F(JournalTest, EveryFieldIsLoadedAndTheLastRecordStandsInFront) {
    Put(kJournal, kThreeRecords);
    ASSERT_TRUE(Open());
    ASSERT_EQ(3u, storage_.journal->CountRecords());
    EXPECT_EQ(kState, Front().type);
    EXPECT_EQ(0x02ECu, Front().propOffset);
    const ObjectRecord* value = storage_.journal->First()->next->record;
    EXPECT_EQ(0x12345678u, value->TolvOID);
    EXPECT_EQ(0x2211u, value->info_checksum);
    EXPECT_EQ(0x4433u, value->content_fingerprint);
    EXPECT_EQ(kNoData, value->data_offset);
    EXPECT_EQ(7u, value->reserved[6]);
    EXPECT_TRUE(IsFree(kJournal));
}

TEST_F(JournalTest, SavedOnceTheOrderIsReversed) {
    Put(kJournal, kThreeRecords);
    ASSERT_TRUE(Open());
    EXPECT_EQ(1, Save());
    EXPECT_EQ(InOrder(kThreeRecords, {2, 1, 0}), Content(kJournal));
    EXPECT_FALSE(Exists(kJournalTemporary));
    EXPECT_EQ(nullptr, storage_.journal);
    EXPECT_TRUE(IsFree(kJournal));
}

TEST_F(JournalTest, SavedTwiceTheOrderIsTheFirstAgain) {
    Put(kJournal, kThreeRecords);
    ASSERT_TRUE(Open());
    EXPECT_EQ(1, Save());
    ASSERT_TRUE(Open());
    EXPECT_EQ(1, Save());
    EXPECT_EQ(kThreeRecords, Content(kJournal));
}

TEST_F(JournalTest, OfTwoFilesWithOneKeyTheLaterCounts) {
    Bytes records = InOrder(kThreeRecords, {0, 0});
    records[32 + 10] = '\x99';  // the fingerprint is no part of a file's key
    records[32 + 12] = 0x77;
    Put(kJournal, records);
    ASSERT_TRUE(Open());
    ASSERT_EQ(1u, storage_.journal->CountRecords());
    EXPECT_EQ(0x0177u, Front().propOffset);
}

TEST_F(JournalTest, TheFingerprintIsPartOfTheKeyOfValuesAndDatabaseRecords) {
    for (const char type : {'\1', '\10'}) {
        Bytes records = InOrder(kThreeRecords, {1, 1, 1});
        records[24] = records[32 + 24] = records[64 + 24] = type;
        records[64 + 10] = '\x99';
        Put(kJournal, records);
        ASSERT_TRUE(Open());
        EXPECT_EQ(2u, storage_.journal->CountRecords()) << int{type};
    }
}

TEST_F(JournalTest, AJournalThatStaysIsAsLoaded) {
    Put(kJournal, kThreeRecords);
    ASSERT_TRUE(Open());
    EXPECT_TRUE(JournalIsAsLoaded(storage_));
    ASSERT_NE(0, Save());
    ASSERT_TRUE(Open());
    EXPECT_TRUE(JournalIsAsLoaded(storage_));
}

TEST_F(JournalTest, AnotherCardsJournalIsNotAsLoaded) {
    Put(kJournal, kThreeRecords);
    ASSERT_TRUE(Open());
    Put(kJournal, InOrder(kThreeRecords, {0, 1}));
    EXPECT_FALSE(JournalIsAsLoaded(storage_));
}

TEST_F(JournalTest, AJournalOfTheSameSizeAndAnotherTimeIsNotAsLoaded) {
    Put(kJournal, kThreeRecords);
    ASSERT_TRUE(Open());
    device().Touch(Wide(kJournal), storage_.journal_stamp.modified + 20000000);
    EXPECT_FALSE(JournalIsAsLoaded(storage_));
}

TEST_F(JournalTest, AnotherTimeZoneMakesNoOtherJournal) {
    constexpr std::uint64_t kHour = 36000000000;
    Put(kJournal, kThreeRecords);
    ASSERT_TRUE(Open());
    const std::uint64_t time = storage_.journal_stamp.modified;
    for (const std::uint64_t moved : {time + kHour, time - kHour, time + kHour / 2}) {
        device().Touch(Wide(kJournal), moved);
        EXPECT_TRUE(JournalIsAsLoaded(storage_));
    }
    device().Touch(Wide(kJournal), time + kHour / 4 + 20000000);
    EXPECT_FALSE(JournalIsAsLoaded(storage_));
}

// The card keeps local times of two seconds: the user has gone to another zone, then summer comes.
TEST_F(JournalTest, AJournalOnACardWithLocalTimesIsAsLoadedInAnyZone) {
    device().Set("card.times", "fat");
    device().Set("zone", "CET-1CEST,M3.5.0/2,M10.5.0/3");
    device().Set("clock", "2003-02-28T07:30:01.500Z");
    Put(kJournal, kThreeRecords);
    ASSERT_TRUE(Open());
    device().Set("zone", "IST-5:30");
    EXPECT_TRUE(JournalIsAsLoaded(storage_));
    device().Set("zone", "CET-1CEST,M3.5.0/2,M10.5.0/3");
    device().Set("clock", "2003-07-01T07:30:00Z");
    EXPECT_TRUE(JournalIsAsLoaded(storage_));
    device().Set("clock", "2003-07-01T07:31:00Z");
    Put(kJournal, InOrder(kThreeRecords, {2, 1, 0}));
    EXPECT_FALSE(JournalIsAsLoaded(storage_));
}

TEST_F(JournalTest, AJournalThatIsGoneIsNotAsLoaded) {
    Put(kJournal, kThreeRecords);
    ASSERT_TRUE(Open());
    ASSERT_TRUE(::DeleteFileW(Wide(kJournal)));
    EXPECT_FALSE(JournalIsAsLoaded(storage_));
}

TEST_F(JournalTest, WithoutAListNothingIsAsLoaded) {
    Put(kJournal, kThreeRecords);
    EXPECT_FALSE(JournalIsAsLoaded(storage_));
}

TEST_F(JournalTest, AFinalShortReadIsStillARecord) {
    Bytes records = InOrder(kThreeRecords, {0});
    records.push_back(0x4E);
    Put(kJournal, records);
    ASSERT_TRUE(Open());
    ASSERT_EQ(2u, storage_.journal->CountRecords());
    // What is missing is as in the record before.
    ObjectRecord expected;
    std::memcpy(&expected, records.data(), sizeof expected);
    expected.dwOID = 0x0100004E;
    EXPECT_EQ(0, std::memcmp(&expected, &Front(), sizeof expected));
}

TEST_F(JournalTest, AJournalOfOneByteIsOneRecord) {
    Put(kJournal, "\x4D");
    ASSERT_TRUE(Open());
    ASSERT_EQ(1u, storage_.journal->CountRecords());
    EXPECT_EQ(0x4Du, Front().dwOID);
    EXPECT_EQ(ObjectType::kNone, Front().type);
}

TEST_F(JournalTest, OpeningAgainForgetsTheListBefore) {
    Put(kJournal, kThreeRecords);
    ASSERT_TRUE(Open());
    Put(kJournal, InOrder(kThreeRecords, {1}));
    ASSERT_TRUE(Open());
    EXPECT_EQ(1u, storage_.journal->CountRecords());
}

TEST_F(JournalTest, ADeletionWithoutABlockIsLoggedAndWritten) {
    storage_.journal = ObjectList::CreateList();
    ObjectRecord record = FileRecord(1, 1);
    record.propOffset = 0;
    record.flags = JF_DELETE;
    ASSERT_TRUE(storage_.journal->AddObject(record));
    record.flags = JF_ADD;  // without a block too, but no deletions
    for (const std::uint32_t oid : {2u, 3u}) {
        record.dwOID = oid;
        ASSERT_TRUE(storage_.journal->AddObject(record));
    }
    EXPECT_EQ(1, Save());
    EXPECT_EQ(96u, Content(kJournal).size());
    EXPECT_EQ(1u, Occurrences(Log(),
                              u"Module: CloseJournal; Message: Empty propOffset, but "
                              u"JF_DELETE\r\n"));
    EXPECT_EQ(0u, Log().find(u"E - "));
}

TEST_F(JournalTest, ClosingWithoutSavingLeavesTheFileAlone) {
    Put(kJournal, kThreeRecords);
    ASSERT_TRUE(Open());
    ASSERT_TRUE(storage_.journal->AddObject(FileRecord(9, 3)));
    EXPECT_EQ(0, CloseJournal(storage_.names, storage_.journal, false, nullptr));
    EXPECT_EQ(nullptr, storage_.journal);
    EXPECT_EQ(kThreeRecords, Content(kJournal));
}

TEST_F(JournalTest, SavingAnEmptyListMakesAnEmptyJournalAndAnswers0) {
    Put(kJournal, kThreeRecords);
    storage_.journal = ObjectList::CreateList();
    EXPECT_EQ(0, Save());
    EXPECT_EQ(Bytes{}, Content(kJournal));
}

TEST_F(JournalTest, ClosingAnAbsentListDoesNothing) {
    Put(kJournal, kThreeRecords);
    EXPECT_EQ(0, Save());
    EXPECT_EQ(kThreeRecords, Content(kJournal));
}

TEST_F(JournalTest, LoadingReportsOneStepARecord) {
    Bytes records = InOrder(kThreeRecords, {0, 1});
    records.push_back(0x4E);
    Put(kJournal, records);
    ASSERT_TRUE(OpenJournal(storage_, &progress_));
    // The short record is not counted at first, but it is a step.
    EXPECT_EQ((Lines{"begin 2", "Loading object list...", "step", "step", "step"}),
              progress_.events);
}

TEST_F(JournalTest, LoadingAnEmptyJournalReportsNothing) {
    ASSERT_TRUE(OpenJournal(storage_, &progress_));
    EXPECT_TRUE(progress_.events.empty());
}

TEST_F(JournalTest, SavingReportsOneStepARecord) {
    Put(kJournal, kThreeRecords);
    ASSERT_TRUE(Open());
    EXPECT_EQ(1, CloseJournal(storage_.names, storage_.journal, true, &progress_));
    EXPECT_EQ((Lines{"begin 3", "Saving object list...", "step", "step", "step"}),
              progress_.events);
}

TEST_F(JournalTest, TheNextStateIsBehindTheHighest) {
    Put(kJournal, kThreeRecords);
    ASSERT_TRUE(Open());
    EXPECT_EQ(2u, HighestStateNumber(storage_.journal.get()));
    EXPECT_EQ(1u, LowestStateNumber(storage_.journal.get()));
    EXPECT_EQ(3u, NextStateNumber(storage_.journal.get()));
}

TEST_F(JournalTest, BehindTheLastStateThereIsNoStateZero) {
    storage_.journal = ObjectList::CreateList();
    ASSERT_TRUE(storage_.journal->AddObject(FileRecord(1, 0xFFFF)));
    EXPECT_EQ(0x10000u, NextStateNumber(storage_.journal.get()));
}

TEST_F(JournalTest, WithoutAListTheNextStateIsTheFirst) {
    EXPECT_EQ(1u, NextStateNumber(nullptr));
    EXPECT_EQ(0u, HighestStateNumber(nullptr));
    EXPECT_EQ(0xFFFFFFFFu, LowestStateNumber(nullptr));
    const auto empty = ObjectList::CreateList();
    EXPECT_EQ(1u, NextStateNumber(empty.get()));
    EXPECT_EQ(0u, HighestStateNumber(empty.get()));
    EXPECT_EQ(0xFFFFFFFFu, LowestStateNumber(empty.get()));
}

TEST_F(JournalTest, TheFilesSizeIsInBytes) {
    EXPECT_EQ(kNoFileSize, JournalFileSize(storage_.names));
    EXPECT_FALSE(Exists(kJournal));
    Put(kJournal, kThreeRecords);
    EXPECT_EQ(96u, JournalFileSize(storage_.names));
    const UniqueHandle held = Hold(kJournal);
    EXPECT_EQ(kNoFileSize, JournalFileSize(storage_.names));
}

// Loading shares reading, asking for the size does not.
TEST_F(JournalTest, AJournalThatIsBeingReadIsLoaded) {
    Put(kJournal, kThreeRecords);
    const UniqueHandle reader = Reader(kJournal);
    EXPECT_TRUE(Open());
    EXPECT_EQ(kNoFileSize, JournalFileSize(storage_.names));
}

// The program was stopped between the deletion of the journal and the renaming.
TEST_F(JournalTest, ATemporaryJournalAloneBesideAStorageIsTheJournal) {
    Put(kSav, "x");
    Put(kJournalTemporary, kThreeRecords);
    ASSERT_TRUE(Open());
    EXPECT_EQ(3u, storage_.journal->CountRecords());
    EXPECT_EQ(kThreeRecords, Content(kJournal));
    EXPECT_FALSE(Exists(kJournalTemporary));
}

TEST_F(JournalTest, ATemporaryJournalBesideAJournalIsIgnoredAndOverwritten) {
    Put(kSav, "x");
    Put(kJournal, InOrder(kThreeRecords, {0}));
    Put(kJournalTemporary, kThreeRecords);
    ASSERT_TRUE(Open());
    EXPECT_EQ(1u, storage_.journal->CountRecords());
    EXPECT_EQ(kThreeRecords, Content(kJournalTemporary));
    EXPECT_EQ(1, Save());
    EXPECT_EQ(InOrder(kThreeRecords, {0}), Content(kJournal));
    EXPECT_FALSE(Exists(kJournalTemporary));
}

TEST_F(JournalTest, ATemporaryJournalWithoutAStorageIsNoJournal) {
    Put(kJournalTemporary, kThreeRecords);
    ASSERT_TRUE(Open());
    EXPECT_EQ(0u, storage_.journal->CountRecords());
    EXPECT_TRUE(Exists(kJournalTemporary));
}

TEST_F(JournalTest, AThousandRecordsComeBackAsTheyWere) {
    storage_.journal = ObjectList::CreateList();
    Bytes expected;
    for (std::uint32_t i = 1; i <= 1000; ++i) {
        ObjectRecord record = FileRecord(i, static_cast<std::uint16_t>(i % 7 + 1));
        ASSERT_TRUE(storage_.journal->AddObject(record));
        expected.insert(0, BytesOf(record));
    }
    EXPECT_EQ(1, Save());
    EXPECT_EQ(expected, Content(kJournal));
    ASSERT_TRUE(Open());
    EXPECT_EQ(1000u, storage_.journal->CountRecords());
    EXPECT_EQ(8u, NextStateNumber(storage_.journal.get()));
}

}  // namespace
}  // namespace tolvenar
