#include "app/rules/start_rules.h"

#include <gtest/gtest.h>

namespace tolvenar {
namespace {

struct Row {
    Wish wish;
    Refusal occupied;  // with all else as it must be
    Refusal without_storage;
    Refusal without_installation;
    Refusal without_all;
};
constexpr Row kRows[] = {
    {Wish::kBackUp, Refusal::kOccupied, Refusal::kNoStorage, Refusal::kNoInstallation,
     Refusal::kOccupied},
    {Wish::kRestoreState, Refusal::kOccupied, Refusal::kNoStorage, Refusal::kNone,
     Refusal::kOccupied},
    {Wish::kPreviewRestore, Refusal::kOccupied, Refusal::kNoStorage, Refusal::kNone,
     Refusal::kOccupied},
    {Wish::kRestoreDifferences, Refusal::kOccupied, Refusal::kNoStorage, Refusal::kNoInstallation,
     Refusal::kOccupied},
    {Wish::kShowDifferences, Refusal::kOccupied, Refusal::kNoStorage, Refusal::kNone,
     Refusal::kOccupied},
    {Wish::kShowHelp, Refusal::kNone, Refusal::kNone, Refusal::kNoInstallation,
     Refusal::kNoInstallation},
};

TEST(StartRulesTest, EachWishIsRefusedForItsOwnReasons) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(static_cast<int>(row.wish));
        EXPECT_EQ(Refusal::kNone, Judge(row.wish, {false, true, true}));
        EXPECT_EQ(row.occupied, Judge(row.wish, {true, true, true}));
        EXPECT_EQ(row.without_storage, Judge(row.wish, {false, false, true}));
        EXPECT_EQ(row.without_installation, Judge(row.wish, {false, true, false}));
        EXPECT_EQ(row.without_all, Judge(row.wish, {true, false, false}));
    }
}

// Choosing a storage first would help nobody.
TEST(StartRulesTest, AMissingInstallationIsToldBeforeAMissingStorage) {
    for (const Wish wish : {Wish::kBackUp, Wish::kRestoreDifferences}) {
        EXPECT_EQ(Refusal::kNoInstallation, Judge(wish, {false, false, false}));
    }
}

}  // namespace
}  // namespace tolvenar
