// Reading, writing and deleting records as a program does it.
#include <cstring>

#include "simulator/databases/record.h"
#include "tests/simulator/record_helpers.h"

namespace {

using namespace tests;

class RecordsTest : public RecordFixture {
protected:
    RecordsTest() : oid_(Create(L"Records")) {}

    // The block's words; what leads into the block itself tells its distance from the start.
    static std::vector<DWORD> Words(const ReadBlock& block) {
        std::vector<DWORD> words(block.size / sizeof(DWORD));
        std::memcpy(words.data(), block.bytes, block.size);
        const auto start = static_cast<DWORD>(reinterpret_cast<ULONG_PTR>(block.bytes));
        for (DWORD& word : words) {
            word -= word >= start && word < start + block.size ? start : 0;
        }
        return words;
    }

    CEOID oid_;
};

TEST_F(RecordsTest, ARecordIsOneBlockOfEveryType) {
    const OpenedDatabase database = Open(oid_);
    const CEOID record = Write(database, EveryType());
    const ReadBlock block = Read(database);
    EXPECT_EQ(record, block.oid);
    EXPECT_EQ(9, block.count);
    ASSERT_EQ(156u, block.size);
    const std::vector<DWORD> expected = {
        0x00010002, 0, 0x0000FFFE, 0,           // I2 -2
        0x00020003, 0, 0xFFFFFFFD, 0,           // I4 -3
        0x00030005, 0, 0,          0x3FF80000,  // R8 1.5
        0x0004000B, 0, 1,          0,           // BOOL
        0x00050012, 0, 0x0000FFFF, 0,           // UI2
        0x00060013, 0, 0xFFFFFFFF, 0,           // UI4
        0x0007001F, 0, 144,        0,           // the text behind the array
        0x00080040, 0, 0x11223344, 0x55667788,  // FILETIME
        0x00090041, 0, 3,          152,         // the blob: its count and where it stands
        0x00620061, 0, 0x00030201,
    };
    EXPECT_EQ(expected, Words(block));
}

TEST_F(RecordsTest, TheBlockDependsOnTheContentsAlone) {
    const OpenedDatabase database = Open(oid_);
    std::vector<CEPROPVAL> values = EveryType();
    Write(database, values);
    std::vector<CEPROPVAL> backwards(values.rbegin(), values.rend());
    const CEOID second = Write(database, {Text(L"a longer text"), Number(9)});
    Write(database, backwards, second);
    const ReadBlock one = Read(database);
    const ReadBlock other = Read(database);
    EXPECT_EQ(second, other.oid);
    EXPECT_EQ(Words(one), Words(other));
}

TEST_F(RecordsTest, AskedPropertiesComeInTheirOrderAndAbsentOnesAreMarked) {
    const OpenedDatabase database = Open(oid_);
    Write(database, {Number(5), Text(L"x")});
    const ReadBlock block = Read(database, {kTextId, kDoubleId, kNumberId});
    ASSERT_EQ(3, block.count);
    EXPECT_EQ(3 * sizeof(CEPROPVAL) + 4, block.size);
    EXPECT_EQ(kTextId, block[0].propid);
    EXPECT_STREQ(L"x", block[0].val.lpwstr);
    EXPECT_EQ(0, block[0].wFlags);
    EXPECT_EQ(kDoubleId, block[1].propid);
    EXPECT_EQ(CEDB_PROPNOTFOUND, block[1].wFlags);
    EXPECT_EQ(5, block[2].val.lVal);
}

TEST_F(RecordsTest, NoneOfTheAskedIsNoDataWithAValidBuffer) {
    const OpenedDatabase database = Open(oid_);
    Write(database, {Number(5)});
    const ReadBlock block = Read(database, {kTextId});
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_DATA), LastError());
    EXPECT_EQ(0u, block.oid);
    ASSERT_EQ(1, block.count);
    EXPECT_EQ(sizeof(CEPROPVAL), block.size);
    EXPECT_EQ(CEDB_PROPNOTFOUND, block[0].wFlags);
}

