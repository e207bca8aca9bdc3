#include "snapshot/records/left_out.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tolvenar {
namespace {

std::vector<std::u16string> Names(const LeftOut& list, bool kept) {
    std::vector<std::u16string> names;
    for (const LeftOut::Entry* entry = list.First(); entry != nullptr; entry = entry->next) {
        if (entry->is_kept == kept) {
            names.emplace_back(entry->name);
        }
    }
    return names;
}
using Names16 = std::vector<std::u16string>;

TEST(LeftOutTest, TheObjectsAreTheirNamesInTheOrderOfTheScan) {
    LeftOut list;
    EXPECT_EQ(nullptr, list.First());
    list.Add(ObjectType::kFile, u"\\b.txt");
    list.Add(ObjectType::kFile, u"\\a.txt");
    list.Add(ObjectType::kDatabase, u"People");
    EXPECT_EQ((Names16{u"\\b.txt", u"\\a.txt", u"People"}), Names(list, false));
    list.Clear();
    EXPECT_EQ(nullptr, list.First());
    list.Add(ObjectType::kFile, u"\\c.txt");
    EXPECT_EQ(Names16{u"\\c.txt"}, Names(list, false));
}

TEST(LeftOutTest, WhatIsKeptIsFoundWhateverTheCaseOfItsLetters) {
    LeftOut list;
    list.Add(ObjectType::kFile, u"\\a.txt");
    list.Add(ObjectType::kFile, u"People");
    list.Add(ObjectType::kDatabase, u"People");
    list.MarkKept(ObjectType::kFile, u"\\A.TXT");
    list.MarkKept(ObjectType::kDatabase, u"people");
    list.MarkKept(ObjectType::kFile, u"\\other.txt");
    EXPECT_EQ((Names16{u"\\a.txt", u"People"}), Names(list, true));
    EXPECT_EQ(Names16{u"People"}, Names(list, false));
}

TEST(LeftOutTest, ThousandsOfObjectsAreFoundAgain) {
    LeftOut list;
    for (char16_t i = 0; i < 3000; ++i) {
        list.Add(ObjectType::kFile, std::u16string(u"\\") + static_cast<char16_t>(0x4E00 + i));
    }
    for (char16_t i = 0; i < 3000; ++i) {
        list.MarkKept(ObjectType::kFile, std::u16string(u"\\") + static_cast<char16_t>(0x4E00 + i));
    }
    EXPECT_EQ(3000u, Names(list, true).size());
}

}  // namespace
}  // namespace tolvenar
