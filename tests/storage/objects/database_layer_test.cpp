#include "storage/objects/database_layer.h"

#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class DatabaseLayerTest : public EngineTest {
protected:
    void TearDown() override {
        databases_.CloseDatabaseCache();
        EngineTest::TearDown();
    }

    HANDLE OpenCached(const char16_t* name) {
        CEOID oid = 0;
        return databases_.OpenDatabaseCached(oid, name, 0, 0, nullptr);
    }

    static UniqueHandle OpenFirst(DatabaseLayer& databases) {
        CEOID oid = 0;
        return UniqueHandle(databases.OpenDatabase(oid, u"First", 0, 0, nullptr));
    }

    CEDBASEINFO InfoOf(CEOID oid) {
        CEOIDINFO info;
        EXPECT_TRUE(databases_.GetObjectInfo(oid, info));
        return info.infDatabase;
    }
};

TEST_F(DatabaseLayerTest, ANewDatabaseHasItsNameAndType) {
    const CEOID oid = databases_.CreateDatabase(u"First", 77, 0, nullptr);
    ASSERT_NE(0u, oid);
    EXPECT_STREQ(L"First", InfoOf(oid).szDbaseName);
    EXPECT_EQ(77u, InfoOf(oid).dwDbaseType);
}

// How many of four sort orders stand in the description of a new database, in their order.
std::vector<CEPROPID> SortOrdersTaken(WORD count) {
    const SORTORDERSPEC specs[] = {
        {0x00010003, 1}, {0x00020003, 0}, {0x00030003, 0}, {0x00040003, 0}};
    CEDBASEINFO info;
    EXPECT_TRUE(DescribeNewDatabase(u"n", 1, count, specs, info));
    EXPECT_EQ(0, info.wNumSortOrder);
    EXPECT_EQ(count != 0, (info.dwFlags & CEDB_VALIDSORTSPEC) != 0);
    std::vector<CEPROPID> taken;
    for (const SORTORDERSPEC& spec : info.rgSortSpecs) {
        if (spec.propid != 0) {
            taken.push_back(spec.propid);
        }
    }
    return taken;
}

// Oddity 7: SetDatabaseInfo gives a new database its sort orders.
TEST_F(DatabaseLayerTest, OfFourSortOrdersANewDatabaseIsGivenThree) {
    EXPECT_EQ((std::vector<CEPROPID>{}), SortOrdersTaken(0));
    EXPECT_EQ((std::vector<CEPROPID>{0x00010003}), SortOrdersTaken(1));
    EXPECT_EQ((std::vector<CEPROPID>{0x00010003, 0x00020003, 0x00030003}), SortOrdersTaken(3));
    // A description has room for four and no more.
    for (const WORD many : {WORD{5}, WORD{100}, WORD{0xFFFF}}) {
        EXPECT_EQ((std::vector<CEPROPID>{0x00010003, 0x00020003, 0x00030003}),
                  SortOrdersTaken(many));
    }
    EXPECT_EQ((std::vector<CEPROPID>{0x00010003, 0x00020003, 0x00030003}), SortOrdersTaken(4));
    EXPECT_EQ((std::vector<CEPROPID>{0x00010003, 0x00020003, 0x00030003}), SortOrdersTaken(9));
}

TEST_F(DatabaseLayerTest, WhatANewDatabaseHasNotIsLeftOutOfItsDescription) {
    CEDBASEINFO info;
    ASSERT_TRUE(DescribeNewDatabase(nullptr, 0, 2, nullptr, info));
    EXPECT_EQ(0u, info.dwFlags);
    ASSERT_TRUE(DescribeNewDatabase(u"n", 7, 0, nullptr, info));
    EXPECT_EQ(DWORD{CEDB_VALIDNAME | CEDB_VALIDTYPE}, info.dwFlags);
}

TEST_F(DatabaseLayerTest, TheNumberOfANewDatabasesSortOrdersStaysZero) {
    const SORTORDERSPEC specs[] = {
        {0x00010003, 0}, {0x00020003, 0}, {0x00030003, 0}, {0x00040003, 0}};
    for (const WORD count : {WORD{2}, WORD{4}}) {
        const std::u16string name(count, u'n');
        const CEOID oid = databases_.CreateDatabase(name.c_str(), 1, count, specs);
        ASSERT_NE(0u, oid);
        EXPECT_EQ(0, InfoOf(oid).wNumSortOrder);
    }
}

TEST_F(DatabaseLayerTest, ANameThatIsTooLongIsRefusedAndNotCut) {
    EXPECT_NE(0u, databases_.CreateDatabase(std::u16string(31, u'n').c_str(), 1, 0, nullptr));
    EXPECT_EQ(0u, databases_.CreateDatabase(std::u16string(32, u'm').c_str(), 1, 0, nullptr));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), ::GetLastError());
    EXPECT_EQ(INVALID_HANDLE_VALUE, OpenCached(std::u16string(31, u'm').c_str()));
}