TEST_F(RecordsTest, WhetherNoDataMovesOnIsASetting) {
    const OpenedDatabase database = Open(oid_);
    const CEOID first = Write(database, {Number(5)});
    const CEOID second = Write(database, {Number(6)});
    EXPECT_EQ(0u, Read(database, {kTextId}).oid);
    EXPECT_EQ(second, Read(database).oid);
    device().Set("database.no.data", "stays");
    Seek(database, CEDB_SEEK_BEGINNING);
    EXPECT_EQ(0u, Read(database, {kTextId}).oid);
    EXPECT_EQ(first, Read(database).oid);
}

TEST_F(RecordsTest, ABufferOfTheCallersIsFilledOrItsNeedTold) {
    const OpenedDatabase database = Open(oid_, 0);
    const CEOID record = Write(database, {Text(L"abc")});
    BYTE buffer[64];
    std::memset(buffer, 0x5A, sizeof buffer);
    LPBYTE at = buffer;
    WORD count = 77;
    DWORD size = 23;
    EXPECT_EQ(0u, ::CeReadRecordPropsEx(database.get(), 0, &count, nullptr, &at, &size, nullptr));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER), LastError());
    EXPECT_EQ(24u, size);
    EXPECT_EQ(buffer, at);
    EXPECT_EQ(0x5A, buffer[0]);
    EXPECT_EQ(record,
              ::CeReadRecordPropsEx(database.get(), 0, &count, nullptr, &at, &size, nullptr));
    EXPECT_EQ(1, count);
    EXPECT_EQ(buffer, at);
    EXPECT_EQ(0x5A, buffer[24]);
    EXPECT_STREQ(L"abc", reinterpret_cast<const wchar_t*>(buffer + 16));
}

TEST_F(RecordsTest, AShortBufferLeavesThePlaceAlone) {
    const OpenedDatabase database = Open(oid_);
    const CEOID record = Write(database, {Text(L"abc")});
    LPBYTE at = nullptr;
    WORD count = 0;
    DWORD size = 0;
    EXPECT_EQ(0u, ::CeReadRecordPropsEx(database.get(), 0, &count, nullptr, &at, &size, nullptr));
    EXPECT_EQ(record, Read(database).oid);
}

TEST_F(RecordsTest, AGivenHeapHoldsTheBlockThatGrows) {
    const OpenedDatabase database = Open(oid_);
    Write(database, {Number(1)});
    Write(database, {Text(L"a text that needs more"), Number(2)});
    HANDLE heap = ::HeapCreate(0, 0, 0);
    {
        ReadBlock block(heap);
        for (const LONG number : {1, 2}) {
            EXPECT_NE(0u, ::CeReadRecordPropsEx(database.get(), CEDB_ALLOWREALLOC, &block.count,
                                                nullptr, &block.bytes, &block.size, heap));
            EXPECT_EQ(number, block[0].val.lVal);
            EXPECT_EQ(number, block.count);
        }
        EXPECT_STREQ(L"a text that needs more", block[1].val.lpwstr);
        // The heap knows the block as its own.
        EXPECT_TRUE(::HeapFree(heap, 0, block.bytes));
        block.bytes = nullptr;
    }
    ::HeapDestroy(heap);
}

