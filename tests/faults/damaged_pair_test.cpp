// A card on which a flush makes nothing certain, and a loss of its power: the pair of files is then
// damaged in any way. Every restore brings the state back or tells that it does not, and takes
// nothing away that the state holds.
#include "storage/opened/journal.h"
#include "tests/faults/fault_fixture.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kSeeds = 20;

class DamagedPairTest : public FaultTest {
protected:
    // Whether the storage lists the state.
    static bool IsListed(std::uint32_t state) {
        QuietParts parts;
        return parts.Open() && HighestStateNumber(parts.storage_.journal.get()) >= state;
    }
    void ExpectStateOrTold(std::uint32_t state, const Contents& contents) {
        if (!IsListed(state)) {
            return;
        }
        const Contents before = Now();
        const ResultCode code = Restore(state);
        EXPECT_EQ(Lines(), tests::Lost(contents, before, Now())) << "state " << state;
        if (code == ResultCode::kSuccess || code == ResultCode::kNoDifference) {
            EXPECT_EQ(Lines(), Differences(contents, Now())) << "state " << state;
        }
    }
};

TEST_F(DamagedPairTest, EveryStateThatIsListedComesBackOrItsRestoreTellsWhatDoesNot) {
    MakeDevice();
    const Contents first = BackUp();
    ChangeDevice(1);
    const Contents second = Now();
    device().Set("card.unsynced", "always");
    BackUp();
    ChangeDevice(2);
    KeepDevice();
    for (std::uint32_t seed = 0; seed < kSeeds; ++seed) {
        for (const std::uint32_t state : {1u, 2u}) {
            SCOPED_TRACE("lose " + std::to_string(seed) + ", state " + std::to_string(state));
            PutBack();
            device().LosePower(seed);
            ExpectStateOrTold(state, state == 1 ? first : second);
            Detach();
        }
    }
}

}  // namespace
}  // namespace tolvenar
