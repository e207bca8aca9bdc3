#include "snapshot/records/object_type.h"

#include <gtest/gtest.h>

namespace tolvenar {
namespace {

struct Row {
    int type;
    IdSource id;
    FingerprintKind fingerprint;
    bool fingerprint_in_key;
    RestorePhase phase;
};

constexpr Row kRows[] = {
    {1, IdSource::kGenerated, FingerprintKind::kData, true, RestorePhase::kOthers},
    {2, IdSource::kGenerated, FingerprintKind::kFixed, false, RestorePhase::kOthers},
    {4, IdSource::kObjectStore, FingerprintKind::kRecordCount, false, RestorePhase::kOthers},
    {8, IdSource::kObjectStore, FingerprintKind::kData, true, RestorePhase::kOthers},
    {16, IdSource::kObjectStore, FingerprintKind::kData, false, RestorePhase::kFiles},
    {32, IdSource::kNone, FingerprintKind::kData, false, RestorePhase::kOthers},
};
// What a damaged journal may hold beside them.
constexpr Row kOtherValues = {0, IdSource::kObjectStore, FingerprintKind::kData, false,
                              RestorePhase::kOthers};

const Row& RowOf(int type) {
    for (const Row& row : kRows) {
        if (row.type == type) {
            return row;
        }
    }
    return kOtherValues;
}

TEST(ObjectTypeTest, EveryValueOfTheByteHasItsRow) {
    for (int value = 0; value < 256; ++value) {
        const Row& row = RowOf(value);
        const auto type = static_cast<ObjectType>(value);
        const TypeTraits traits = TraitsOf(type);
        EXPECT_EQ(row.id, traits.id) << value;
        EXPECT_EQ(row.fingerprint, traits.fingerprint) << value;
        EXPECT_EQ(row.fingerprint_in_key, traits.fingerprint_in_key) << value;
        EXPECT_EQ(row.phase, traits.phase) << value;
    }
}

TEST(ObjectTypeTest, QuestionsAreAnsweredFromTheRow) {
    for (int value = 0; value < 256; ++value) {
        const auto type = static_cast<ObjectType>(value);
        EXPECT_EQ(value == 1 || value == 2, IsRegistryType(type)) << value;
        EXPECT_EQ(value != 1 && value != 2 && value != 32, HasObjectStoreId(type)) << value;
        EXPECT_EQ(value != 2 && value != 4, CarriesDataChecksum(type)) << value;
        EXPECT_EQ(value == 4, CountsRecords(type)) << value;
        EXPECT_EQ(RowOf(value).type != 0, IsKnownType(type)) << value;
    }
}

TEST(ObjectTypeTest, TheEnumeratorsAreTheCodesOfTheJournal) {
    EXPECT_EQ(1, static_cast<int>(ObjectType::kRegistryValue));
    EXPECT_EQ(2, static_cast<int>(ObjectType::kRegistryKey));
    EXPECT_EQ(4, static_cast<int>(ObjectType::kDatabase));
    EXPECT_EQ(8, static_cast<int>(ObjectType::kDatabaseRecord));
    EXPECT_EQ(16, static_cast<int>(ObjectType::kFile));
    EXPECT_EQ(32, static_cast<int>(ObjectType::kState));
}

}  // namespace
}  // namespace tolvenar
