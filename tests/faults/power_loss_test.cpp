// Operations on a card that keeps only what was flushed, and a loss of power at any moment of them:
// every state that is listed afterwards comes back as it was, and no earlier one is missing.
#include <set>

#include "storage/opened/journal.h"
#include "tests/faults/campaign.h"
#include "tests/faults/fault_fixture.h"

namespace tolvenar {
namespace {

class PowerLossOfStorageTest : public FaultTest {
protected:
    void StoreTwoStates() {
        MakeDevice();
        first_ = BackUp();
        ChangeDevice(1);
        second_ = Now();
    }
    void LoseUnsyncedFromNowOn() { device().Set("card.unsynced", "yes"); }

    // Runs `check` after a loss at every `sample`th moment of what was done since the setting was
    // made, and at the end of it with many seeds.
    void AfterEachLoss(long sample, const std::function<void()>& check) {
        constexpr std::uint32_t kSeedsAtTheEnd = 12;
        KeepDevice();
        PutBack();
        const std::uint32_t changes = device().LosePower(0);
        Detach();
        EXPECT_LT(10u, changes);
        const auto stride = static_cast<std::uint32_t>(tests::Tries("TOLVENAR_LOSSES", sample));
        for (std::uint32_t moment = 1; moment < changes && !HasFailure(); moment += stride) {
            AfterLoss(moment, moment, check);
        }
        for (std::uint32_t seed = 0; seed < kSeedsAtTheEnd && !HasFailure(); ++seed) {
            AfterLoss(1000 + seed, changes, check);
        }
    }
    // The number of the last state that the storage lists; 0 when it does not open.
    static std::uint32_t LastState() {
        QuietParts parts;
        return parts.Open() ? HighestStateNumber(parts.storage_.journal.get()) : 0;
    }
    void ExpectState(std::uint32_t state, const Contents& contents) {
        const ResultCode code = Restore(state);
        EXPECT_TRUE(code == ResultCode::kSuccess || code == ResultCode::kNoDifference)
            << static_cast<int>(code);
        EXPECT_EQ(Lines(), Differences(contents, Now())) << "state " << state;
    }

    Contents first_;
    Contents second_;

private:
    void AfterLoss(std::uint32_t seed, std::uint32_t moment, const std::function<void()>& check) {
        SCOPED_TRACE("lose " + std::to_string(seed) + " " + std::to_string(moment));
        PutBack();
        device().LosePower(seed, moment);
        check();
        Detach();
    }
};

TEST_F(PowerLossOfStorageTest,
       ALossInASecondBackupLeavesTheFirstStateAndTheSecondWholeOrNotListed) {
    StoreTwoStates();
    LoseUnsyncedFromNowOn();
    BackUp();
    std::set<std::uint32_t> last;
    AfterEachLoss(9, [&] {
        const std::uint32_t state = LastState();
        last.insert(state);
        if (state == 2) {
            ExpectState(2, second_);
        }
        ExpectState(1, first_);
    });
    EXPECT_EQ((std::set<std::uint32_t>{1, 2}), last);
}

TEST_F(PowerLossOfStorageTest, ALossInAFirstBackupLeavesTheStateWholeOrNoneAndIsToldOrHealed) {
    MakeDevice();
    device().Remove(Wide(kSav));
    device().Remove(Wide(kJournal));
    LoseUnsyncedFromNowOn();
    ASSERT_TRUE(QuietParts().Make());
    const Contents first = BackUp();
    AfterEachLoss(9, [&] {
        const std::uint32_t state = LastState();
        EXPECT_GE(1u, state);
        if (state == 1) {
            ExpectState(1, first);
        }
    });
}

TEST_F(PowerLossOfStorageTest, ALossInARestoreLeavesBothStates) {
    StoreTwoStates();
    BackUp();
    LoseUnsyncedFromNowOn();
    EXPECT_EQ(ResultCode::kSuccess, Restore(1));
    AfterEachLoss(11, [&] {
        EXPECT_EQ(2u, LastState());
        ExpectState(2, second_);
        ExpectState(1, first_);
    });
}

TEST_F(PowerLossOfStorageTest, ALossInTheBackupAfterALossLeavesTheStatesOfBefore) {
    StoreTwoStates();
    LoseUnsyncedFromNowOn();
    BackUp();
    KeepDevice();
    for (std::uint32_t seed = 0; seed < 4; ++seed) {
        SCOPED_TRACE("after a loss with " + std::to_string(seed));
        PutBack();
        device().LosePower(seed);
        BackUpAgain();
        ChangeDevice(2);
        BackUpAgain();
        device().LosePower(seed + 100);
        EXPECT_LE(1u, LastState());
        ExpectState(1, first_);
        Detach();
    }
}

}  // namespace
}  // namespace tolvenar
