// Sort orders, seeking in them, and what they demand of a record.
#include <array>

#include "tests/simulator/record_helpers.h"

namespace {

using namespace tests;

class RecordSeekTest : public RecordFixture {
protected:
    // A database sorted by its numbers, each written as its own record; the ids in that order.
    std::vector<CEOID> Numbers(const std::vector<LONG>& numbers, DWORD flags = 0) {
        oid_ = Create(L"Sorted", {{kNumberId, flags}});
        const OpenedDatabase database = Open(oid_);
        std::vector<CEOID> records;
        for (const LONG number : numbers) {
            records.push_back(Write(database, {Number(number)}));
        }
        return records;
    }
    OpenedDatabase OpenSorted(DWORD flags = 0) { return Open(oid_, flags, kNumberId); }

    // The numbers 10, 20, 20 and 30, and what is open on them.
    OpenedDatabase OpenFour() {
        records_ = Numbers({10, 20, 20, 30});
        return OpenSorted();
    }

    CEOID oid_ = 0;
    std::vector<CEOID> records_;
};

// Writes the values in the order 2, 0, 1 and expects them sorted.
class RecordOrderTest : public RecordFixture,
                        public ::testing::WithParamInterface<std::array<CEPROPVAL, 3>> {
protected:
    OpenedDatabase Filled(DWORD sort_flags) {
        const CEPROPID id = GetParam()[0].propid;
        const OpenedDatabase database = Open(Create(L"Typed", {{id, sort_flags}}));
        CEOID oid = 0;
        wchar_t name[] = L"Typed";
        HANDLE sorted = ::CeOpenDatabaseEx(&store_, &oid, name, id, CEDB_AUTOINCREMENT, nullptr);
        const CEOID last = Write(database, {GetParam()[2]});
        const CEOID first = Write(database, {GetParam()[0]});
        expected_ = {first, Write(database, {GetParam()[1]}), last};
        return OpenedDatabase(sorted);
    }

    std::vector<CEOID> expected_;
};

TEST_P(RecordOrderTest, ValuesAreSortedAndFoundByTheirType) {
    const OpenedDatabase database = Filled(0);
    EXPECT_EQ(expected_, RestOf(database));
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(expected_[i], Seek(database, CEDB_SEEK_VALUEFIRSTEQUAL, GetParam()[i]));
        EXPECT_EQ(i, index_);
        EXPECT_EQ(expected_[i], Read(database).oid);
    }
}

TEST_P(RecordOrderTest, DescendingTurnsTheOrderRound) {
    const OpenedDatabase database = Filled(CEDB_SORT_DESCENDING);
    EXPECT_EQ((std::vector<CEOID>(expected_.rbegin(), expected_.rend())), RestOf(database));
    EXPECT_EQ(expected_[0], Seek(database, CEDB_SEEK_VALUEFIRSTEQUAL, GetParam()[0]));
    EXPECT_EQ(2u, index_);
}

INSTANTIATE_TEST_SUITE_P(
    Types, RecordOrderTest,
    ::testing::Values(
        // The low words of negative numbers are large: only the type's own comparison sorts them.
        std::array<CEPROPVAL, 3>{Number(0xFFFE, kShortId), Number(1, kShortId),
                                 Number(300, kShortId)},
        std::array<CEPROPVAL, 3>{Number(-2), Number(1), Number(70000)},
        std::array<CEPROPVAL, 3>{Double(-2.5), Double(-0.5), Double(1e9)},
        std::array<CEPROPVAL, 3>{Number(1, kWordId), Number(300, kWordId), Number(0xFFFE, kWordId)},
        std::array<CEPROPVAL, 3>{Number(1, kDwordId), Number(70000, kDwordId),
                                 Number(-2, kDwordId)},
        std::array<CEPROPVAL, 3>{Text(L"B"), Text(L"BB"), Text(L"a")},
        std::array<CEPROPVAL, 3>{Time(9, 1), Time(1, 2), Time(2, 2)}));

