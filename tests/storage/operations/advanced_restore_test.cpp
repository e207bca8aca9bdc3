// Restores of the differences between two states.
#include "snapshot/engine/difference_engine.h"
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

class AdvancedRestoreTest : public RestoreEngineTest {
protected:
    // State 1 with one of everything, state 2 with it changed; the list of differences between.
    void MakeTwoStates() {
        device().PutFile(L"\\a.txt", "one");
        SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
        MakeDatabase(L"People");
        AddRecord(L"People", L"Ann", 1);
        ASSERT_EQ(Done(), Backup(1));
        device().PutFile(L"\\a.txt", "two, longer");
        SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(2));
        AddRecord(L"People", L"Bob", 2);
        ASSERT_EQ(Done(), Backup(2));
        ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    }
};

TEST_F(AdvancedRestoreTest, TheChangesOfAStateAreTakenBack) {
    MakeTwoStates();
    progress_.texts.clear();
    EXPECT_EQ(Done(), RestoreAdvanced(false));
    EXPECT_EQ((Texts{u"Restoring...", u"Loading object list..."}), progress_.texts);
    EXPECT_EQ("one", device().FileBytes(L"\\a.txt"));
    EXPECT_EQ("4:" + Word(1), Value(HKEY_CURRENT_USER, L"Key", L"v"));
    ExpectClosed();
}

TEST_F(AdvancedRestoreTest, InvertedTheyAreAppliedAgain) {
    MakeTwoStates();
    ASSERT_TRUE(RestoreAdvanced(false).done);
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_TRUE(RestoreAdvanced(true).done);
    EXPECT_EQ("two, longer", device().FileBytes(L"\\a.txt"));
    EXPECT_EQ("4:" + Word(2), Value(HKEY_CURRENT_USER, L"Key", L"v"));
}

TEST_F(AdvancedRestoreTest, DatabasesAreLeftAloneWithoutTheSetting) {
    MakeTwoStates();
    EXPECT_EQ(Done(), RestoreAdvanced(false));
    EXPECT_EQ((Lines{"Ann=1", "Bob=2"}), Records(u"People"));
}

TEST_F(AdvancedRestoreTest, DatabasesAreRestoredWithTheSetting) {
    MakeTwoStates();
    SetAdvancedDatabaseRestoring(1);
    EXPECT_TRUE(RestoreAdvanced(false).done);
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"People"));
}

// Any number but the one that stands for an absent setting.
TEST_F(AdvancedRestoreTest, TheSettingIsOnWithAnyOfItsLowerBits) {
    MakeTwoStates();
    SetAdvancedDatabaseRestoring(0x80000000);
    EXPECT_TRUE(RestoreAdvanced(false).done);
    EXPECT_EQ((Lines{"Ann=1", "Bob=2"}), Records(u"People"));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    SetAdvancedDatabaseRestoring(2);
    RestoreAdvanced(false);
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"People"));
}

TEST_F(AdvancedRestoreTest, AFullRestoreTakesDatabasesWhateverTheSettingSays) {
    MakeTwoStates();
    SetAdvancedDatabaseRestoring(0);
    EXPECT_TRUE(Restore(1).done);
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"People"));
}

// Oddity 32: ids of objects that an advanced restore made anew are not in the journal.
TEST_F(AdvancedRestoreTest, TheJournalIsFreedWithoutSavingAndLoadedAgain) {
    MakeTwoStates();
    const std::string journal = Content(kJournal);
    EXPECT_TRUE(RestoreAdvanced(false).done);
    EXPECT_EQ(journal, Content(kJournal));
    ASSERT_NE(nullptr, storage_.journal);
    EXPECT_EQ(journal.size() / 32, storage_.journal->CountRecords());
    EXPECT_EQ(nullptr, RecordOf(*storage_.journal, device().Info(L"\\a.txt").oid));
}

TEST_F(AdvancedRestoreTest, AnEmptyListIsARestoreOfNothing) {
    ASSERT_EQ(Done(), Backup(1));
    MakeDifference({});
    EXPECT_EQ(Done(), RestoreAdvanced(false));
}

TEST_F(AdvancedRestoreTest, WithoutAListNothingIsDone) {
    EXPECT_EQ(Failed(ResultCode::kSuccess),
              RestoreAdvanced(false));  // the number of an early failure too
}

// Oddity 33: the newer value is looked for on the device, which was not scanned.
TEST_F(AdvancedRestoreTest, NoPairIsPrunedFromTheDifferencesOfTwoStates) {
    ObjectRecord older = StoreValue(HKEY_CURRENT_USER, u"Software\\Kestrin2\\Tolvenar", u"onTime",
                                    REG_DWORD, Word(0));
    ObjectRecord gone = older;
    gone.state_number = 2;
    gone.flags = JF_DELETE;
    ObjectRecord newer = StoreValue(HKEY_CURRENT_USER, u"Software\\Kestrin2\\Tolvenar", u"onTime",
                                    REG_DWORD, Word(1));
    newer.state_number = 2;
    newer.TolvOID ^= 0x00FF0000;
    SaveStorage();
    SaveJournal({older, gone, newer});
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_EQ(2u, storage_.difference->CountRecords());
    EXPECT_EQ((Lines{"E RemoveKestrinAddDeleteLQNRegValue: Fail GetOIDInfo"}), LogLines());
}

