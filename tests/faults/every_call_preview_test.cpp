// Previews of a restore with each of their platform calls failing in turn: nothing changes on the
// device or in the storage, and the journal that was borrowed is back.
#include "storage/operations/restore_preview.h"
#include "tests/faults/fault_fixture.h"

namespace tolvenar {
namespace {

class EveryCallPreviewTest : public FaultTest {};

TEST_F(EveryCallPreviewTest, NothingChangesAndTheStorageStaysOpen) {
    MakeDevice();
    BackUp();
    ChangeDevice(1);
    const Contents before = Now();
    const std::string sav = Content(kSav);
    const std::string journal = Content(kJournal);
    KeepDevice();
    std::size_t successes = 0;
    const Operation preview = [&](QuietParts& parts) {
        RestorePreview found(parts.databases_, parts.progress_);
        const bool is_found = found.Find(parts.storage_, 1);
        EXPECT_NE(nullptr, parts.storage_.journal);
        EXPECT_NE(nullptr, parts.storage_.header);
        EXPECT_EQ(is_found ? 1u : 0u, found.state_number());
        successes += is_found ? 1 : 0;
        return is_found ? ResultCode::kSuccess : ResultCode::kNoDifferenceList;
    };
    FailEachCall(preview, [&](FaultRun&) {
        EXPECT_EQ(Lines(), Differences(before, Now()));
        EXPECT_TRUE(sav == Content(kSav));
        EXPECT_TRUE(journal == Content(kJournal));
    });
    EXPECT_LT(0u, successes);
}

}  // namespace
}  // namespace tolvenar
