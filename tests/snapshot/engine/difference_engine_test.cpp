#include "snapshot/engine/difference_engine.h"

#include "snapshot/text/log.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class DifferenceEngineTest : public EngineTest {
protected:
    // Enters an addition of state `state` in the journal; its block is the storage's first bytes
    // behind the head, if any.
    void AddToJournal(std::uint16_t state, CEOID oid, ObjectType type = kFile) {
        ObjectRecord record{};
        record.dwOID = oid;
        record.propOffset = 236;
        record.state_number = state;
        record.flags = JF_ADD;
        record.type = type;
        ASSERT_TRUE(storage_.journal->AddObject(record));
    }

    const ObjectRecord* DifferenceOf(CEOID oid) { return RecordOf(*storage_.difference, oid); }
    // -1 when it is no difference.
    int FlagsOf(CEOID oid) {
        const ObjectRecord* record = DifferenceOf(oid);
        return record == nullptr ? -1 : record->flags;
    }
};

TEST_F(DifferenceEngineTest, TheStepsOfAComparisonWithTheDeviceAreAnnouncedInOrder) {
    ASSERT_EQ(1, FindDifference(engine_, 0));
    EXPECT_EQ((Texts{u"Preparing object list...", u"Scanning files...",
                     u"Scanning HKCR registry entry...", u"Scanning HKCU registry entry...",
                     u"Scanning HKLM registry entry...", u"Scanning HKU registry entry...",
                     u"Scanning databases...", u"Finding differences..."}),
              progress_.texts);
    EXPECT_EQ(std::vector<std::size_t>{8}, progress_.begins);
}

TEST_F(DifferenceEngineTest, WhatCouldNotBeReadIsThatOfTheLastScan) {
    device().PutFile(L"\\held.txt", "held");
    {
        const auto held = device().Lock(L"\\held.txt");
        ASSERT_EQ(1, FindDifference(engine_, 0));
        ASSERT_EQ(1, FindDifference(engine_, 0));
    }
    ASSERT_NE(nullptr, storage_.left_out.First());
    EXPECT_EQ(u"\\held.txt", Text(storage_.left_out.First()->name));
    EXPECT_EQ(nullptr, storage_.left_out.First()->next);
    ASSERT_EQ(1, FindDifference(engine_, 0));
    EXPECT_EQ(nullptr, storage_.left_out.First());
}

TEST_F(DifferenceEngineTest, FilesKeysValuesAndDatabasesOfTheDeviceAreAdditionsToAnEmptyState) {
    device().PutFile(L"\\a.txt", "a");
    const CEOID database = MakeDatabase(L"First");
    const CEOID db_record = AddRecord(L"First", {{0x00010003, 1}});
    SetValue(HKEY_USERS, L"T", L"v", REG_SZ, "x");
    ASSERT_EQ(1, FindDifference(engine_, 0));
    for (const CEOID oid : {OidOfPath(L"\\a.txt"), database, db_record}) {
        EXPECT_EQ(JF_ADD, FlagsOf(oid));
    }
    EXPECT_NE(nullptr, DifferenceOf(0)) << "registry objects";
}

TEST_F(DifferenceEngineTest, WhatOnlyTheStateHasIsADeletion) {
    AddToJournal(1, 0x00ABCDEF);
    ASSERT_EQ(1, FindDifference(engine_, 1));
    EXPECT_EQ(JF_DELETE, FlagsOf(0x00ABCDEF));
    EXPECT_EQ(1, DifferenceOf(0x00ABCDEF)->state_number);
}

TEST_F(DifferenceEngineTest, AStateRecordIsNoDifference) {
    AddToJournal(1, 0, kState);
    ASSERT_EQ(1, FindDifference(engine_, 1));
    for (const ObjectRecord& record : RecordsOf(*storage_.difference)) {
        EXPECT_NE(kState, record.type);
    }
}

// The storage's own files are named at the time of the scan.
TEST_F(DifferenceEngineTest, TheStoragesOwnFilesAreNoDifference) {
    device().PutFile(L"\\Home.sav", "x");
    device().PutFile(L"\\Home.jrn", "x");
    device().PutFile(L"\\Home.jrn_1", "x");
    device().PutFile(L"\\Home.txt", "x");
    ASSERT_EQ(1, FindDifference(engine_, 0));
    EXPECT_EQ(nullptr, DifferenceOf(OidOfPath(L"\\Home.sav")));
    EXPECT_EQ(nullptr, DifferenceOf(OidOfPath(L"\\Home.jrn")));
    EXPECT_EQ(nullptr, DifferenceOf(OidOfPath(L"\\Home.jrn_1")));
    EXPECT_NE(nullptr, DifferenceOf(OidOfPath(L"\\Home.txt")));
}

