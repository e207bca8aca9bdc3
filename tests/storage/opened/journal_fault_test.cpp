// Loading the journal while the platform fails.
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
    records_[88] = 32;  // a state
    Put(kJournalTemporary, records_);
    device().Remove(Wide(kJournal));
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

// The list, then its index and the nodes.
TEST_F(JournalFaultTest, NoMemoryForARecordIsAFailedLoad) {
    const int allocations = AllocationsOf([&] { OpenJournal(storage_, nullptr); });
    EXPECT_GE(allocations, 3);
    for (int n = 2; n <= allocations; ++n) {
        FailAllocation(n);
        const bool opened = OpenJournal(storage_, nullptr);
        EXPECT_FALSE(opened) << n;
        EXPECT_EQ(nullptr, storage_.journal) << n;
    }
    EXPECT_EQ(static_cast<std::size_t>(allocations) - 1, Occurrences(Log(), kNotRead));
    EXPECT_EQ(records_, Content(kJournal));
}

}  // namespace
}  // namespace tolvenar
