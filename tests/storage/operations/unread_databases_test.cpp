// Restores on a device whose databases cannot be read or refuse something: what was not read is
// neither deleted nor written back a second time.
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

class UnreadDatabasesTest : public RestoreEngineTest {
protected:
    // State 1 has two people.
    void SetUp() override {
        RestoreEngineTest::SetUp();
        MakeDatabase(L"People");
        ann_ = AddRecord(L"People", L"Ann", 1);
        bob_ = AddRecord(L"People", L"Bob", 2);
        ASSERT_EQ(Done(), Backup(1));
    }
    void Delete(CEOID record) {
        CEGUID volume{};
        CEOID oid = 0;
        const UniqueHandle people(
            ::CeOpenDatabaseEx(&volume, &oid, const_cast<wchar_t*>(L"People"), 0, 0, nullptr));
        ASSERT_TRUE(::CeDeleteRecord(people.get(), record));
    }
    // Restores while the `n`th call fails.
    void RestoreWithout(const char* function, int n, std::uint32_t error = ERROR_CRC) {
        Fail(function, n, error);
        EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
        device().EndFaults();
    }

    CEOID ann_ = 0;
    CEOID bob_ = 0;
};

TEST_F(UnreadDatabasesTest, ADatabaseThatCannotBeOpenedIsLeftAloneAndTheRestComesBack) {
    device().PutFile(L"\\new.txt", "new");
    RestoreWithout("CeOpenDatabaseEx", 1, ERROR_SHARING_VIOLATION);
    EXPECT_EQ((Lines{"Ann=1", "Bob=2"}), Records(u"People"));
    EXPECT_FALSE(Exists(u"\\new.txt"));
    EXPECT_TRUE(LogHas("E DoRestore: Not restored, in use: People"));
    EXPECT_TRUE(LogHas("E DoRestore: Not read, left alone: People"));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(1));
}

TEST_F(UnreadDatabasesTest, ARecordThatCannotBeReadIsNotWrittenASecondTime) {
    RestoreWithout("CeReadRecordPropsEx", 2);
    EXPECT_EQ((Lines{"Ann=1", "Bob=2"}), Records(u"People"));
    EXPECT_TRUE(LogHas("E DoRestore: Not restored, in use: People, dwOID = "));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(1));
}

TEST_F(UnreadDatabasesTest, TheOthersOfItsDatabaseComeBack) {
    Delete(ann_);
    AddRecord(L"People", L"New", 3);
    RestoreWithout("CeReadRecordPropsEx", 1);
    EXPECT_EQ((Lines{"Ann=1", "Bob=2"}), Records(u"People"));
}

// Under another id it may be any of those that are missing, as after a reset.
TEST_F(UnreadDatabasesTest, BesideAnUnknownRecordNoneIsWrittenBack) {
    Delete(ann_);
    Delete(bob_);
    AddRecord(L"People", L"Ann", 1);
    RestoreWithout("CeReadRecordPropsEx", 1);
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"People"));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ((Lines{"Ann=1", "Bob=2"}), Records(u"People"));
}

TEST_F(UnreadDatabasesTest, RecordsThatCannotBeReachedAreNotWrittenASecondTime) {
    AddRecord(L"People", L"New", 3);
    Fail("CeSeekDatabase", 1, ERROR_CRC);
    Fail("CeReadRecordPropsEx", 2, ERROR_CRC);
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    device().EndFaults();
    EXPECT_EQ((Lines{"Ann=1", "Bob=2", "New=3"}), Records(u"People"));
    EXPECT_TRUE(LogHas("E DoRestore: Not read, left alone: People, records of it"));
}

TEST_F(UnreadDatabasesTest, OfDatabasesThatCannotBeListedThoseThatAreMissingComeBack) {
    MakeDatabase(L"Gone");
    AddRecord(L"Gone", L"Cid", 3);
    ASSERT_EQ(Done(), Backup(2));
    device().Command("db-delete Gone");
    Fail("CeFindFirstDatabaseEx", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(2));
    device().EndFaults();
    EXPECT_EQ((Lines{"Ann=1", "Bob=2"}), Records(u"People"));
    EXPECT_EQ((Lines{"Cid=3"}), Records(u"Gone"));
    EXPECT_TRUE(LogHas("E DoRestore: There may be databases that could not be listed"));
}

TEST_F(UnreadDatabasesTest, ANewDatabaseThatCannotBeReadStaysAndIsTold) {
    const CEOID other = MakeDatabase(L"Other");
    char rule[40];
    std::snprintf(rule, sizeof rule, "%lu, ", other);
    device().Fault("CeOpenDatabaseEx", 1, 1, ERROR_SHARING_VIOLATION, rule);
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    device().EndFaults();
    EXPECT_TRUE(DatabaseExists(u"Other"));
    EXPECT_TRUE(LogHas("E DoRestore: Not read, left alone: Other"));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_FALSE(DatabaseExists(u"Other"));
}

// What the user reads is not that something is in use.
TEST_F(UnreadDatabasesTest, ADatabaseThatIsBackWithoutItsSortOrdersIsToldAsThat) {
    MakeDatabase(L"Sorted", 1, {{kName, CEDB_SORT_UNIQUE}});
    AddRecord(L"Sorted", L"Cid", 3);
    ASSERT_EQ(Done(), Backup(2));
    device().Command("db-delete Sorted");
    device().Set("database.unique", "refused");
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(2));
    EXPECT_EQ((Lines{"Cid=3"}), Records(u"Sorted"));
    EXPECT_TRUE(LogHas("E DoRestore: Back without its sort orders: Sorted"));
}

}  // namespace
}  // namespace tolvenar