TEST_F(RecordsTest, ReadingBadArgumentsIsRefused) {
    const OpenedDatabase database = Open(oid_);
    Write(database, {Number(1)});
    ReadBlock block;
    const auto read = [&](HANDLE handle, WORD* count, CEPROPID* asked, LPBYTE* bytes, DWORD* size) {
        ::SetLastError(0);
        EXPECT_EQ(0u, ::CeReadRecordPropsEx(handle, CEDB_ALLOWREALLOC, count, asked, bytes, size,
                                            nullptr));
        return ::GetLastError();
    };
    constexpr DWORD kRefused = ERROR_INVALID_PARAMETER;
    CEPROPID asked = kNumberId;
    EXPECT_EQ(kRefused, read(nullptr, &block.count, nullptr, &block.bytes, &block.size));
    EXPECT_EQ(kRefused, read(database.get(), nullptr, nullptr, &block.bytes, &block.size));
    EXPECT_EQ(kRefused, read(database.get(), &block.count, nullptr, nullptr, &block.size));
    EXPECT_EQ(kRefused, read(database.get(), &block.count, nullptr, &block.bytes, nullptr));
    EXPECT_EQ(kRefused, read(database.get(), &block.count, &asked, &block.bytes, &block.size));
    EXPECT_EQ(nullptr, block.bytes);
}

TEST_F(RecordsTest, ReadingPastTheEndIsNoMoreItems) {
    const OpenedDatabase database = Open(oid_);
    EXPECT_EQ(0u, Read(database).oid);
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_MORE_ITEMS), LastError());
    Write(database, {Number(1)});
    Seek(database, CEDB_SEEK_BEGINNING);
    EXPECT_NE(0u, Read(database).oid);
    EXPECT_EQ(0u, Read(database).oid);
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_MORE_ITEMS), LastError());
}

TEST_F(RecordsTest, WithoutAutoIncrementReadingStays) {
    const OpenedDatabase database = Open(oid_, 0);
    const CEOID first = Write(database, {Number(1)});
    Write(database, {Number(2)});
    EXPECT_EQ(first, Read(database).oid);
    EXPECT_EQ(first, Read(database).oid);
}

TEST_F(RecordsTest, WritingMergesReplacesAndDeletesProperties) {
    const OpenedDatabase database = Open(oid_, 0);
    const CEOID record = Write(database, {Number(1), Text(L"kept"), Double(0.5)});
    EXPECT_EQ(record,
              Write(database, {Number(2), Empty(kDoubleId, CEDB_PROPDELETE), Time(3, 4)}, record));
    const ReadBlock block = Read(database);
    ASSERT_EQ(3, block.count);
    EXPECT_EQ(2, block[0].val.lVal);
    EXPECT_STREQ(L"kept", block[1].val.lpwstr);
    EXPECT_EQ(kTimeId, block[2].propid);
    EXPECT_EQ(4u, block[2].val.filetime.dwHighDateTime);
}

TEST_F(RecordsTest, ARecordLosesAllItsPropertiesAndStays) {
    const OpenedDatabase database = Open(oid_, 0);
    const CEOID record = Write(database, {Number(1)});
    EXPECT_EQ(record, Write(database, {Empty(kNumberId, CEDB_PROPDELETE)}, record));
    {
        const ReadBlock block = Read(database);
        EXPECT_EQ(record, block.oid);
        EXPECT_EQ(0, block.count);
        EXPECT_EQ(0u, block.size);
    }
    device().Set("database.empty.record", "no-data");
    EXPECT_EQ(0u, Read(database).oid);
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_DATA), LastError());
}

TEST_F(RecordsTest, WritingWhatCannotBeChangesNothing) {
    const OpenedDatabase database = Open(oid_, 0);
    const CEOID record = Write(database, {Number(1)});
    const auto refused = [&](std::vector<CEPROPVAL> values, CEOID of) {
        ::SetLastError(0);
        EXPECT_EQ(0u, Write(database, std::move(values), of));
        return LastError() == ERROR_INVALID_PARAMETER;
    };
    EXPECT_TRUE(refused({}, record));
    EXPECT_TRUE(refused({Number(2)}, 4711));
    EXPECT_TRUE(refused({Number(2)}, oid_));
    EXPECT_TRUE(refused({Number(2), Text(nullptr)}, record));
    EXPECT_TRUE(refused({Number(2), Blob(nullptr, 1)}, record));
    EXPECT_TRUE(refused({Number(2), Number(3, (1u << 16) | 77)}, record));
    const std::string large(sim::databases::kMaxPropertyBytes + 1, 'x');
    EXPECT_TRUE(refused({Number(2), Blob(large.data(), static_cast<DWORD>(large.size()))}, record));
    EXPECT_EQ(0u, ::CeWriteRecordProps(database.get(), record, 1, nullptr));
    CEPROPVAL value = Number(2);
    EXPECT_EQ(0u, ::CeWriteRecordProps(nullptr, 0, 1, &value));
    const ReadBlock block = Read(database);
    EXPECT_EQ(1, block.count);
    EXPECT_EQ(1, block[0].val.lVal);
}

