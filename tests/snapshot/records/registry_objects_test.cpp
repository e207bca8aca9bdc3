#include "snapshot/records/registry_objects.h"

#include <gtest/gtest.h>
#include <string>

#include "snapshot/records/checksum.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kMachine = 0x80000002;

class RegistryObjectsTest : public testing::Test {
protected:
    RegistryObjects table_;
};

TEST(TolvOidTest, PathWithTerminatorThenLowByteOfDataThenCounter) {
    const char16_t path[] = u"80000002Software";
    const std::uint32_t path_checksum = Checksum16(path, sizeof path);
    const std::uint32_t data_byte = Checksum16("data", 4) & 0xFF;
    EXPECT_EQ(path_checksum | data_byte << 16, MakeTolvOID(path, "data", 4, 0));
    EXPECT_EQ(path_checksum | data_byte << 16 | 0x2A000000u, MakeTolvOID(path, "data", 4, 0x2A));
    EXPECT_EQ(path_checksum | data_byte << 16 | 0xFF000000u, MakeTolvOID(path, "data", 4, 0xFF));
}

TEST(TolvOidTest, TheDataByteOfTheNineDigits) {
    // Their checksum is 0x6F91; no data give 0xFFFF.
    EXPECT_EQ(0x91u, MakeTolvOID(u"1", "123456789", 9, 0) >> 16);
    EXPECT_EQ(0xFFu, MakeTolvOID(u"1", nullptr, 0, 0) >> 16);
}

TEST(TolvOidTest, AChangeOfDataShowsInBits16To23Alone) {
    const std::uint32_t first = MakeTolvOID(u"name", "one", 3, 0);
    const std::uint32_t second = MakeTolvOID(u"name", "two", 3, 0);
    EXPECT_NE(first, second);
    EXPECT_EQ(0u, (first ^ second) & 0xFF00FFFF);
}

TEST_F(RegistryObjectsTest, FindsWhatWasAdded) {
    EXPECT_EQ(nullptr, table_.RegObjectFind(5));
    ASSERT_EQ(1,
              table_.RegObjectAdd(5, {false, kMachine, u"Software\\X", u"Name", 4, nullptr, 12}));
    const RegistryObject* object = table_.RegObjectFind(5);
    ASSERT_NE(nullptr, object);
    EXPECT_EQ(5u, object->TolvOID);
    EXPECT_EQ(kMachine, object->hive);
    EXPECT_FALSE(object->is_key);
    EXPECT_EQ(4u, object->value_type);
    EXPECT_EQ(12u, object->data_bytes);
    EXPECT_EQ(u"Software\\X", std::u16string(object->key_path));
    EXPECT_EQ(u"Name", std::u16string(object->value_name));
    EXPECT_EQ(nullptr, table_.RegObjectFind(6));
}

TEST_F(RegistryObjectsTest, TheValuesOfAKeyShareItsPath) {
    const auto enter = [this](const RegistryEntry& entry) {
        const std::u16string name = entry.is_key ? u"80000002" : u"80000002\u00FF";
        std::uint32_t id = 0;
        const std::u16string full = name + entry.key_path + (entry.is_key ? u"" : entry.value_name);
        EXPECT_TRUE(table_.Generate(full.c_str(), entry, id));
        return table_.RegObjectFind(id);
    };
    const RegistryObject* const key = enter({true, kMachine, u"A"});
    // What is below the key comes before its values.
    const RegistryObject* const subkey = enter({true, kMachine, u"A\\B"});
    const RegistryObject* const one = enter({false, kMachine, u"A", u"one"});
    const RegistryObject* const two = enter({false, kMachine, u"A", u"two"});
    EXPECT_EQ(key->key_path, one->key_path);
    EXPECT_EQ(key->key_path, two->key_path);
    EXPECT_NE(key->key_path, subkey->key_path);
    EXPECT_EQ(std::u16string(u"two"), two->value_name);
    // A key that is in no state has values all the same.
    const RegistryObject* const lone = enter({false, kMachine, u"C", u"three"});
    EXPECT_EQ(std::u16string(u"C"), lone->key_path);
}