TEST_F(RecordSeekTest, FalseIsBeforeTrue) {
    const OpenedDatabase database = Open(Create(L"Flags", {{kBoolId, 0}}), 0, kBoolId);
    const CEOID yes = Write(database, {Number(TRUE, kBoolId)});
    const CEOID no = Write(database, {Number(FALSE, kBoolId)});
    EXPECT_EQ(no, Seek(database, CEDB_SEEK_BEGINNING));
    EXPECT_EQ(yes, Seek(database, CEDB_SEEK_VALUEFIRSTEQUAL, Number(TRUE, kBoolId)));
}

TEST_F(RecordSeekTest, PlacesAreCountedFromStartEndAndHere) {
    const std::vector<CEOID> records = Numbers({10, 20, 30});
    const OpenedDatabase database = OpenSorted();
    EXPECT_EQ(records[0], Seek(database, CEDB_SEEK_BEGINNING, 0));
    EXPECT_EQ(0u, index_);
    EXPECT_EQ(records[2], Seek(database, CEDB_SEEK_BEGINNING, 2));
    EXPECT_EQ(2u, index_);
    EXPECT_EQ(records[2], Seek(database, CEDB_SEEK_END, 1));
    EXPECT_EQ(records[0], Seek(database, CEDB_SEEK_END, 3));
    EXPECT_EQ(records[1], Seek(database, CEDB_SEEK_CURRENT, 1));
    EXPECT_EQ(records[1], Seek(database, CEDB_SEEK_CURRENT, 0));
    EXPECT_EQ(records[0], Seek(database, CEDB_SEEK_CURRENT, static_cast<DWORD>(-1)));
    EXPECT_EQ(0u, index_);
    EXPECT_EQ(records[1], Seek(database, CEDB_SEEK_CEOID, records[1]));
    EXPECT_EQ(1u, index_);
    EXPECT_EQ(records[1], Read(database).oid);
}

TEST_F(RecordSeekTest, AFailedSeekLeavesThePlaceAtTheEndOrWhereItWas) {
    const std::vector<CEOID> records = Numbers({10, 20});
    const OpenedDatabase database = OpenSorted();
    Seek(database, CEDB_SEEK_BEGINNING, 1);
    EXPECT_EQ(0u, Seek(database, CEDB_SEEK_BEGINNING, 2));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
    EXPECT_EQ(0u, Read(database).oid);
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_MORE_ITEMS), LastError());
    device().Set("database.seek.fails", "stay");
    Seek(database, CEDB_SEEK_BEGINNING, 1);
    EXPECT_EQ(0u, Seek(database, CEDB_SEEK_CURRENT, static_cast<DWORD>(-2)));
    EXPECT_EQ(0u, Seek(database, CEDB_SEEK_CEOID, 4711));
    EXPECT_EQ(0u, Seek(database, CEDB_SEEK_END, 3));
    EXPECT_EQ(0u, Seek(database, CEDB_SEEK_VALUEFIRSTEQUAL, Number(15)));
    EXPECT_EQ(records[1], Read(database).oid);
}

TEST_F(RecordSeekTest, ASmallerValueIsTheLargestBelow) {
    const OpenedDatabase database = OpenFour();
    EXPECT_EQ(records_[0], Seek(database, CEDB_SEEK_VALUESMALLER, Number(20)));
    EXPECT_EQ(records_[2], Seek(database, CEDB_SEEK_VALUESMALLER, Number(25)));
    EXPECT_EQ(2u, index_);
    EXPECT_EQ(records_[3], Seek(database, CEDB_SEEK_VALUESMALLER, Number(99)));
    EXPECT_EQ(0u, Seek(database, CEDB_SEEK_VALUESMALLER, Number(10)));
    EXPECT_EQ(0u, Read(database).oid);
}

