#include "snapshot/compare/prune.h"

#include <gtest/gtest.h>

#include "snapshot/compare/exclusion.h"
#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

namespace tolvenar {
namespace {

constexpr const char16_t* kOwnKey = u"Software\\Kestrin2\\Tolvenar";

class PruneTest : public testing::Test {
protected:
    static std::u16string Name(const char16_t* key_path, const char16_t* value_name) {
        return std::u16string(key_path) + u'\u00FF' + value_name;
    }
    // The version of a value that only the older list has; its block stands in the storage file.
    void Deleted(std::uint32_t hive, const std::u16string& name, ObjectType type = kValue) {
        const std::uint32_t offset = next_++;
        info_.stored[offset] = {name, type, hive};
        diff_->AddObject(JournalRecord(MakeRecord(type, 0, offset), 1, JF_DELETE, offset));
    }
    // The version that is on the device.
    void Added(std::uint32_t hive, const std::u16string& name) {
        const std::uint32_t id = next_++;
        info_.live[{id, 0}] = {name, kValue, hive};
        diff_->AddObject(JournalRecord(MakeRecord(kValue, 0, id), 0, JF_ADD, 0));
    }
    void Changed(std::uint32_t hive, const char16_t* key_path, const char16_t* value_name) {
        Added(hive, Name(key_path, value_name));
        Deleted(hive, Name(key_path, value_name));
    }
    struct Row {
        std::uint32_t hive;
        const char16_t* key_path;
        const char16_t* value_name;
    };
    // What is left of each changed value.
    void ExpectLeft(std::size_t versions, const std::vector<Row>& rows) {
        for (const Row& row : rows) {
            Changed(row.hive, row.key_path, row.value_name);
            EXPECT_EQ(versions, PruneForBackup());
            diff_->ClearList();
        }
    }
    std::size_t PruneForBackup() {
        PruneDifferences(*diff_, kBackupPruning, info_);
        return diff_->CountRecords();
    }
    std::size_t PruneForRestore() {
        PruneDifferences(*diff_, kRestorePruning, info_);
        return diff_->CountRecords();
    }
    void Database(const char16_t* name, std::uint16_t flags) {
        const std::uint32_t offset = next_++;
        info_.stored[offset] = {name, kDatabase, 0};
        diff_->AddObject(JournalRecord(MakeRecord(kDatabase, offset, 0), 1, flags, offset));
    }

