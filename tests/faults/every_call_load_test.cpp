// Opening a storage with each of the platform calls failing in turn: either all of it is there or
// none, and the files stay as they are.
#include "tests/faults/fault_fixture.h"

namespace tolvenar {
namespace {

class EveryCallLoadTest : public FaultTest {
protected:
    // The storage with two states on a device that every load begins with.
    void StoreTwoStates() {
        MakeDevice();
        BackUp();
        ChangeDevice(1);
        BackUp();
        sav_ = Content(kSav);
        journal_ = Content(kJournal);
    }
    // Loads with each call failing: all records are there or none, and the storage file stays as it
    // is. `check` sees to the journal's files.
    void LoadWithEachCallFailing(const std::function<void()>& check) {
        KeepDevice();
        std::size_t loaded = 0;
        const Operation open = [&](QuietParts& parts) {
            const bool done = parts.Open();
            loaded = done ? parts.storage_.journal->CountRecords() : 0;
            EXPECT_EQ(done, parts.storage_.journal != nullptr);
            return done ? ResultCode::kSuccess : ResultCode::kFailed;
        };
        std::size_t refused = 0;
        FailEachCall(
            open,
            [&](FaultRun& run) {
                EXPECT_EQ(run.code == ResultCode::kSuccess ? Records() : 0, loaded);
                refused += run.code == ResultCode::kSuccess ? 0 : 1;
                EXPECT_TRUE(sav_ == Content(kSav));
                check();
            },
            true);
        EXPECT_NE(0u, refused);
    }
    std::size_t Records() const { return journal_.size() / sizeof(ObjectRecord); }

    std::string sav_;
    std::string journal_;
};

TEST_F(EveryCallLoadTest, AJournalIsLoadedWholeOrNotAtAll) {
    StoreTwoStates();
    LoadWithEachCallFailing([&] { EXPECT_TRUE(journal_ == Content(kJournal)); });
}

// The save that was stopped is the first fault, the failing call of the load the second.
TEST_F(EveryCallLoadTest, AJournalWhoseSaveWasStoppedBeforeItHadItsNameIsNeverLost) {
    StoreTwoStates();
    device().Remove(Wide(kJournal));
    device().PutFile(Wide(kJournalTemporary), journal_);
    LoadWithEachCallFailing([&] {
        QuietParts parts;
        EXPECT_TRUE(parts.Open());
        EXPECT_EQ(Records(), parts.storage_.journal->CountRecords());
        EXPECT_TRUE(journal_ == Content(kJournal));
    });
}

}  // namespace
}  // namespace tolvenar