TEST_F(RecordsTest, AnEmptyTextAndAnEmptyBlobAreValues) {
    const OpenedDatabase database = Open(oid_);
    Write(database, {Text(L""), Blob(nullptr, 0)});
    const ReadBlock block = Read(database);
    ASSERT_EQ(2, block.count);
    EXPECT_STREQ(L"", block[0].val.lpwstr);
    EXPECT_EQ(0u, block[1].val.blob.dwCount);
    EXPECT_EQ(2 * sizeof(CEPROPVAL) + 4, block.size);
}

TEST_F(RecordsTest, AFullStoreRefusesANewRecordAndAGrowingOne) {
    const OpenedDatabase database = Open(oid_, 0);
    const CEOID record = Write(database, {Text(L"small")});
    const std::wstring large(5000, L'x');
    device().Set("store.free", "4000");
    EXPECT_EQ(0u, Write(database, {Text(large.c_str())}));
    EXPECT_EQ(static_cast<DWORD>(ERROR_DISK_FULL), LastError());
    EXPECT_EQ(0u, Write(database, {Text(large.c_str())}, record));
    EXPECT_EQ(static_cast<DWORD>(ERROR_DISK_FULL), LastError());
    EXPECT_STREQ(L"small", Read(database)[0].val.lpwstr);
    EXPECT_EQ(record, Write(database, {Text(L"SMALL")}, record));
}

TEST_F(RecordsTest, ANewRecordHasAnIdOfItsOwnThatLeadsToItsDatabase) {
    const OpenedDatabase database = Open(oid_);
    device().Set("oid.next", "1000");
    EXPECT_EQ(1000u, Write(database, {Number(1)}));
    EXPECT_EQ(1001u, Write(database, {Number(1)}));
    CEOIDINFO info{};
    ASSERT_TRUE(::CeOidGetInfoEx(&store_, 1001, &info));
    EXPECT_EQ(OBJTYPE_RECORD, info.wObjType);
    EXPECT_EQ(oid_, info.infRecord.oidParent);
    EXPECT_TRUE(::CeDeleteRecord(database.get(), 1001));
    EXPECT_FALSE(::CeOidGetInfoEx(&store_, 1001, &info));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_HANDLE), LastError());
    EXPECT_EQ(1002u, Write(database, {Number(1)}));
}

TEST_F(RecordsTest, TheIdsOfADeletedDatabasesRecordsLeadNowhere) {
    CEOID record = 0;
    {
        const OpenedDatabase database = Open(oid_);
        record = Write(database, {Number(1)});
    }
    EXPECT_TRUE(::CeDeleteDatabaseEx(&store_, oid_));
    CEOIDINFO info{};
    EXPECT_FALSE(::CeOidGetInfoEx(&store_, record, &info));
    const OpenedDatabase again = Open(Create(L"Records"));
    EXPECT_LT(record, Write(again, {Number(1)}));
}

TEST_F(RecordsTest, TheDatabaseTellsTheNumberOfItsRecords) {
    const OpenedDatabase database = Open(oid_);
    Write(database, {Number(1)});
    const CEOID second = Write(database, {Number(2)});
    CEOIDINFO info{};
    EXPECT_TRUE(::CeOidGetInfoEx(&store_, oid_, &info));
    EXPECT_EQ(2u, info.infDatabase.wNumRecords);
    EXPECT_NE(0u, info.infDatabase.dwSize);
    ::CeDeleteRecord(database.get(), second);
    EXPECT_TRUE(::CeOidGetInfoEx(&store_, oid_, &info));
    EXPECT_EQ(1u, info.infDatabase.wNumRecords);
}

