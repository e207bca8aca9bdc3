#include "storage/operations/restore_list.h"

#include "storage/opened/journal.h"
#include "tests/support/restore_fixture.h"

namespace tolvenar {
namespace {

class RestoreListTest : public RestoreFixture {
protected:
    bool RestoreAll(const std::vector<ObjectRecord>& walked) {
        SaveStorage();
        code_ = ResultCode::kSuccess;
        RestoreRun run(storage_.journal.get());
        return RestoreList(engine_, MakeDifference(walked), run, code_);
    }
    // "\\locked.txt", held open.
    tests::FileLock PutLocked() {
        device().PutFile(L"\\locked.txt", "held");
        return device().Lock(L"\\locked.txt");
    }
    ResultCode code_ = ResultCode::kSuccess;
};

TEST_F(RestoreListTest, AChangedFileIsDeletedAndWrittenBack) {
    device().PutFile(L"\\a.txt", "changed since");
    const ObjectRecord stored = StoreFile(u"\\a.txt", "stored");
    EXPECT_TRUE(RestoreAll({ToWriteBack(stored), LiveFile(L"\\a.txt")}));
    EXPECT_EQ(ResultCode::kSuccess, code_);
    EXPECT_EQ("stored", device().FileBytes(L"\\a.txt"));
    EXPECT_EQ((std::vector<std::uint16_t>{0, 0}), DifferenceFlags());
}

TEST_F(RestoreListTest, AFolderAndAFileInItComeBackInEitherOrder) {
    const ObjectRecord folder = ToWriteBack(StoreFolder(u"\\Sub"));
    const ObjectRecord file = ToWriteBack(StoreFile(u"\\Sub\\a.txt", "x"));
    EXPECT_TRUE(RestoreAll({folder, file}));
    EXPECT_EQ(2u, progress_.steps);
    device().Remove(L"\\Sub");
    progress_.steps = 0;
    EXPECT_TRUE(RestoreAll({file, folder}));
    EXPECT_EQ("x", device().FileBytes(L"\\Sub\\a.txt"));
    EXPECT_EQ(3u, progress_.steps);  // the file in both passes
}

TEST_F(RestoreListTest, ADeepTreeComesBackFromItsLeaves) {
    std::vector<ObjectRecord> walked{ToWriteBack(StoreFile(u"\\A\\B\\C\\D\\a.txt", "x"))};
    walked.push_back(ToWriteBack(StoreFolder(u"\\A\\B\\C\\D", 0x10, 911)));
    walked.push_back(ToWriteBack(StoreFolder(u"\\A\\B\\C", 0x10, 912)));
    walked.push_back(ToWriteBack(StoreFolder(u"\\A\\B", 0x10, 913)));
    walked.push_back(ToWriteBack(StoreFolder(u"\\A", 0x10, 914)));
    EXPECT_TRUE(RestoreAll(walked));
    EXPECT_EQ("x", device().FileBytes(L"\\A\\B\\C\\D\\a.txt"));
}

TEST_F(RestoreListTest, AFolderIsDeletedAfterWhatIsInIt) {
    device().PutFile(L"\\Sub\\a.txt", "x");
    EXPECT_TRUE(RestoreAll({LiveFile(L"\\Sub"), LiveFile(L"\\Sub\\a.txt")}));
    EXPECT_FALSE(device().Exists(L"\\Sub"));
}

TEST_F(RestoreListTest, AValueComesBackAfterItsKeyInEitherOrder) {
    const ObjectRecord value =
        ToWriteBack(StoreValue(HKEY_CURRENT_USER, u"Key", u"v", REG_DWORD, Word(7)));
    const ObjectRecord key = ToWriteBack(StoreKey(HKEY_CURRENT_USER, u"Key"));
    EXPECT_TRUE(RestoreAll({value, key}));
    EXPECT_EQ("4:" + Word(7), Value(HKEY_CURRENT_USER, L"Key", L"v"));
}

TEST_F(RestoreListTest, ADatabaseIsDeletedAfterItsRecords) {
    const CEOID database = MakeDatabase(L"People");
    const CEOID ann = AddRecord(L"People", L"Ann", 1);
    const CEOID bob = AddRecord(L"People", L"Bob", 2);
    EXPECT_TRUE(
        RestoreAll({Live(kDatabase, database), Live(kDbRecord, ann), Live(kDbRecord, bob)}));
    EXPECT_FALSE(DatabaseExists(u"People"));
}

TEST_F(RestoreListTest, ADatabaseComesBackBeforeItsRecordsInEitherOrder) {
    EXPECT_TRUE(RestoreAll({ToWriteBack(StoreRecord(u"People", 700, {{kName, 0, L"Ann"}})),
                            ToWriteBack(StoreRecord(u"People", 701, {{kName, 0, L"Bob"}})),
                            ToWriteBack(StoreDatabase(u"People", 3))}));
    EXPECT_EQ((Lines{"Ann=0", "Bob=0"}), Records(u"People"));
}

TEST_F(RestoreListTest, NoDatabaseIsLeftOpen) {
    const CEOID database = MakeDatabase(L"People");
    EXPECT_TRUE(RestoreAll({ToWriteBack(StoreRecord(u"People", 700, {{kName, 0, L"Ann"}}))}));
    EXPECT_TRUE(databases_.DeleteDatabase(database));
}

TEST_F(RestoreListTest, ALockedFileStaysInTheListWithItsSenseReversedAndTheRestIsRestored) {
    const auto lock = PutLocked();
    EXPECT_FALSE(
        RestoreAll({ToWriteBack(StoreFile(u"\\locked.txt", "stored")),
                    ToWriteBack(StoreFile(u"\\free.txt", "stored", FILE_ATTRIBUTE_ARCHIVE, 905)),
                    ToWriteBack(StoreKey(HKEY_CURRENT_USER, u"Key"))}));
    EXPECT_EQ(ResultCode::kFailed, code_);
    EXPECT_EQ((std::vector<std::uint16_t>{JF_ADD}), DifferenceFlags());
    EXPECT_EQ(900u, storage_.difference->First()->record->dwOID);
    EXPECT_EQ("stored", device().FileBytes(L"\\free.txt"));
    EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, L"Key"));
    // One pass with the failure and one without progress.
    EXPECT_EQ(4u, progress_.steps);
}