TEST_F(DatabaseLayerTest, TheEnumerationGivesEveryDatabaseOfItsType) {
    const CEOID first = databases_.CreateDatabase(u"First", 5, 0, nullptr);
    const CEOID second = databases_.CreateDatabase(u"Second", 6, 0, nullptr);
    const UniqueHandle all(databases_.FindFirstDatabase(0));
    EXPECT_EQ(first, databases_.FindNextDatabase(all.get()));
    EXPECT_EQ(second, databases_.FindNextDatabase(all.get()));
    EXPECT_EQ(0u, databases_.FindNextDatabase(all.get()));
    const UniqueHandle sixes(databases_.FindFirstDatabase(6));
    EXPECT_EQ(second, databases_.FindNextDatabase(sixes.get()));
}

TEST_F(DatabaseLayerTest, ADatabaseOpensByNameOrByIdentifier) {
    const CEOID oid = MakeDatabase(L"First");
    CEOID found = 0;
    const UniqueHandle by_name(databases_.OpenDatabase(found, u"First", 0, 0, nullptr));
    EXPECT_TRUE(by_name);
    EXPECT_EQ(oid, found);
    const UniqueHandle by_oid(databases_.OpenDatabase(found, nullptr, 0, 0, nullptr));
    EXPECT_TRUE(by_oid);
    CEOID none = 0;
    EXPECT_EQ(INVALID_HANDLE_VALUE, databases_.OpenDatabase(none, u"Other", 0, 0, nullptr));
}

TEST_F(DatabaseLayerTest, ARecordIsFoundByItsIdentifierAndReadFromThePrivateHeap) {
    MakeDatabase(L"First");
    AddRecord(L"First", {{kNumber, 1}});
    const CEOID two = AddRecord(L"First", {{kNumber, 2}});
    const UniqueHandle database = OpenFirst(databases_);
    DWORD index = 99;
    EXPECT_EQ(two, databases_.SeekRecord(database.get(), CEDB_SEEK_CEOID, two, &index));
    EXPECT_EQ(1u, index);
    RecordBuffer buffer;
    EXPECT_EQ(two, databases_.ReadRecordProps(database.get(), buffer));
    ASSERT_EQ(1, buffer.count());
    ASSERT_LE(sizeof(CEPROPVAL), buffer.size());
    EXPECT_EQ(2, reinterpret_cast<const CEPROPVAL*>(buffer.bytes())->val.lVal);
    EXPECT_EQ(0u, databases_.SeekRecord(database.get(), CEDB_SEEK_CEOID, two + 100));
}

