#include <gtest/gtest.h>

#include "snapshot/compare/difference.h"
#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

namespace tolvenar {
namespace {

ObjectRecord File(std::uint32_t dwOID, std::uint16_t checksum, std::uint16_t state,
                  std::uint16_t flags, std::uint32_t offset = 500) {
    return JournalRecord(MakeRecord(kFile, dwOID, 0, checksum, checksum), state, flags, offset);
}
ObjectRecord Value(std::uint32_t TolvOID, std::uint16_t state, std::uint16_t flags,
                   std::uint32_t offset) {
    return JournalRecord(MakeRecord(kValue, 0, TolvOID), state, flags, offset);
}

class BuildStateListTest : public testing::Test {
protected:
    // The records as the journal's walk meets them.
    void Build(const std::vector<ObjectRecord>& all, std::uint32_t state) {
        all_ = ListOf(all);
        const std::vector<KeyedRecord> before = Walk(*all_);
        out_ = ObjectList::CreateList();
        ASSERT_TRUE(BuildStateList(*out_, *all_, state, info_));
        EXPECT_TRUE(before == Walk(*all_));
    }
    std::vector<std::uint32_t> Offsets() const {
        return FieldsOf(*out_, &ObjectRecord::propOffset);
    }
    using Offset = std::vector<std::uint32_t>;