TEST_F(RestoreListTest, AnObjectThatCannotBeDeletedStaysAsOneToWriteBack) {
    const auto lock = PutLocked();
    EXPECT_FALSE(RestoreAll({LiveFile(L"\\locked.txt")}));
    EXPECT_EQ(ResultCode::kFailed, code_);
    EXPECT_EQ((std::vector<std::uint16_t>{JF_DELETE}), DifferenceFlags());
}

// Intended: the count of failures is not reset between the phases.
TEST_F(RestoreListTest, APhaseEndsAtOnceWhenItFailsAsOftenAsThePhaseBefore) {
    const auto lock = PutLocked();
    const ObjectRecord file = ToWriteBack(StoreFile(u"\\Sub\\a.txt", "x"));
    const ObjectRecord folder = ToWriteBack(StoreFolder(u"\\Sub"));
    EXPECT_FALSE(RestoreAll({LiveFile(L"\\locked.txt"), file, folder}));
    EXPECT_TRUE(device().Exists(L"\\Sub"));
    EXPECT_FALSE(device().Exists(L"\\Sub\\a.txt"));
    EXPECT_EQ((std::vector<std::uint16_t>{JF_DELETE, JF_ADD}), DifferenceFlags());
}

TEST_F(RestoreListTest, APhaseGoesOnWhenItFailsMoreOftenThanThePhaseBefore) {
    const auto lock = PutLocked();
    const ObjectRecord a = ToWriteBack(StoreFile(u"\\Sub\\a.txt", "x"));
    const ObjectRecord b = ToWriteBack(StoreFile(u"\\Sub\\b.txt", "y"));
    const ObjectRecord folder = ToWriteBack(StoreFolder(u"\\Sub"));
    EXPECT_FALSE(RestoreAll({LiveFile(L"\\locked.txt"), a, b, folder}));
    EXPECT_TRUE(device().Exists(L"\\Sub\\a.txt"));
    EXPECT_TRUE(device().Exists(L"\\Sub\\b.txt"));
    EXPECT_EQ((std::vector<std::uint16_t>{JF_DELETE}), DifferenceFlags());
}