TEST_F(DifferenceEngineTest, TheRegistryObjectTableHoldsTheLastScanOnly) {
    SetValue(HKEY_USERS, L"T", L"v", REG_SZ, "x");
    ASSERT_EQ(1, FindDifference(engine_, 0));
    std::vector<std::uint32_t> ids;
    for (const ObjectRecord& record : RecordsOf(*storage_.difference)) {
        if (IsRegistryObject(record)) {
            ids.push_back(record.TolvOID);
        }
    }
    ASSERT_FALSE(ids.empty());
    ASSERT_EQ(1, FindDifference(engine_, 0));
    for (const std::uint32_t id : ids) {
        EXPECT_NE(nullptr, storage_.registry_objects.RegObjectFind(id));
        EXPECT_EQ(nullptr, storage_.registry_objects.RegObjectFind(id | 0x01000000))
            << "a second scan collided with the first";
    }
}

TEST_F(DifferenceEngineTest, AStorageFileThatCannotBeOpenedFailsWithoutAWord) {
    const auto held = device().Lock(Wide(kSav));
    EXPECT_EQ(0, FindDifference(engine_, 0));
    EXPECT_EQ(u"", Log());
    EXPECT_TRUE(progress_.texts.empty());
    EXPECT_EQ(0, FindDifferenceEx(engine_, 0, 1));
    EXPECT_EQ(u"", Log());
}

// It is opened for writing too, though nothing is written.
TEST_F(DifferenceEngineTest, AStorageFileThatAnotherProgramReadsStopsTheComparison) {
    const auto held = device().Lock(Wide(kSav), "read");
    EXPECT_EQ(0, FindDifference(engine_, 0));
    EXPECT_EQ(0, FindDifferenceEx(engine_, 0, 1));
}

TEST_F(DifferenceEngineTest, TheStorageFileIsNeverCreated) {
    device().Remove(Wide(kSav));
    EXPECT_EQ(0, FindDifference(engine_, 0));
    EXPECT_EQ(0, FindDifferenceEx(engine_, 0, 1));
    EXPECT_FALSE(Exists(kSav));
}

TEST_F(DifferenceEngineTest, TheStorageFileIsClosedAfterwards) {
    ASSERT_EQ(1, FindDifference(engine_, 0));
    EXPECT_TRUE(IsFree(kSav));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 0, 1));
    EXPECT_TRUE(IsFree(kSav));
}

TEST_F(DifferenceEngineTest, TheStepsOfAComparisonOfTwoStatesAreAnnouncedInOrder) {
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_EQ((Texts{u"Preparing object list...", u"Preparing list 1...", u"Preparing list 2...",
                     u"Finding differences..."}),
              progress_.texts);
    EXPECT_EQ(std::vector<std::size_t>{4}, progress_.begins);
}

TEST_F(DifferenceEngineTest, TwoStatesAreComparedWithoutLookingAtTheDevice) {
    device().PutFile(L"\\a.txt", "a");
    AddToJournal(1, 1001);
    AddToJournal(2, 1002);
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_EQ(1u, storage_.difference->CountRecords());
    EXPECT_EQ(JF_ADD, FlagsOf(1002));
}

TEST_F(DifferenceEngineTest, StateZeroIsAnEmptyState) {
    AddToJournal(1, 1001);
    ASSERT_EQ(1, FindDifferenceEx(engine_, 0, 1));
    EXPECT_EQ(JF_ADD, FlagsOf(1001));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 0));
    EXPECT_EQ(JF_DELETE, FlagsOf(1001));
}

TEST_F(DifferenceEngineTest, AStateBeforeTheFirstOneIsEmpty) {
    AddToJournal(3, 1001);
    ASSERT_EQ(1, FindDifferenceEx(engine_, 2, 3));
    EXPECT_EQ(JF_ADD, FlagsOf(1001));
}

TEST_F(DifferenceEngineTest, WithoutAJournalThereIsNoComparison) {
    storage_.journal.reset();
    EXPECT_EQ(0, FindDifference(engine_, 0));
    EXPECT_EQ(0, FindDifferenceEx(engine_, 0, 1));
    EXPECT_TRUE(IsFree(kSav));
}

