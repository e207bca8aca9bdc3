// Journals from a card that anything may have damaged.
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class JournalCorruptTest : public StorageTest {};

TEST_F(JournalCorruptTest, AnyBytesOfAnyLengthLoad) {
    for (std::size_t size = 1; size <= 100; ++size) {
        Put(kJournal, RandomBytes(size, static_cast<unsigned>(size)));
        ASSERT_TRUE(OpenJournal(storage_, nullptr)) << size;
        EXPECT_EQ((size + 31) / 32, storage_.journal->CountRecords()) << size;
    }
    EXPECT_EQ(Text(), Log());
}

TEST_F(JournalCorruptTest, WhatIsNotUnderstoodIsCarriedUnchanged) {
    const Bytes bytes = RandomBytes(32 * 50, 7);
    Put(kJournal, bytes);
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(OpenJournal(storage_, nullptr));
        EXPECT_EQ(1, CloseJournal(storage_.names, storage_.journal, true, nullptr));
    }
    EXPECT_EQ(bytes, Content(kJournal));
}

TEST_F(JournalCorruptTest, RecordsOfZerosAreOneRecord) {
    Put(kJournal, Bytes(320, 0));
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    EXPECT_EQ(1u, storage_.journal->CountRecords());
    EXPECT_EQ(1u, NextStateNumber(storage_.journal.get()));
}

TEST_F(JournalCorruptTest, AFolderInTheJournalsPlaceIsAFailedLoad) {
    ASSERT_TRUE(::CreateDirectoryW(Wide(kJournal), nullptr));
    EXPECT_FALSE(OpenJournal(storage_, nullptr));
    EXPECT_EQ(nullptr, storage_.journal);
}

}  // namespace
}  // namespace tolvenar
