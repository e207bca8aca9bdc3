#include "storage/objects/object_info.h"

#include <cstring>

#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class ObjectInfoTest : public EngineTest {
protected:
    InfoBlock Describe(std::uint32_t TolvOID, CEOID oid) {
        InfoBlock block;
        EXPECT_TRUE(info_.GetOIDInfo(TolvOID, oid, block));
        EXPECT_EQ(0, block.head().zero);
        EXPECT_EQ(Text(block.name()).size() * 2, block.head().name_bytes);
        return block;
    }

    Bytes Described(std::uint32_t TolvOID, CEOID oid) {
        const InfoBlock block = Describe(TolvOID, oid);
        return {reinterpret_cast<const char*>(block.bytes()), block.size()};
    }
};

TEST_F(ObjectInfoTest, AFileHasAttributesTimeSizeAndFullPath) {
    device().PutFile(L"\\A\\b.txt", "12345");
    device().Touch(L"\\A\\b.txt", 0x01C0FFEE12345680);
    device().SetAttributes(L"\\A\\b.txt", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE);
    EXPECT_EQ(Block(0x21, 0, 0x01C0FFEE12345680, 5, kFile, u"\\A\\b.txt"),
              Described(0, OidOfPath(L"\\A\\b.txt")));
}

TEST_F(ObjectInfoTest, AFolderHasTheFolderBitNoTimeAndNoData) {
    device().MakeFolder(L"\\A");
    EXPECT_EQ(Block(0x10, 0, 0, 0, kFile, u"\\A"), Described(0, OidOfPath(L"\\A")));
}

TEST_F(ObjectInfoTest, ADatabaseHasTypeNumberOfSortOrdersAndItsFourSpecifications) {
    const CEOID oid = MakeDatabase(L"First", 77);
    EXPECT_EQ(Block(77, 0, 0, 32, kDatabase, u"First"), Described(0, oid));
}

TEST_F(ObjectInfoTest, ARecordHasItsPropertiesAndTheNameOfItsDatabase) {
    MakeDatabase(L"First");
    const CEOID oid = AddRecord(L"First", {{kNumber, 1}, {0x0002001F, 0, L"ab"}});
    const InfoBlock block = Describe(0, oid);
    EXPECT_EQ(2u, block.head().property_count);
    EXPECT_EQ(0u, block.head().value_type);
    EXPECT_EQ(0u, block.head().time_low);
    EXPECT_LE(2 * sizeof(CEPROPVAL) + 6, block.head().data_bytes);
    EXPECT_EQ(kDbRecord, block.type());
    EXPECT_EQ(Text(u"First"), block.name());
}

TEST_F(ObjectInfoTest, ARecordWhoseDatabaseCannotBeOpenedHasZeroValues) {
    MakeDatabase(L"First");
    const CEOID oid = AddRecord(L"First", {{kNumber, 1}});
    Fail("CeOpenDatabaseEx", 1, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Block(0, 0, 0, 0, kDbRecord, u"First"), Described(0, oid));
}

TEST_F(ObjectInfoTest, ADatabaseTellsHowManySortOrdersItHas) {
    const CEOID oid = MakeDatabase(L"First", 77);
    CEDBASEINFO info{};
    info.dwFlags = CEDB_VALIDSORTSPEC;
    info.wNumSortOrder = 2;
    info.rgSortSpecs[0].propid = kNumber;
    info.rgSortSpecs[1].propid = 0x0002001F;
    ASSERT_TRUE(databases_.SetDatabaseInfo(oid, info));
    EXPECT_EQ(2u, Describe(0, oid).head().sort_order_count);
}

TEST_F(ObjectInfoTest, ARecordThatCannotBeFoundInItsDatabaseHasZeroValues) {
    MakeDatabase(L"First");
    AddRecord(L"First", {{kNumber, 1}});
    const CEOID oid = AddRecord(L"First", {{kNumber, 2}});
    Fail("CeSeekDatabase", 1, ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Block(0, 0, 0, 0, kDbRecord, u"First"), Described(0, oid));
}

TEST_F(ObjectInfoTest, ARecordWhoseDatabaseCannotBeDescribedFails) {
    MakeDatabase(L"First");
    const CEOID oid = AddRecord(L"First", {{kNumber, 1}});
    device().Fault("CeOidGetInfoEx", 2, 10, ERROR_INVALID_HANDLE);
    InfoBlock block;
    EXPECT_FALSE(info_.GetOIDInfo(0, oid, block));
}