// Every allocation of the comparison of two states fails once: it says so, or it does not need it.
TEST_F(DifferenceEngineTest, AListThatCannotBeMadeIsLoggedAndTheStorageFileClosed) {
    AddToJournal(1, 1001);
    progress_.quiet = true;
    bool all_met = false;
    for (int n = 1; n < 1000 && !all_met; ++n) {
        Fail("HeapAlloc", n, ERROR_NOT_ENOUGH_MEMORY);
        const int result = FindDifferenceEx(engine_, 0, 1);
        all_met = TakePendingFault(n);
        device().DropFaults();
        EXPECT_TRUE(result == 0 || storage_.difference->CountRecords() == 1) << n;
        EXPECT_TRUE(IsFree(kSav));
    }
    EXPECT_TRUE(all_met);
    EXPECT_NE(Text::npos, Log().find(u"Module: FindDifferenceEx; Message: Can't create journal"));
}

// The scanned list is told in the log, the difference list in a message box without an owner.
TEST_F(DifferenceEngineTest, AListOfTheDeviceThatCannotBeMadeIsTold) {
    progress_.quiet = true;
    bool shown = false;
    bool all_met = false;
    for (int n = 1; n < 4000 && !all_met; ++n) {
        device().Fault("MessageBoxW", 1, 1, ERROR_NOT_ENOUGH_MEMORY,
                       "Could't create journal, FindDifference, 65536");
        Fail("HeapAlloc", n, ERROR_NOT_ENOUGH_MEMORY);
        FindDifference(engine_, 0);
        all_met = TakePendingFault(n);
        shown = shown || device().Faults().find("MessageBoxW") == std::string::npos;
        device().DropFaults();
        ASSERT_TRUE(IsFree(kSav));
    }
    EXPECT_TRUE(all_met);
    EXPECT_NE(Text::npos, Log().find(u"Module: FindDifference; Message: Could't create journal"));
    EXPECT_TRUE(shown);
}

// What a scan had no memory for would count as gone: every allocation of a comparison with the
// device fails once, and it says so or lacks nothing.
TEST_F(DifferenceEngineTest, AScanWithoutMemoryForAllIsNoComparison) {
    progress_.quiet = true;
    device().PutFile(L"\\Docs\\a.txt", "text");
    const auto lock = device().Lock(L"\\Docs\\a.txt");
    SetValue(HKEY_CURRENT_USER, L"Test", L"Large", REG_BINARY, Bytes(5000, 'l'));
    MakeDatabase(L"People");
    AddRecord(L"People", L"Ann", 1);
    ASSERT_EQ(1, FindDifference(engine_, 0));
    const std::size_t whole = storage_.difference->CountRecords();
    const LogPause no_log;
    int lacked = 0;
    bool all_met = false;
    for (int n = 1; n < 4000 && !all_met; ++n) {
        device().Fault("MessageBoxW", 1, 1, ERROR_NOT_ENOUGH_MEMORY);
        Fail("HeapAlloc", n, ERROR_NOT_ENOUGH_MEMORY);
        const int result = FindDifference(engine_, 0);
        all_met = TakePendingFault(n);
        device().DropFaults();
        if (storage_.left_out.lacks_memory()) {
            ++lacked;
            EXPECT_EQ(0, result) << n;
            EXPECT_EQ(nullptr, storage_.difference) << n;
        }
        EXPECT_TRUE(result == 0 || (storage_.difference->CountRecords() == whole &&
                                    storage_.left_out.First() != nullptr))
            << n;
    }
    EXPECT_TRUE(all_met);
    EXPECT_LT(10, lacked);
}

TEST_F(DifferenceEngineTest, AScanWithoutMemorySaysHowManyObjectsItFound) {
    // The data of this value alone are so large.
    SetValue(HKEY_CURRENT_USER, L"Test", L"Large", REG_BINARY, Bytes(54321, 'l'));
    device().Fault("HeapAlloc", 1, 1, ERROR_NOT_ENOUGH_MEMORY, ", 54323");
    EXPECT_EQ(0, FindDifference(engine_, 0));
    device().EndFaults();
    EXPECT_NE(Text::npos,
              Log().find(u"Module: FindDifference; Message: Not enough memory, objects found: "));
}

}  // namespace
}  // namespace tolvenar
