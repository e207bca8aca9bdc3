#include "snapshot/compare/difference.h"

#include <gtest/gtest.h>

#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

namespace tolvenar {
namespace {

class CmpListsTest : public testing::Test {
protected:
    // A registry record whose block stands at `offset` with that name.
    ObjectRecord Stored(ObjectType type, std::uint32_t TolvOID, std::uint32_t offset,
                        const char16_t* name) {
        info_.stored[offset] = {name, type, 0};
        return JournalRecord(MakeRecord(type, 0, TolvOID), 1, 0, offset);
    }
    ObjectRecord Live(ObjectType type, std::uint32_t TolvOID, const char16_t* name) {
        info_.live[{TolvOID, 0}] = {name, type, 0};
        return MakeRecord(type, 0, TolvOID);
    }
    bool Compare(const std::vector<ObjectRecord>& older, const std::vector<ObjectRecord>& newer) {
        list1_ = ListOf(older);
        list2_ = ListOf(newer);
        diff_ = ObjectList::CreateList();
        return CmpLists(list1_.get(), list2_.get(), *diff_, info_);
    }
    std::vector<ObjectRecord> Differences() const { return RecordsOf(*diff_); }
    void ExpectMatch(const ObjectRecord& older, const ObjectRecord& newer) {
        ASSERT_TRUE(Compare({older}, {newer}));
        EXPECT_EQ(0u, diff_->CountRecords());
        EXPECT_TRUE(list1_->First()->record->flags & JF_MATCHED);
        EXPECT_TRUE(list2_->First()->record->flags & JF_MATCHED);
    }
    void ExpectDeleteAndAdd(const ObjectRecord& older, const ObjectRecord& newer) {
        ASSERT_TRUE(Compare({older}, {newer}));
        ASSERT_EQ(2u, diff_->CountRecords());
        EXPECT_EQ(JF_DELETE, Differences()[0].flags);
        EXPECT_EQ(JF_ADD, Differences()[1].flags);
    }

