// The journal while the platform fails.
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

constexpr char16_t kNotRead[] = u" - Module: OpenJournal; Message: Could't read journal\r\n";
constexpr char16_t kNotCreated[] = u" - Module: OpenJournal; Message: Could't create journal\r\n";

class JournalFaultTest : public StorageTest {
protected:
    void SetUp() override {
        StorageTest::SetUp();
        for (std::uint32_t i = 1; i <= 3; ++i) {
            records_ +=
                Word(i) + Word(0) + Word(0) + Word(236) + Word(0) + Word(1) + Word(16) + Word(0);
        }
        Put(kJournal, records_);
    }
    void ExpectNotLoaded(const char16_t* log_line = kNotRead) {
        EXPECT_EQ(nullptr, storage_.journal);
        EXPECT_EQ(1u, Occurrences(Log(), log_line));
        EXPECT_EQ(0u, Log().find(u"E - "));
        EXPECT_EQ(records_, Content(kJournal));
    }
    int Save() { return CloseJournal(storage_.names, storage_.journal, true, nullptr); }

    Bytes records_;
};

TEST_F(JournalFaultTest, AJournalThatSomebodyHoldsIsNotLoaded) {
    {
        const UniqueHandle held = Hold(kJournal);
        EXPECT_FALSE(OpenJournal(storage_, nullptr));
    }
    ExpectNotLoaded();
}

TEST_F(JournalFaultTest, ARecordThatCannotBeReadIsAFailedLoad) {
    for (int n = 1; n <= 3; ++n) {
        Fail("ReadFile", n, ERROR_READ_FAULT);
        EXPECT_FALSE(OpenJournal(storage_, nullptr));
        EXPECT_EQ(nullptr, storage_.journal);
    }
    EXPECT_EQ(3u, Occurrences(Log(), kNotRead));
    EXPECT_TRUE(IsFree(kJournal));
}

TEST_F(JournalFaultTest, LoadingAListStopsAtTheFailedReadAndSaysHowFarItCame) {
    const auto list = ObjectList::CreateList();
    Fail("ReadFile", 3, ERROR_READ_FAULT);
    JournalLoad load{};
    EXPECT_TRUE(LoadObjectList(storage_.names, *list, nullptr, load));
    EXPECT_EQ(2u, list->CountRecords());
    EXPECT_EQ(2u, load.taken);
    EXPECT_EQ(3u, load.held);
}

TEST_F(JournalFaultTest, ASizeThatCannotBeHadIsAFailedLoad) {
    Fail("GetFileSize", 1, ERROR_INVALID_HANDLE);
    EXPECT_FALSE(OpenJournal(storage_, nullptr));
    ExpectNotLoaded();
}

TEST_F(JournalFaultTest, AFailedRenamingOfAWholeTemporaryJournalIsAFailedLoad) {
    Put(kSav, "x");
    ASSERT_TRUE(::MoveFileW(Wide(kJournal), Wide(kJournalTemporary)));
    Fail("MoveFileW", 1, ERROR_ACCESS_DENIED);
    EXPECT_FALSE(OpenJournal(storage_, nullptr));
    EXPECT_EQ(nullptr, storage_.journal);
    EXPECT_EQ(1u, Occurrences(Log(), kNotRead));
    EXPECT_FALSE(Exists(kJournal));
    EXPECT_EQ(records_, Content(kJournalTemporary));
}

TEST_F(JournalFaultTest, WithoutMemoryForItsListThereIsNoJournal) {
    FailAllocation(1);
    const bool opened = OpenJournal(storage_, nullptr);
    EXPECT_FALSE(opened);
    ExpectNotLoaded(kNotCreated);
}

