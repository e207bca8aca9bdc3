// Difference trees built from objects that a test says, on a fake tree.
#pragma once

#include <gtest/gtest.h>

#include "difftree/model/difference_tree.h"
#include "tests/support/fake_tree.h"

namespace tolvenar {

class DifferenceTreeFixture : public testing::Test {
protected:
    using Texts = std::vector<std::u16string>;

    static FakeObject File(const std::u16string& path, std::uint16_t flags = JF_ADD) {
        return {ObjectType::kFile, path, flags};
    }
    static FakeObject Value(const std::u16string& key, const std::u16string& name,
                            std::uint16_t flags = JF_ADD) {
        return {ObjectType::kRegistryValue, key + u"\u00FF" + name, flags};
    }
    static FakeObject Text(const std::u16string& key, const std::u16string& name,
                           const char16_t* value) {
        FakeObject object = Value(key, name);
        object.value = value;
        return object;
    }
    static FakeObject Key(const std::u16string& path, std::uint16_t flags = JF_ADD) {
        return {ObjectType::kRegistryKey, path, flags};
    }
    static FakeObject InHive(FakeObject object, std::uint32_t hive) {
        object.hive = hive;
        return object;
    }
    static FakeObject Database(const std::u16string& name, std::uint16_t flags = JF_ADD) {
        return {ObjectType::kDatabase, name, flags};
    }
    static FakeObject Record(const std::u16string& database, std::uint32_t dwOID,
                             std::map<std::uint32_t, std::u16string> properties = {},
                             std::uint16_t flags = JF_ADD) {
        FakeObject object{ObjectType::kDatabaseRecord, database, flags};
        object.dwOID = dwOID;
        object.properties = std::move(properties);
        return object;
    }

    Texts Simple(std::vector<FakeObject> objects) { return Built(std::move(objects), false); }
    Texts Advanced(std::vector<FakeObject> objects) { return Built(std::move(objects), true); }
    Texts Built(std::vector<FakeObject> objects, bool advanced) {
        build_.advanced_view = advanced;
        FakeEnumerator enumerator(std::move(objects));
        EXPECT_EQ(1, BuildDifferenceTree(tree_, EnglishTexts(), enumerator, build_));
        EXPECT_FALSE(tree_.inserted_below_expanded);
        return tree_.Lines();
    }
    // What a category holds in a view where nothing else is.
    Texts Below(const std::u16string& category) {
        Texts result;
        bool is_inside = false;
        for (const std::u16string& line : tree_.Lines()) {
            if (line.rfind(u"  ", 0) != 0) {
                is_inside = line.rfind(u" " + category + u" +", 0) == 0;
            } else if (is_inside) {
                result.push_back(line.substr(2));
            }
        }
        return result;
    }

    TreeBuild build_{};
    FakeTree tree_;
};

}  // namespace tolvenar
