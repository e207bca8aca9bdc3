// Opening a storage with each of the platform calls failing in turn: either all of it is there or
// none, and the files stay as they are.
#include "tests/faults/fault_fixture.h"

namespace tolvenar {
namespace {

class EveryCallLoadTest : public FaultTest {};

TEST_F(EveryCallLoadTest, AJournalIsLoadedWholeOrNotAtAll) {
    MakeDevice();
    BackUp();
    ChangeDevice(1);
    BackUp();
    const std::string sav = Content(kSav);
    const std::string journal = Content(kJournal);
    const std::size_t records = journal.size() / sizeof(ObjectRecord);
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
            EXPECT_EQ(run.code == ResultCode::kSuccess ? records : 0, loaded);
            refused += run.code == ResultCode::kSuccess ? 0 : 1;
            EXPECT_TRUE(sav == Content(kSav));
            EXPECT_TRUE(journal == Content(kJournal));
        },
        true);
    EXPECT_NE(0u, refused);
}

}  // namespace
}  // namespace tolvenar
