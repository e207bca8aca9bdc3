// Backups as a whole: the states that they write and how they end.
#include "snapshot/records/checksum.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

constexpr std::size_t kHead = 236;  // of a silent storage

class BackupWriterTest : public EngineTest {};

TEST_F(BackupWriterTest, TwoStatesStandInTheStorageFileByteForByte) {
    device().Command("set clock 2001-02-03T04:05:06");
    ASSERT_EQ(Done(), Backup(1));
    const std::uint64_t now = 0x01C08D967DB50500;  // 2001-02-03 04:05:06 as a FILETIME
    const std::string first = Content(kSav);
    EXPECT_EQ(Block(0, 0, now, 0, kState, u"Title"), first.substr(kHead, 38));

    device().PutFile(L"\\n.txt", "123456789");
    device().Touch(L"\\n.txt", 0x01C0000011223300);
    device().SetAttributes(L"\\n.txt", FILE_ATTRIBUTE_ARCHIVE);
    ASSERT_TRUE(Backup(2, u"two").done);
    const std::string title = Block(0, 0, now, 6, kState, u"Title") + Units(u"two");
    const std::string file = Block(0x20, 0, 0x01C0000011223300, 9, kFile, u"\\n.txt") + "123456789";
    const std::string second = Content(kSav);
    ASSERT_EQ(first.size() + title.size() + file.size(), second.size());
    EXPECT_EQ(first, second.substr(0, first.size())) << "a stored state was changed";
    EXPECT_EQ(title, second.substr(first.size(), title.size()));
    EXPECT_EQ(file, second.substr(first.size() + title.size()));
}

TEST_F(BackupWriterTest, TheFirstStatesBlockStandsAtOffset236) {
    ASSERT_EQ(Done(), Backup(1));
    const ObjectRecord* state = JournalRecord(1, 0, kState);
    ASSERT_NE(nullptr, state);
    EXPECT_EQ(kHead, state->propOffset);
    EXPECT_EQ(kHead + 38, state->data_offset);
}

TEST_F(BackupWriterTest, AStateRecordIsOfType32AndItsDataIsTheDescription) {
    ASSERT_TRUE(Backup(1, u"before the trip").done);
    const ObjectRecord* state = JournalRecord(1, 0, kState);
    ASSERT_NE(nullptr, state);
    EXPECT_EQ(0u, state->dwOID);
    EXPECT_EQ(0u, state->TolvOID);
    EXPECT_EQ(JF_ADD, state->flags);
    EXPECT_EQ(0, state->content_fingerprint);
    EXPECT_EQ(Units(u"before the trip"), Content(kSav).substr(state->data_offset, 30));
    EXPECT_EQ(Checksum16(Content(kSav).data() + kHead, 38), state->info_checksum);
}

TEST_F(BackupWriterTest, ADescriptionIsCutTo199Units) {
    ASSERT_TRUE(Backup(1, Text(250, u'd').c_str()).done);
    EXPECT_EQ(Word(398), Content(kSav).substr(kHead + 16, 4));
}

TEST_F(BackupWriterTest, DeletionsWriteNoBlock) {
    device().PutFile(L"\\gone.txt", "gone");
    const CEOID oid = OidOfPath(L"\\gone.txt");
    ASSERT_EQ(Done(), Backup(1));
    const std::size_t before = Content(kSav).size();
    device().Remove(L"\\gone.txt");
    ASSERT_TRUE(Backup(2).done);
    EXPECT_EQ(before + 38, Content(kSav).size()) << "the state's block only";
    const ObjectRecord* deletion = JournalRecord(2, oid, kFile);
    ASSERT_NE(nullptr, deletion);
    EXPECT_EQ(JF_DELETE, deletion->flags);
    EXPECT_EQ(JournalRecord(1, oid, kFile)->propOffset, deletion->propOffset);
}

TEST_F(BackupWriterTest, WithoutADifferenceNothingIsWritten) {
    ASSERT_EQ(Done(), Backup(1));
    const std::string sav = Content(kSav);
    const std::string journal = Content(kJournal);
    progress_.texts.clear();
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
    EXPECT_EQ(sav, Content(kSav));
    EXPECT_EQ(journal, Content(kJournal));
    ASSERT_EQ(8u + 4u, progress_.texts.size());
    EXPECT_EQ(std::vector<Text>(4, u"Complete."),
              std::vector<Text>(progress_.texts.begin() + 8, progress_.texts.end()));
    ExpectClosed();
    EXPECT_NE(nullptr, storage_.journal);
}

