// Operations in which each read and each write in turn takes half of the bytes and says so: what a
// read missed is read, what could not be written whole is told.
#include "storage/opened/journal.h"
#include "tests/faults/fault_fixture.h"

namespace tolvenar {
namespace {

class EveryCallShortTest : public FaultTest {
protected:
    static bool IsRead(const FaultRun& run) { return std::string("ReadFile") == run.row.function; }
    void ExpectState(std::uint32_t state, const Contents& contents) {
        const ResultCode code = Restore(state);
        EXPECT_TRUE(code == ResultCode::kSuccess || code == ResultCode::kNoDifference)
            << static_cast<int>(code);
        EXPECT_EQ(Lines(), Differences(contents, Now())) << "state " << state;
    }
};

// The list of a load with a short read, written out again, is the one of a load without.
TEST_F(EveryCallShortTest, AJournalIsLoadedAsItIs) {
    MakeDevice();
    BackUp();
    KeepDevice();
    const Operation save = [](QuietParts& parts) {
        const bool saved = parts.Open() && CloseJournal(parts.storage_.names,
                                                        parts.storage_.journal, true, nullptr) != 0;
        return saved ? ResultCode::kSuccess : ResultCode::kFailed;
    };
    const std::string journal = JournalAfter(save);
    ShortenEachCall(
        save,
        [&](FaultRun& run) {
            EXPECT_EQ(IsRead(run) ? ResultCode::kSuccess : ResultCode::kFailed, run.code);
            EXPECT_TRUE(!IsRead(run) || journal == Content(kJournal));
        },
        true);
}

TEST_F(EveryCallShortTest, ABackupKeepsTheFirstStateAndTellsWhatItCouldNotWrite) {
    MakeDevice();
    const Contents first = BackUp();
    ChangeDevice(1);
    const Contents second = Now();
    KeepDevice();
    const Operation backup = [](QuietParts& parts) {
        const ResultCode code = parts.Backup().code;
        return parts.backup_.failed != 0 ? ResultCode::kFailed : code;
    };
    const std::string whole = JournalAfter(backup);
    ShortenEachCall(backup, [&](FaultRun& run) {
        EXPECT_EQ(IsRead(run) ? ResultCode::kSuccess : ResultCode::kFailed, run.code);
        EXPECT_EQ(Lines(), Differences(second, Now()));
        if (IsCutJournal(run, whole)) {
            return;
        }
        ExpectState(BackUpAgain(), second);
        ExpectState(1, first);
    });
}

TEST_F(EveryCallShortTest, ARestoreLosesNothingAndTellsWhatItCouldNotWrite) {
    MakeDevice();
    const Contents first = BackUp();
    ChangeDevice(1);
    const Contents second = BackUp();
    ChangeDevice(2);
    const Contents damaged = Now();
    KeepDevice();
    const Operation restore = [](QuietParts& parts) { return parts.Restore(2).code; };
    const std::string whole = JournalAfter(restore);
    ShortenEachCall(restore, [&](FaultRun& run) {
        EXPECT_EQ(Lines(), tests::Lost(second, damaged, Now()));
        if (run.code == ResultCode::kSuccess) {
            EXPECT_EQ(Lines(), Differences(second, Now()));
        }
        if (!IsCutJournal(run, whole)) {
            ExpectState(2, second);
            ExpectState(1, first);
        }
    });
}

TEST_F(EveryCallShortTest, ANewStorageWithAShortHeadIsRefused) {
    MakeDevice();
    device().Remove(Wide(kSav));
    device().Remove(Wide(kJournal));
    KeepDevice();
    const Operation make = [](QuietParts& parts) {
        return parts.Make() ? ResultCode::kSuccess : ResultCode::kFailed;
    };
    ShortenEachCall(
        make,
        [&](FaultRun& run) {
            EXPECT_EQ(IsRead(run) ? ResultCode::kSuccess : ResultCode::kFailed, run.code);
        },
        true);
}

}  // namespace
}  // namespace tolvenar
