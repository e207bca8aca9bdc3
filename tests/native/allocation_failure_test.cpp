// Every operation with its nth allocation and all later ones failing, for every n.
#include <gtest/gtest.h>

#include "snapshot/compare/difference.h"
#include "snapshot/compare/journal_update.h"
#include "snapshot/compare/kept_objects.h"
#include "snapshot/compare/state_identifiers.h"
#include "snapshot/compare/value_names.h"
#include "snapshot/records/registry_objects.h"
#include "tests/native/failing_new.h"
#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

namespace tolvenar {
namespace {

class AllocationFailureTest : public testing::Test {
protected:
    ~AllocationFailureTest() override { FailAllocationsFrom(0); }

    // Calls `operation` until it needs no failing allocation; it answers whether it succeeded.
    // Returns the number of runs that failed.
    template <typename Operation>
    static std::size_t ForEachAllocation(Operation operation) {
        for (std::size_t n = 1;; ++n) {
            FailAllocationsFrom(n);
            const bool succeeded = operation();
            const bool failed = CountedAllocations() >= n;
            FailAllocationsFrom(0);
            EXPECT_EQ(!failed, succeeded) << n;
            if (!failed) {
                return n - 1;
            }
        }
    }
    static std::vector<ObjectRecord> Files(std::uint32_t count, std::uint16_t flags) {
        std::vector<ObjectRecord> records;
        for (std::uint32_t oid = 1; oid <= count; ++oid) {
            records.push_back(JournalRecord(MakeRecord(kFile, oid, 0), 1, flags, 9));
        }
        return records;
    }

