// A device that was reset and has again, under other ids, what the state has.
#include "snapshot/engine/difference_engine.h"
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

constexpr Answer kNothing = Done(ResultCode::kNoDifference);

class SettlingTest : public RestoreEngineTest {
protected:
    static constexpr std::uint64_t kTime = 0x01C2'8000'1234'5600;

    void Fill() {
        device().PutFile(L"\\Sub\\a.txt", "contents");
        device().Touch(L"\\Sub\\a.txt", kTime);
        MakeDatabase(L"People");
        AddRecord(L"People", {{kName, 0, L"Ann"}, {kReal, 0, {}, {}, 1.5}, {kBytes, 0, {}, "b"}});
        AddRecord(L"People", L"Bob", 2);
    }
    // The same under other ids.
    void FillAnew() {
        device().Remove(L"\\Sub");
        device().Command("db-delete People");
        device().Set("oid.next", "5000");
        Fill();
    }
    void SortBy(CEOID database, CEPROPID property) {
        CEDBASEINFO info{};
        info.dwFlags = CEDB_VALIDSORTSPEC;
        info.wNumSortOrder = 1;
        info.rgSortSpecs[0].propid = property;
        ASSERT_TRUE(databases_.SetDatabaseInfo(database, info));
    }
    static constexpr CEPROPID kReal = 0x00040005;
};

TEST_F(SettlingTest, NothingIsDeletedOrWrittenAndTheNextComparisonsFindNothing) {
    Fill();
    ASSERT_EQ(Done(), Backup(1));
    FillAnew();
    const CEOID file = OidOfPath(L"\\Sub\\a.txt");
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ(0, device().Calls("CeDeleteRecord"));
    EXPECT_EQ(file, OidOfPath(L"\\Sub\\a.txt"));
    EXPECT_NE(nullptr, JournalRecord(1, file, kFile));
    EXPECT_EQ(kNothing, Restore(1));
    EXPECT_EQ(kNothing, Backup(2));
}

TEST_F(SettlingTest, OnAProtectedCardThereIsNothingToRestore) {
    Fill();
    ASSERT_EQ(Done(), Backup(1));
    FillAnew();
    device().Set("card.protected", "yes");
    EXPECT_EQ(kNothing, Restore(1));
    EXPECT_EQ(kNothing, Restore(1));
}

TEST_F(SettlingTest, AJournalThatCannotBeSavedLeavesNothingToRestoreEither) {
    Fill();
    ASSERT_EQ(Done(), Backup(1));
    FillAnew();
    device().Fault("SetEndOfFile", 1, 1, ERROR_DISK_FULL);
    EXPECT_EQ(kNothing, Restore(1));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ(kNothing, Restore(1));
}

TEST_F(SettlingTest, AFileOfAnotherTimeOrAttributeIsWrittenAnew) {
    Fill();
    ASSERT_EQ(Done(), Backup(1));
    const auto stored = Now();
    FillAnew();
    device().Touch(L"\\Sub\\a.txt", kTime + 10000000);
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ(Lines(), tests::Differences(stored, Now()));
    device().SetAttributes(L"\\Sub\\a.txt", FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ(Lines(), tests::Differences(stored, Now()));
}

// Its checksum is that of the stored one.
TEST_F(SettlingTest, ARecordWithAnotherDoubleIsAnotherRecord) {
    Fill();
    ASSERT_EQ(Done(), Backup(1));
    const auto stored = Now();
    device().Command("db-delete People");
    device().Set("oid.next", "5000");
    MakeDatabase(L"People");
    AddRecord(L"People", {{kName, 0, L"Ann"}, {kReal, 0, {}, {}, 2.5}, {kBytes, 0, {}, "b"}});
    AddRecord(L"People", L"Bob", 2);
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ(Lines(), tests::Differences(stored, Now()));
}

TEST_F(SettlingTest, EachRecordOfTheDeviceIsUsedOnce) {
    MakeDatabase(L"People");
    AddRecord(L"People", L"Ann", 1);
    AddRecord(L"People", L"Ann", 1);
    ASSERT_EQ(Done(), Backup(1));
    device().Command("db-delete People");
    device().Set("oid.next", "5000");
    MakeDatabase(L"People");
    AddRecord(L"People", L"Ann", 1);
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ((Lines{"Ann=1", "Ann=1"}), Records(u"People"));
    EXPECT_EQ(kNothing, Restore(1));
}

// The device's new record has the id that a stored one had.
TEST_F(SettlingTest, ASettledRecordIsNotOverwrittenByOneThatHadItsId) {
    MakeDatabase(L"People");
    const CEOID ann = AddRecord(L"People", L"Ann", 1);
    AddRecord(L"People", L"Bob", 2);
    ASSERT_EQ(Done(), Backup(1));
    device().Command("db-delete People");
    device().Set("oid.next", std::to_string(ann - 1));
    MakeDatabase(L"People");
    const CEOID bob = AddRecord(L"People", L"Bob", 2);
    EXPECT_EQ(ann, bob);
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ((Lines{"Ann=1", "Bob=2"}), Records(u"People"));
    EXPECT_EQ(kNothing, Restore(1));
}

TEST_F(SettlingTest, ADatabaseOfOtherSortOrdersGetsThoseOfTheState) {
    SortBy(MakeDatabase(L"People"), kName);
    ASSERT_EQ(Done(), Backup(1));
    device().Command("db-delete People");
    device().Set("oid.next", "5000");
    SortBy(MakeDatabase(L"People"), kNumber);
    EXPECT_EQ(Done(), Restore(1));
    CEOID oid = 0;
    const UniqueHandle people(databases_.OpenDatabase(oid, u"People", 0, 0, nullptr));
    CEOIDINFO info{};
    ASSERT_TRUE(databases_.GetObjectInfo(oid, info));
    EXPECT_EQ(kName, info.infDatabase.rgSortSpecs[0].propid);
}

// Where the program itself runs from: it cannot be overwritten, and its folder not be removed.
TEST_F(SettlingTest, AFileInUseThatIsAsStoredIsNotAskedFor) {
    Fill();
    ASSERT_EQ(Done(), Backup(1));
    FillAnew();
    device().Fault("DeleteFileW", 1, 1000, ERROR_ACCESS_DENIED, "a.txt");
    device().Fault("CreateFileW", 1, 1000, ERROR_ACCESS_DENIED, "a.txt");
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ(kNothing, Restore(1));
    device().DropFaults();
}

}  // namespace
}  // namespace tolvenar