TEST_F(ObjectInfoTest, ADatabaseStaysOpenForItsRecordsUntilTheLastUseEnds) {
    const CEOID database = MakeDatabase(L"First");
    const CEOID one = AddRecord(L"First", {{kNumber, 1}});
    const CEOID two = AddRecord(L"First", {{kNumber, 2}});
    {
        const ObjectInfo::KeptOpen kept(info_);
        const std::string calls = device().Traced("CeOpenDatabaseEx", [&] {
            const ObjectInfo::KeptOpen kept_within(info_);
            EXPECT_EQ(1u, Describe(0, one).head().property_count);
            EXPECT_EQ(1u, Describe(0, two).head().property_count);
        });
        const std::size_t first = calls.find("First");
        EXPECT_NE(std::string::npos, first);
        EXPECT_EQ(std::string::npos, calls.find("First", first + 1)) << calls;
        EXPECT_NE(nullptr, info_.DescribedRecord(two));
        EXPECT_EQ(nullptr, info_.DescribedRecord(one));
        EXPECT_FALSE(databases_.DeleteDatabase(database));
    }
    EXPECT_EQ(nullptr, info_.DescribedRecord(two));
    EXPECT_TRUE(databases_.DeleteDatabase(database));
}

TEST_F(ObjectInfoTest, ADatabaseThatIsOpenAndFailsIsOpenedOnceMore) {
    MakeDatabase(L"First");
    const CEOID one = AddRecord(L"First", {{kNumber, 1}});
    const CEOID two = AddRecord(L"First", {{kNumber, 2}, {0x0002001F, 0, L"ab"}});
    for (const char* function : {"CeSeekDatabase", "CeReadRecordPropsEx"}) {
        const ObjectInfo::KeptOpen kept(info_);
        Describe(0, one);
        Fail(function, 1, ERROR_INVALID_HANDLE);
        EXPECT_EQ(2u, Describe(0, two).head().property_count) << function;
        device().EndFaults();
    }
}

TEST_F(ObjectInfoTest, AValueIsReadThroughAKeyThatIsOpenedOnce) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"one", REG_SZ, "first");
    SetValue(HKEY_CURRENT_USER, L"Key", L"two", REG_SZ, "other");
    RegistryObjects& table = storage_.registry_objects;
    ASSERT_TRUE(table.RegObjectAdd(1, {false, 0x80000001, u"Key", u"one", REG_SZ, nullptr, 5}));
    ASSERT_TRUE(table.RegObjectAdd(2, {false, 0x80000001, u"Key", u"two", REG_SZ, nullptr, 5}));
    const ObjectInfo::KeptOpen kept(info_);
    EXPECT_EQ(0, std::memcmp("first", info_.ReadValue(1, 5), 5));
    // A second opening would fail.
    Fail("RegOpenKeyExW", 1, ERROR_ACCESS_DENIED);
    const std::uint8_t* const second = info_.ReadValue(2, 5);
    ASSERT_NE(nullptr, second);
    EXPECT_EQ(0, std::memcmp("other", second, 5));
    EXPECT_EQ(nullptr, info_.ReadValue(2, 4));
    EXPECT_EQ(nullptr, info_.ReadValue(3, 5));
}

TEST_F(ObjectInfoTest, AKeyThatWasMadeAnewIsOpenedOnceMore) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"one", REG_SZ, "first");
    ASSERT_TRUE(storage_.registry_objects.RegObjectAdd(
        1, {false, 0x80000001, u"Key", u"one", REG_SZ, nullptr, 5}));
    const ObjectInfo::KeptOpen kept(info_);
    ASSERT_NE(nullptr, info_.ReadValue(1, 5));
    Fail("RegQueryValueExW", 1, ERROR_INVALID_HANDLE);
    const std::uint8_t* const again = info_.ReadValue(1, 5);
    ASSERT_NE(nullptr, again);
    EXPECT_EQ(0, std::memcmp("first", again, 5));
}

TEST_F(ObjectInfoTest, ABlockThatIsUsedAgainKeepsNothing) {
    ASSERT_TRUE(storage_.registry_objects.RegObjectAdd(
        5, {false, 0x80000001, u"A", u"v", REG_DWORD, nullptr, 4}));
    device().MakeFolder(L"\\A");
    InfoBlock block;
    std::memset(block.bytes(), 0xFF, kInfoHeadBytes);
    ASSERT_TRUE(info_.GetOIDInfo(5, 0, block));
    ASSERT_TRUE(info_.GetOIDInfo(0, OidOfPath(L"\\A"), block));
    for (std::size_t i = 4; i < 20; ++i) {
        EXPECT_EQ(0, block.bytes()[i]) << i;
    }
    EXPECT_EQ(0, block.head().zero);
}

TEST_F(ObjectInfoTest, ARegistryKeyHasItsRootAndPath) {
    ASSERT_TRUE(storage_.registry_objects.RegObjectAdd(
        0x1234, {true, 0x80000002, u"A\\B", nullptr, 0, nullptr, 3}));
    EXPECT_EQ(Block(0x80000002, 0, 0, 0, kKey, u"A\\B"), Described(0x1234, 0));
}

TEST_F(ObjectInfoTest, ARegistryValueHasItsTypeSizeAndBothNames) {
    ASSERT_TRUE(storage_.registry_objects.RegObjectAdd(
        0x1234, {false, 0x80000001, u"A\\B", u"v", REG_DWORD, nullptr, 4}));
    EXPECT_EQ(Block(0x80000001, 4, 0, 4, kValue, u"A\\B\u00FFv"), Described(0x1234, 0));
}

