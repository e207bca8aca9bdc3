// New object ids in the journal and the turning of a list's sense, on plain lists.
#include "snapshot/compare/journal_update.h"

#include <gtest/gtest.h>
#include <random>

#include "tests/support/records.h"

namespace tolvenar {
namespace {

using Ids = std::vector<std::uint32_t>;
using Flags = std::vector<std::uint16_t>;

ObjectRecord FileRecord(std::uint32_t dwOID, std::uint16_t state, std::uint16_t flags,
                        std::uint32_t propOffset) {
    ObjectRecord record{};
    record.dwOID = dwOID;
    record.info_checksum = 0x1234;
    record.content_fingerprint = 0x5678;
    record.propOffset = propOffset;
    record.data_offset = propOffset + 60;
    record.state_number = state;
    record.flags = flags;
    record.type = kFile;
    return record;
}

// Records in the order of a walk. The list puts each insertion in front.
std::unique_ptr<ObjectList> MakeJournal(const std::vector<ObjectRecord>& walked) {
    auto journal = ObjectList::CreateList();
    std::uint32_t serial = 0;
    for (auto record = walked.rbegin(); record != walked.rend(); ++record) {
        // Keys of their own, so that records which are equal but for their place can be told apart.
        EXPECT_TRUE(journal->InsertCopy(ObjectKey{++serial, 0, 0, 0}, *record));
    }
    return journal;
}

Ids IdsOf(const ObjectList& list) { return FieldsOf(list, &ObjectRecord::dwOID); }

// The ids in a journal once `object` has got the id 40.
Ids Updated(const std::vector<ObjectRecord>& walked, const ObjectRecord& object) {
    const auto journal = MakeJournal(walked);
    JournalUpdater(journal.get()).UpdateJournalOid(object, 40);
    return IdsOf(*journal);
}

// What the result is defined by: every record is looked at for every object.
void PlainWalk(ObjectList& journal, const ObjectRecord& object, std::uint32_t newOid) {
    if (newOid == 0) {
        return;
    }
    ObjectRecord* deletion = nullptr;
    for (ObjectList::Node& node : journal) {
        ObjectRecord* const record = node.record;
        if (record->dwOID != object.dwOID || record->info_checksum != object.info_checksum ||
            record->content_fingerprint != object.content_fingerprint ||
            record->propOffset != object.propOffset || record->data_offset != object.data_offset ||
            record->type != object.type) {
            continue;
        }
        const bool has_id =
            record->type != kValue && record->type != kKey && record->type != kState;
        if (record->state_number == object.state_number) {
            if (has_id && (record->flags & JF_ADD) != 0) {
                record->dwOID = newOid;
            }
        } else if (record->state_number > object.state_number && (record->flags & JF_DELETE) != 0 &&
                   (deletion == nullptr || record->state_number <= deletion->state_number)) {
            deletion = record;
        }
    }
    if (deletion != nullptr) {
        deletion->dwOID = newOid;
    }
}

TEST(JournalUpdateTest, TheAdditionOfTheSameStateGetsTheNewId) {
    EXPECT_EQ((Ids{40, 8}), Updated({FileRecord(7, 1, JF_ADD, 500), FileRecord(8, 1, JF_ADD, 900)},
                                    FileRecord(7, 1, 0, 500)));
}

TEST(JournalUpdateTest, ANewIdOfZeroChangesNothing) {
    auto journal = MakeJournal({FileRecord(7, 1, JF_ADD, 500)});
    JournalUpdater updater(journal.get());
    updater.UpdateJournalOid(FileRecord(7, 1, 0, 500), 0);
    EXPECT_EQ(Ids{7}, IdsOf(*journal));
}

TEST(JournalUpdateTest, WithoutAJournalNothingHappens) {
    JournalUpdater updater(nullptr);
    updater.UpdateJournalOid(FileRecord(7, 1, 0, 500), 40);
}

TEST(JournalUpdateTest, AnAdditionOfAnotherStateKeepsItsId) {
    EXPECT_EQ(Ids{7}, Updated({FileRecord(7, 2, JF_ADD, 500)}, FileRecord(7, 1, 0, 500)));
}

TEST(JournalUpdateTest, ARecordOfTheSameStateWithoutAdditionKeepsItsId) {
    EXPECT_EQ((Ids{7, 7}), Updated({FileRecord(7, 1, JF_DELETE, 500), FileRecord(7, 1, 0, 500)},
                                   FileRecord(7, 1, 0, 500)));
}

TEST(JournalUpdateTest, EveryFieldOfTheVersionMustAgree) {
    const ObjectRecord object = FileRecord(7, 1, JF_ADD, 500);
    std::vector<ObjectRecord> walked(6, object);
    walked[0].dwOID = 6;
    walked[1].info_checksum ^= 1;
    walked[2].content_fingerprint ^= 1;
    walked[3].propOffset ^= 1;
    walked[4].data_offset ^= 1;
    walked[5].type = kDatabase;
    EXPECT_EQ((Ids{6, 7, 7, 7, 7, 7}), Updated(walked, object));
}

TEST(JournalUpdateTest, RegistryAndStateRecordsOfTheSameStateKeepTheirIds) {
    for (const ObjectType type : {kValue, kKey, kState}) {
        ObjectRecord object = FileRecord(7, 1, JF_ADD, 500);
        object.type = type;
        EXPECT_EQ(Ids{7}, Updated({object}, object));
    }
}

TEST(JournalUpdateTest, DatabasesAndRecordsGetTheirNewIds) {
    for (const ObjectType type : {kDatabase, kDbRecord}) {
        ObjectRecord object = FileRecord(7, 1, JF_ADD, 500);
        object.type = type;
        EXPECT_EQ(Ids{40}, Updated({object}, object));
    }
}

TEST(JournalUpdateTest, OnlyTheNearestLaterDeletionGetsTheNewId) {
    EXPECT_EQ((Ids{7, 40, 7, 7}),
              Updated({FileRecord(7, 5, JF_DELETE, 500), FileRecord(7, 3, JF_DELETE, 500),
                       FileRecord(7, 4, JF_DELETE, 500), FileRecord(7, 1, JF_DELETE, 500)},
                      FileRecord(7, 2, 0, 500)));
}

TEST(JournalUpdateTest, OfTwoDeletionsInOneStateTheLastWalkedGetsTheNewId) {
    EXPECT_EQ((Ids{7, 40, 7}),
              Updated({FileRecord(7, 3, JF_DELETE, 500), FileRecord(7, 3, JF_DELETE, 500),
                       FileRecord(7, 4, JF_DELETE, 500)},
                      FileRecord(7, 2, 0, 500)));
}

TEST(JournalUpdateTest, ALaterAdditionIsNoDeletion) {
    EXPECT_EQ(Ids{7}, Updated({FileRecord(7, 3, JF_ADD, 500)}, FileRecord(7, 2, 0, 500)));
}

TEST(JournalUpdateTest, NodesKeepTheKeysUnderWhichTheyStand) {
    auto journal = ObjectList::CreateList();
    const ObjectRecord record = FileRecord(7, 1, JF_ADD, 500);
    ASSERT_TRUE(journal->AddObject(record));
    JournalUpdater updater(journal.get());
    updater.UpdateJournalOid(record, 40);
    const ObjectList::Node* node = journal->FindByKey(KeyOf(record));
    ASSERT_NE(nullptr, node);
    EXPECT_EQ(40u, node->record->dwOID);
}

TEST(JournalUpdateTest, AnIdThatWasGivenOutInThisRestoreIsFoundUnderItsNewNumber) {
    auto journal = MakeJournal({FileRecord(7, 1, JF_ADD, 500), FileRecord(7, 3, JF_DELETE, 500)});
    JournalUpdater updater(journal.get());
    updater.UpdateJournalOid(FileRecord(7, 1, 0, 500), 40);
    updater.UpdateJournalOid(FileRecord(40, 1, 0, 500), 41);
    EXPECT_EQ((Ids{41, 41}), IdsOf(*journal));
}

TEST(JournalUpdateTest, RandomJournalsComeOutAsFromThePlainWalk) {
    std::mt19937 random(20261121);
    const auto below = [&](std::uint32_t bound) {
        return static_cast<std::uint32_t>(random() % bound);
    };
    for (int round = 0; round < 60; ++round) {
        std::vector<ObjectRecord> walked;
        for (std::uint32_t i = 0; i < 150; ++i) {
            ObjectRecord record =
                FileRecord(below(6), static_cast<std::uint16_t>(1 + below(5)),
                           static_cast<std::uint16_t>(below(16)), 500 + below(4) * 0x40);
            constexpr ObjectType kTypes[] = {kFile, kDatabase, kState, kKey};
            record.type = kTypes[below(8) < 5 ? 0 : below(4)];
            walked.push_back(record);
        }
        auto indexed = MakeJournal(walked);
        auto plain = MakeJournal(walked);
        JournalUpdater updater(indexed.get());
        for (int change = 0; change < 60; ++change) {
            const ObjectRecord object = walked[below(150)];
            const std::uint32_t newOid = below(9);
            updater.UpdateJournalOid(object, newOid);
            PlainWalk(*plain, object, newOid);
        }
        ASSERT_EQ(IdsOf(*plain), IdsOf(*indexed)) << "round " << round;
    }
}

Flags FlagsOf(const ObjectList& list) { return FieldsOf(list, &ObjectRecord::flags); }

TEST(InvertPendingFlagsTest, AdditionsAndDeletionsAreExchanged) {
    auto list = MakeJournal({FileRecord(1, 0, JF_ADD, 0), FileRecord(2, 0, JF_DELETE, 0)});
    InvertPendingFlags(*list);
    EXPECT_EQ((Flags{JF_DELETE, JF_ADD}), FlagsOf(*list));
}

TEST(InvertPendingFlagsTest, HandledRecordsAreRemoved) {
    auto list = MakeJournal({FileRecord(1, 0, 0, 0), FileRecord(2, 0, JF_ADD, 0),
                             FileRecord(3, 0, 0, 0), FileRecord(4, 0, 0, 0)});
    InvertPendingFlags(*list);
    EXPECT_EQ(Ids{2}, IdsOf(*list));
}

TEST(InvertPendingFlagsTest, ARecordWithBothFlagsIsRemoved) {
    auto list = MakeJournal({FileRecord(1, 0, JF_ADD | JF_DELETE, 0)});
    InvertPendingFlags(*list);
    EXPECT_EQ(0u, list->CountRecords());
}

TEST(InvertPendingFlagsTest, OtherFlagsStayAsTheyAre) {
    auto list =
        MakeJournal({FileRecord(1, 0, JF_FAILED, 0), FileRecord(2, 0, JF_FAILED | JF_ADD, 0),
                     FileRecord(3, 0, kFlagAddition10 | JF_ADD | JF_DELETE, 0)});
    InvertPendingFlags(*list);
    EXPECT_EQ((Flags{JF_FAILED, JF_FAILED | JF_DELETE, kFlagAddition10}), FlagsOf(*list));
}

TEST(InvertPendingFlagsTest, InvertingTwiceGivesTheListBack) {
    auto list = MakeJournal({FileRecord(1, 0, JF_ADD, 0), FileRecord(2, 0, JF_DELETE, 0)});
    InvertPendingFlags(*list);
    InvertPendingFlags(*list);
    EXPECT_EQ((Flags{JF_ADD, JF_DELETE}), FlagsOf(*list));
}

// State 1 holds a folder; in state 2 it is gone and another of the same name is there. A device
// that gives out ids again may give the first the id that the second had.
class SeparateVersionsTest : public testing::Test {
protected:
    static constexpr std::uint32_t kFirstBlock = 500;
    static constexpr std::uint32_t kSecondBlock = 900;

