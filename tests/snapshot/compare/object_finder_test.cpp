#include "snapshot/compare/object_finder.h"

#include <gtest/gtest.h>

#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kUser = 0x80000001;
constexpr std::uint32_t kMachine = 0x80000002;

class ObjectFinderTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(finder_.Reserve(8)); }

    // A live registry object that is entered.
    ObjectRecord& Enter(std::uint32_t TolvOID, const FakeInfoSource::Object& object) {
        ObjectRecord& record = records_[used_++] = MakeRecord(object.type, 0, TolvOID);
        info_.live[{TolvOID, 0}] = object;
        EXPECT_TRUE(finder_.AddByName(record));
        return record;
    }
    static InfoBlock Block(const FakeInfoSource::Object& object) {
        InfoBlock block;
        block.head().type = static_cast<std::uint16_t>(object.type);
        block.head().hive = object.hive;
        EXPECT_TRUE(block.SetName(object.name.c_str(), object.name.size()));
        return block;
    }

    FakeInfoSource info_;
    ObjectFinder finder_{info_};
    ObjectRecord records_[8];
    std::size_t used_ = 0;
};

TEST_F(ObjectFinderTest, ANameIsFoundWhateverTheCaseOfItsLetters) {
    ObjectRecord& record = Enter(5, {u"Key\u00FFValue", kValue, kUser});
    EXPECT_EQ(&record, finder_.FindByName(Block({u"KEY\u00FFvalue", kValue, kUser})));
    EXPECT_EQ(nullptr, finder_.FindByName(Block({u"Key\u00FFValues", kValue, kUser})));
}

TEST_F(ObjectFinderTest, TypeAndHiveBelongToAName) {
    ObjectRecord& key = Enter(5, {u"Key", kKey, kUser});
    ObjectRecord& other_hive = Enter(6, {u"Key", kKey, kMachine});
    ObjectRecord& file = Enter(7, {u"Key", kFile, 0x20});
    EXPECT_EQ(&key, finder_.FindByName(Block({u"Key", kKey, kUser})));
    EXPECT_EQ(&other_hive, finder_.FindByName(Block({u"Key", kKey, kMachine})));
    // The word is a file's attributes.
    EXPECT_EQ(&file, finder_.FindByName(Block({u"Key", kFile, 0x21})));
    EXPECT_EQ(nullptr, finder_.FindByName(Block({u"Key", kValue, kUser})));
}

TEST_F(ObjectFinderTest, AStoredRecordIsDescribedByItsBlock) {
    ObjectRecord record = JournalRecord(MakeRecord(kFile, 9, 0), 1, JF_ADD, 500);
    info_.stored[500] = {u"\\a.txt", kFile};
    ASSERT_TRUE(finder_.AddByName(record));
    EXPECT_EQ(&record, finder_.FindByName(Block({u"\\A.TXT", kFile})));
}

TEST_F(ObjectFinderTest, WhatCannotBeDescribedIsNotEntered) {
    ObjectRecord record = MakeRecord(kFile, 9, 0);
    EXPECT_FALSE(finder_.AddByName(record));
    EXPECT_EQ(nullptr, finder_.FindByName(Block({u"", kFile})));
}

TEST_F(ObjectFinderTest, AnIdIsFoundWithItsType) {
    ObjectRecord record = MakeRecord(kDbRecord, 9, 0);
    ObjectRecord without_id = MakeRecord(kValue, 0, 5);
    finder_.AddById(record);
    finder_.AddById(without_id);
    EXPECT_EQ(&record, finder_.FindById(kDbRecord, 9));
    EXPECT_EQ(nullptr, finder_.FindById(kFile, 9));
    EXPECT_EQ(nullptr, finder_.FindById(kDbRecord, 10));
    EXPECT_EQ(nullptr, finder_.FindById(kValue, 0)) << "no object has it";
}

TEST_F(ObjectFinderTest, WithNothingEnteredNothingIsFound) {
    ObjectFinder empty(info_);
    EXPECT_EQ(nullptr, empty.FindById(kFile, 9));
    EXPECT_EQ(nullptr, empty.FindByName(Block({u"\\a.txt", kFile})));
}

}  // namespace
}  // namespace tolvenar