TEST_F(BackupWriterTest, TheStepsOfABackupAreAnnouncedInOrder) {
    ASSERT_EQ(Done(), Backup(1));
    EXPECT_EQ(
        (std::vector<Text>{u"Preparing object list...", u"Scanning files...",
                           u"Scanning HKCR registry entry...", u"Scanning HKCU registry entry...",
                           u"Scanning HKLM registry entry...", u"Scanning HKU registry entry...",
                           u"Scanning databases...", u"Finding differences...", u"Backing Up...",
                           u"Saving object list...", u"Loading object list..."}),
        progress_.texts);
    const std::size_t records = storage_.journal->CountRecords();
    EXPECT_EQ((std::vector<std::size_t>{8, records, records, records}), progress_.begins);
}

TEST_F(BackupWriterTest, AfterASuccessTheJournalIsLoadedAndEverythingElseIsFreed) {
    ASSERT_EQ(Done(), Backup(1));
    ExpectClosed();
    ASSERT_NE(nullptr, storage_.journal);
    EXPECT_EQ(1, storage_.journal->MaxStateNumber());
    for (const ObjectRecord& record : RecordsOf(*storage_.journal)) {
        EXPECT_EQ(nullptr, storage_.registry_objects.RegObjectFind(
                               record.TolvOID == 0 ? 1 : record.TolvOID));
    }
}

TEST_F(BackupWriterTest, TheJournalMayStayClosed) {
    EXPECT_EQ(Done(), Backup(1, u"", true));
    EXPECT_EQ(nullptr, storage_.journal);
    ExpectClosed();
}

TEST_F(BackupWriterTest, ABackupThatNeedsExactlyTheFreeSpaceProceedsAndOneByteMoreDoesNot) {
    device().PutFile(L"\\a.txt", "a");
    device().Set("card.free", "0");
    EXPECT_EQ(Failed(ResultCode::kNoSpace), Backup(1));
    const std::uint64_t needed = backup_.bytes_needed;
    EXPECT_EQ(kHead, Content(kSav).size());
    device().Set("card.free", std::to_string(needed - 1));
    EXPECT_EQ(Failed(ResultCode::kNoSpace), Backup(1));
    EXPECT_EQ(needed, backup_.bytes_needed);
    EXPECT_EQ(kHead, Content(kSav).size());
    ExpectClosed();
    EXPECT_NE(nullptr, storage_.journal);
    device().Set("card.free", std::to_string(needed));
    EXPECT_EQ(Done(), Backup(1));
    // Blocks and data, 32 bytes for each record, the old journal and the spare bytes.
    EXPECT_EQ(Content(kSav).size() - kHead + Content(kJournal).size() + 10000, needed);
}

// "--" would delete the live journal.
TEST_F(BackupWriterTest, AStorageInTheObjectStoreIsInNoStateWhateverTheCaseOfItsName) {
    device().MakeFolder(L"\\Docs");
    ASSERT_NE(nullptr, CreateStorage(u"\\Docs\\backup", nullptr));
    OpenStorageResult result{};
    ASSERT_TRUE(MakeStorageNames(u"\\docs\\Backup", storage_.names));
    ASSERT_TRUE(OpenStorage(storage_.names.sav, storage_, result));
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    device().PutFile(L"\\Docs\\BACKUP.jrn_old2", "x");
    device().PutFile(L"\\Docs\\Tolvenar_Log.txt", "x");
    ASSERT_EQ(Done(), Backup(1));
    for (const wchar_t* name :
         {L"backup.sav", L"backup.jrn", L"BACKUP.jrn_old2", L"Tolvenar_Log.txt"}) {
        const CEOID oid = OidOfPath((std::wstring(L"\\Docs\\") + name).c_str());
        EXPECT_EQ(nullptr, RecordOf(*storage_.journal, oid)) << oid;
    }
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
}

// Oddity 6: a card with more than 4 GB free counts with what is over.
TEST_F(BackupWriterTest, OnlyTheLowHalfOfTheFreeSpaceIsLookedAt) {
    device().Set("card.free", "4294967296");
    EXPECT_EQ(Failed(ResultCode::kNoSpace), Backup(1));
    device().Set("card.free", std::to_string(4294967296 + backup_.bytes_needed));
    EXPECT_TRUE(Backup(1).done);
}

TEST_F(BackupWriterTest, BehindTheLastStateNumberTheStorageFileIsFullAndTheLogSaysSo) {
    EXPECT_EQ(Failed(ResultCode::kNoSpace), Backup(0x10000));
    EXPECT_TRUE(backup_.storage_is_full);
    EXPECT_EQ(kHead, Content(kSav).size());
    EXPECT_EQ((Lines{"E DoBackup: The storage file has no number for another state"}), LogLines());
    ASSERT_EQ(Done(), Backup(0xFFFF));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(0x10000));
}

TEST_F(BackupWriterTest, TheLastStateNumberIsUsed) {
    EXPECT_EQ(Done(), Backup(0xFFFF));
    EXPECT_EQ(0xFFFF, storage_.journal->MaxStateNumber());
}

}  // namespace
}  // namespace tolvenar
