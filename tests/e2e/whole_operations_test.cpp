// Backups and restores as wholes, on one device: what holds over several of them, and the kept
// behaviour that only shows there.
#include <gtest/gtest.h>

#include "simulator/databases/database_store.h"
#include "simulator/files/files.h"
#include "simulator/host/host_files.h"
#include "snapshot/compare/states.h"
#include "snapshot/records/checksum.h"
#include "storage/opened/journal.h"
#include "storage/operations/backup_writer.h"
#include "storage/operations/restore_engine.h"
#include "tests/support/contents.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

using tests::Contents;
using tests::Differences;
using Lines = std::vector<std::string>;

constexpr wchar_t kSettingsKey[] = L"Software\\Kestrin2\\Tolvenar";
constexpr CEPROPID kReal = 0x00020005;
constexpr CEPROPID kFlag = 0x0003000B;

class WholeOperationsTest : public EngineTest {
protected:
    ResultCode Backup() {
        BackupResult result;
        DoBackup(engine_, NextStateNumber(storage_.journal.get()), u"", false, result);
        return result.code;
    }
    ResultCode Restore(std::uint32_t state) {
        RestoreResult result;
        DoRestore(engine_, state, nullptr, result);
        return result.code;
    }
    Contents Now() { return tests::ContentsOf(device().sim()); }
    const ObjectRecord* FindRecord(ObjectType type, std::uint16_t state) {
        ObjectRecord* record = nullptr;
        for (auto cursor = storage_.journal->First(); ObjectList::Next(cursor, nullptr, &record);) {
            if (record->type == type && record->state_number == state) {
                return record;
            }
        }
        return nullptr;
    }
    // Makes the description in a block unreadable: no object has a name that long.
    void DamageBlock(const ObjectRecord& record) {
        constexpr std::size_t kNameBytesPlace = 22;
        std::string sav = Content(kSav);
        sav.replace(record.propOffset + kNameBytesPlace, 2, "\xFE\xFF");
        Put(kSav, sav);
    }
    static std::string Dword(std::uint32_t value) {
        return {reinterpret_cast<const char*>(&value), sizeof value};
    }
};

TEST_F(WholeOperationsTest, AChangedOwnSettingIsNothingToStore) {
    SetValue(HKEY_CURRENT_USER, kSettingsKey, L"onTime", REG_DWORD, Dword(0));
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    SetValue(HKEY_CURRENT_USER, kSettingsKey, L"onTime", REG_DWORD, Dword(1));
    EXPECT_EQ(ResultCode::kNoDifference, Backup());
    EXPECT_EQ(ResultCode::kNoDifference, Restore(1));
}

// Nothing can match the damaged block; the object has an identifier of its own.
TEST_F(WholeOperationsTest, ARegistryObjectWithADamagedBlockIsStoredAnewAndThenAtRest) {
    SetValue(HKEY_CURRENT_USER, L"Test", L"v", REG_DWORD, Dword(1));
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    const ObjectRecord* value = FindRecord(ObjectType::kRegistryValue, 1);
    ASSERT_NE(nullptr, value);
    DamageBlock(*value);
    const Contents stored = Now();
    EXPECT_EQ(ResultCode::kSuccess, Backup());
    EXPECT_EQ(ResultCode::kNoDifference, Backup());
    ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Test");
    EXPECT_EQ(ResultCode::kSuccess, Restore(2));
    EXPECT_EQ(Lines(), Differences(stored, Now()));
}

TEST_F(WholeOperationsTest,
       AStateWhoseOwnRecordCouldNotBeStoredIsNoneAndTheNextBackupTakesItsPlace) {
    device().PutFile(L"\\a.txt", "first");
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    device().PutFile(L"\\a.txt", "second, longer");
    device().Fault("WriteFile", 1, 1, ERROR_WRITE_FAULT);
    ASSERT_EQ(ResultCode::kFailed, Backup());
    device().Command("faults clear");
    EXPECT_EQ(2u, NextStateNumber(storage_.journal.get()));
    EXPECT_EQ(1u, LastStoredState(storage_.journal.get()));

    const Contents second = Now();
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    EXPECT_EQ(2u, LastStoredState(storage_.journal.get()));
    EXPECT_EQ(ResultCode::kSuccess, Restore(1));
    EXPECT_EQ("first", device().FileBytes(L"\\a.txt"));
    EXPECT_EQ(ResultCode::kSuccess, Restore(2));
    EXPECT_EQ(Lines(), Differences(second, Now()));
}

