// Which states hold which versions, held against the states themselves.
#include "pc/storage/lifetimes.h"

#include <algorithm>
#include <random>
#include <set>

#include "pc/storage/content_proof.h"
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class LifetimesTest : public ThreeStatesTest {
protected:
    void ExpectWhatTheStatesHold() const {
        StoredPair opened(FindPair(In("Home")));
        const Lifetimes lifetimes(opened, StatesOf(opened));
        for (const std::uint16_t state : lifetimes.states()) {
            std::set<std::uint32_t> held;
            const std::unique_ptr<ObjectList> list = opened.BuildState(state);
            for (const ObjectList::Node& node : *list) {
                if (node.record->type != ObjectType::kState) {
                    held.insert(node.record->propOffset);
                }
            }
            std::set<std::uint32_t> told;
            for (const StoredVersion& version : opened.check()) {
                const std::uint32_t offset = version.record->propOffset;
                const std::vector<std::uint16_t> states = lifetimes.StatesOf(offset);
                if (std::count(states.begin(), states.end(), state) != 0) {
                    told.insert(offset);
                }
            }
            EXPECT_EQ(held, told) << state;
        }
    }
};

TEST_F(LifetimesTest, AreThoseOfTheStates) { ExpectWhatTheStatesHold(); }

TEST_F(LifetimesTest, AreThoseOfTheStatesWhateverTheJournalHolds) {
    std::mt19937 random(1);
    for (int round = 0; round < 200; ++round) {
        Bytes journal;
        for (ObjectRecord record : pair.Journal()) {
            const unsigned choice = random() % 8;
            record.state_number =
                choice == 0 ? static_cast<std::uint16_t>(1 + random() % 4) : record.state_number;
            record.flags = choice == 1 ? static_cast<std::uint16_t>(JF_ADD) : record.flags;
            journal += choice == 2 ? "" : BytesOf(record);
            journal += choice == 3 ? BytesOf(record) : "";
        }
        Write("Home.jrn", journal);
        ExpectWhatTheStatesHold();
    }
}

// More than one thread takes at a time, and the damage in the middle of it.
TEST_F(LifetimesTest, EveryPartOfALongStorageIsProved) {
    pair.BeginState();
    for (std::uint32_t i = 0; i < 12; ++i) {
        pair.AddFile(u"\\large" + std::u16string(1, static_cast<char16_t>(u'a' + i)),
                     RandomBytes(1 << 20, i), 0x100 + i);
    }
    const std::size_t place = pair.sav.size() - (5 << 20);
    pair.sav[place] = static_cast<char>(pair.sav[place] ^ 1);
    Save();
    StoredPair opened(FindPair(In("Home")));
    ContentProof proof(opened);
    const std::vector<Damage>& damage = proof.Finish([](std::uint64_t) {});
    EXPECT_EQ(1, std::count(damage.begin(), damage.end(), Damage::kData));
    EXPECT_EQ(0, std::count(damage.begin(), damage.end(), Damage::kBlock));
}

}  // namespace
}  // namespace tolvenar::pc