    const ObjectRecord first_ = FileRecord(100, 1, JF_ADD, kFirstBlock);
    const ObjectRecord first_gone_ = FileRecord(100, 2, JF_DELETE, kFirstBlock);
    const ObjectRecord second_ = FileRecord(200, 2, JF_ADD, kSecondBlock);
    const ObjectRecord second_gone_ = FileRecord(200, 3, JF_DELETE, kSecondBlock);
    const std::unique_ptr<ObjectList> journal_ =
        MakeJournal({first_, first_gone_, second_, second_gone_});
};

TEST_F(SeparateVersionsTest, AStaleIdThatMakesTwoRecordsOneIsGivenUp) {
    JournalUpdater updater(journal_.get());
    updater.UpdateJournalOid(first_, 200);
    EXPECT_TRUE(updater.SeparateVersions());
    EXPECT_EQ((Ids{200, 200, 0xFFFFFFFE, 0xFFFFFFFE}), IdsOf(*journal_));
}

TEST_F(SeparateVersionsTest, AnIdThatMakesNoKeyTwiceStays) {
    JournalUpdater updater(journal_.get());
    updater.UpdateJournalOid(first_, 300);
    EXPECT_TRUE(updater.SeparateVersions());
    EXPECT_EQ((Ids{300, 300, 200, 200}), IdsOf(*journal_));
}

TEST_F(SeparateVersionsTest, AVersionThatHasItsOwnNewIdByTheEndKeepsIt) {
    JournalUpdater updater(journal_.get());
    updater.UpdateJournalOid(first_, 200);
    updater.UpdateJournalOid(second_, 300);
    EXPECT_TRUE(updater.SeparateVersions());
    EXPECT_EQ((Ids{200, 200, 300, 300}), IdsOf(*journal_));
}

TEST_F(SeparateVersionsTest, EachVersionThatGivesWayHasAnIdOfItsOwn) {
    const auto journal = MakeJournal(
        {first_, first_gone_, second_, second_gone_, FileRecord(0xFFFFFFFE, 1, JF_ADD, 1300)});
    JournalUpdater updater(journal.get());
    updater.UpdateJournalOid(first_, 200);
    EXPECT_TRUE(updater.SeparateVersions());
    EXPECT_EQ((Ids{200, 200, 0xFFFFFFFD, 0xFFFFFFFD, 0xFFFFFFFE}), IdsOf(*journal));
}

TEST_F(SeparateVersionsTest, AVersionOfAnotherStateGivesWayToo) {
    const ObjectRecord later = FileRecord(100, 3, JF_ADD, kFirstBlock);
    const ObjectRecord before = FileRecord(200, 1, JF_ADD, kSecondBlock);
    const ObjectRecord gone = FileRecord(200, 4, JF_DELETE, kSecondBlock);
    const auto journal = MakeJournal({later, before, gone});
    JournalUpdater updater(journal.get());
    updater.UpdateJournalOid(later, 200);
    EXPECT_TRUE(updater.SeparateVersions());
    EXPECT_EQ((Ids{200, 0xFFFFFFFE, 0xFFFFFFFE}), IdsOf(*journal));
}

TEST_F(SeparateVersionsTest, VersionsThatReplaceOneAnotherKeepOneId) {
    const ObjectRecord versions[] = {
        FileRecord(100, 1, JF_ADD, 500), FileRecord(100, 3, JF_ADD, 700),
        FileRecord(100, 4, JF_ADD, 900), FileRecord(100, 6, JF_DELETE, 900)};
    for (const ObjectRecord& restored : {versions[0], versions[1], versions[2]}) {
        const auto journal = MakeJournal({versions[3], versions[0], versions[2], versions[1]});
        JournalUpdater updater(journal.get());
        updater.UpdateJournalOid(restored, 300);
        EXPECT_TRUE(updater.SeparateVersions());
        EXPECT_EQ((Ids{300, 300, 300, 300}), IdsOf(*journal));
    }
}

TEST_F(SeparateVersionsTest, AnEarlierAndALaterLifeKeepTheirId) {
    const ObjectRecord second = FileRecord(100, 3, JF_ADD, 700);
    const auto journal =
        MakeJournal({FileRecord(100, 1, JF_ADD, 500), FileRecord(100, 2, JF_DELETE, 500), second,
                     FileRecord(100, 5, JF_DELETE, 700), FileRecord(100, 6, JF_ADD, 900)});
    JournalUpdater updater(journal.get());
    updater.UpdateJournalOid(second, 300);
    EXPECT_TRUE(updater.SeparateVersions());
    EXPECT_EQ((Ids{100, 100, 300, 300, 100}), IdsOf(*journal));
}

TEST_F(SeparateVersionsTest, VersionsThatGiveWayStayOneToo) {
    const ObjectRecord restored = FileRecord(100, 2, JF_ADD, 500);
    const auto journal =
        MakeJournal({restored, FileRecord(200, 1, JF_ADD, 700), FileRecord(200, 3, JF_ADD, 900),
                     FileRecord(200, 4, JF_DELETE, 900)});
    JournalUpdater updater(journal.get());
    updater.UpdateJournalOid(restored, 200);
    EXPECT_TRUE(updater.SeparateVersions());
    EXPECT_EQ((Ids{200, 0xFFFFFFFE, 0xFFFFFFFE, 0xFFFFFFFE}), IdsOf(*journal));
}

TEST_F(SeparateVersionsTest, OfTwoThatGotOneIdTheSecondGivesWay) {
    const ObjectRecord another = FileRecord(200, 1, JF_ADD, kSecondBlock);
    const auto journal = MakeJournal({first_, another});
    JournalUpdater updater(journal.get());
    updater.UpdateJournalOid(first_, 300);
    updater.UpdateJournalOid(another, 300);
    EXPECT_TRUE(updater.SeparateVersions());
    EXPECT_EQ((Ids{300, 0xFFFFFFFE}), IdsOf(*journal));
}

TEST_F(SeparateVersionsTest, AnotherDescriptionUnderTheSameIdKeepsIt) {
    ObjectRecord other = FileRecord(200, 1, JF_ADD, kSecondBlock);
    other.info_checksum ^= 1;
    const auto journal = MakeJournal({first_, other});
    JournalUpdater updater(journal.get());
    updater.UpdateJournalOid(first_, 200);
    EXPECT_TRUE(updater.SeparateVersions());
    EXPECT_EQ((Ids{200, 200}), IdsOf(*journal));
}

TEST_F(SeparateVersionsTest, WithoutANewIdNothingHappens) {
    JournalUpdater updater(journal_.get());
    EXPECT_TRUE(updater.SeparateVersions());
    EXPECT_EQ((Ids{100, 100, 200, 200}), IdsOf(*journal_));
}

}  // namespace
}  // namespace tolvenar
