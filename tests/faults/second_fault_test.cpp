// A call that fails, and one that fails in what comes next to make it good: no state is lost, and
// the operation after both finishes. A sample of the pairs; scripts/more_faults takes more.
#include <random>

#include "tests/faults/campaign.h"
#include "tests/faults/fault_fixture.h"

namespace tolvenar {
namespace {

constexpr long kSample = 8;  // pairs in each case

class SecondFaultTest : public FaultTest {
protected:
    struct Choice {
        const tests::FaultRow* row;
        long number;
        long count;
    };

    Choice Draw(const std::vector<long>& counts) {
        for (;;) {
            const std::size_t i = random_() % counts.size();
            if (counts[i] != 0) {
                const auto count = static_cast<std::uint32_t>(counts[i]);
                return {&tests::FaultRows()[i], static_cast<long>(1 + random_() % count),
                        counts[i]};
            }
        }
    }
    static std::string Name(const Choice& choice) {
        return std::string(choice.row->function) + " " + std::to_string(choice.number) + " of " +
               std::to_string(choice.count);
    }
    // A write that fails while the journal is saved leaves the records before it, on purpose; the
    // journal of before is kept aside.
    bool IsCut() { return device().Exists(L"\\Storage Card\\Backup\\Home.jrn_old"); }

    // Runs `first` and then `second`, each with a call of its own failing, and `check`, for every
    // pair.
    void FailPairs(const Operation& first, const Operation& second,
                   const std::function<void()>& check) {
        PutBack();
        const std::vector<long> counts = CountCalls(tests::FaultRows(), first, true);
        const std::vector<long> next = CountCalls(tests::FaultRows(), second, true);
        Detach();
        const long pairs = tests::Tries("TOLVENAR_PAIRS", kSample);
        for (long i = 0; i < pairs && !HasFailure(); ++i) {
            const Choice one = Draw(counts);
            const Choice two = Draw(next);
            SCOPED_TRACE(Name(one) + ", then " + Name(two));
            PutBack();
            const FaultRun run = RunWithFault(first, true, *one.row, one.number, one.count);
            RunWithFault(second, true, *two.row, two.number, two.count);
            EXPECT_TRUE(run.has_fired);
            if (!IsCut()) {
                check();
            }
            Detach();
        }
    }
    // A folder whose new id the journal lacks is to be deleted and written back by every later
    // restore, and its contents keep it: a failure is told, and nothing is amiss.
    void ExpectState(std::uint32_t state, const Contents& contents) {
        const ResultCode code = Restore(state);
        EXPECT_TRUE(code == ResultCode::kSuccess || code == ResultCode::kNoDifference ||
                    code == ResultCode::kFailed)
            << static_cast<int>(code);
        EXPECT_EQ(Lines(), Differences(contents, Now())) << "state " << state;
    }
    void StoreOneState() {
        MakeDevice();
        first_ = BackUp();
        ChangeDevice(1);
        second_ = Now();
    }

    Contents first_;
    Contents second_;
    std::mt19937 random_{4711};
};

ResultCode Backup(QuietParts& parts) {
    return parts.Open() ? parts.Backup().code : ResultCode::kJournalUnreadable;
}

template <std::uint32_t kState>
ResultCode RestoreOf(QuietParts& parts) {
    return parts.Open() ? parts.Restore(kState).code : ResultCode::kJournalUnreadable;
}

TEST_F(SecondFaultTest, TwoBackupsThatFailLeaveTheDeviceAndTheFirstStateAndTheNextHeals) {
    StoreOneState();
    KeepDevice();
    FailPairs(Backup, Backup, [&] {
        EXPECT_EQ(Lines(), Differences(second_, Now()));
        ExpectState(BackUpAgain(), second_);
        ExpectState(1, first_);
    });
}

TEST_F(SecondFaultTest, ARestoreThatFailsAfterABackupThatFailedLosesNothingAndTheNextFinishes) {
    StoreOneState();
    KeepDevice();
    FailPairs(Backup, RestoreOf<1>, [&] {
        EXPECT_EQ(Lines(), tests::Lost(first_, second_, Now()));
        ExpectState(1, first_);
    });
}

TEST_F(SecondFaultTest, TwoRestoresThatFailLoseNothingAndTheNextBringsBothStatesBack) {
    StoreOneState();
    BackUp();
    ChangeDevice(2);
    const Contents damaged = Now();
    KeepDevice();
    FailPairs(RestoreOf<2>, RestoreOf<2>, [&] {
        EXPECT_EQ(Lines(), tests::Lost(second_, damaged, Now()));
        ExpectState(2, second_);
        ExpectState(1, first_);
    });
}

}  // namespace
}  // namespace tolvenar
