#include "snapshot/compare/lost_containers.h"

#include <gtest/gtest.h>
#include <string>

namespace tolvenar {
namespace {

InfoBlock Object(ObjectType type, const std::u16string& name, std::uint32_t attributes_or_hive) {
    InfoBlock block;
    block.head().type = static_cast<std::uint16_t>(type);
    block.head().attributes = attributes_or_hive;
    EXPECT_TRUE(block.SetName(name.data(), name.size()));
    return block;
}
InfoBlock Folder(const std::u16string& path) { return Object(ObjectType::kFile, path, 0x10); }
InfoBlock File(const std::u16string& path) { return Object(ObjectType::kFile, path, 0x20); }
InfoBlock Key(const std::u16string& path, std::uint32_t hive = 0x80000001) {
    return Object(ObjectType::kRegistryKey, path, hive);
}
InfoBlock Value(const std::u16string& name, std::uint32_t hive = 0x80000001) {
    return Object(ObjectType::kRegistryValue, name, hive);
}
InfoBlock Database(const std::u16string& name) { return Object(ObjectType::kDatabase, name, 0); }
InfoBlock Record(const std::u16string& name) {
    return Object(ObjectType::kDatabaseRecord, name, 3);
}

class LostContainersTest : public testing::Test {
protected:
    LostContainers lost_;
};

TEST_F(LostContainersTest, AFolderContainsWhatIsBelowItAtAnyDepthAndNothingElse) {
    lost_.Add(Folder(u"\\A\\B"));
    EXPECT_TRUE(lost_.Contain(File(u"\\A\\B\\c.txt")));
    EXPECT_TRUE(lost_.Contain(Folder(u"\\A\\B\\C")));
    EXPECT_TRUE(lost_.Contain(File(u"\\A\\B\\C\\D\\e.txt")));
    EXPECT_FALSE(lost_.Contain(Folder(u"\\A\\B")));
    EXPECT_FALSE(lost_.Contain(File(u"\\A\\Bb\\c.txt")));
    EXPECT_FALSE(lost_.Contain(File(u"\\A\\c.txt")));
    EXPECT_FALSE(lost_.Contain(Record(u"\\A\\B\\c")));
    EXPECT_FALSE(lost_.Contain(Key(u"\\A\\B\\c")));
}

TEST_F(LostContainersTest, AKeyContainsItsValuesAndWhatIsBelowItInItsHive) {
    lost_.Add(Key(u"Software\\One"));
    EXPECT_TRUE(lost_.Contain(Value(u"Software\\One\u00FFName")));
    EXPECT_TRUE(lost_.Contain(Value(u"Software\\One\u00FF")));
    EXPECT_TRUE(lost_.Contain(Key(u"Software\\One\\Two")));
    EXPECT_TRUE(lost_.Contain(Value(u"Software\\One\\Two\u00FFName")));
    EXPECT_FALSE(lost_.Contain(Key(u"Software\\One", 0x80000001)));
    EXPECT_FALSE(lost_.Contain(Key(u"Software\\OneMore")));
    EXPECT_FALSE(lost_.Contain(Value(u"Software\\OneMore\u00FFName")));
    EXPECT_FALSE(lost_.Contain(Value(u"Software\\One\u00FFName", 0x80000002)));
    EXPECT_FALSE(lost_.Contain(File(u"Software\\One\\Two")));
}

TEST_F(LostContainersTest, AHivesRootContainsTheHive) {
    lost_.Add(Key(u""));
    EXPECT_TRUE(lost_.Contain(Key(u"Software")));
    EXPECT_TRUE(lost_.Contain(Value(u"\u00FFName")));
    EXPECT_FALSE(lost_.Contain(Key(u"")));
    EXPECT_FALSE(lost_.Contain(Key(u"Software", 0x80000003)));
}

TEST_F(LostContainersTest, ADatabaseContainsItsRecords) {
    lost_.Add(Database(u"Contacts"));
    EXPECT_TRUE(lost_.Contain(Record(u"Contacts")));
    EXPECT_FALSE(lost_.Contain(Record(u"Contacts 2")));
    EXPECT_FALSE(lost_.Contain(Record(u"contacts")));
    EXPECT_FALSE(lost_.Contain(Database(u"Contacts")));
}

TEST_F(LostContainersTest, FilesValuesAndRecordsContainNothing) {
    lost_.Add(File(u"\\A"));
    lost_.Add(Value(u"A\u00FFb"));
    lost_.Add(Record(u"Contacts"));
    EXPECT_TRUE(lost_.empty());
    EXPECT_FALSE(lost_.Contain(File(u"\\A\\b")));
}

TEST_F(LostContainersTest, EachOfManyIsKnown) {
    for (char16_t letter = u'A'; letter <= u'Z'; ++letter) {
        lost_.Add(Folder(std::u16string(u"\\") + letter));
    }
    for (char16_t letter = u'A'; letter <= u'Z'; ++letter) {
        EXPECT_TRUE(lost_.Contain(File(std::u16string(u"\\") + letter + u"\\x")));
    }
    EXPECT_FALSE(lost_.Contain(File(u"\\0\\x")));
}

}  // namespace
}  // namespace tolvenar