TEST_F(RegistryObjectsTest, TheTextsAreCopies) {
    char16_t key_path[] = u"Software";
    char16_t name[] = u"Name";
    table_.RegObjectAdd(1, {false, kMachine, key_path, name, 1, nullptr, 0});
    key_path[0] = u'x';
    name[0] = u'x';
    EXPECT_EQ(u"Software", std::u16string(table_.RegObjectFind(1)->key_path));
    EXPECT_EQ(u"Name", std::u16string(table_.RegObjectFind(1)->value_name));
}

TEST_F(RegistryObjectsTest, AKeyHasNoValueName) {
    ASSERT_EQ(1, table_.RegObjectAdd(1, {true, kMachine, u""}));
    EXPECT_TRUE(table_.RegObjectFind(1)->is_key);
    EXPECT_EQ(nullptr, table_.RegObjectFind(1)->value_name);
    EXPECT_EQ(u"", std::u16string(table_.RegObjectFind(1)->key_path));
}

TEST_F(RegistryObjectsTest, AValueMayHaveAnEmptyName) {
    ASSERT_EQ(1, table_.RegObjectAdd(1, {false, kMachine, u"k", u"", 1, nullptr, 0}));
    ASSERT_NE(nullptr, table_.RegObjectFind(1)->value_name);
    EXPECT_EQ(u"", std::u16string(table_.RegObjectFind(1)->value_name));
}

TEST_F(RegistryObjectsTest, AnAbsentKeyPathIsRefused) {
    EXPECT_EQ(0, table_.RegObjectAdd(1, {true, kMachine, nullptr}));
    EXPECT_EQ(nullptr, table_.RegObjectFind(1));
}

TEST_F(RegistryObjectsTest, OfEqualIdentifiersTheNewestIsFound) {
    // Enough others to make the table grow between and behind the two.
    table_.RegObjectAdd(7, {true, kMachine, u"old"});
    for (std::uint32_t id = 1000; id < 1400; ++id) {
        table_.RegObjectAdd(id, {true, kMachine, u"k"});
    }
    table_.RegObjectAdd(7, {true, kMachine, u"new"});
    for (std::uint32_t id = 2000; id < 4000; ++id) {
        table_.RegObjectAdd(id, {true, kMachine, u"k"});
        ASSERT_EQ(u"new", std::u16string(table_.RegObjectFind(7)->key_path)) << id;
    }
    for (std::uint32_t id = 1000; id < 1400; ++id) {
        ASSERT_NE(nullptr, table_.RegObjectFind(id)) << id;
    }
}

TEST_F(RegistryObjectsTest, ClearForgetsEverything) {
    table_.RegObjectAdd(1, {false, kMachine, u"k", u"v", 1, nullptr, 0});
    table_.RegObjectClear();
    EXPECT_EQ(nullptr, table_.RegObjectFind(1));
    EXPECT_EQ(1, table_.RegObjectAdd(1, {false, kMachine, u"k2", u"v", 1, nullptr, 0}));
    EXPECT_EQ(u"k2", std::u16string(table_.RegObjectFind(1)->key_path));
}

TEST_F(RegistryObjectsTest, GenerateTakesTheFirstIdentifierAndEntersTheObject) {
    const char16_t full_name[] = u"80000002k\u00FFv";
    std::uint32_t id = 0;
    ASSERT_TRUE(table_.Generate(full_name, {false, kMachine, u"k", u"v", 3, "data", 4}, id));
    EXPECT_EQ(MakeTolvOID(full_name, "data", 4, 0), id);
    const RegistryObject* object = table_.RegObjectFind(id);
    ASSERT_NE(nullptr, object);
    EXPECT_EQ(3u, object->value_type);
    EXPECT_EQ(4u, object->data_bytes);
    EXPECT_EQ(u"v", std::u16string(object->value_name));
}

TEST_F(RegistryObjectsTest, AKeysIdentifierIsMadeFromItsPathWithoutTerminator) {
    std::uint32_t id = 0;
    ASSERT_TRUE(table_.Generate(u"80000002ab", {true, kMachine, u"ab"}, id));
    EXPECT_EQ(MakeTolvOID(u"80000002ab", u"ab", 4, 0), id);
    EXPECT_TRUE(table_.RegObjectFind(id)->is_key);
}

TEST_F(RegistryObjectsTest, GenerateRefusesAnAbsentKeyPath) {
    std::uint32_t id = 0;
    EXPECT_FALSE(table_.Generate(u"x", {true, kMachine, nullptr}, id));
}

}  // namespace
}  // namespace tolvenar
