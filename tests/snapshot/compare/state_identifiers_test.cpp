#include "snapshot/compare/state_identifiers.h"

#include <gtest/gtest.h>

#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kHive = 0x80000001;
constexpr std::uint32_t kId = 0x02123456;

class StateIdentifiersTest : public testing::Test {
protected:
    void Add(ObjectType type, const char16_t* name, std::uint32_t hive = kHive,
             std::uint32_t id = kId) {
        const auto offset = static_cast<std::uint32_t>(100 + 10 * state_->CountRecords());
        info_.stored[offset] = {name, type, hive};
        Enter(type, id, offset);
    }
    void Enter(ObjectType type, std::uint32_t id, std::uint32_t offset) {
        const auto serial = static_cast<std::uint32_t>(state_->CountRecords());
        state_->InsertCopy({serial, 0, 0, 0}, JournalRecord(MakeRecord(type, 0, id), 1, 0, offset));
    }
    // For the value "name" of the key "key".
    bool IsHeld(const RegistryEntry& entry = {false, kHive, u"key", u"name"}) {
        StateIdentifiers identifiers(info_);
        EXPECT_TRUE(identifiers.Build(*state_));
        names_ = {};
        info_.asked.clear();
        return identifiers.IsHeldByAnother(kId, entry, names_);
    }

    FakeInfoSource info_;
    std::unique_ptr<ObjectList> state_ = ObjectList::CreateList();
    HolderNames names_;
};

TEST_F(StateIdentifiersTest, TheObjectsOwnIdentifierIsFree) {
    Add(kValue, u"key\u00FFname");
    EXPECT_FALSE(IsHeld());
    EXPECT_EQ(1u, info_.asked.size());
}

TEST_F(StateIdentifiersTest, AKeysOwnIdentifierIsFree) {
    Add(kKey, u"key");
    EXPECT_FALSE(IsHeld({true, kHive, u"key"}));
}

TEST_F(StateIdentifiersTest, AnIdentifierOfNobodyIsFreeWithoutReading) {
    Add(kValue, u"other", kHive, kId ^ 0x01000000);
    EXPECT_FALSE(IsHeld());
    EXPECT_TRUE(info_.asked.empty());
}

TEST_F(StateIdentifiersTest, AnotherNameHiveOrTypeHoldsItAndIsNamed) {
    const FakeInfoSource::Object others[] = {
        {u"key\u00FFnamed", kValue, kHive},   {u"key\u00FFnam", kValue, kHive},
        {u"key\\a\u00FFname", kValue, kHive}, {u"ke", kValue, kHive},
        {u"keyname", kValue, kHive},          {u"key\u00FFname", kValue, kHive + 1},
        {u"key\u00FFname", kKey, kHive},      {u"key", kValue, kHive}};
    for (const FakeInfoSource::Object& other : others) {
        state_ = ObjectList::CreateList();
        Add(other.type, other.name.c_str(), other.hive);
        EXPECT_TRUE(IsHeld());
    }
    state_ = ObjectList::CreateList();
    Add(kValue, u"some\\key\u00FFvalue");
    StateIdentifiers identifiers(info_);
    ASSERT_TRUE(identifiers.Build(*state_));
    ASSERT_TRUE(identifiers.IsHeldByAnother(kId, {true, kHive, u"key"}, names_));
    EXPECT_EQ(std::u16string(u"some\\key"), names_.key_path);
    EXPECT_EQ(std::u16string(u"value"), names_.value_name);
}

TEST_F(StateIdentifiersTest, ANamesakeBelowTheKeyIsAnotherObject) {
    Add(kKey, u"key\\sub");
    EXPECT_TRUE(IsHeld({true, kHive, u"key"}));
}

TEST_F(StateIdentifiersTest, OfTwoThatHaveItTheOtherOneHoldsIt) {
    Add(kValue, u"key\u00FFname");
    Add(kValue, u"other\u00FFname");
    Add(kValue, u"key\u00FFname");
    EXPECT_TRUE(IsHeld());
}

// Under an identifier of its own the object is stored anew; nothing could match the damaged block.
TEST_F(StateIdentifiersTest, ABlockThatCannotBeReadIsAnotherObjects) {
    Enter(kValue, kId, 900);
    EXPECT_TRUE(IsHeld());
    EXPECT_EQ(nullptr, names_.key_path);
}

TEST_F(StateIdentifiersTest, OnlyRegistryObjectsHaveOne) {
    Enter(kFile, kId, 900);
    EXPECT_FALSE(IsHeld());
}

}  // namespace
}  // namespace tolvenar
