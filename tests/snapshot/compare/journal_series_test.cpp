// Random journals of a small device whose ids are given out again: whatever a restore enters as new
// ids, every state holds the objects that it held before.
#include "tests/support/journal_series.h"

#include <gtest/gtest.h>
#include <random>

namespace tolvenar {
namespace {

TEST(JournalSeriesTest, NewIdsChangeNoState) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        std::mt19937 random(seed);
        JournalSeries series([&random](std::uint32_t limit) {
            return static_cast<std::uint32_t>(random() % limit);
        });
        for (int restore = 0; restore < 4; ++restore) {
            EXPECT_TRUE(series.Restore()) << "seed " << seed << ", restore " << restore;
        }
    }
}

}  // namespace
}  // namespace tolvenar