    std::uint32_t next_ = 100;
    FakeInfoSource info_;
    std::unique_ptr<ObjectList> diff_ = ObjectList::CreateList();
};

TEST_F(PruneTest, ChangedValuesOfEveryRowGo) {
    ExpectLeft(0u, {
                       {0x80000001, u"Software\\Kestrin", u"LQN"},
                       {0x80000001, u"Old\\Software\\Kestrin\\Sub", u"LQN"},
                       {0x80000001, u"Software\\Kestrin2\\Tolvenar", u"LQN"},
                       {0x80000001, u"Software\\Kestrin2\\Tolvenar", u"onTime"},
                       {0x80000001, u"Software\\Kestrin2\\Tolvenar", u""},
                       {0x80000000, u"{000214A1-0000-0000-C000-000000000046}", u"DefaultIcon"},
                       {0x80000001, u"Comm\\Security\\Crypto\\UserKeys\\Jornada", u"RandSeed"},
                       {0x80000001, u"x\\Comm\\Security\\Crypto\\UserKeys\\Jornada2", u"RandSeed"},
                   });
}

TEST_F(PruneTest, ChangedValuesThatNoRowNamesStay) {
    ExpectLeft(2u,
               {
                   {0x80000002, u"Software\\Kestrin", u"LQN"},
                   {0x80000001, u"Software\\Kestrin", u"LQN2"},
                   {0x80000001, u"Software\\Kestrin", u"lqn"},
                   {0x80000001, u"software\\Kestrin", u"LQN"},
                   {0x80000001, u"Software\\Kestrin2\\Tolvenar\\Sub", u"onTime"},
                   {0x80000001, u"Software\\Kestrin2", u"onTime"},
                   {0x80000002, u"Software\\Kestrin2\\Tolvenar", u"onTime"},
                   {0x80000000, u"CLSID\\{000214A1-0000-0000-C000-000000000046}", u"DefaultIcon"},
                   {0x80000000, u"{000214A1-0000-0000-C000-000000000046}", u""},
                   {0x80000001, u"Comm\\Security\\Crypto\\UserKeys\\Jornada", u"Seed"},
               });
}

TEST_F(PruneTest, AValueThatOnlyAppearedOrOnlyDisappearedStays) {
    Added(kHiveCurrentUser, Name(kOwnKey, u"onTime"));
    EXPECT_EQ(1u, PruneForBackup());
    diff_->ClearList();
    Deleted(kHiveCurrentUser, Name(kOwnKey, u"onTime"));
    EXPECT_EQ(1u, PruneForBackup());
}

TEST_F(PruneTest, TheTwoVersionsAreOfOneValue) {
    Deleted(kHiveCurrentUser, Name(kOwnKey, u"onTime"));
    Added(kHiveCurrentUser, Name(kOwnKey, u"onBattery"));
    EXPECT_EQ(2u, PruneForBackup());
}

TEST_F(PruneTest, EveryChangedValueGoesAndTheRestStaysInOrder) {
    Deleted(kHiveLocalMachine, Name(u"first", u"a"));
    Changed(kHiveCurrentUser, kOwnKey, u"onTime");
    Added(kHiveCurrentUser, Name(u"second", u"b"));
    Changed(kHiveCurrentUser, kOwnKey, u"onBattery");
    Changed(kHiveCurrentUser, u"Software\\Kestrin", u"LQN");
    Deleted(kHiveLocalMachine, Name(u"third", u"c"));
    EXPECT_EQ(3u, PruneForBackup());
    EXPECT_EQ(JF_DELETE, diff_->First()->record->flags);
    EXPECT_EQ(JF_ADD, diff_->First()->next->record->flags);
    EXPECT_EQ(100u, diff_->First()->next->next->record->TolvOID);
}

TEST_F(PruneTest, ADeletionWithoutABlockIsNotLookedAt) {
    info_.live[{7, 0}] = {Name(kOwnKey, u"onTime"), kValue, kHiveCurrentUser};
    info_.stored[0] = info_.live[{7, 0}];
    diff_->AddObject(JournalRecord(MakeRecord(kValue, 0, 7), 1, JF_DELETE, 0));
    Added(kHiveCurrentUser, Name(kOwnKey, u"onTime"));
    EXPECT_EQ(2u, PruneForBackup());
}

TEST_F(PruneTest, ABlockThatIsNoValueStays) {
    Deleted(kHiveCurrentUser, Name(kOwnKey, u"onTime"), kKey);
    Added(kHiveCurrentUser, Name(kOwnKey, u"onTime"));
    EXPECT_EQ(2u, PruneForBackup());
}

TEST_F(PruneTest, ANameWithoutSeparatorStays) {
    Deleted(kHiveCurrentUser, kOwnKey);
    Added(kHiveCurrentUser, kOwnKey);
    EXPECT_EQ(2u, PruneForBackup());
}

TEST_F(PruneTest, AnAdditionOfAnotherTypeIsNotLookedAt) {
    Deleted(kHiveCurrentUser, Name(kOwnKey, u"onTime"));
    info_.live[{7, 0}] = {Name(kOwnKey, u"onTime"), kValue, kHiveCurrentUser};
    diff_->AddObject(JournalRecord(MakeRecord(kKey, 0, 7), 0, JF_ADD, 0));
    EXPECT_EQ(2u, PruneForBackup());
}

TEST_F(PruneTest, ARecordWithBothSensesPairsWithItself) {
    info_.stored[7] = {Name(kOwnKey, u"onTime"), kValue, kHiveCurrentUser};
    info_.live[{7, 0}] = info_.stored[7];
    diff_->AddObject(JournalRecord(MakeRecord(kValue, 0, 7), 1, JF_ADD | JF_DELETE, 7));
    EXPECT_EQ(0u, PruneForBackup());
}

TEST_F(PruneTest, ANameIsSplitAtItsFirstSeparator) {
    Changed(kHiveCurrentUser, kOwnKey, u"a\u00FFb");
    EXPECT_EQ(0u, PruneForBackup());
}

TEST_F(PruneTest, ALiveValuesNamesComeFromTheRegistryObjectTable) {
    // The key path has the separator inside, so that its block reads like a value of the own key.
    Deleted(kHiveCurrentUser, Name(kOwnKey, u"x\u00FFv"));
    Added(kHiveCurrentUser, Name(kOwnKey, u"x\u00FFv"));
    char16_t key_path[] = u"Software\\Kestrin2\\Tolvenar\u00FFx";
    char16_t value_name[] = u"v";
    RegistryObject object{};
    object.key_path = key_path;
    object.value_name = value_name;
    info_.registry[next_ - 1] = object;
    EXPECT_EQ(2u, PruneForBackup());
    // With the separator inside the value name it is one.
    char16_t own_path[] = u"Software\\Kestrin2\\Tolvenar";
    char16_t own_name[] = u"x\u00FFv";
    info_.registry[next_ - 1].key_path = own_path;
    info_.registry[next_ - 1].value_name = own_name;
    EXPECT_EQ(0u, PruneForBackup());
}

TEST_F(PruneTest, TheBackupTableLeavesDatabasesAlone) {
    Database(u"\\URL Cache", JF_ADD);
    EXPECT_EQ(1u, PruneForBackup());
}

TEST_F(PruneTest, AnAddedUrlCacheIsNotRestored) {
    Database(u"\\URL Cache", JF_ADD);
    Database(u"\\url cache", JF_ADD);
    Database(u"\\URL Cache2", JF_ADD);
    Database(u"\\URL Cache", JF_ADD | JF_FAILED);
    EXPECT_EQ(2u, PruneForRestore());
}

TEST_F(PruneTest, ADeletedUrlCacheStays) {
    Database(u"\\URL Cache", JF_DELETE);
    EXPECT_EQ(1u, PruneForRestore());
}

TEST_F(PruneTest, ADatabaseWithoutABlockIsDescribedLive) {
    info_.live[{0, 9}] = {u"\\URL Cache", kDatabase, 0};
    diff_->AddObject(JournalRecord(MakeRecord(kDatabase, 9, 0), 0, JF_ADD, 0));
    EXPECT_EQ(0u, PruneForRestore());
    EXPECT_EQ((std::vector<std::string>{"live 0 9"}), info_.asked);
}

TEST_F(PruneTest, TheRestoreTableLooksAtDatabasesAlone) {
    info_.stored[50] = {u"\\URL Cache", kDatabase, 0};
    for (ObjectType type : {kValue, kKey, kDbRecord, kFile, kState}) {
        diff_->AddObject(
            JournalRecord(MakeRecord(type, static_cast<std::uint32_t>(type), 0), 1, JF_ADD, 50));
    }
    EXPECT_EQ(5u, PruneForRestore());
    EXPECT_TRUE(info_.asked.empty());
    // Any type with the database's bit counts as one.
    diff_->AddObject(JournalRecord(MakeRecord(static_cast<ObjectType>(6), 77, 0), 1, JF_ADD, 50));
    EXPECT_EQ(5u, PruneForRestore());
}

TEST_F(PruneTest, AnEmptyTableRemovesNothing) {
    const PruningRule none[] = {{PruningRule::kEnd, 0, 0, nullptr, nullptr, false}};
    Database(u"\\URL Cache", JF_ADD);
    PruneDifferences(*diff_, none, info_);
    EXPECT_EQ(1u, diff_->CountRecords());
}

}  // namespace
}  // namespace tolvenar
