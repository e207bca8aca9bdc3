// Random lists with few different ids, so that everything collides: results, order, log lines and
// the order of questions must be those of the plain walk.
#include "tests/support/plain_walk.h"

#include <gtest/gtest.h>
#include <random>

#include "snapshot/compare/difference.h"
#include "tests/native/recording_log.h"
#include "tests/support/fake_info_source.h"

namespace tolvenar {
namespace {

constexpr unsigned kRounds = 400;

class PlainWalkRound {
public:
    explicit PlainWalkRound(unsigned seed) : random_(seed) {
        for (std::uint32_t offset = 1; offset < 8; ++offset) {
            if (Below(4) != 0) {
                info_.stored[offset] = {Name(), kValue, Below(2)};
            }
        }
        for (std::uint32_t id : kIds) {
            for (std::uint32_t oid = 0; oid < 3; ++oid) {
                if (Below(3) != 0) {
                    info_.live[{id, oid}] = {Name(), kKey, 0};
                }
            }
        }
        plain_info_ = info_;
    }

    void CompareCmpLists();
    void CompareBuildStateList();

private:
    std::uint32_t Below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(random_() % limit);
    }
    std::uint16_t Below16(std::uint32_t limit) { return static_cast<std::uint16_t>(Below(limit)); }
    std::u16string Name() { return Below(2) != 0 ? u"one" : u"two"; }

    ObjectRecord RandomRecord() {
        constexpr int kTypes[] = {1, 1, 2, 2, 4, 8, 16, 16, 32, 0, 6, 255};
        constexpr std::uint16_t kFlags[] = {1,  1,    1,    4,    4, 4, 8,     8,
                                            12, 0x10, 0x20, 0x24, 2, 3, 0x8001};
        ObjectRecord record{};
        record.type = static_cast<ObjectType>(kTypes[Below(12)]);
        record.dwOID = Below(3);
        record.TolvOID = kIds[Below(5)];
        record.info_checksum = Below16(2);
        record.content_fingerprint = Below16(3);
        record.propOffset = Below(8);
        record.state_number = static_cast<std::uint16_t>(1 + Below(5));
        record.flags = kFlags[Below(15)];
        record.reserved[6] = static_cast<std::uint8_t>(random_());
        return record;
    }
    // Now and then under a key that is not the record's own.
    std::unique_ptr<ObjectList> RandomList(std::size_t records) {
        auto list = ObjectList::CreateList();
        for (std::size_t i = 0; i < records; ++i) {
            const ObjectRecord record = RandomRecord();
            list->InsertCopy(KeyOf(Below(8) == 0 ? RandomRecord() : record), record);
        }
        return list;
    }
    static plain::List Copy(const ObjectList& list) {
        const std::vector<KeyedRecord> walk = Walk(list);
        return {walk.begin(), walk.end()};
    }
    static std::vector<KeyedRecord> Copy(const plain::List& list) {
        return {list.begin(), list.end()};
    }
    static std::vector<std::string> WithoutLevel(std::vector<std::string> lines) {
        for (std::string& line : lines) {
            line.erase(0, 2);
        }
        return lines;
    }
    void CompareTraces(const plain::Reference& reference) {
        EXPECT_EQ(reference.log, WithoutLevel(LogLines()));
        EXPECT_EQ(plain_info_.asked, info_.asked);
    }

