#include "snapshot/records/failure_reasons.h"

#include <gtest/gtest.h>
#include <vector>

namespace tolvenar {
namespace {

TEST(FailureTableTest, ARecordHasTheReasonThatWasSetLast) {
    FailureTable failures;
    const ObjectRecord held{};
    const ObjectRecord other{};
    EXPECT_EQ(FailureReason::kNone, failures.Of(held));
    failures.Set(held, FailureReason::kNoContainer);
    failures.Set(held, FailureReason::kInUse);
    EXPECT_EQ(FailureReason::kInUse, failures.Of(held));
    EXPECT_EQ(FailureReason::kNone, failures.Of(other));
}

TEST(FailureTableTest, AClearedTableTakesReasonsAnew) {
    FailureTable failures;
    const std::vector<ObjectRecord> records(1000);
    for (int round = 0; round < 2; ++round) {
        for (const ObjectRecord& record : records) {
            EXPECT_EQ(FailureReason::kNone, failures.Of(record));
            failures.Set(record, FailureReason::kDamaged);
        }
        EXPECT_EQ(FailureReason::kDamaged, failures.Of(records.back()));
        failures.Clear();
    }
    EXPECT_EQ(FailureReason::kNone, failures.Of(records.front()));
}

}  // namespace
}  // namespace tolvenar
