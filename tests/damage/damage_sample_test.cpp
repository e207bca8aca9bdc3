// Restores from damaged pairs. Without more it is a sample of each kind of damage in each scene;
// scripts/damage_campaign runs the same with other choices.
#include <chrono>
#include <cstdlib>
#include <iostream>

#include "tests/damage/campaign.h"

namespace tolvenar {
namespace {

constexpr char kSample[] = "most=2 seed=1";

TEST(DamageSampleTest, NothingIsLostAndNothingIsWrongInSilence) {
    const char* const words = std::getenv("TOLVENAR_DAMAGE");
    Choice choice;
    ASSERT_TRUE(ReadChoice(words != nullptr ? words : kSample, choice)) << words;
    Stage stage(choice.seed);
    Choice sound;
    sound.kind = "none";
    EXPECT_EQ(kScenes, Campaign(stage, sound, std::cout).Run().Cases(Verdict::kExact));
    const auto begin = std::chrono::steady_clock::now();
    const Table table = Campaign(stage, choice, std::cout).Run();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    table.Print(std::cout);
    std::cout << table.Cases() << " cases, " << table.Cases() / seconds.count() << " a second\n";
    if (table.Findings() != 0 || table.Cases() == 0) {
        ADD_FAILURE() << table.Findings() << " findings";
    }
}

}  // namespace
}  // namespace tolvenar