TEST_F(DatabaseLayerTest, AReadThatFailsLeavesNoProperties) {
    MakeDatabase(L"First");
    AddRecord(L"First", {{kNumber, 1}});
    const UniqueHandle database = OpenFirst(databases_);
    RecordBuffer buffer;
    EXPECT_NE(0u, databases_.ReadRecordProps(database.get(), buffer));
    EXPECT_EQ(1, buffer.count());
    Fail("CeReadRecordPropsEx", 1, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(0u, databases_.ReadRecordProps(database.get(), buffer));
    EXPECT_EQ(0, buffer.count());
}

TEST_F(DatabaseLayerTest, ADeviceWithTheNewerSeekIsServedByItWithOneValue) {
    device().Set("os.version", "4.10");
    MakeDatabase(L"First");
    const CEOID record = AddRecord(L"First", {{kNumber, 1}});
    DatabaseLayer newer;
    const UniqueHandle database = OpenFirst(newer);
    const std::string calls = device().Traced("CeSeekDatabaseEx", [&] {
        EXPECT_EQ(record, newer.SeekRecord(database.get(), CEDB_SEEK_CEOID, record));
    });
    EXPECT_NE(std::string::npos, calls.find(", 1, " + std::to_string(record) + ", 1\"")) << calls;
}

TEST_F(DatabaseLayerTest, ADeviceWithTheOlderSeekOnlyIsServedByIt) {
    device().Set("os.version", "3.0");
    MakeDatabase(L"First");
    const CEOID record = AddRecord(L"First", {{kNumber, 1}});
    DatabaseLayer older;
    const UniqueHandle database = OpenFirst(older);
    Fail("CeSeekDatabaseEx", 1, ERROR_CALL_NOT_IMPLEMENTED);
    EXPECT_EQ(record, older.SeekRecord(database.get(), CEDB_SEEK_CEOID, record));
    EXPECT_NE("[]", device().Faults()) << "the newer seek was called";
    device().DropFaults();
}

TEST_F(DatabaseLayerTest, ADatabaseThatIsOpenInTheCacheGivesTheSameHandle) {
    const CEOID oid = MakeDatabase(L"First");
    const HANDLE first = OpenCached(u"First");
    ASSERT_NE(INVALID_HANDLE_VALUE, first);
    EXPECT_EQ(first, OpenCached(u"First"));
    CEOID by_oid = oid;
    EXPECT_EQ(first, databases_.OpenDatabaseCached(by_oid, nullptr, 0, 0, nullptr));
}

TEST_F(DatabaseLayerTest, ACachedHandleCountsItsUsers) {
    MakeDatabase(L"First");
    const HANDLE handle = OpenCached(u"First");
    EXPECT_EQ(1u, databases_.UsersOf(handle));
    OpenCached(u"First");
    EXPECT_EQ(2u, databases_.UsersOf(handle));
    for (const DWORD left : {1u, 0u, 0u}) {
        databases_.CloseDatabaseCached(handle);
        EXPECT_EQ(left, databases_.UsersOf(handle));
    }
    EXPECT_EQ(0u, databases_.UsersOf(INVALID_HANDLE_VALUE));
}

TEST_F(DatabaseLayerTest, ADatabaseThatIsOpenedAgainAfterItWasDroppedHasOneUser) {
    MakeDatabase(L"First");
    OpenCached(u"First");
    OpenCached(u"First");
    ASSERT_TRUE(databases_.DropCachedDatabase(u"First"));
    EXPECT_EQ(1u, databases_.UsersOf(OpenCached(u"First")));
}

TEST_F(DatabaseLayerTest, AFoundEntryGivesItsIdentifier) {
    const CEOID oid = MakeDatabase(L"First");
    for (int i = 0; i < 2; ++i) {
        CEOID found = 0;
        databases_.OpenDatabaseCached(found, u"First", 0, 0, nullptr);
        EXPECT_EQ(oid, found);
    }
}

TEST_F(DatabaseLayerTest, CachedNamesAreComparedWithCase) {
    MakeDatabase(L"First");
    const HANDLE first = OpenCached(u"First");
    const HANDLE other_case = OpenCached(u"FIRST");
    EXPECT_NE(first, other_case);
}

TEST_F(DatabaseLayerTest, ACachedHandleStaysOpenWhenItIsGivenBack) {
    const CEOID oid = MakeDatabase(L"First");
    const HANDLE handle = OpenCached(u"First");
    OpenCached(u"First");
    for (int i = 0; i < 3; ++i) {
        databases_.CloseDatabaseCached(handle);
    }
    EXPECT_FALSE(databases_.DeleteDatabase(oid));
    EXPECT_EQ(static_cast<DWORD>(ERROR_SHARING_VIOLATION), ::GetLastError());
    databases_.CloseDatabaseCache();
    EXPECT_TRUE(databases_.DeleteDatabase(oid));
}

TEST_F(DatabaseLayerTest, AHandleThatIsNotCachedIsClosedWhenItIsGivenBack) {
    const CEOID oid = MakeDatabase(L"First");
    CEOID found = 0;
    databases_.CloseDatabaseCached(databases_.OpenDatabase(found, u"First", 0, 0, nullptr));
    EXPECT_TRUE(databases_.DeleteDatabase(oid));
}

TEST_F(DatabaseLayerTest, ADroppedDatabaseIsClosedAndOpensAnew) {
    const CEOID oid = MakeDatabase(L"First");
    OpenCached(u"First");
    EXPECT_TRUE(databases_.DropCachedDatabase(u"First"));
    EXPECT_FALSE(databases_.DropCachedDatabase(u"First"));
    EXPECT_TRUE(databases_.DeleteDatabase(oid));
    EXPECT_EQ(INVALID_HANDLE_VALUE, OpenCached(u"First"));
}

TEST_F(DatabaseLayerTest, TheFiftyFirstDatabaseIsOpenedBesideTheCache) {
    HANDLE last = INVALID_HANDLE_VALUE;
    for (int i = 0; i < 51; ++i) {
        const std::wstring name = L"db" + std::to_wstring(i);
        MakeDatabase(name);
        last = OpenCached(Utf16(name.c_str()));
        ASSERT_NE(INVALID_HANDLE_VALUE, last) << i;
    }
    EXPECT_FALSE(databases_.DropCachedDatabase(u"db50"));
    databases_.CloseDatabaseCached(last);
    CEOID oid = 0;
    databases_.CloseDatabaseCached(databases_.OpenDatabase(oid, u"db50", 0, 0, nullptr));
    EXPECT_TRUE(databases_.DeleteDatabase(oid)) << "it stayed open";
    EXPECT_TRUE(databases_.DropCachedDatabase(u"db49"));
}

}  // namespace
}  // namespace tolvenar