TEST_F(ObjectInfoTest, ARegistryNameThatABlockCannotHoldFails) {
    const Text path(259, u'k');
    ASSERT_TRUE(storage_.registry_objects.RegObjectAdd(
        1, {false, 0x80000001, path.c_str(), u"", 1, nullptr, 0}));
    ASSERT_TRUE(storage_.registry_objects.RegObjectAdd(
        2, {false, 0x80000001, path.c_str(), u"v", 1, nullptr, 0}));
    InfoBlock block;
    EXPECT_TRUE(info_.GetOIDInfo(1, 0, block));
    EXPECT_EQ(548u, block.size());
    EXPECT_FALSE(info_.GetOIDInfo(2, 0, block));
    ASSERT_TRUE(
        storage_.registry_objects.RegObjectAdd(3, {true, 0x80000001, Text(261, u'k').c_str()}));
    EXPECT_FALSE(info_.GetOIDInfo(3, 0, block));
}

TEST_F(ObjectInfoTest, AnUnknownRegistryObjectAndOneWithBothIdsFail) {
    ASSERT_TRUE(storage_.registry_objects.RegObjectAdd(1, {true, 0x80000001, u"A"}));
    InfoBlock block;
    EXPECT_FALSE(info_.GetOIDInfo(2, 0, block));
    EXPECT_FALSE(info_.GetOIDInfo(1, 1, block));
}

TEST_F(ObjectInfoTest, TheStateBeingWrittenIsCalledTitleAndHasTheTimeOfNow) {
    device().Command("set clock 2001-02-03T04:05:06");
    info_.SetStateDescription(u"before the trip");
    const InfoBlock block = Describe(0, 0);
    SYSTEMTIME time{};
    const FILETIME written{block.head().time_low, block.head().time_high};
    ASSERT_TRUE(::FileTimeToSystemTime(&written, &time));
    EXPECT_EQ(2001, time.wYear);
    EXPECT_EQ(6, time.wSecond);
    EXPECT_EQ(0u, block.head().attributes);
    EXPECT_EQ(0u, block.head().value_type);
    EXPECT_EQ(30u, block.head().data_bytes);
    EXPECT_EQ(kState, block.type());
    EXPECT_EQ(Text(u"Title"), block.name());
}

TEST_F(ObjectInfoTest, AStatesDescriptionIsCutTo199Units) {
    info_.SetStateDescription(Text(300, u'd').c_str());
    EXPECT_EQ(398u, Describe(0, 0).head().data_bytes);
    info_.SetStateDescription(nullptr);
    EXPECT_EQ(0u, Describe(0, 0).head().data_bytes);
}

TEST_F(ObjectInfoTest, AnObjectThatIsUnavailableForAMomentIsAskedTenTimes) {
    device().PutFile(L"\\a.txt", "a");
    const CEOID oid = OidOfPath(L"\\a.txt");
    InfoBlock block;
    device().Fault("CeOidGetInfoEx", 1, 9, ERROR_INVALID_HANDLE);
    EXPECT_TRUE(info_.GetOIDInfo(0, oid, block));
    device().EndFaults();
    const long before = device().Calls("CeOidGetInfoEx");
    device().Fault("CeOidGetInfoEx", 1, 10, ERROR_INVALID_HANDLE);
    EXPECT_FALSE(info_.GetOIDInfo(0, oid, block));
    EXPECT_EQ(before + 10, device().Calls("CeOidGetInfoEx"));
}

// The first call is for the record, those behind it for its database.
TEST_F(ObjectInfoTest, ARecordsDatabaseThatIsUnavailableForAMomentIsAskedTenTimesToo) {
    MakeDatabase(L"First");
    const CEOID oid = AddRecord(L"First", {{kNumber, 1}});
    InfoBlock block;
    device().Fault("CeOidGetInfoEx", 2, 9, ERROR_INVALID_HANDLE);
    EXPECT_TRUE(info_.GetOIDInfo(0, oid, block));
    EXPECT_EQ(Text(u"First"), block.name());
    device().EndFaults();
    device().Fault("CeOidGetInfoEx", 2, 10, ERROR_INVALID_HANDLE);
    EXPECT_FALSE(info_.GetOIDInfo(0, oid, block));
}

TEST_F(ObjectInfoTest, TenMillisecondsPassBehindEveryFailure) {
    device().PutFile(L"\\a.txt", "a");
    const CEOID oid = OidOfPath(L"\\a.txt");
    InfoBlock block;
    device().Fault("CeOidGetInfoEx", 1, 3, ERROR_INVALID_HANDLE);
    const std::string sleeps =
        device().Traced("Sleep", [&] { EXPECT_TRUE(info_.GetOIDInfo(0, oid, block)); });
    EXPECT_EQ(3u, Occurrences(sleeps, "\"arguments\":\"10\"")) << sleeps;
}

}  // namespace
}  // namespace tolvenar
