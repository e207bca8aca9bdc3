#include <gtest/gtest.h>

#include "snapshot/compare/exclusion.h"
#include "snapshot/compare/prune.h"
#include "tests/native/recording_log.h"
#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

namespace tolvenar {
namespace {

const char16_t kOwnValue[] = u"Software\\Kestrin2\\Tolvenar\u00FFonTime";

class PruneLogTest : public testing::Test {
protected:
    PruneLogTest() { ClearLog(); }
    void AddValue(std::uint32_t TolvOID, std::uint16_t flags, std::uint32_t offset) {
        diff_->AddObject(JournalRecord(MakeRecord(kValue, 0, TolvOID), 1, flags, offset));
    }

    FakeInfoSource info_;
    std::unique_ptr<ObjectList> diff_ = ObjectList::CreateList();
};

TEST_F(PruneLogTest, AStoredBlockThatCannotBeReadStaysAndIsLoggedByEveryRule) {
    AddValue(1, JF_DELETE, 40);
    PruneDifferences(*diff_, kBackupPruning, info_);
    EXPECT_EQ(1u, diff_->CountRecords());
    EXPECT_EQ(
        std::vector<std::string>(4, "E RemoveKestrinAddDeleteLQNRegValue: Fail GetInfoFromStorage"),
        LogLines());
}

// Not even with an addition whose value has no name.
TEST_F(PruneLogTest, AStoredBlockThatCannotBeReadMakesNoPair) {
    info_.live[{2, 0}] = {u"Software\\Kestrin2\\Tolvenar\u00FF", kValue, kHiveCurrentUser};
    AddValue(2, JF_ADD, 0);
    AddValue(1, JF_DELETE, 40);
    PruneDifferences(*diff_, kBackupPruning, info_);
    EXPECT_EQ(2u, diff_->CountRecords());
}

TEST_F(PruneLogTest, ALiveValueThatCannotBeDescribedIsPassedOver) {
    const FakeInfoSource::Object value{kOwnValue, kValue, kHiveCurrentUser};
    info_.stored[40] = value;
    info_.live[{2, 0}] = value;
    AddValue(2, JF_ADD, 0);
    AddValue(3, JF_ADD, 0);  // in front, and not to be described
    AddValue(1, JF_DELETE, 40);
    PruneDifferences(*diff_, kBackupPruning, info_);
    ASSERT_EQ(1u, diff_->CountRecords());
    EXPECT_EQ(3u, diff_->First()->record->TolvOID);
    EXPECT_EQ((std::vector<std::string>{"E RemoveKestrinAddDeleteLQNRegValue: Fail GetOIDInfo"}),
              LogLines());
}

TEST_F(PruneLogTest, ADatabaseThatCannotBeDescribedStays) {
    diff_->AddObject(JournalRecord(MakeRecord(kDatabase, 1, 0), 1, JF_ADD, 40));
    diff_->AddObject(JournalRecord(MakeRecord(kDatabase, 2, 0), 0, JF_ADD, 0));
    PruneDifferences(*diff_, kRestorePruning, info_);
    EXPECT_EQ(2u, diff_->CountRecords());
    EXPECT_EQ(std::vector<std::string>(2,
                                       "E RemoveDBOperationFromJournal: "
                                       "Fail GetOIDInfo or GetInfoFromStorage"),
              LogLines());
    EXPECT_EQ((std::vector<std::string>{"live 0 2", "storage 40"}), info_.asked);
}

// After a pair is gone the walk starts again from the front, so what could not be read is read
// again.
TEST_F(PruneLogTest, TheWalkStartsAgainAfterARemoval) {
    const FakeInfoSource::Object value{kOwnValue, kValue, kHiveCurrentUser};
    info_.stored[40] = value;
    info_.live[{2, 0}] = value;
    AddValue(2, JF_ADD, 0);
    AddValue(1, JF_DELETE, 40);
    AddValue(5, JF_DELETE, 41);
    PruneDifferences(*diff_, kBackupPruning, info_);
    EXPECT_EQ(1u, diff_->CountRecords());
    EXPECT_EQ(5u, LogLines().size());
}

}  // namespace
}  // namespace tolvenar