TEST_F(RecordsTest, AWriteIsTheTimeOfItsDatabase) {
    const OpenedDatabase database = Open(oid_);
    device().Set("clock", "2003-02-28T07:30:00Z");
    Write(database, {Number(1)});
    CEOIDINFO info{};
    EXPECT_TRUE(::CeOidGetInfoEx(&store_, oid_, &info));
    // 2003-02-28 07:30:00 in units of 100 ns since 1601.
    EXPECT_EQ(0x01C2DEFBu, info.infDatabase.ftLastModified.dwHighDateTime);
}

TEST_F(RecordsTest, DeletingWhatIsNotThereIsRefused) {
    const OpenedDatabase database = Open(oid_);
    const OpenedDatabase other = Open(Create(L"Other"));
    const CEOID record = Write(database, {Number(1)});
    EXPECT_FALSE(::CeDeleteRecord(database.get(), 4711));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
    EXPECT_FALSE(::CeDeleteRecord(other.get(), record));
    EXPECT_FALSE(::CeDeleteRecord(nullptr, record));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
    EXPECT_EQ(record, Read(database).oid);
}

TEST_F(RecordsTest, TheCurrentRecordsDeletionMakesTheNextReadFail) {
    const OpenedDatabase database = Open(oid_, 0);
    const CEOID first = Write(database, {Number(1)});
    const CEOID second = Write(database, {Number(2)});
    EXPECT_EQ(first, Read(database).oid);
    EXPECT_TRUE(::CeDeleteRecord(database.get(), first));
    EXPECT_EQ(0u, Read(database).oid);
    EXPECT_EQ(static_cast<DWORD>(ERROR_KEY_DELETED), LastError());
    EXPECT_EQ(second, Seek(database, CEDB_SEEK_BEGINNING));
    EXPECT_EQ(second, Read(database).oid);
}

TEST_F(RecordsTest, WithAutoIncrementADeletionMovesOn) {
    const OpenedDatabase database = Open(oid_);
    const CEOID first = Write(database, {Number(1)});
    const CEOID second = Write(database, {Number(2)});
    const CEOID third = Write(database, {Number(3)});
    EXPECT_EQ(first, Read(database).oid);
    EXPECT_TRUE(::CeDeleteRecord(database.get(), second));
    EXPECT_EQ(third, Read(database).oid);
    EXPECT_EQ(0u, Read(database).oid);
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_MORE_ITEMS), LastError());
}

TEST_F(RecordsTest, AnotherHandlesWritesAreSeen) {
    const OpenedDatabase reader = Open(oid_);
    const OpenedDatabase writer = Open(oid_);
    const CEOID first = Write(writer, {Number(1)});
    const CEOID second = Write(writer, {Number(2)});
    EXPECT_EQ(first, Read(reader).oid);
    const CEOID third = Write(writer, {Number(3)});
    EXPECT_EQ((std::vector<CEOID>{second, third}), RestOf(reader));
}

TEST_F(RecordsTest, UnsortedRecordsComeInTheOrderThatIsSet) {
    const OpenedDatabase database = Open(oid_);
    const CEOID first = Write(database, {Number(1)});
    const CEOID second = Write(database, {Number(2)});
    const CEOID third = Write(database, {Number(3)});
    EXPECT_EQ((std::vector<CEOID>{first, second, third}), RestOf(database));
    device().Set("order", "reversed");
    Seek(database, CEDB_SEEK_BEGINNING);
    EXPECT_EQ((std::vector<CEOID>{third, second, first}), RestOf(database));
}

}  // namespace
