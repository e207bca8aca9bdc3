// Restores with each of their platform calls failing in turn: nothing is lost that the state holds
// and the device had, and the states are whole afterwards.
#include "tests/faults/fault_fixture.h"

namespace tolvenar {
namespace {

class EveryCallRestoreTest : public FaultTest {
protected:
    // A folder whose new id could not be told is to be deleted and written back by every later
    // restore, and its contents keep it: reported, and nothing else.
    static bool MayLeaveStaleIds(const FaultRun& run) {
        return std::string("FindFirstFileW") == run.row.function;
    }
    void ExpectState(const FaultRun& run, std::uint32_t state, const Contents& contents) {
        const ResultCode code = Restore(state);
        EXPECT_TRUE(code == ResultCode::kSuccess || code == ResultCode::kNoDifference ||
                    (code == ResultCode::kFailed && MayLeaveStaleIds(run)))
            << static_cast<int>(code);
        EXPECT_EQ(Lines(), Differences(contents, Now())) << "state " << state;
    }
};

TEST_F(EveryCallRestoreTest, NothingIsLostAndTheNextRestoresBringBothStatesBack) {
    MakeDevice();
    const Contents first = BackUp();
    ChangeDevice(1);
    const Contents second = BackUp();
    ChangeDevice(2);
    const Contents damaged = Now();
    const std::string sav = Content(kSav);
    KeepDevice();
    const Operation restore = [](QuietParts& parts) { return parts.Restore(2).code; };
    const std::string whole = JournalAfter(restore);
    int without_memory = 0;
    FailEachCall(restore, [&](FaultRun& run) {
        if (run.code == ResultCode::kNoMemory) {
            ++without_memory;
            EXPECT_EQ(Lines(), Differences(damaged, Now()));
        }
        EXPECT_EQ(Lines(), tests::Lost(second, damaged, Now()));
        EXPECT_TRUE(sav == Content(kSav)) << "a restore writes no blocks";
        if (!IsCutJournal(run, whole)) {
            ExpectState(run, 2, second);
            ExpectState(run, 1, first);
        }
    });
    EXPECT_LT(0, without_memory) << "a scan that lacks memory says so";
}

}  // namespace
}  // namespace tolvenar