TEST_F(RecordSeekTest, AGreaterValueIsTheFirstNotBelow) {
    const OpenedDatabase database = OpenFour();
    EXPECT_EQ(records_[1], Seek(database, CEDB_SEEK_VALUEGREATER, Number(20)));
    EXPECT_EQ(records_[1], Seek(database, CEDB_SEEK_VALUEGREATER, Number(11)));
    EXPECT_EQ(records_[0], Seek(database, CEDB_SEEK_VALUEGREATER, Number(-5)));
    EXPECT_EQ(0u, Seek(database, CEDB_SEEK_VALUEGREATER, Number(31)));
}

TEST_F(RecordSeekTest, EqualValuesAreGoneThroughOneByOne) {
    const OpenedDatabase database = OpenFour();
    EXPECT_EQ(records_[1], Seek(database, CEDB_SEEK_VALUEFIRSTEQUAL, Number(20)));
    EXPECT_EQ(records_[2], Seek(database, CEDB_SEEK_VALUENEXTEQUAL, Number(20)));
    EXPECT_EQ(2u, index_);
    EXPECT_EQ(0u, Seek(database, CEDB_SEEK_VALUENEXTEQUAL, Number(20)));
    EXPECT_EQ(0u, Read(database).oid);
    EXPECT_EQ(0u, Seek(database, CEDB_SEEK_VALUEFIRSTEQUAL, Number(15)));
    // One place on and no further: 20 is two places behind 10's.
    Seek(database, CEDB_SEEK_BEGINNING);
    EXPECT_EQ(0u, Seek(database, CEDB_SEEK_VALUENEXTEQUAL, Number(30)));
}

TEST_F(RecordSeekTest, AValueIsSoughtByTheSortOrderInUseAlone) {
    Numbers({10});
    const OpenedDatabase unsorted = Open(oid_, 0);
    EXPECT_EQ(0u, Seek(unsorted, CEDB_SEEK_VALUEFIRSTEQUAL, Number(10)));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
    const OpenedDatabase sorted = OpenSorted();
    EXPECT_EQ(0u, Seek(sorted, CEDB_SEEK_VALUEFIRSTEQUAL, Text(L"10")));
    EXPECT_EQ(0u, Seek(sorted, CEDB_SEEK_VALUEFIRSTEQUAL, DWORD{0}));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
}

TEST_F(RecordSeekTest, BadArgumentsAreRefused) {
    Numbers({10});
    const OpenedDatabase database = OpenSorted();
    EXPECT_EQ(0u, ::CeSeekDatabase(database.get(), CEDB_SEEK_BEGINNING, 0, nullptr));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
    EXPECT_EQ(0u, ::CeSeekDatabase(nullptr, CEDB_SEEK_BEGINNING, 0, &index_));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
    EXPECT_EQ(0u, Seek(database, 0x100));
    EXPECT_EQ(0u, Seek(database, CEDB_SEEK_BEGINNING | CEDB_SEEK_END));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
}

TEST_F(RecordSeekTest, TheNewerSeekTakesOneValue) {
    const std::vector<CEOID> records = Numbers({10, 20});
    const OpenedDatabase database = OpenSorted();
    CEPROPVAL value = Number(20);
    const auto at = static_cast<DWORD>(reinterpret_cast<ULONG_PTR>(&value));
    EXPECT_EQ(records[1],
              ::CeSeekDatabaseEx(database.get(), CEDB_SEEK_VALUEFIRSTEQUAL, at, 1, &index_));
    EXPECT_EQ(1u, index_);
    EXPECT_EQ(records[0], ::CeSeekDatabaseEx(database.get(), CEDB_SEEK_BEGINNING, 0, 0, &index_));
    EXPECT_EQ(0u, ::CeSeekDatabaseEx(database.get(), CEDB_SEEK_VALUEFIRSTEQUAL, at, 2, &index_));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
}