    FakeInfoSource info_;
    std::unique_ptr<ObjectList> all_;
    std::unique_ptr<ObjectList> out_;
};

TEST_F(BuildStateListTest, KeysCarryNoStateAndRecordsKeepTheirs) {
    Build({File(1, 7, 3, JF_ADD | JF_FAILED)}, 3);
    ASSERT_EQ(1u, out_->CountRecords());
    EXPECT_EQ((ObjectKey{0x00070000, 0, 1, 0}), out_->First()->key);
    EXPECT_EQ(3, out_->First()->record->state_number);
    EXPECT_EQ(0, out_->First()->record->flags);
}

TEST_F(BuildStateListTest, EachAdditionFlagAddsAndNoOtherDoes) {
    for (std::uint16_t flag : std::vector<std::uint16_t>{0x0004, 0x0010, 0x0020}) {
        Build({File(1, 7, 1, flag)}, 1);
        EXPECT_EQ(1u, out_->CountRecords()) << flag;
    }
    for (std::uint16_t flag :
         std::vector<std::uint16_t>{0x0000, 0x0001, 0x0002, 0x0008, 0x0040, 0x8000}) {
        Build({File(1, 7, 1, flag)}, 1);
        EXPECT_EQ(0u, out_->CountRecords()) << flag;
    }
}

TEST_F(BuildStateListTest, ADeletionInALaterStateFindsTheAddition) {
    const std::vector<ObjectRecord> journal = {File(1, 7, 2, JF_DELETE), File(2, 8, 2, JF_ADD, 600),
                                               File(1, 7, 1, JF_ADD)};
    Build(journal, 1);
    EXPECT_EQ((Offset{500}), Offsets());
    Build(journal, 2);
    EXPECT_EQ((Offset{600}), Offsets());
}

TEST_F(BuildStateListTest, StatesAreReplayedInOrderWhateverTheOrderOfTheJournal) {
    Build({File(1, 7, 1, JF_ADD, 501), File(1, 7, 2, JF_DELETE), File(1, 7, 3, JF_ADD, 503)}, 3);
    EXPECT_EQ((Offset{503}), Offsets());
    Build({File(1, 7, 3, JF_ADD, 503), File(1, 7, 2, JF_DELETE), File(1, 7, 1, JF_ADD, 501)}, 2);
    EXPECT_EQ((Offset{}), Offsets());
}

TEST_F(BuildStateListTest, AnAdditionReplacesWhatHasItsKey) {
    Build({File(1, 7, 2, JF_ADD, 502), File(2, 7, 1, JF_ADD, 602), File(1, 7, 1, JF_ADD, 501)}, 2);
    // In its old place: the first entered comes last.
    EXPECT_EQ((Offset{502, 602}), Offsets());
}

TEST_F(BuildStateListTest, WithinAStateTheWalkFromTheFrontDecides) {
    Build({File(1, 7, 1, JF_DELETE), File(2, 7, 1, JF_ADD, 502)}, 1);
    EXPECT_EQ((Offset{502}), Offsets());
    Build({File(1, 7, 1, JF_ADD, 501), File(2, 7, 1, JF_ADD, 502)}, 1);
    EXPECT_EQ((Offset{502, 501}), Offsets());
}

TEST_F(BuildStateListTest, ARecordWithBothSensesIsAddedAndDeleted) {
    Build({File(1, 7, 1, JF_ADD | JF_DELETE), File(2, 7, 1, JF_ADD, 502)}, 1);
    EXPECT_EQ((Offset{502}), Offsets());
}

TEST_F(BuildStateListTest, AStateBelowTheFirstIsEmpty) {
    Build({File(1, 7, 5, JF_ADD)}, 4);
    EXPECT_EQ(0u, out_->CountRecords());
    Build({File(1, 7, 5, JF_ADD)}, 0);
    EXPECT_EQ(0u, out_->CountRecords());
}

TEST_F(BuildStateListTest, AnEmptyJournalGivesAnEmptyState) {
    Build({}, 1);
    EXPECT_EQ(0u, out_->CountRecords());
    Build({}, 0xFFFFFFFF);
    EXPECT_EQ(0u, out_->CountRecords());
}

TEST_F(BuildStateListTest, StateZeroOfADamagedJournalIsAState) {
    Build({File(1, 7, 0, JF_ADD)}, 0);
    EXPECT_EQ(1u, out_->CountRecords());
}

TEST_F(BuildStateListTest, TheHighestStateNumbersAreReached) {
    const std::vector<ObjectRecord> journal = {File(2, 7, 0xFFFF, JF_ADD, 502),
                                               File(1, 7, 0xFFFE, JF_ADD, 501)};
    Build(journal, 0xFFFF);
    EXPECT_EQ((Offset{502, 501}), Offsets());
    Build(journal, 0x10000);
    EXPECT_EQ((Offset{502, 501}), Offsets());
    Build(journal, 0xFFFE);
    EXPECT_EQ((Offset{501}), Offsets());
}

TEST_F(BuildStateListTest, OfTheStateRecordsOnlyTheStatesOwnIsTaken) {
    const auto state = [](std::uint16_t number) {
        return JournalRecord(MakeRecord(kState, 0, 0, number), number, JF_ADD, number * 100u);
    };
    Build({state(3), state(2), state(1)}, 2);
    EXPECT_EQ((Offset{200}), Offsets());
}

TEST_F(BuildStateListTest, RecordCountsOfADatabaseAddUpUnderFlag20) {
    const auto database = [](std::uint16_t state, std::uint16_t flags, std::uint16_t count) {
        return JournalRecord(MakeRecord(kDatabase, 1, 0, 9, count), state, flags, 100u + state);
    };
    Build({database(2, 0x20, 5), database(1, JF_ADD, 3)}, 2);
    EXPECT_EQ(8, out_->First()->record->content_fingerprint);
    Build({database(2, 0x10, 5), database(1, JF_ADD, 3)}, 2);
    EXPECT_EQ(5, out_->First()->record->content_fingerprint);
    Build({database(1, 0x20, 3)}, 1);
    EXPECT_EQ(3, out_->First()->record->content_fingerprint);
    Build({database(2, 0x20, 0xFFFF), database(1, JF_ADD, 3)}, 2);
    EXPECT_EQ(2, out_->First()->record->content_fingerprint);
}

TEST_F(BuildStateListTest, Flag20OfAnotherTypeReplaces) {
    Build({File(1, 7, 2, 0x20), File(1, 7, 1, JF_ADD)}, 2);
    EXPECT_EQ(7, out_->First()->record->content_fingerprint);
}

TEST_F(BuildStateListTest, ARegistryDeletionFindsItsObjectByNameWithoutTheCounter) {
    info_.stored[100] = {u"name", kValue, 0};
    info_.stored[200] = {u"other", kValue, 0};
    info_.stored[300] = {u"name", kValue, 0};
    Build({Value(0x05123456, 2, JF_DELETE, 300), Value(0x00123456, 1, JF_ADD, 100),
           Value(0x01123456, 1, JF_ADD, 200)},
          2);
    EXPECT_EQ((Offset{200}), Offsets());
}

TEST_F(BuildStateListTest, ARegistryDeletionWithoutCounterpartRemovesNothing) {
    info_.stored[100] = {u"name", kValue, 0};
    info_.stored[300] = {u"else", kValue, 0};
    Build({Value(0x123456, 2, JF_DELETE, 300), Value(0x123456, 1, JF_ADD, 100)}, 2);
    EXPECT_EQ((Offset{100}), Offsets());
    Build({Value(0x124456, 2, JF_DELETE, 100), Value(0x123456, 1, JF_ADD, 100)}, 2);
    EXPECT_EQ((Offset{100}), Offsets());
}

TEST_F(BuildStateListTest, TheSameBlockIsTheSameObjectWithoutReadingIt) {
    // No block can be read.
    Build({Value(0x123456, 2, JF_DELETE, 100), Value(0x123456, 1, JF_ADD, 100)}, 2);
    EXPECT_EQ(0u, out_->CountRecords());
    EXPECT_TRUE(info_.asked.empty());
}

TEST_F(BuildStateListTest, TwoRecordsWithoutABlockAreComparedByName) {
    info_.live[{0x123456, 0}] = {u"name", kValue, 0};
    Build({Value(0x123456, 2, JF_DELETE, 0), Value(0x123456, 1, JF_ADD, 0)}, 2);
    EXPECT_EQ(0u, out_->CountRecords());
    EXPECT_EQ((std::vector<std::string>{"live 1193046 0", "live 1193046 0"}), info_.asked);
}

TEST_F(BuildStateListTest, OfSeveralCounterpartsTheFirstFromTheFrontGoes) {
    info_.stored[100] = {u"name", kValue, 0};
    info_.stored[200] = {u"name", kValue, 0};
    info_.stored[300] = {u"name", kValue, 0};
    Build({Value(0x05123456, 2, JF_DELETE, 300), Value(0x00123456, 1, JF_ADD, 100),
           Value(0x01123456, 1, JF_ADD, 200)},
          2);
    // 200 was entered last and stood in front.
    EXPECT_EQ((Offset{100}), Offsets());
}

TEST_F(BuildStateListTest, AReplacedRegistryRecordIsFoundByItsNewBlock) {
    info_.stored[101] = {u"name", kValue, 0};
    Build({Value(0x123456, 3, JF_DELETE, 101), Value(0x123456, 2, JF_ADD, 101),
           Value(0x123456, 1, JF_ADD, 100)},
          3);
    EXPECT_EQ(0u, out_->CountRecords());
}

TEST_F(BuildStateListTest, AnotherObjectUnderTheSameKeyIsKeptBesideIt) {
    info_.stored[100] = {u"one", kValue, 0};
    info_.stored[200] = {u"two", kValue, 0};
    Build({Value(0x123456, 2, JF_ADD, 200), Value(0x123456, 1, JF_ADD, 100)}, 2);
    EXPECT_EQ((Offset{200, 100}), Offsets());
    // The node finds its place under another counter; the record keeps its identifier.
    EXPECT_EQ((ObjectKey{0, 0, 0, 0x01123456}), out_->First()->key);
    EXPECT_EQ(0x123456u, out_->First()->record->TolvOID);
}

TEST_F(BuildStateListTest, AnObjectOfAnotherHiveOrTypeUnderTheSameKeyIsKeptBesideIt) {
    info_.stored[100] = {u"name", kValue, 1};
    info_.stored[200] = {u"name", kValue, 2};
    Build({Value(0x123456, 2, JF_ADD, 200), Value(0x123456, 1, JF_ADD, 100)}, 2);
    EXPECT_EQ((Offset{200, 100}), Offsets());
    ObjectRecord key = Value(0x123456, 2, JF_ADD, 300);
    key.type = kKey;
    info_.stored[300] = {u"name", kKey, 1};
    Build({key, Value(0x123456, 1, JF_ADD, 100)}, 2);
    EXPECT_EQ((Offset{300, 100}), Offsets());
}

TEST_F(BuildStateListTest, AThirdObjectUnderTheSameKeyIsKeptTooAndANewVersionReplacesItsOwn) {
    info_.stored[100] = {u"one", kValue, 0};
    info_.stored[200] = {u"two", kValue, 0};
    info_.stored[300] = {u"three", kValue, 0};
    info_.stored[201] = {u"two", kValue, 0};
    Build({Value(0x123456, 4, JF_ADD, 201), Value(0x123456, 3, JF_ADD, 300),
           Value(0x123456, 2, JF_ADD, 200), Value(0x123456, 1, JF_ADD, 100)},
          4);
    EXPECT_EQ((Offset{300, 201, 100}), Offsets());
}

TEST_F(BuildStateListTest, A257thObjectUnderTheSameKeyReplacesTheFirst) {
    std::vector<ObjectRecord> journal;
    for (std::uint16_t state = 257; state != 0; --state) {
        info_.stored[state] = {std::u16string(state, u'n'), kValue, 0};
        journal.push_back(Value(0x123456, state, JF_ADD, state));
    }
    Build(journal, 257);
    ASSERT_EQ(256u, out_->CountRecords());
    EXPECT_EQ(257u, Offsets().back());
}

TEST_F(BuildStateListTest, AnUnreadableObjectIsReplacedByWhatHasItsKey) {
    info_.stored[200] = {u"name", kValue, 0};
    Build({Value(0x123456, 2, JF_ADD, 200), Value(0x123456, 1, JF_ADD, 100)}, 2);
    EXPECT_EQ((Offset{200}), Offsets());
}

TEST_F(BuildStateListTest, OfTwoVersionsOfAValueTheOneWhoseBytesAreRepeatedGoes) {
    info_.stored[100] = {u"name", kValue, 0};
    info_.stored[200] = {u"name", kValue, 0};
    ObjectRecord changed = Value(0x123456, 2, JF_ADD, 200);
    changed.content_fingerprint = 0x0101;
    const ObjectRecord deletion = Value(0x123456, 2, JF_DELETE, 100);
    const ObjectRecord older = Value(0x123456, 1, JF_ADD, 100);
    Build({changed, deletion, older}, 2);
    EXPECT_EQ((Offset{200}), Offsets());
    Build({deletion, changed, older}, 2);
    EXPECT_EQ((Offset{200}), Offsets());
    EXPECT_TRUE(info_.asked.empty());
}

TEST_F(BuildStateListTest, ADeletionUnderAnotherCounterStillRepeatsItsObject) {
    info_.stored[100] = {u"name", kValue, 0};
    info_.stored[200] = {u"name", kValue, 0};
    Build({Value(0x01123456, 3, JF_DELETE, 100), Value(0x02123456, 2, JF_ADD, 200),
           Value(0x123456, 1, JF_ADD, 100)},
          3);
    EXPECT_EQ((Offset{200}), Offsets());
}

TEST_F(BuildStateListTest, EachFieldOfARepeatedRecordCounts) {
    info_.stored[100] = {u"name", kValue, 0};
    info_.stored[200] = {u"name", kValue, 0};
    const auto left_after = [this](void (*change)(ObjectRecord&)) {
        ObjectRecord deletion = Value(0x123456, 3, JF_DELETE, 100);
        change(deletion);
        Build({deletion, Value(0x01123456, 2, JF_ADD, 200), Value(0x123456, 1, JF_ADD, 100)}, 3);
        return Offsets();
    };
    EXPECT_EQ((Offset{200}), left_after([](ObjectRecord&) {}));
    // What repeats none goes by identifier and name, the first from the front.
    const Offset first{100};
    EXPECT_EQ(first, left_after([](ObjectRecord& record) { record.info_checksum = 1; }));
    EXPECT_EQ(first, left_after([](ObjectRecord& record) { record.content_fingerprint = 1; }));
    EXPECT_EQ(first, left_after([](ObjectRecord& record) { record.data_offset = 1; }));
    EXPECT_EQ(first, left_after([](ObjectRecord& record) { record.dwOID = 1; }));
}

TEST_F(BuildStateListTest, ADeletionTakesNoObjectOfAnotherHiveOrType) {
    info_.stored[100] = {u"name", kValue, 1};
    info_.stored[300] = {u"name", kValue, 2};
    Build({Value(0x123456, 2, JF_DELETE, 300), Value(0x123456, 1, JF_ADD, 100)}, 2);
    EXPECT_EQ((Offset{100}), Offsets());
    info_.stored[300] = {u"name", kKey, 1};
    ObjectRecord key = Value(0x123456, 2, JF_DELETE, 300);
    key.type = kKey;
    Build({key, Value(0x123456, 1, JF_ADD, 100)}, 2);
    EXPECT_EQ((Offset{100}), Offsets());
}

}  // namespace
}  // namespace tolvenar