    FakeInfoSource info_;
};

TEST_F(AllocationFailureTest, AListCannotBeMade) {
    EXPECT_EQ(1u, ForEachAllocation([] { return ObjectList::CreateList() != nullptr; }));
    EXPECT_EQ(1u, ForEachAllocation([] {
                  std::unique_ptr<ObjectList> cell;
                  return ResetList(cell) && cell != nullptr;
              }));
}

TEST_F(AllocationFailureTest, AnInsertionLeavesTheListAsItWas) {
    const ObjectRecord record = MakeRecord(kFile, 100, 0);
    // The index and the nodes, which an empty list has none of yet.
    const auto list = ObjectList::CreateList();
    EXPECT_EQ(2u, ForEachAllocation([&] {
                  EXPECT_EQ(0u, list->CountRecords());
                  return list->AddObject(record);
              }));
    EXPECT_EQ(1u, list->CountRecords());
}

TEST_F(AllocationFailureTest, AReplacementNeedsNoMemory) {
    const auto list = ListOf({MakeRecord(kFile, 1, 0, 0, 5)});
    const ObjectRecord changed = MakeRecord(kFile, 1, 0, 0, 6);
    EXPECT_EQ(0u, ForEachAllocation([&] { return list->AddObject(changed); }));
    EXPECT_EQ(6, list->First()->record->content_fingerprint);
}

TEST_F(AllocationFailureTest, ARecordIsInsertedThoughTheIndexCannotGrow) {
    // The list wants a larger index when it doubles; without memory for it the chains get longer.
    const auto list = ListOf(Files(64, JF_ADD));
    const ObjectRecord another = MakeRecord(kFile, 1000, 0);
    FailAllocationsFrom(1);
    EXPECT_TRUE(list->AddObject(another));
    FailAllocationsFrom(0);
    EXPECT_EQ(65u, list->CountRecords());
    EXPECT_NE(nullptr, list->FindByKey(KeyOf(another)));
    for (const ObjectRecord& file : Files(64, JF_ADD)) {
        EXPECT_NE(nullptr, list->FindByKey(KeyOf(file)));
    }
}

TEST_F(AllocationFailureTest, WhereNoFurtherNodeIsToBeHadTheListStaysWhole) {
    const auto list = ListOf(Files(1, JF_ADD));
    FailAllocationsFrom(1);
    std::uint32_t oid = 1;
    while (list->AddObject(MakeRecord(kFile, oid + 1, 0))) {
        ++oid;
    }
    EXPECT_EQ(nullptr, list->InsertByKey({1, 0, 0, 0}, MakeRecord(kFile, 1, 0)));
    FailAllocationsFrom(0);
    EXPECT_EQ(oid, list->CountRecords());
    EXPECT_TRUE(list->AddObject(MakeRecord(kFile, oid + 1, 0)));
    for (std::uint32_t i = 2; i <= oid + 1; ++i) {
        EXPECT_NE(nullptr, list->FindByKey(KeyOf(MakeRecord(kFile, i, 0))));
    }
}

TEST_F(AllocationFailureTest, BuildStateListFails) {
    const auto all = ListOf(Files(5, JF_ADD));
    EXPECT_LT(5u, ForEachAllocation([&] {
                  auto out = ObjectList::CreateList();
                  if (out == nullptr) {
                      return false;
                  }
                  return BuildStateList(*out, *all, 1, info_);
              }));
}

TEST_F(AllocationFailureTest, CmpListsFails) {
    const auto older = ListOf(Files(3, JF_PRESENT));
    const auto newer = ListOf({MakeRecord(kFile, 100, 0)});
    EXPECT_LT(5u, ForEachAllocation([&] {
                  auto diff = ObjectList::CreateList();
                  if (diff == nullptr) {
                      return false;
                  }
                  return CmpLists(older.get(), newer.get(), *diff, info_);
              }));
}

// Without memory for the index of blocks the whole journal is walked for each object.
TEST_F(AllocationFailureTest, NewIdsReachTheJournalAllTheSame) {
    const auto journal = ListOf(Files(3, JF_ADD));
    JournalUpdater updater(journal.get());
    FailAllocationsFrom(1);
    for (std::uint32_t oid = 1; oid <= 3; ++oid) {
        ObjectRecord file = MakeRecord(kFile, oid, 0);
        updater.UpdateJournalOid(JournalRecord(file, 1, JF_ADD, 9), oid + 40);
    }
    FailAllocationsFrom(0);
    for (const ObjectList::Node& node : *journal) {
        EXPECT_EQ(node.key.dwOID + 40, node.record->dwOID);
    }
}

TEST_F(AllocationFailureTest, NothingIsKeptOfWhatIsDeletedAndWrittenBack) {
    ObjectRecord deleted = MakeRecord(kKey, 0, 5);
    deleted.flags = JF_ADD;
    const auto diff = ListOf({deleted});
    EXPECT_EQ(1u, ForEachAllocation([&] {
                  const bool done = KeepStoredObjects(*diff, info_);
                  EXPECT_EQ(JF_ADD, diff->First()->record->flags);
                  return done;
              }));
}

TEST_F(AllocationFailureTest, TheIdentifiersOfAStateCannotBeLookedUp) {
    const auto state = ListOf({JournalRecord(MakeRecord(kValue, 0, 5), 1, 0, 9)});
    EXPECT_EQ(2u, ForEachAllocation([&] { return StateIdentifiers(info_).Build(*state); }));
}

// A name that is split in the wrong place is restored to another key.
TEST_F(AllocationFailureTest, ANameOfSeveralSeparatorsIsNotSplit) {
    const auto journal = ListOf({JournalRecord(MakeRecord(kKey, 0, 5), 1, JF_ADD, 9)});
    const ObjectRecord value = JournalRecord(MakeRecord(kValue, 0, 5), 1, JF_ADD, 9);
    InfoBlock block;
    ASSERT_TRUE(block.SetName(u"a\u00FFb\u00FFc", 5));
    EXPECT_LT(3u, ForEachAllocation([&] {
                  ValueNames names(journal.get(), info_, info_);
                  std::size_t place = 0;
                  return names.FindSeparator(value, block, place);
              }));
}

TEST_F(AllocationFailureTest, ARegistryObjectIsNotEntered) {
    // Index, texts and entry.
    EXPECT_EQ(3u, ForEachAllocation([] {
                  RegistryObjects table;
                  std::uint32_t id = 0;
                  const bool entered = table.Generate(u"kv", {false, 1, u"k", u"v", 1, "", 0}, id);
                  const std::uint32_t first = MakeTolvOID(u"kv", "", 0, 0);
                  EXPECT_EQ(entered, table.RegObjectFind(first) != nullptr);
                  return entered;
              }));
}

TEST_F(AllocationFailureTest, WithoutAnyIndexNothingIsEntered) {
    RegistryObjects table;
    const auto list = ObjectList::CreateList();
    FailAllocationsFrom(1, 1);
    EXPECT_EQ(0, table.RegObjectAdd(1, {true, 1, u"k"}));
    FailAllocationsFrom(1, 1);
    EXPECT_FALSE(list->AddObject(MakeRecord(kFile, 1, 0)));
    FailAllocationsFrom(0);
    EXPECT_EQ(nullptr, table.RegObjectFind(1));
    EXPECT_EQ(0u, list->CountRecords());
}

TEST_F(AllocationFailureTest, ARegistryObjectIsEnteredThoughTheIndexCannotGrow) {
    RegistryObjects table;
    const std::uint32_t count = 256;
    for (std::uint32_t id = 0; id < count; ++id) {
        ASSERT_EQ(1, table.RegObjectAdd(id, {true, 1, u"k"}));
    }
    FailAllocationsFrom(1, 1);
    EXPECT_EQ(1, table.RegObjectAdd(count, {true, 1, u"k"}));
    const bool index_was_asked_for = CountedAllocations() == 1;
    FailAllocationsFrom(0);
    EXPECT_TRUE(index_was_asked_for);
    for (std::uint32_t id = 0; id <= count; ++id) {
        EXPECT_NE(nullptr, table.RegObjectFind(id)) << id;
    }
}

}  // namespace
}  // namespace tolvenar
