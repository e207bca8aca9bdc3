// A restore in which one platform call fails, for every such call in turn: nothing is lost that the
// state holds and the device had, and the next restore makes good what was left undone.
#include <algorithm>
#include <string>
#include <vector>

#include "simulator/gate/rules.h"
#include "storage/opened/journal.h"
#include "storage/opened/storage_file.h"
#include "storage/operations/backup_writer.h"
#include "storage/operations/restore_engine.h"
#include "tests/support/restore_fixture.h"

namespace tolvenar {
namespace {

class RestoreFaultTest : public RestoreFixture, public ::testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        ASSERT_NE(nullptr, CreateStorage(storage_.names.path, nullptr));
        ASSERT_TRUE(OpenJournal(storage_, nullptr));
        device().PutFile(L"\\Keep\\keep.txt", "kept");
        device().PutFile(L"\\a.txt", "first");
        device().PutFile(L"\\Gone\\b.txt", "second");
        SetValue(HKEY_CURRENT_USER, L"Keep", L"v", REG_DWORD, Dword(1));
        SetValue(HKEY_CURRENT_USER, L"Change", L"v", REG_DWORD, Dword(2));
        SetValue(HKEY_CURRENT_USER, L"Gone", L"v", REG_DWORD, Dword(3));
        MakeDatabase(u"People");
        AddRecord(u"People", L"Keep", 1);
        AddRecord(u"People", L"Gone", 2);
        ResultCode code{};
        std::uint32_t needed = 0;
        ASSERT_TRUE(DoBackup(engine_, 1, u"", false, code, needed));
        ASSERT_EQ(ResultCode::kSuccess, code);
        content_ = StoreContent();
    }

    // Adds, changes and deletes something of every kind. What is named "Keep" stays as it is.
    void Damage() {
        device().PutFile(L"\\a.txt", "changed since");
        if (device().Exists(L"\\Gone")) {
            device().Remove(L"\\Gone");
        }
        device().PutFile(L"\\New\\c.txt", "new");
        SetValue(HKEY_CURRENT_USER, L"Change", L"v", REG_DWORD, Dword(20));
        ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Gone");
        SetValue(HKEY_CURRENT_USER, L"New", L"v", REG_DWORD, Dword(4));
        DeleteRecordOf(L"Gone");
        AddRecord(u"People", L"New", 5);
        if (!DatabaseExists(u"Others")) {
            MakeDatabase(u"Others");
        }
    }
    void DeleteRecordOf(const std::wstring& name) {
        CEOID oid = 0;
        const UniqueHandle people(
            databases_.OpenDatabase(oid, u"People", 0, CEDB_AUTOINCREMENT, nullptr));
        RecordBuffer buffer;
        CEOID record = 0;
        while ((record = databases_.ReadRecordProps(people.get(), buffer)) != 0) {
            const auto* properties = reinterpret_cast<const CEPROPVAL*>(buffer.bytes());
            if (buffer.count() != 0 && properties[0].propid == kName &&
                name == properties[0].val.lpwstr) {
                ::CeDeleteRecord(people.get(), record);
                return;
            }
        }
    }

    void ExpectNothingLost() {
        ASSERT_TRUE(device().Exists(L"\\Keep\\keep.txt"));
        EXPECT_EQ("kept", device().FileBytes(L"\\Keep\\keep.txt"));
        EXPECT_EQ("4:" + Dword(1), Value(HKEY_CURRENT_USER, L"Keep", L"v"));
        const auto people = Records(u"People");
        EXPECT_NE(people.end(), std::find(people.begin(), people.end(), "Keep=1"));
    }
    void ExpectState() {
        EXPECT_EQ(content_, StoreContent());
        EXPECT_EQ("4:" + Dword(2), Value(HKEY_CURRENT_USER, L"Change", L"v"));
        EXPECT_EQ("4:" + Dword(3), Value(HKEY_CURRENT_USER, L"Gone", L"v"));
        EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"New"));
        EXPECT_EQ((std::vector<std::string>{"Gone=2", "Keep=1"}), Records(u"People"));
        EXPECT_FALSE(DatabaseExists(u"Others"));
    }

    // A list that could be saved in part only replaces the journal: kept so. The records that are
    // there are whole; the test goes on with the journal from before.
    void MendJournal(const std::string& journal) {
        if (!device().Exists(L"\\Storage Card\\t.jrn") ||
            device().FileBytes(L"\\Storage Card\\t.jrn").size() == journal.size()) {
            return;
        }
        EXPECT_EQ("WriteFile", std::string(GetParam()));
        EXPECT_EQ(0u, device().FileBytes(L"\\Storage Card\\t.jrn").size() % sizeof(ObjectRecord));
        storage_.journal.reset();
        device().PutFile(L"\\Storage Card\\t.jrn", journal);
    }

    // One restore whose call `n` fails. False when there was no such call.
    bool RestoreWithFault(int n) {
        Damage();
        const std::string journal = device().FileBytes(L"\\Storage Card\\t.jrn");
        device().Fault(GetParam(), n, 1, ERROR_NOT_ENOUGH_MEMORY);
        ResultCode code{};
        DoRestore(engine_, 1, code);
        const bool fired = sim::Rules(device().sim()).front().fired != 0;
        sim::ClearRules(device().sim());
        ExpectNothingLost();
        MendJournal(journal);
        return fired;
    }
    void RestoreUndisturbed() {
        if (!storage_.journal) {
            ASSERT_TRUE(OpenJournal(storage_, nullptr));
        }
        ResultCode code{};
        EXPECT_TRUE(DoRestore(engine_, 1, code));
        // A folder whose new id could not be told has another one in the journal: it is to be
        // deleted and written back, and its contents keep it. Reported, and nothing else.
        const bool ids_are_stale =
            code == ResultCode::kFailed && std::string(GetParam()) == "FindFirstFileW";
        EXPECT_TRUE(code == ResultCode::kSuccess || code == ResultCode::kNoDifference ||
                    ids_are_stale);
        ExpectState();
    }

    std::string content_;
};

TEST_P(RestoreFaultTest, NothingIsLostAndTheNextRestoreMakesItGood) {
    int n = 1;
    bool fired = true;
    for (; fired && !HasFailure(); ++n) {
        SCOPED_TRACE(std::string(GetParam()) + " " + std::to_string(n));
        fired = RestoreWithFault(n);
        RestoreUndisturbed();
    }
    EXPECT_LT(2, n) << "the call was never made";
}

INSTANTIATE_TEST_SUITE_P(
    Calls, RestoreFaultTest,
    ::testing::Values("CreateFileW", "CreateFileForMappingW", "CreateFileMappingW", "GetFileSize",
                      "MapViewOfFile", "ReadFile", "WriteFile", "SetFilePointer", "SetFileTime",
                      "SetFileAttributesW", "FindFirstFileW", "DeleteFileW", "MoveFileW",
                      "CreateDirectoryW", "RemoveDirectoryW", "GetDiskFreeSpaceExW",
                      "GetStoreInformation", "RegOpenKeyExW", "RegQueryInfoKeyW", "RegEnumKeyExW",
                      "RegEnumValueW", "RegCreateKeyExW", "RegSetValueExW", "RegDeleteKeyW",
                      "CeFindFirstDatabaseEx", "CeOpenDatabaseEx", "CeOidGetInfoEx",
                      "CeReadRecordPropsEx", "CeWriteRecordProps", "CeDeleteRecord",
                      "CeDeleteDatabaseEx"),
    [](const auto& row) { return std::string(row.param); });

}  // namespace
}  // namespace tolvenar
