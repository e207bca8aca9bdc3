// A restore in which one platform call fails, for every such call in turn: nothing is lost that the
// state holds and the device had, and the next restore makes good what was left undone.
#include <algorithm>

#include "simulator/databases/database_store.h"
#include "simulator/gate/rules.h"
#include "tests/support/contents.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class RestoreFaultTest : public EngineTest, public ::testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        EngineTest::SetUp();
        device().PutFile(L"\\Keep\\keep.txt", "kept");
        // The blocks behind its contents are reached by a seek.
        device().PutFile(L"\\Keep\\large.txt", Bytes(50000, 'l'));
        device().PutFile(L"\\a.txt", "first");
        device().PutFile(L"\\Gone\\b.txt", "second");
        SetValue(HKEY_CURRENT_USER, L"Keep", L"v", REG_DWORD, Word(1));
        SetValue(HKEY_CURRENT_USER, L"Change", L"v", REG_DWORD, Word(2));
        SetValue(HKEY_CURRENT_USER, L"Gone", L"v", REG_DWORD, Word(3));
        MakeDatabase(L"People");
        AddRecord(L"People", L"Keep", 1);
        AddRecord(L"People", L"Gone", 2);
        ASSERT_EQ(Done(), Backup(1));
        content_ = tests::ContentsOf(device().sim());
    }

    // Adds, changes and deletes something of every kind. What is named "Keep" stays as it is.
    void Damage() {
        device().PutFile(L"\\a.txt", "changed since");
        if (device().Exists(L"\\Gone")) {
            device().Remove(L"\\Gone");
        }
        device().PutFile(L"\\New\\c.txt", "new");
        SetValue(HKEY_CURRENT_USER, L"Change", L"v", REG_DWORD, Word(20));
        ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Gone");
        SetValue(HKEY_CURRENT_USER, L"New", L"v", REG_DWORD, Word(4));
        DeleteRecordOf(u"Gone");
        AddRecord(L"People", L"New", 5);
        if (!DatabaseExists(u"Others")) {
            MakeDatabase(L"Others");
        }
    }
    void DeleteRecordOf(const Text& name) {
        sim::databases::DatabaseStore store(device().sim());
        const std::uint32_t people = store.ByName(u"People")->oid;
        for (const std::uint32_t record : store.Records(people)) {
            const auto read = store.Read(people, record);
            if (sim::databases::Find(*read, kName)->value == Units(name)) {
                store.DeleteRecord(people, record);
                return;
            }
        }
    }

    void ExpectNothingLost() {
        ASSERT_TRUE(device().Exists(L"\\Keep\\keep.txt"));
        EXPECT_EQ("kept", device().FileBytes(L"\\Keep\\keep.txt"));
        EXPECT_EQ("4:" + Word(1), Value(HKEY_CURRENT_USER, L"Keep", L"v"));
        const auto people = Records(u"People");
        EXPECT_NE(people.end(), std::find(people.begin(), people.end(), "Keep=1"));
    }

    // A list that could be saved in part only replaces the journal: kept so. The records that are
    // there are whole; the test goes on with the journal from before.
    void MendJournal(const std::string& journal) {
        if (!Exists(kJournal) || Content(kJournal).size() == journal.size()) {
            return;
        }
        EXPECT_EQ("WriteFile", std::string(GetParam()));
        EXPECT_EQ(0u, Content(kJournal).size() % sizeof(ObjectRecord));
        storage_.journal.reset();
        Put(kJournal, journal);
    }

    // One restore whose call `n` fails. False when there was no such call.
    bool RestoreWithFault(int n) {
        Damage();
        const std::string journal = Content(kJournal);
        device().Fault(GetParam(), n, 1, ERROR_NOT_ENOUGH_MEMORY);
        Restore(1);
        const bool fired = sim::Rules(device().sim()).front().fired != 0;
        device().DropFaults();
        ExpectNothingLost();
        MendJournal(journal);
        return fired;
    }
    void RestoreUndisturbed() {
        if (!storage_.journal) {
            ASSERT_TRUE(OpenJournal(storage_, nullptr));
        }
        const Answer answer = Restore(1);
        EXPECT_TRUE(answer.done);
        // A folder whose new id could not be told has another one in the journal: it is to be
        // deleted and written back, and its contents keep it. Reported, and nothing else.
        const bool ids_are_stale =
            answer.code == ResultCode::kFailed && std::string(GetParam()) == "FindFirstFileW";
        EXPECT_TRUE(answer.code == ResultCode::kSuccess ||
                    answer.code == ResultCode::kNoDifference || ids_are_stale);
        EXPECT_EQ(Lines(), tests::Differences(content_, tests::ContentsOf(device().sim())));
    }

    tests::Contents content_;
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
                      "CreateDirectoryW", "RemoveDirectoryW", "SetEndOfFile", "GetStoreInformation",
                      "RegOpenKeyExW", "RegQueryInfoKeyW", "RegEnumKeyExW", "RegEnumValueW",
                      "RegCreateKeyExW", "RegSetValueExW", "RegDeleteKeyW", "CeFindFirstDatabaseEx",
                      "CeOpenDatabaseEx", "CeOidGetInfoEx", "CeReadRecordPropsEx",
                      "CeWriteRecordProps", "CeDeleteRecord", "CeDeleteDatabaseEx"),
    [](const auto& row) { return std::string(row.param); });

}  // namespace
}  // namespace tolvenar