// What could not be read at its only backup is in no state. It cannot be told from a file that was
// not there.
TEST_F(WholeOperationsTest, AFileThatWasHeldAtItsOnlyBackupIsDeletedByARestoreOfThatState) {
    device().PutFile(L"\\held.txt", "held");
    {
        const auto lock = device().Lock(L"\\held.txt");
        ASSERT_EQ(ResultCode::kSuccess, Backup());
    }
    EXPECT_EQ(ResultCode::kSuccess, Restore(1));
    EXPECT_FALSE(device().Exists(L"\\held.txt"));
}

TEST_F(WholeOperationsTest, AFileThatIsHeldAtALaterBackupStaysAsItWas) {
    device().PutFile(L"\\held.txt", "first");
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    device().PutFile(L"\\held.txt", "second, longer");
    device().PutFile(L"\\b.txt", "b");
    {
        const auto lock = device().Lock(L"\\held.txt");
        ASSERT_EQ(ResultCode::kSuccess, Backup());
    }
    EXPECT_EQ(ResultCode::kSuccess, Restore(2));
    EXPECT_EQ("first", device().FileBytes(L"\\held.txt"));
    EXPECT_EQ("b", device().FileBytes(L"\\b.txt"));
    EXPECT_EQ(ResultCode::kNoDifference, Backup());
}

TEST_F(WholeOperationsTest, AFolderThatCouldNotBeListedAtItsOnlyBackupIsMissingFromThatState) {
    device().PutFile(L"\\Docs\\a.txt", "a");
    device().Fault("FindFirstFileW", 1, 1, ERROR_NOT_ENOUGH_MEMORY, "\\Docs\\*.*");
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    device().Command("faults clear");
    EXPECT_EQ(ResultCode::kSuccess, Restore(1));
    EXPECT_TRUE(device().Exists(L"\\Docs"));
    EXPECT_FALSE(device().Exists(L"\\Docs\\a.txt"));
}

TEST_F(WholeOperationsTest, AChangedFileThatCouldNotBeStoredStaysInItsOlderVersion) {
    device().PutFile(L"\\a.txt", "first");
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    device().PutFile(L"\\a.txt", "second, longer");
    // The scan opens it first, then the writer.
    device().Fault("CreateFileForMappingW", 2, 1, ERROR_SHARING_VIOLATION, "a.txt");
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    device().Command("faults clear");
    const Contents second = Now();
    ASSERT_EQ(ResultCode::kSuccess, Backup()) << "the next backup stores it";
    EXPECT_EQ(ResultCode::kSuccess, Restore(2));
    EXPECT_EQ("first", device().FileBytes(L"\\a.txt"));
    EXPECT_EQ(ResultCode::kSuccess, Restore(3));
    EXPECT_EQ(Lines(), Differences(second, Now()));
}

// Both versions have one key.
TEST_F(WholeOperationsTest, AFileChangedWithTheSameSizeAndTimeIsInEitherState) {
    device().PutFile(L"\\a.txt", "first");
    const std::uint64_t time = device().Info(L"\\a.txt").modified;
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    device().PutFile(L"\\a.txt", "other");
    device().Touch(L"\\a.txt", time);
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    EXPECT_NE(std::u16string::npos, Log().find(u"Module: CmpLists; Message: Key is equal"));
    EXPECT_EQ(ResultCode::kNoDifference, Backup());
    EXPECT_EQ(ResultCode::kSuccess, Restore(1));
    EXPECT_EQ("first", device().FileBytes(L"\\a.txt"));
    EXPECT_EQ(ResultCode::kSuccess, Restore(2));
    EXPECT_EQ("other", device().FileBytes(L"\\a.txt"));
}

TEST_F(WholeOperationsTest, AValueWhoseNewDataHaveTheSameLowChecksumByteIsStored) {
    const std::string old_data = Dword(1);
    std::string new_data;
    for (std::uint32_t number = 2; new_data.empty(); ++number) {
        const std::uint16_t sum = Checksum16(Dword(number).data(), 4);
        if ((sum & 0xFF) == (Checksum16(old_data.data(), 4) & 0xFF)) {
            new_data = Dword(number);
        }
    }
    SetValue(HKEY_CURRENT_USER, L"Test", L"v", REG_DWORD, old_data);
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    const Contents before = Now();
    SetValue(HKEY_CURRENT_USER, L"Test", L"v", REG_DWORD, new_data);
    EXPECT_EQ(ResultCode::kSuccess, Backup());
    EXPECT_EQ(ResultCode::kSuccess, Restore(1));
    EXPECT_EQ(Lines(), Differences(before, Now()));
}

TEST_F(WholeOperationsTest, AChangeOfAValuesTypeAloneIsStored) {
    SetValue(HKEY_CURRENT_USER, L"Test", L"v", REG_DWORD, Dword(1));
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    const Contents before = Now();
    SetValue(HKEY_CURRENT_USER, L"Test", L"v", REG_BINARY, Dword(1));
    EXPECT_EQ(ResultCode::kSuccess, Backup());
    EXPECT_EQ(ResultCode::kSuccess, Restore(1));
    EXPECT_EQ(Lines(), Differences(before, Now()));
}