// The list, then index, node and copy of the records.
TEST_F(JournalFaultTest, NoMemoryForARecordIsAFailedLoad) {
    const int allocations = AllocationsOf([&] { OpenJournal(storage_, nullptr); });
    EXPECT_GE(allocations, 1 + 2 * 3);
    for (int n = 2; n <= allocations; ++n) {
        FailAllocation(n);
        const bool opened = OpenJournal(storage_, nullptr);
        EXPECT_FALSE(opened) << n;
        EXPECT_EQ(nullptr, storage_.journal) << n;
    }
    EXPECT_EQ(static_cast<std::size_t>(allocations) - 1, Occurrences(Log(), kNotRead));
    EXPECT_EQ(records_, Content(kJournal));
}

TEST_F(JournalFaultTest, WithoutATemporaryFileTheJournalStays) {
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    Fail("CreateFileW", 1, ERROR_DISK_FULL);
    EXPECT_EQ(0, Save());
    EXPECT_EQ(nullptr, storage_.journal);
    EXPECT_EQ(records_, Content(kJournal));
}

// Intended: what could be written replaces the journal.
TEST_F(JournalFaultTest, APartlyWrittenListReplacesTheJournal) {
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    Fail("WriteFile", 3, ERROR_DISK_FULL);
    EXPECT_EQ(0, Save());
    EXPECT_EQ(nullptr, storage_.journal);
    const Bytes content = Content(kJournal);
    ASSERT_EQ(64u, content.size());
    EXPECT_EQ(3, content[0]);
    EXPECT_EQ(2, content[32]);
    EXPECT_FALSE(Exists(kJournalTemporary));
}

TEST_F(JournalFaultTest, AFailedFirstWriteEmptiesTheJournal) {
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    Fail("WriteFile", 1, ERROR_DISK_FULL);
    EXPECT_EQ(0, Save());
    EXPECT_EQ(Bytes{}, Content(kJournal));
}

TEST_F(JournalFaultTest, ProgressStopsWithTheFailedWrite) {
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    Fail("WriteFile", 2, ERROR_DISK_FULL);
    EXPECT_EQ(0, CloseJournal(storage_.names, storage_.journal, true, &progress_));
    EXPECT_EQ((Lines{"begin 3", "Saving object list...", "step"}), progress_.events);
}

TEST_F(JournalFaultTest, AListThatCannotTakeTheJournalsPlaceIsNotSaved) {
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    {
        const UniqueHandle held = Hold(kJournal);
        EXPECT_EQ(0, Save());
    }
    EXPECT_EQ(nullptr, storage_.journal);
    EXPECT_EQ(records_, Content(kJournal));
}

TEST_F(JournalFaultTest, AFailedRenamingIsMadeUpForByTheNextLoad) {
    Put(kSav, "x");
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    Fail("MoveFileW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(0, Save());
    EXPECT_FALSE(Exists(kJournal));
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    EXPECT_EQ(3u, storage_.journal->CountRecords());
    EXPECT_TRUE(Exists(kJournal));
}

TEST_F(JournalFaultTest, AFailedFlushDoesNotKeepTheListFromTakingItsPlace) {
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    Fail("FlushFileBuffers", 1, ERROR_WRITE_FAULT);
    EXPECT_EQ(1, Save());
    EXPECT_EQ(96u, Content(kJournal).size());
    EXPECT_EQ(3, Content(kJournal)[0]);
}

TEST_F(JournalFaultTest, AJournalThatCannotBeCutIsNotEmptied) {
    Fail("SetEndOfFile", 1, ERROR_WRITE_FAULT);
    EXPECT_FALSE(EmptyJournal(storage_.names));
    EXPECT_EQ(records_, Content(kJournal));
    EXPECT_TRUE(IsFree(kJournal));
}

TEST_F(JournalFaultTest, ATemporaryJournalThatStaysIsAFailure) {
    Put(kJournalTemporary, records_);
    const UniqueHandle held = Hold(kJournalTemporary);
    EXPECT_FALSE(EmptyJournal(storage_.names));
}

TEST_F(JournalFaultTest, AJournalThatCannotBeOpenedIsNotEmptied) {
    const UniqueHandle held = Hold(kJournal);
    EXPECT_FALSE(EmptyJournal(storage_.names));
}

}  // namespace
}  // namespace tolvenar