TEST_F(RestoreListTest, TheOthersPhaseToo) {
    const auto lock = PutLocked();
    const ObjectRecord value =
        ToWriteBack(StoreValue(HKEY_CURRENT_USER, u"Key", u"v", REG_DWORD, Word(7)));
    EXPECT_FALSE(RestoreAll({ToWriteBack(StoreFile(u"\\locked.txt", "x")), value,
                             ToWriteBack(StoreKey(HKEY_CURRENT_USER, u"Key"))}));
    EXPECT_EQ("", Value(HKEY_CURRENT_USER, L"Key", L"v"));
    EXPECT_EQ((std::vector<std::uint16_t>{JF_ADD, JF_ADD}), DifferenceFlags());
}

TEST_F(RestoreListTest, AStorageFileThatCannotBeMappedLeavesListAndDeviceAsTheyWere) {
    device().PutFile(L"\\a.txt", "x");
    const ObjectRecord live = LiveFile(L"\\a.txt");
    Fail("CreateFileMappingW", 1, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_FALSE(RestoreAll({live}));
    EXPECT_EQ(ResultCode::kDriver, code_);
    EXPECT_EQ((std::vector<std::uint16_t>{JF_ADD}), DifferenceFlags());
    EXPECT_TRUE(device().Exists(L"\\a.txt"));
}

TEST_F(RestoreListTest, AnAbsentStorageFileIsADriversFailureToo) {
    code_ = ResultCode::kSuccess;
    RestoreRun run(nullptr);
    EXPECT_FALSE(RestoreList(engine_, MakeDifference({Live(kFile, 5)}), run, code_));
    EXPECT_EQ(ResultCode::kDriver, code_);
}

TEST_F(RestoreListTest, ProgressHasRoomForTwoPassesAndRestIsTaken) {
    device().Command("trace on");
    EXPECT_TRUE(RestoreAll({ToWriteBack(StoreFile(u"\\a.txt", "x")),
                            ToWriteBack(StoreKey(HKEY_CURRENT_USER, u"Key"))}));
    EXPECT_EQ((Lines{"begin 4", "Restoring...", "step", "step"}), progress_.events);
    EXPECT_EQ(1, device().Calls("Sleep"));
    EXPECT_NE(std::string::npos, device().Command("trace show Sleep").find("\"100\""));
    // Between the files and the others.
    const std::string calls = device().Command("trace show");
    EXPECT_LT(calls.find("\"CreateFileW\""), calls.find("\"Sleep\""));
    EXPECT_LT(calls.find("\"Sleep\""), calls.find("\"RegCreateKeyExW\""));
}

// Deleting goes first; nothing of it is left to write then.
TEST_F(RestoreListTest, ARecordWithBothFlagsIsDeleted) {
    device().PutFile(L"\\a.txt", "live");
    ObjectRecord both = StoreFile(u"\\a.txt", "stored");
    both.flags = JF_ADD | JF_DELETE;
    EXPECT_TRUE(RestoreAll({both}));
    EXPECT_FALSE(device().Exists(L"\\a.txt"));
    EXPECT_EQ(1u, progress_.steps);
}

TEST_F(RestoreListTest, RecordsWithoutFlagsArePassedOver) {
    ObjectRecord handled = StoreFile(u"\\a.txt", "x");
    handled.flags = 0;
    EXPECT_TRUE(RestoreAll({handled}));
    EXPECT_FALSE(device().Exists(L"\\a.txt"));
    EXPECT_EQ(0u, progress_.steps);
}

TEST_F(RestoreListTest, TheJournalInMemoryGetsTheNewIds) {
    const ObjectRecord file = StoreFile(u"\\a.txt", "x");
    const ObjectRecord locked = StoreFile(u"\\locked.txt", "x", FILE_ATTRIBUTE_ARCHIVE, 906);
    const auto lock = PutLocked();
    SaveJournal({file, locked});
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    EXPECT_FALSE(RestoreAll({ToWriteBack(file), ToWriteBack(locked)}));
    EXPECT_EQ(device().Info(L"\\a.txt").oid,
              storage_.journal->FindByKey(KeyOf(file))->record->dwOID);
    EXPECT_EQ(906u, storage_.journal->FindByKey(KeyOf(locked))->record->dwOID);
}

}  // namespace
}  // namespace tolvenar