    static constexpr std::uint32_t kIds[] = {0, 0x00000001, 0x01000001, 0x00ABCDEF, 0x02000000};
    std::mt19937 random_;
    FakeInfoSource info_;
    FakeInfoSource plain_info_;
};

void PlainWalkRound::CompareCmpLists() {
    ClearLog();
    const auto list1 = RandomList(Below(60));
    const auto list2 = RandomList(Below(60));
    const auto diff = ObjectList::CreateList();
    plain::List plain1 = Copy(*list1);
    plain::List plain2 = Copy(*list2);
    plain::List plain_diff;
    plain::Reference reference{plain_info_, {}};

    ASSERT_TRUE(CmpLists(list1.get(), list2.get(), *diff, info_));
    plain::CmpLists(plain1, plain2, plain_diff, reference);
    EXPECT_TRUE(Copy(plain1) == Walk(*list1));
    EXPECT_TRUE(Copy(plain2) == Walk(*list2));
    EXPECT_TRUE(Copy(plain_diff) == Walk(*diff));
    CompareTraces(reference);
}

void PlainWalkRound::CompareBuildStateList() {
    const auto all = RandomList(Below(80));
    const plain::List plain_all = Copy(*all);
    for (std::uint32_t state = 0; state <= 6; ++state) {
        ClearLog();
        info_.asked.clear();
        plain_info_.asked.clear();
        const auto out = ObjectList::CreateList();
        plain::List plain_out;
        plain::Reference reference{plain_info_, {}};

        ASSERT_TRUE(BuildStateList(*out, *all, state, info_));
        plain::BuildStateList(plain_out, plain_all, state, reference);
        EXPECT_TRUE(Copy(plain_out) == Walk(*out)) << state;
        EXPECT_TRUE(Copy(plain_all) == Walk(*all));
        CompareTraces(reference);
    }
}

TEST(PlainWalkTest, CmpListsFindsTheSamePairs) {
    for (unsigned seed = 1; seed <= kRounds; ++seed) {
        SCOPED_TRACE(seed);
        PlainWalkRound(seed).CompareCmpLists();
    }
}

TEST(PlainWalkTest, BuildStateListReplaysTheSame) {
    for (unsigned seed = 1; seed <= kRounds; ++seed) {
        SCOPED_TRACE(seed);
        PlainWalkRound(seed).CompareBuildStateList();
    }
}

class DifferenceLogTest : public testing::Test {
protected:
    DifferenceLogTest() { ClearLog(); }
    // The differences between a stored value and the one of the device.
    std::size_t CompareOneValue() {
        const auto older = ListOf({JournalRecord(MakeRecord(kValue, 0, 9), 1, 0, 77)});
        const auto newer = ListOf({MakeRecord(kValue, 0, 9, 1)});
        const auto diff = ObjectList::CreateList();
        EXPECT_TRUE(CmpLists(older.get(), newer.get(), *diff, info_));
        return diff->CountRecords();
    }
    FakeInfoSource info_;
};

TEST_F(DifferenceLogTest, AReplacedDifferenceIsANote) {
    const auto list = ListOf({MakeRecord(kFile, 1, 0, 5, 6)});
    const auto older = ListOf({MakeRecord(kFile, 1, 0, 5, 7)});
    const auto diff = ObjectList::CreateList();
    ASSERT_TRUE(CmpLists(older.get(), list.get(), *diff, info_));
    EXPECT_EQ((std::vector<std::string>{"I CmpLists: Key is equal"}), LogLines());
    // What is left of a file with new contents under an old description is its deletion.
    ASSERT_EQ(1u, diff->CountRecords());
    EXPECT_EQ(JF_DELETE, diff->First()->record->flags);
    EXPECT_EQ(7, diff->First()->record->content_fingerprint);
}

TEST_F(DifferenceLogTest, ANameThatCannotBeFetchedIsAnErrorAndAMismatch) {
    info_.live[{9, 0}] = {u"name", kValue, 0};
    EXPECT_EQ(2u, CompareOneValue());
    // Once from either side.
    EXPECT_EQ((std::vector<std::string>{"E IsEqualRegs: Fail GetInfoFromStorage",
                                        "E IsEqualRegs: Fail GetInfoFromStorage"}),
              LogLines());
}

TEST_F(DifferenceLogTest, ALiveObjectThatCannotBeDescribedIsNamedAsSuch) {
    info_.stored[77] = {u"name", kValue, 0};
    EXPECT_EQ(2u, CompareOneValue());
    ASSERT_FALSE(LogLines().empty());
    EXPECT_EQ("E IsEqualRegs: Fail GetOIDInfo", LogLines().front());
}

}  // namespace
}  // namespace tolvenar