    FakeInfoSource info_;
    std::unique_ptr<ObjectList> list1_;
    std::unique_ptr<ObjectList> list2_;
    std::unique_ptr<ObjectList> diff_;
};

TEST_F(CmpListsTest, EqualFilesMatch) {
    ExpectMatch(MakeRecord(kFile, 5, 0, 6, 7), MakeRecord(kFile, 5, 0, 6, 7));
}

TEST_F(CmpListsTest, AChangedFileIsADeletionAndAnAddition) {
    const ObjectRecord file = MakeRecord(kFile, 5, 0, 6, 7);
    ExpectDeleteAndAdd(file, MakeRecord(kFile, 5, 0, 8, 7));
    ExpectDeleteAndAdd(file, MakeRecord(kFile, 9, 0, 6, 7));
}

TEST_F(CmpListsTest, ADatabaseMatchesWhateverItsNumberOfRecords) {
    ExpectMatch(MakeRecord(kDatabase, 5, 0, 6, 10), MakeRecord(kDatabase, 5, 0, 6, 11));
    ExpectDeleteAndAdd(MakeRecord(kDatabase, 5, 0, 6, 10), MakeRecord(kDatabase, 5, 0, 7, 10));
}

TEST_F(CmpListsTest, AChangedDatabaseRecordIsADeletionAndAnAddition) {
    ExpectMatch(MakeRecord(kDbRecord, 5, 0, 6, 7), MakeRecord(kDbRecord, 5, 0, 6, 7));
    ExpectDeleteAndAdd(MakeRecord(kDbRecord, 5, 0, 6, 7), MakeRecord(kDbRecord, 5, 0, 6, 8));
}

TEST_F(CmpListsTest, TypesOtherThanRegistryAndDatabaseAreNotCompared) {
    ExpectMatch(MakeRecord(kFile, 5, 0, 6, 7), MakeRecord(kDbRecord, 5, 0, 6, 7));
    ExpectDeleteAndAdd(MakeRecord(kFile, 5, 0, 6, 7), MakeRecord(kDbRecord, 5, 0, 6, 8));
}

TEST_F(CmpListsTest, RegistryObjectsMatchByNameAndIdentifierWithoutItsCounter) {
    ExpectMatch(Stored(kValue, 0x00123456, 40, u"k\u00FFv"), Live(kValue, 0x01123456, u"k\u00FFv"));
    ExpectMatch(Stored(kKey, 0x00123456, 40, u"k"), Live(kKey, 0x7F123456, u"k"));
}

TEST_F(CmpListsTest, ARegistryObjectsChecksumsAreNotCompared) {
    ObjectRecord older = Stored(kValue, 0x123456, 40, u"name");
    ObjectRecord newer = Live(kValue, 0x123456, u"name");
    older.info_checksum = 1;
    older.content_fingerprint = 2;
    newer.info_checksum = 3;
    newer.content_fingerprint = 4;
    ExpectMatch(older, newer);
}

TEST_F(CmpListsTest, AValueWithOtherDataIsADeletionAndAnAddition) {
    ExpectDeleteAndAdd(Stored(kValue, 0x00123456, 40, u"name"), Live(kValue, 0x00133456, u"name"));
}

TEST_F(CmpListsTest, ValuesWithOtherNamesDoNotMatch) {
    for (const char16_t* name : {u"Name", u"name2", u"nam", u""}) {
        ObjectRecord newer = Live(kValue, 0x123456, name);
        newer.info_checksum = 1;
        ExpectDeleteAndAdd(Stored(kValue, 0x123456, 40, u"name"), newer);
    }
}

TEST_F(CmpListsTest, NamesAreFetchedForEqualIdentifiersAlone) {
    std::vector<ObjectRecord> older;
    std::vector<ObjectRecord> newer;
    for (std::uint32_t i = 1; i <= 50; ++i) {
        older.push_back(Stored(kValue, i, 1000 + i, u"name"));
        newer.push_back(Live(kValue, i, u"name"));
    }
    ASSERT_TRUE(Compare(older, newer));
    EXPECT_EQ(0u, diff_->CountRecords());
    EXPECT_EQ(100u, info_.asked.size());
}

TEST_F(CmpListsTest, TheFirstFreeCandidateFromTheFrontMatches) {
    ObjectRecord first = MakeRecord(kDatabase, 5, 0, 6, 1);
    ObjectRecord second = MakeRecord(kDatabase, 5, 0, 6, 2);
    list1_ = ObjectList::CreateList();
    list1_->InsertCopy({2, 0, 0, 0}, second);
    list1_->InsertCopy({1, 0, 0, 0}, first);
    list2_ = ListOf({MakeRecord(kDatabase, 5, 0, 6, 3)});
    diff_ = ObjectList::CreateList();
    ASSERT_TRUE(CmpLists(list1_.get(), list2_.get(), *diff_, info_));
    ASSERT_EQ(1u, diff_->CountRecords());
    EXPECT_EQ(2, Differences()[0].content_fingerprint);
}

TEST_F(CmpListsTest, AMarkedRecordTakesPartInNoMatch) {
    ObjectRecord marked = MakeRecord(kFile, 5, 0, 6, 7);
    marked.flags |= JF_MATCHED;
    ASSERT_TRUE(Compare({marked}, {MakeRecord(kFile, 5, 0, 6, 7)}));
    ASSERT_EQ(1u, diff_->CountRecords());
    EXPECT_EQ(JF_ADD, Differences()[0].flags);
}

TEST_F(CmpListsTest, AdditionsAreEnteredBeforeDeletionsEachInListOrder) {
    ASSERT_TRUE(Compare({MakeRecord(kFile, 1, 0), MakeRecord(kFile, 2, 0)},
                        {MakeRecord(kFile, 3, 0), MakeRecord(kFile, 4, 0)}));
    EXPECT_EQ((std::vector<std::uint32_t>{2, 1, 4, 3}), FieldsOf(*diff_, &ObjectRecord::dwOID));
}

TEST_F(CmpListsTest, TheCopyKeepsItsStateAndLosesItsScanFlags) {
    ObjectRecord record = MakeRecord(kDbRecord, 5, 0, 0xABCD, 0x1234);
    record.flags = JF_PRESENT | kFlagAddition20 | JF_FAILED;
    record.state_number = 3;
    ASSERT_TRUE(Compare({}, {record}));
    const ObjectList::Node* node = diff_->First();
    ASSERT_NE(nullptr, node);
    EXPECT_EQ(3, node->record->state_number);
    EXPECT_EQ(JF_ADD | kFlagAddition20 | JF_FAILED, node->record->flags);
    EXPECT_EQ((ObjectKey{0xABCD0000, 0x1234, 5, 0}), node->key);
    // The record itself loses its state number and keeps its flags; its node's key stays.
    EXPECT_EQ(0, list2_->First()->record->state_number);
    EXPECT_EQ(JF_PRESENT | kFlagAddition20 | JF_FAILED, list2_->First()->record->flags);
    EXPECT_EQ((ObjectKey{0xABCD0003, 0x1234, 5, 0}), list2_->First()->key);
}

TEST_F(CmpListsTest, AScannedFilesCopyKeepsTheScanStateNumber) {
    ObjectRecord record = MakeRecord(kFile, 5, 0, 1, 2);
    record.state_number = kScannedFileState;
    ASSERT_TRUE(Compare({}, {record}));
    EXPECT_EQ(0xFFFF, Differences()[0].state_number);
    EXPECT_EQ((ObjectKey{0x00010000, 0, 5, 0}), diff_->First()->key);
    EXPECT_EQ(0, list2_->First()->record->state_number);
}

TEST_F(CmpListsTest, AStateRecordIsNeverADifference) {
    ObjectRecord state = JournalRecord(MakeRecord(kState, 0, 0, 5), 3, 0, 236);
    ASSERT_TRUE(Compare({state}, {}));
    EXPECT_EQ(0u, diff_->CountRecords());
    EXPECT_EQ(3, list1_->First()->record->state_number);
    ASSERT_TRUE(Compare({}, {state}));
    EXPECT_EQ(0u, diff_->CountRecords());
}

TEST_F(CmpListsTest, AnAbsentListIsAnEmptyOne) {
    list1_ = ListOf({MakeRecord(kFile, 1, 0)});
    diff_ = ObjectList::CreateList();
    ASSERT_TRUE(CmpLists(nullptr, list1_.get(), *diff_, info_));
    ASSERT_EQ(1u, diff_->CountRecords());
    EXPECT_EQ(JF_ADD, Differences()[0].flags);

    list1_ = ListOf({MakeRecord(kFile, 1, 0)});
    diff_ = ObjectList::CreateList();
    ASSERT_TRUE(CmpLists(list1_.get(), nullptr, *diff_, info_));
    ASSERT_EQ(1u, diff_->CountRecords());
    EXPECT_EQ(JF_DELETE, Differences()[0].flags);

    diff_ = ObjectList::CreateList();
    ASSERT_TRUE(CmpLists(nullptr, nullptr, *diff_, info_));
    EXPECT_EQ(0u, diff_->CountRecords());
}

TEST_F(CmpListsTest, AKeyOfTheOtherListIsComparedByNameWithRegistryObjectsOnly) {
    // A file whose ids happen to be a key's is compared like a file, without names.
    ObjectRecord file = MakeRecord(kFile, 0, 0x123456, 6, 7);
    ObjectRecord key = MakeRecord(kKey, 0, 0x123456, 6, 7);
    ExpectMatch(key, file);
    EXPECT_TRUE(info_.asked.empty());
    // A value is compared by name with everything.
    ObjectRecord value = Stored(kValue, 0x123456, 40, u"name");
    info_.live[{0x01123456, 9}] = {u"name", kFile, 0};
    ExpectMatch(value, MakeRecord(kFile, 9, 0x01123456));
    EXPECT_EQ((std::vector<std::string>{"live 17970262 9", "storage 40"}), info_.asked);
}

TEST_F(CmpListsTest, AKeyAndAValueOfOneNameMatch) {
    ExpectMatch(Stored(kKey, 0x123456, 40, u"name"), Live(kValue, 0x123456, u"name"));
}

TEST_F(CmpListsTest, AnotherObjectWithTheSameKeyIsKeptBesideIt) {
    ASSERT_TRUE(Compare({Stored(kValue, 0x123456, 40, u"gone")}, {Live(kValue, 0x123456, u"new")}));
    ASSERT_EQ(2u, diff_->CountRecords());
    const std::vector<ObjectRecord> differences = Differences();
    EXPECT_EQ(JF_DELETE, differences[0].flags);
    EXPECT_EQ(40u, differences[0].propOffset);
    EXPECT_EQ(JF_ADD, differences[1].flags);
    // The device knows the new one by its identifier; the deletion makes room in the journal.
    EXPECT_EQ(0x123456u, differences[1].TolvOID);
    EXPECT_EQ(0x01123456u, differences[0].TolvOID);
    EXPECT_FALSE(KeyOf(differences[0]).Stateless() == KeyOf(differences[1]).Stateless());
}

TEST_F(CmpListsTest, TwoDeletedObjectsWithTheSameKeyAreBothDeleted) {
    list1_ = ObjectList::CreateList();
    list1_->InsertCopy({1, 0, 0, 0}, Stored(kValue, 0x123456, 40, u"one"));
    list1_->InsertCopy({2, 0, 0, 0}, Stored(kValue, 0x123456, 80, u"two"));
    diff_ = ObjectList::CreateList();
    ASSERT_TRUE(CmpLists(list1_.get(), nullptr, *diff_, info_));
    EXPECT_EQ((std::vector<std::uint32_t>{40, 80}), FieldsOf(*diff_, &ObjectRecord::propOffset));
}

TEST_F(CmpListsTest, AnUnreadableObjectWithTheSameKeyIsReplaced) {
    const ObjectRecord stored = JournalRecord(MakeRecord(kValue, 0, 0x123456), 1, 0, 40);
    ASSERT_TRUE(Compare({stored}, {Live(kValue, 0x123456, u"name")}));
    ASSERT_EQ(1u, diff_->CountRecords());
    EXPECT_EQ(JF_DELETE, Differences()[0].flags);
}

// As backups and restores compare.
class FindChangesTest : public CmpListsTest {
protected:
    std::vector<std::uint16_t> FlagsOfChanges(const ObjectRecord& older,
                                              const ObjectRecord& newer) {
        list1_ = ListOf({older});
        list2_ = ListOf({newer});
        diff_ = ObjectList::CreateList();
        EXPECT_TRUE(FindChanges(list1_.get(), list2_.get(), *diff_, info_));
        return FieldsOf(*diff_, &ObjectRecord::flags);
    }
    using Flags = std::vector<std::uint16_t>;
    const Flags change_{JF_DELETE, JF_ADD};
};

TEST_F(FindChangesTest, AnEqualValueIsNoChange) {
    EXPECT_EQ(Flags{}, FlagsOfChanges(Stored(kValue, 0x123456, 40, u"name"),
                                      Live(kValue, 0x01123456, u"name")));
    EXPECT_TRUE(list1_->First()->record->flags & JF_MATCHED);
    EXPECT_TRUE(list2_->First()->record->flags & JF_MATCHED);
}

TEST_F(FindChangesTest, AValueWhoseDataChangedUnderTheSameIdentifierIsAChange) {
    ObjectRecord newer = Live(kValue, 0x123456, u"name");
    newer.content_fingerprint = 0x0100;
    EXPECT_EQ(change_, FlagsOfChanges(Stored(kValue, 0x123456, 40, u"name"), newer));
    EXPECT_FALSE(list1_->First()->record->flags & JF_MATCHED);
    EXPECT_FALSE(list2_->First()->record->flags & JF_MATCHED);
    EXPECT_EQ(0x123456u, Differences()[0].TolvOID);
    EXPECT_EQ(0x123456u, Differences()[1].TolvOID);
}

TEST_F(FindChangesTest, AValueOfTwoStatesWhoseDataChangedUnderTheSameIdentifierIsAChange) {
    ObjectRecord newer = Stored(kValue, 0x123456, 80, u"name");
    newer.content_fingerprint = 0x0100;
    EXPECT_EQ(change_, FlagsOfChanges(Stored(kValue, 0x123456, 40, u"name"), newer));
}

TEST_F(FindChangesTest, AValueWhoseTypeOrLengthChangedIsAChange) {
    ObjectRecord newer = Live(kValue, 0x123456, u"name");
    newer.info_checksum = 5;
    EXPECT_EQ(change_, FlagsOfChanges(Stored(kValue, 0x123456, 40, u"name"), newer));
}

TEST_F(FindChangesTest, AKeyAndAValueOfOneNameAreTwoObjects) {
    EXPECT_EQ(change_, FlagsOfChanges(Stored(kKey, 0x123456, 40, u"a\u00FFb"),
                                      Live(kValue, 0x123456, u"a\u00FFb")));
}

TEST_F(FindChangesTest, AKeyAndAValueOfOneNameEachFindTheirOwn) {
    list1_ =
        ListOf({Stored(kKey, 0x00123456, 40, u"name"), Stored(kValue, 0x01123456, 80, u"name")});
    list2_ = ListOf({Live(kValue, 0x00123456, u"name"), Live(kKey, 0x01123456, u"name")});
    diff_ = ObjectList::CreateList();
    ASSERT_TRUE(FindChanges(list1_.get(), list2_.get(), *diff_, info_));
    EXPECT_EQ(0u, diff_->CountRecords());
}

TEST_F(FindChangesTest, AKeysChecksumsAreNotCompared) {
    ObjectRecord newer = Live(kKey, 0x123456, u"name");
    newer.info_checksum = 5;
    newer.content_fingerprint = 6;
    EXPECT_EQ(Flags{}, FlagsOfChanges(Stored(kKey, 0x123456, 40, u"name"), newer));
}

TEST_F(FindChangesTest, ADatabaseMatchesWhateverItsNumberOfRecords) {
    EXPECT_EQ(Flags{}, FlagsOfChanges(MakeRecord(kDatabase, 5, 0, 6, 10),
                                      MakeRecord(kDatabase, 5, 0, 6, 11)));
}

}  // namespace
}  // namespace tolvenar
