// Backups with each of their platform calls failing in turn: the device and earlier states are as
// they were, and the next backup stores what this one could not.
#include "tests/faults/fault_fixture.h"

namespace tolvenar {
namespace {

class EveryCallBackupTest : public FaultTest {};

ResultCode Backup(QuietParts& parts) { return parts.Backup().code; }

TEST_F(EveryCallBackupTest, AFirstBackupLeavesTheDeviceAndTheNextOneHeals) {
    MakeDevice();
    const Contents before = Now();
    KeepDevice();
    FailEachCall(Backup, [&](FaultRun&) {
        EXPECT_EQ(Lines(), Differences(before, Now()));
        const std::uint32_t state = BackUpAgain();
        EXPECT_EQ(ResultCode::kNoDifference, Restore(state));
        EXPECT_EQ(Lines(), Differences(before, Now()));
    });
}

TEST_F(EveryCallBackupTest, ASecondBackupLeavesTheDeviceAndTheFirstState) {
    MakeDevice();
    const Contents first = BackUp();
    ChangeDevice(1);
    const Contents second = Now();
    const std::string sav = Content(kSav);
    const std::string journal = Content(kJournal);
    KeepDevice();
    const std::string whole = JournalAfter(Backup);
    int without_memory = 0;
    FailEachCall(Backup, [&](FaultRun& run) {
        EXPECT_EQ(Lines(), Differences(second, Now()));
        if (run.code == ResultCode::kNoMemory) {
            ++without_memory;
            EXPECT_TRUE(sav == Content(kSav) && journal == Content(kJournal));
        }
        if (IsCutJournal(run, whole)) {
            return;
        }
        const std::uint32_t state = BackUpAgain();
        EXPECT_EQ(ResultCode::kNoDifference, Restore(state));
        EXPECT_EQ(ResultCode::kSuccess, Restore(1));
        EXPECT_EQ(Lines(), Differences(first, Now()));
    });
    EXPECT_LT(0, without_memory) << "a scan that lacks memory says so";
}

}  // namespace
}  // namespace tolvenar