TEST_F(RecordSeekTest, ReadingGoesOnFromASeek) {
    const std::vector<CEOID> records = Numbers({30, 10, 20});
    const OpenedDatabase database = OpenSorted(CEDB_AUTOINCREMENT);
    EXPECT_EQ(records[2], Seek(database, CEDB_SEEK_VALUEFIRSTEQUAL, Number(20)));
    EXPECT_EQ((std::vector<CEOID>{records[2], records[0]}), RestOf(database));
}

TEST_F(RecordSeekTest, ARecordWithoutTheValueIsLastOrFirst) {
    Numbers({10});
    CEOID unknown = 0;
    {
        const OpenedDatabase database = OpenSorted();
        unknown = Write(database, {Text(L"no number")});
        EXPECT_EQ(unknown, Seek(database, CEDB_SEEK_END, 1));
        EXPECT_EQ(0u, Seek(database, CEDB_SEEK_VALUEGREATER, Number(11)) - unknown);
    }
    const OpenedDatabase first =
        Open(Create(L"First", {{kNumberId, CEDB_SORT_UNKNOWNFIRST | CEDB_SORT_DESCENDING}}), 0,
             kNumberId);
    Write(first, {Number(10)});
    unknown = Write(first, {Text(L"no number")});
    EXPECT_EQ(unknown, Seek(first, CEDB_SEEK_BEGINNING));
}

TEST_F(RecordSeekTest, CaseCountsUnlessTheOrderSaysOtherwise) {
    const OpenedDatabase exact = Open(Create(L"Exact", {{kTextId, 0}}), 0, kTextId);
    Write(exact, {Text(L"Smith")});
    EXPECT_EQ(0u, Seek(exact, CEDB_SEEK_VALUEFIRSTEQUAL, Text(L"SMITH")));
    const OpenedDatabase folded =
        Open(Create(L"Folded", {{kTextId, CEDB_SORT_CASEINSENSITIVE}}), 0, kTextId);
    const CEOID record = Write(folded, {Text(L"Smith")});
    EXPECT_EQ(record, Seek(folded, CEDB_SEEK_VALUEFIRSTEQUAL, Text(L"SMITH")));
}

TEST_F(RecordSeekTest, AChangedValueMovesItsRecordAndThePlaceGoesWithIt) {
    const std::vector<CEOID> records = Numbers({10, 20, 30});
    const OpenedDatabase database = OpenSorted();
    EXPECT_EQ(records[0], Seek(database, CEDB_SEEK_BEGINNING));
    EXPECT_EQ(records[0], Write(database, {Number(25)}, records[0]));
    EXPECT_EQ(records[0], Read(database).oid);
    EXPECT_EQ(records[2], Seek(database, CEDB_SEEK_CURRENT, 1));
}

TEST_F(RecordSeekTest, AUniqueOrderRefusesAValueThatIsThere) {
    const std::vector<CEOID> records = Numbers({10, 20}, CEDB_SORT_UNIQUE);
    const OpenedDatabase database = OpenSorted();
    EXPECT_EQ(0u, Write(database, {Number(20)}));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ALREADY_EXISTS), LastError());
    EXPECT_EQ(0u, Write(database, {Number(20)}, records[0]));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ALREADY_EXISTS), LastError());
    EXPECT_EQ(records[1], Write(database, {Number(20), Text(L"the same record")}, records[1]));
    EXPECT_NE(0u, Write(database, {Text(L"without a number")}));
    EXPECT_NE(0u, Write(database, {Text(L"without a number")}));
}

TEST_F(RecordSeekTest, AnOrderWithoutAbsentValuesRefusesThem) {
    const std::vector<CEOID> records = Numbers({10}, CEDB_SORT_NONNULL);
    const OpenedDatabase database = OpenSorted();
    EXPECT_EQ(0u, Write(database, {Text(L"no number")}));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), LastError());
    EXPECT_EQ(0u, Write(database, {Empty(kNumberId, CEDB_PROPDELETE)}, records[0]));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), LastError());
    EXPECT_EQ(10, Read(database)[0].val.lVal);
}

}  // namespace
