#include "snapshot/compare/value_names.h"

#include <gtest/gtest.h>

#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kHive = 0x80000001;

class ValueNamesTest : public testing::Test {
protected:
    void AddKey(const std::u16string& path, std::uint16_t state, std::uint32_t hive = kHive) {
        Enter(path, state, hive, JF_ADD);
    }
    void DeleteKey(const std::u16string& path, std::uint16_t state) {
        Enter(path, state, kHive, JF_DELETE);
    }
    // The key path that the value of `state` with this joined name is restored to; "-" for none.
    std::u16string KeyOfValue(const std::u16string& name, std::uint16_t state = 1) {
        return KeyOfValue(names_, name, state);
    }
    static std::u16string KeyOfValue(ValueNames& names, const std::u16string& name,
                                     std::uint16_t state) {
        InfoBlock block;
        block.head().hive = kHive;
        EXPECT_TRUE(block.SetName(name.data(), name.size()));
        const ObjectRecord value = JournalRecord(MakeRecord(kValue, 0, 1), state, JF_DELETE, 5000);
        std::size_t place = 0;
        return names.FindSeparator(value, block, place) ? name.substr(0, place) : u"-";
    }

    FakeInfoSource info_;
    std::unique_ptr<ObjectList> journal_ = ObjectList::CreateList();
    ValueNames names_{journal_.get(), info_, info_};

private:
    void Enter(const std::u16string& path, std::uint16_t state, std::uint32_t hive,
               std::uint16_t flags) {
        const auto offset = static_cast<std::uint32_t>(100 + path.size());
        info_.stored[offset] = {path, kKey, hive};
        ASSERT_TRUE(journal_->AddObject(
            JournalRecord(MakeRecord(kKey, 0, MakeKeyTolvOID(hive, path)), state, flags, offset)));
    }
};

TEST_F(ValueNamesTest, TheIdentifierOfAKeyIsThatOfTheScan) {
    EXPECT_EQ(MakeTolvOID(u"80000001Software\\A", u"Software\\A", 20, 0),
              MakeKeyTolvOID(kHive, u"Software\\A"));
    EXPECT_EQ(MakeTolvOID(u"80000001", u"", 0, 0), MakeKeyTolvOID(kHive, u""));
}

TEST_F(ValueNamesTest, OneSeparatorIsItAndNothingIsRead) {
    EXPECT_EQ(u"key", KeyOfValue(u"key\u00FFname"));
    EXPECT_EQ(u"", KeyOfValue(u"\u00FFname"));
    EXPECT_EQ(u"key", KeyOfValue(u"key\u00FF"));
    EXPECT_TRUE(info_.asked.empty());
}

TEST_F(ValueNamesTest, WithoutASeparatorThereIsNoName) { EXPECT_EQ(u"-", KeyOfValue(u"key")); }

TEST_F(ValueNamesTest, ASeparatorInTheKeysPathBelongsToIt) {
    AddKey(u"key\u00FFwith", 1);
    EXPECT_EQ(u"key\u00FFwith", KeyOfValue(u"key\u00FFwith\u00FFname"));
}

TEST_F(ValueNamesTest, ASeparatorInTheValuesNameBelongsToIt) {
    AddKey(u"key", 1);
    EXPECT_EQ(u"key", KeyOfValue(u"key\u00FFname\u00FFwith\u00FFsome"));
}

TEST_F(ValueNamesTest, OfSeveralKeysItIsTheLongest) {
    AddKey(u"key", 1);
    AddKey(u"key\u00FFwith", 1);
    EXPECT_EQ(u"key\u00FFwith", KeyOfValue(u"key\u00FFwith\u00FFname\u00FFx"));
}

TEST_F(ValueNamesTest, WithoutAKeyItIsTheFirst) {
    AddKey(u"key\u00FFwit", 1);
    AddKey(u"key\u00FFwith", 1, kHive + 1);
    EXPECT_EQ(u"key", KeyOfValue(u"key\u00FFwith\u00FFname"));
}

TEST_F(ValueNamesTest, TheRootOfAHiveIsAKeyToo) {
    AddKey(u"", 1);
    EXPECT_EQ(u"", KeyOfValue(u"\u00FFname\u00FFx"));
}

TEST_F(ValueNamesTest, OnlyTheKeysOfItsOwnStateCount) {
    AddKey(u"key", 1);
    AddKey(u"key\u00FFwith", 2);
    DeleteKey(u"key\u00FFwith", 3);
    EXPECT_EQ(u"key", KeyOfValue(u"key\u00FFwith\u00FFname", 1));
    EXPECT_EQ(u"key\u00FFwith", KeyOfValue(u"key\u00FFwith\u00FFname", 2));
    EXPECT_EQ(u"key", KeyOfValue(u"key\u00FFwith\u00FFname", 3));
}

TEST_F(ValueNamesTest, WithoutAJournalItIsTheFirst) {
    ValueNames names(nullptr, info_, info_);
    EXPECT_EQ(u"key", KeyOfValue(names, u"key\u00FFwith\u00FFname", 1));
}

TEST_F(ValueNamesTest, AnUnreadableKeyIsNone) {
    AddKey(u"key\u00FFwith", 1);
    info_.stored.clear();
    EXPECT_EQ(u"key", KeyOfValue(u"key\u00FFwith\u00FFname"));
}

}  // namespace
}  // namespace tolvenar