// It is opened for writing too, though nothing is written.
TEST_F(AdvancedRestoreTest, AStorageFileThatAnotherProgramReadsStopsTheRestore) {
    MakeTwoStates();
    const auto lock = device().Lock(Wide(kSav), "read");
    EXPECT_EQ(Failed(), RestoreAdvanced(false));
    EXPECT_EQ("two, longer", device().FileBytes(L"\\a.txt"));
}

TEST_F(AdvancedRestoreTest, AStorageFileThatCannotBeOpenedKeepsTheList) {
    MakeTwoStates();
    device().Fault("CreateFileW", 1, 1, ERROR_SHARING_VIOLATION, "Home.sav");
    EXPECT_EQ(Failed(), RestoreAdvanced(false));
    ExpectClosed(true);
    EXPECT_EQ("two, longer", device().FileBytes(L"\\a.txt"));
}

// The sense is turned round by then, as after a restore that left something over: "+" tries again.
TEST_F(AdvancedRestoreTest, WhatAStorageFileThatCannotBeOpenedLeftOverIsTriedAgain) {
    for (const bool invert : {false, true}) {
        SCOPED_TRACE(invert);
        if (!invert) {
            MakeTwoStates();
        } else {
            ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
        }
        device().Fault("CreateFileW", 1, 1, ERROR_SHARING_VIOLATION, "Home.sav");
        EXPECT_FALSE(RestoreAdvanced(invert).done);
        EXPECT_EQ(Done(), RestoreAdvanced(true));
        EXPECT_EQ(invert ? "two, longer" : "one", device().FileBytes(L"\\a.txt"));
        device().EndFaults();
    }
}

TEST_F(AdvancedRestoreTest, ARestoreWhoseStorageFileCannotBeOpenedIsTriedAgain) {
    MakeTwoStates();
    device().PutFile(L"\\b.txt", "new");
    device().Fault("CreateFileW", 2, 1, ERROR_SHARING_VIOLATION, "Home.sav");
    EXPECT_EQ(Failed(), Restore(1));
    ExpectClosed(true);
    EXPECT_EQ("two, longer", device().FileBytes(L"\\a.txt"));
    EXPECT_TRUE(RestoreAdvanced(true).done);
    EXPECT_EQ("one", device().FileBytes(L"\\a.txt"));
    EXPECT_FALSE(device().Exists(L"\\b.txt"));
}

// A value of the device alone is known by the table that the scan made of it.
TEST_F(AdvancedRestoreTest, AValueThatCouldNotBeDeletedIsKnownUntilItIs) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"kept", REG_DWORD, Word(1));
    ASSERT_EQ(Done(), Backup(1));
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
    device().Fault("RegDeleteValueW", 1, 1000, ERROR_ACCESS_DENIED);
    std::uint32_t TolvOID = 0;
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(Done(ResultCode::kFailed), i == 0 ? Restore(1) : RestoreAdvanced(true));
        ASSERT_EQ(std::vector<std::uint16_t>{JF_DELETE}, DifferenceFlags());
        const ObjectRecord* record = storage_.difference->First()->record;
        InfoBlock block;
        EXPECT_TRUE(info_.GetOIDInfo(record->TolvOID, record->dwOID, block));
        EXPECT_EQ(u"Key\u00FFv", Text(block.name()));
        TolvOID = record->TolvOID;
    }
    device().EndFaults();
    EXPECT_EQ(Done(), RestoreAdvanced(true));
    EXPECT_EQ("", Value(HKEY_CURRENT_USER, L"Key", L"v"));
    EXPECT_EQ(nullptr, storage_.registry_objects.RegObjectFind(TolvOID));
}

TEST_F(AdvancedRestoreTest, AnUrlCacheThatTheInvertedListDeletesIsLeftOnTheDevice) {
    ASSERT_EQ(Done(), Backup(1));
    MakeDatabase(L"\\URL Cache");
    ASSERT_EQ(Done(), Backup(2));
    SetAdvancedDatabaseRestoring(1);
    ASSERT_EQ(1, FindDifferenceEx(engine_, 2, 1));
    EXPECT_TRUE(RestoreAdvanced(true).done);
    EXPECT_TRUE(DatabaseExists(u"\\URL Cache"));
}

TEST_F(AdvancedRestoreTest, WhatFailedCanBeRetriedInverted) {
    MakeTwoStates();
    {
        const auto lock = device().Lock(L"\\a.txt");
        EXPECT_EQ(Done(ResultCode::kFailed), RestoreAdvanced(false));
        EXPECT_EQ("two, longer", device().FileBytes(L"\\a.txt"));
    }
    ExpectClosed(true);
    EXPECT_EQ(Done(), RestoreAdvanced(true));
    EXPECT_EQ("one", device().FileBytes(L"\\a.txt"));
}

}  // namespace
}  // namespace tolvenar
