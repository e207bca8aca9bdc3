#include "snapshot/records/object_list.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <list>
#include <random>

#include "tests/support/records.h"

namespace tolvenar {
namespace {

class ObjectListTest : public testing::Test {
protected:
    std::vector<std::uint32_t> Oids() const { return FieldsOf(*list_, &ObjectRecord::dwOID); }
    void AddFile(std::uint32_t dwOID) { list_->AddObject(MakeRecord(kFile, dwOID, 0)); }

    std::unique_ptr<ObjectList> list_ = ObjectList::CreateList();
};

TEST_F(ObjectListTest, ANewListIsEmpty) {
    EXPECT_EQ(nullptr, list_->First());
    EXPECT_EQ(0u, list_->CountRecords());
    EXPECT_EQ(nullptr, list_->FindByKey({0, 0, 0, 0}));
    EXPECT_EQ(0, list_->RemoveByKey({0, 0, 0, 0}));
    ObjectList::Cursor cursor = list_->First();
    EXPECT_EQ(0, ObjectList::Next(cursor, nullptr, nullptr));
}

TEST_F(ObjectListTest, TheWalkMeetsTheNewestFirst) {
    for (std::uint32_t oid = 1; oid <= 4; ++oid) {
        AddFile(oid);
    }
    EXPECT_EQ((std::vector<std::uint32_t>{4, 3, 2, 1}), Oids());
}

TEST_F(ObjectListTest, ALoadedListComesOutInReverseOrder) {
    for (std::uint32_t oid = 1; oid <= 4; ++oid) {
        AddFile(oid);
    }
    auto loaded = ObjectList::CreateList();
    for (const KeyedRecord& entry : Walk(*list_)) {
        loaded->AddObject(entry.record);
    }
    std::vector<KeyedRecord> reversed = Walk(*list_);
    std::reverse(reversed.begin(), reversed.end());
    EXPECT_TRUE(reversed == Walk(*loaded));
}

TEST_F(ObjectListTest, TheKeyIsMadeFromTheRecord) {
    ObjectRecord record = MakeRecord(kValue, 7, 0x01020304, 0xABCD, 0x1357);
    record.state_number = 0x0246;
    EXPECT_EQ((ObjectKey{0xABCD0246, 0x1357, 7, 0x01020304}), KeyOf(record));
    EXPECT_EQ((ObjectKey{0xABCD0000, 0x1357, 7, 0x01020304}), StatelessKeyOf(record));
    list_->AddObject(record);
    ASSERT_NE(nullptr, list_->FindByKey({0xABCD0246, 0x1357, 7, 0x01020304}));
    EXPECT_EQ(0, std::memcmp(&record, list_->First()->record, sizeof record));
}

TEST_F(ObjectListTest, OnlyValuesAndDatabaseRecordsHaveTheFingerprintInTheirKey) {
    for (int type : {0, 2, 3, 4, 9, 16, 32, 255}) {
        EXPECT_EQ(0u, KeyOf(MakeRecord(static_cast<ObjectType>(type), 1, 2, 3, 4)).fingerprint)
            << type;
    }
    EXPECT_EQ(4u, KeyOf(MakeRecord(kValue, 1, 2, 3, 4)).fingerprint);
    EXPECT_EQ(4u, KeyOf(MakeRecord(kDbRecord, 1, 2, 3, 4)).fingerprint);
}

TEST_F(ObjectListTest, RecordsThatDifferInTheFingerprintAloneReplaceOneAnotherUnlessOfTypes1Or8) {
    const struct {
        ObjectType type;
        std::size_t count;
    } rows[] = {{kFile, 1}, {kDatabase, 1}, {kKey, 1}, {kValue, 2}, {kDbRecord, 2}};
    for (const auto& row : rows) {
        list_->ClearList();
        list_->AddObject(MakeRecord(row.type, 1, 2, 3, 4));
        list_->AddObject(MakeRecord(row.type, 1, 2, 3, 5));
        EXPECT_EQ(row.count, list_->CountRecords());
        EXPECT_EQ(5, list_->First()->record->content_fingerprint);
    }
}

TEST_F(ObjectListTest, EveryWordOfTheKeyIsCompared) {
    const ObjectKey key{1, 2, 3, 4};
    ASSERT_TRUE(list_->InsertCopy(key, MakeRecord(kFile, 1, 0)));
    EXPECT_NE(nullptr, list_->FindByKey(key));
    EXPECT_EQ(nullptr, list_->FindByKey({0, 2, 3, 4}));
    EXPECT_EQ(nullptr, list_->FindByKey({1, 0, 3, 4}));
    EXPECT_EQ(nullptr, list_->FindByKey({1, 2, 0, 4}));
    EXPECT_EQ(nullptr, list_->FindByKey({1, 2, 3, 0}));
}

TEST_F(ObjectListTest, APresentKeyKeepsItsPlaceAndGetsTheNewRecord) {
    for (std::uint32_t oid = 1; oid <= 3; ++oid) {
        AddFile(oid);
    }
    ObjectRecord changed = MakeRecord(kFile, 2, 0);
    changed.propOffset = 99;
    const ObjectList::Node* node = list_->FindByKey(KeyOf(changed));
    EXPECT_EQ(node, list_->InsertByKey(KeyOf(changed), changed));
    EXPECT_EQ(3u, list_->CountRecords());
    EXPECT_EQ((std::vector<std::uint32_t>{3, 2, 1}), Oids());
    EXPECT_EQ(99u, Walk(*list_)[1].record.propOffset);
}

TEST_F(ObjectListTest, InsertingTheRecordThatIsThereChangesNothing) {
    AddFile(5);
    ObjectList::Node* node = list_->First();
    EXPECT_EQ(node, list_->InsertByKey(node->key, *node->record));
    EXPECT_EQ(5u, node->record->dwOID);
}

TEST_F(ObjectListTest, SearchAndRemovalUseTheNodesKeyNotTheRecords) {
    AddFile(5);
    const ObjectKey key = list_->First()->key;
    list_->First()->record->dwOID = 6;
    EXPECT_EQ(nullptr, list_->FindByKey(KeyOf(*list_->First()->record)));
    EXPECT_NE(nullptr, list_->FindByKey(key));
    EXPECT_EQ(1, list_->RemoveByKey(key));
    EXPECT_EQ(0u, list_->CountRecords());
}

TEST_F(ObjectListTest, RemovesAtTheFrontInTheMiddleAndAtTheEnd) {
    for (std::uint32_t oid = 1; oid <= 5; ++oid) {
        AddFile(oid);
    }
    for (std::uint32_t oid : {5u, 3u, 1u}) {
        EXPECT_EQ(1, list_->RemoveByKey(KeyOf(MakeRecord(kFile, oid, 0))));
        EXPECT_EQ(0, list_->RemoveByKey(KeyOf(MakeRecord(kFile, oid, 0))));
    }
    EXPECT_EQ((std::vector<std::uint32_t>{4, 2}), Oids());
    const ObjectList::Node* last = list_->First()->next;
    EXPECT_EQ(list_->First(), last->previous);
    EXPECT_EQ(nullptr, last->next);
    EXPECT_EQ(nullptr, list_->First()->previous);
}

TEST_F(ObjectListTest, RemoveTakesOutTheNodeGiven) {
    for (std::uint32_t oid = 1; oid <= 3; ++oid) {
        AddFile(oid);
    }
    list_->Remove(*list_->First()->next);
    EXPECT_EQ((std::vector<std::uint32_t>{3, 1}), Oids());
}

TEST_F(ObjectListTest, NextGivesKeyAndRecordWhereAskedFor) {
    AddFile(1);
    AddFile(2);
    ObjectList::Cursor cursor = list_->First();
    EXPECT_EQ(1, ObjectList::Next(cursor, nullptr, nullptr));
    ObjectKey key{};
    ObjectRecord* record = nullptr;
    EXPECT_EQ(1, ObjectList::Next(cursor, &key, &record));
    EXPECT_EQ(1u, key.dwOID);
    EXPECT_EQ(1u, record->dwOID);
    EXPECT_EQ(0, ObjectList::Next(cursor, &key, &record));
    EXPECT_EQ(1u, key.dwOID);
}

TEST_F(ObjectListTest, ARangeIsWalkedFromTheFrontAndItsRecordsCanBeChanged) {
    for (std::uint32_t oid = 1; oid <= 3; ++oid) {
        AddFile(oid);
    }
    for (ObjectList::Node& node : *list_) {
        node.record->propOffset = 10 * node.key.dwOID;
    }
    const ObjectList& list = *list_;
    std::vector<std::uint32_t> offsets;
    for (const ObjectList::Node& node : list) {
        offsets.push_back(node.record->propOffset);
    }
    EXPECT_EQ((std::vector<std::uint32_t>{30, 20, 10}), offsets);
}

TEST_F(ObjectListTest, RemoveIfAsksEachNodeOnceFromTheFront) {
    for (std::uint32_t oid = 1; oid <= 6; ++oid) {
        AddFile(oid);
    }
    std::vector<std::uint32_t> asked;
    // At the front, at the end and two in a row.
    list_->RemoveIf([&asked](const ObjectList::Node& node) {
        asked.push_back(node.key.dwOID);
        return node.key.dwOID != 2 && node.key.dwOID != 5;
    });
    EXPECT_EQ((std::vector<std::uint32_t>{6, 5, 4, 3, 2, 1}), asked);
    EXPECT_EQ((std::vector<std::uint32_t>{5, 2}), Oids());
    EXPECT_EQ(2u, list_->CountRecords());
}

TEST_F(ObjectListTest, SerialsFallAlongTheWalk) {
    for (std::uint32_t oid = 1; oid <= 3; ++oid) {
        AddFile(oid);
    }
    list_->Remove(*list_->First()->next);
    AddFile(4);
    AddFile(1);  // keeps its place
    ASSERT_EQ((std::vector<std::uint32_t>{4, 3, 1}), Oids());
    for (const ObjectList::Node* node = list_->First(); node->next != nullptr; node = node->next) {
        EXPECT_GT(node->serial, node->next->serial);
    }
}

TEST_F(ObjectListTest, StateNumbersAreTakenFromTheRecords) {
    EXPECT_EQ(0, list_->MaxStateNumber());
    EXPECT_EQ(0xFFFFFFFF, list_->MinStateNumber());
    for (std::uint16_t state : std::vector<std::uint16_t>{7, 3, 65535, 4}) {
        list_->AddObject(JournalRecord(MakeRecord(kFile, state, 0), state, JF_ADD, 1));
    }
    EXPECT_EQ(65535, list_->MaxStateNumber());
    EXPECT_EQ(3u, list_->MinStateNumber());
}

TEST_F(ObjectListTest, AClearedListCanBeFilledAgain) {
    for (std::uint32_t oid = 1; oid <= 100; ++oid) {
        AddFile(oid);
    }
    list_->ClearList();
    EXPECT_EQ(0u, list_->CountRecords());
    EXPECT_EQ(nullptr, list_->First());
    AddFile(3);
    EXPECT_EQ((std::vector<std::uint32_t>{3}), Oids());
}

TEST_F(ObjectListTest, ResetPutsAnEmptyListIntoTheCell) {
    AddFile(1);
    EXPECT_TRUE(ResetList(list_));
    EXPECT_EQ(0u, list_->CountRecords());
    std::unique_ptr<ObjectList> cell;
    EXPECT_TRUE(ResetList(cell));
    EXPECT_NE(nullptr, cell);
}

TEST_F(ObjectListTest, ReservedBytesAreCarriedUnchanged) {
    ObjectRecord record = MakeRecord(kFile, 1, 0);
    for (std::uint8_t i = 0; i < 7; ++i) {
        record.reserved[i] = static_cast<std::uint8_t>(i + 1);
    }
    list_->AddObject(record);
    EXPECT_EQ(0, std::memcmp(&record, list_->First()->record, sizeof record));
}

// A plain list beside the real one, through a long random life.
TEST_F(ObjectListTest, RandomOperationsGiveThePlainListsOrder) {
    std::mt19937 random(20);
    std::list<KeyedRecord> plain;
    for (std::uint32_t step = 0; step < 20000; ++step) {
        const auto word = [&random](unsigned below) {
            return static_cast<std::uint32_t>(random() % below);
        };
        const ObjectKey key{word(4), word(4), word(8), word(8)};
        ObjectRecord record = MakeRecord(kFile, key.dwOID, key.TolvOID);
        record.propOffset = step;
        auto place = std::find_if(plain.begin(), plain.end(),
                                  [&key](const KeyedRecord& entry) { return entry.key == key; });
        if (random() % 3 == 0) {
            ASSERT_EQ(place != plain.end() ? 1 : 0, list_->RemoveByKey(key));
            if (place != plain.end()) {
                plain.erase(place);
            }
        } else {
            ASSERT_TRUE(list_->InsertCopy(key, record));
            if (place == plain.end()) {
                place = plain.insert(plain.begin(), {key, record});
            }
            place->record = record;
        }
        ASSERT_EQ(plain.size(), list_->CountRecords());
        if (step % 100 == 0) {
            ASSERT_TRUE(Walk(*list_) == std::vector<KeyedRecord>(plain.begin(), plain.end()));
        }
    }
}

}  // namespace
}  // namespace tolvenar