TEST_F(WholeOperationsTest, AChangedBooleanOrRealNumberIsNotSeen) {
    MakeDatabase(L"People");
    const CEOID oid = AddRecord(L"People", {{kNumber, 1}, {kFlag, 0}, {kReal, 0, L"", "", 1.5}});
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    WriteRecord(L"People", oid, {{kFlag, 1}, {kReal, 0, L"", "", 2.5}});
    EXPECT_EQ(ResultCode::kNoDifference, Backup());
}

TEST_F(WholeOperationsTest, ASortPropertyIsNotSeenWhileTheirNumberStays) {
    const CEOID oid = MakeDatabase(L"People");
    sim::databases::DatabaseStore store(device().sim());
    sim::databases::Database people = *store.Get(oid);
    people.sort_orders = {{kNumber, 0}};
    store.Change(people);
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    people.sort_orders = {{kReal, 0}};
    store.Change(people);
    EXPECT_EQ(ResultCode::kNoDifference, Backup());
    people.sort_orders.push_back({kNumber, 0});
    store.Change(people);
    EXPECT_EQ(ResultCode::kSuccess, Backup()) << "their number is";
}

// The log is a file like any other when the storage lies in the object store.
TEST_F(WholeOperationsTest, TheLogIsScannedWhenTheStorageLiesInTheObjectStore) {
    device().MakeFolder(L"\\Backup");
    const wchar_t folder[] = L"\\Backup\\";
    SetValue(HKEY_CURRENT_USER, kSettingsKey, L"StoragePath", REG_SZ,
             std::string(reinterpret_cast<const char*>(folder), sizeof folder));
    device().PutFile(L"\\Backup\\tolvenar_log.txt", "E - ");
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    device().PutFile(L"\\Backup\\tolvenar_log.txt", "E - and more");
    EXPECT_EQ(ResultCode::kSuccess, Backup());
}

// On a device that was reset a record may have the id under which another one was stored.
TEST_F(WholeOperationsTest, ARecordThatHasTheIdOfAnotherOneIsNotOverwritten) {
    const CEOID people = MakeDatabase(L"People");
    AddRecord(L"People", {{kNumber, 1}});
    const CEOID second = AddRecord(L"People", {{kNumber, 2}});
    const Contents both = Now();
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    sim::databases::DatabaseStore(device().sim()).DeleteRecord(people, second);
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    sim::databases::DatabaseStore(device().sim()).Delete(people);
    device().Set("oid.next", std::to_string(second - 1));
    ASSERT_EQ(ResultCode::kSuccess, Restore(2));
    const std::uint32_t again =
        sim::databases::DatabaseStore(device().sim()).ByName(u"People")->oid;
    ASSERT_EQ(std::vector<std::uint32_t>{second},
              sim::databases::DatabaseStore(device().sim()).Records(again));
    EXPECT_EQ(ResultCode::kSuccess, Restore(1));
    EXPECT_EQ(Lines(), Differences(both, Now()));
}

// The ids that a reset device gives out again meet those that were stored.
class ResetDeviceOperationsTest : public WholeOperationsTest,
                                  public ::testing::WithParamInterface<int> {};

TEST_P(ResetDeviceOperationsTest, EverythingComesBack) {
    device().PutFile(L"\\Docs\\a.txt", "a");
    SetValue(HKEY_CURRENT_USER, L"Test", L"v", REG_DWORD, Dword(1));
    MakeDatabase(L"People");
    const CEOID first = AddRecord(L"People", {{kNumber, 0}});
    for (std::uint32_t i = 1; i < 20; ++i) {
        AddRecord(L"People", {{kNumber, i}});
    }
    const Contents stored = Now();
    ASSERT_EQ(ResultCode::kSuccess, Backup());
    const std::wstring empty = folder() + L"\\empty";
    sim::host::MakeFolder(empty);
    device().Create(empty);
    const int next = GetParam() > 0 ? GetParam() : static_cast<int>(first) + GetParam();
    device().Set("oid.next", std::to_string(next));

    EXPECT_EQ(ResultCode::kSuccess, Restore(1));
    EXPECT_EQ(Lines(), Differences(stored, Now()));
    EXPECT_EQ(ResultCode::kNoDifference, Restore(1));
    EXPECT_EQ(ResultCode::kNoDifference, Backup());
}

INSTANTIATE_TEST_SUITE_P(NextIds, ResetDeviceOperationsTest, ::testing::Values(100, -8, -2));

}  // namespace
}  // namespace tolvenar
