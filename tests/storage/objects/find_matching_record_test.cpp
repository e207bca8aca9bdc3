#include "storage/objects/find_matching_record.h"

#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

constexpr CEPROPID kKeyText = 0x4021001F;
constexpr const char16_t* kDesktop = u"\\DesktopPositions";

class FindMatchingRecordTest : public EngineTest {
protected:
    CEOID Find(const char16_t* database_name, const wchar_t* key, CEOID record_oid) {
        CEOID oid = 0;
        const UniqueHandle database(databases_.OpenDatabase(oid, database_name, 0, 0, nullptr));
        EXPECT_TRUE(database);
        CEPROPVAL properties[2]{};
        properties[0].propid = kNumber;
        properties[1].propid = kKeyText;
        properties[1].val.lpwstr = const_cast<wchar_t*>(key);
        return FindMatchingRecord(databases_, database.get(), database_name, properties,
                                  key == nullptr ? 1 : 2, record_oid, written_);
    }

    WrittenRecords written_;
};

TEST_F(FindMatchingRecordTest, TheStoredIdIsUsedWhenItsRecordStillExists) {
    MakeDatabase(L"First");
    AddRecord(L"First", {{kNumber, 1}});
    const CEOID oid = AddRecord(L"First", {{kNumber, 2}});
    EXPECT_EQ(oid, Find(u"First", nullptr, oid));
}

TEST_F(FindMatchingRecordTest, ARecordThatIsGoneIsMadeAnew) {
    MakeDatabase(L"First");
    const CEOID oid = AddRecord(L"First", {{kNumber, 1}});
    EXPECT_EQ(0u, Find(u"First", nullptr, oid + 100));
    EXPECT_EQ(0u, Find(u"First", nullptr, 0));
}

TEST_F(FindMatchingRecordTest, ARecordOfAnotherDatabaseIsNotTheSame) {
    MakeDatabase(L"First");
    MakeDatabase(L"Second");
    const CEOID oid = AddRecord(L"Second", {{kNumber, 1}});
    EXPECT_EQ(0u, Find(u"First", nullptr, oid));
}

// On a reset device the ids that are given out again meet those that were stored.
TEST_F(FindMatchingRecordTest, ARecordThatThisRestoreWroteIsNeverOverwritten) {
    MakeDatabase(L"First");
    const CEOID oid = AddRecord(L"First", {{kNumber, 1}});
    ASSERT_TRUE(written_.Add(oid));
    EXPECT_EQ(0u, Find(u"First", nullptr, oid));
}

TEST_F(FindMatchingRecordTest, TheDesktopsRecordsAreKnownByTheirKey) {
    MakeDatabase(L"\\DesktopPositions");
    const CEOID other = AddRecord(L"\\DesktopPositions", {{kKeyText, 0, L"My Device"}});
    AddRecord(L"\\DesktopPositions", {{kNumber, 1}});
    const CEOID same = AddRecord(L"\\DesktopPositions", {{kNumber, 1}, {kKeyText, 0, L"Recycler"}});
    AddRecord(L"\\DesktopPositions", {{kKeyText, 0, L"Recycler"}});
    EXPECT_EQ(same, Find(kDesktop, L"Recycler", other));
    EXPECT_EQ(0u, Find(kDesktop, L"recycler", other));
    EXPECT_EQ(0u, Find(kDesktop, L"None", other));
}

TEST_F(FindMatchingRecordTest, ADesktopRecordWithoutAKeyIsMadeAnew) {
    MakeDatabase(L"\\DesktopPositions");
    const CEOID oid = AddRecord(L"\\DesktopPositions", {{kNumber, 1}});
    EXPECT_EQ(0u, Find(kDesktop, nullptr, oid));
}

// The platform says so where a property was asked for and is not there; its value means nothing.
TEST_F(FindMatchingRecordTest, AKeyThatIsMarkedAsNotFoundIsNone) {
    MakeDatabase(L"\\DesktopPositions");
    const CEOID oid = AddRecord(L"\\DesktopPositions", {{kKeyText, 0, L"Recycler"}});
    CEOID database_oid = 0;
    const UniqueHandle database(databases_.OpenDatabase(database_oid, kDesktop, 0, 0, nullptr));
    CEPROPVAL property{};
    property.propid = kKeyText;
    property.val.lpwstr = const_cast<wchar_t*>(L"Recycler");
    EXPECT_EQ(oid,
              FindMatchingRecord(databases_, database.get(), kDesktop, &property, 1, 0, written_));
    property.wFlags = CEDB_PROPNOTFOUND;
    property.val.lpwstr = reinterpret_cast<wchar_t*>(1);
    EXPECT_EQ(0u,
              FindMatchingRecord(databases_, database.get(), kDesktop, &property, 1, 0, written_));
}

TEST_F(FindMatchingRecordTest, ADesktopRecordThatThisRestoreWroteIsPassedOver) {
    MakeDatabase(L"\\DesktopPositions");
    const CEOID first = AddRecord(L"\\DesktopPositions", {{kKeyText, 0, L"Recycler"}});
    const CEOID second = AddRecord(L"\\DesktopPositions", {{kKeyText, 0, L"Recycler"}});
    ASSERT_TRUE(written_.Add(first));
    EXPECT_EQ(second, Find(kDesktop, L"Recycler", first));
}

}  // namespace
}  // namespace tolvenar
