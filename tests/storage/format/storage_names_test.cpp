#include "storage/format/storage_names.h"

#include <gtest/gtest.h>
#include <string>

namespace tolvenar {
namespace {

using Text = std::u16string;

TEST(StorageNamesTest, TheStorageFileIsThePathAndItsExtension) {
    StorageNames names;
    ASSERT_TRUE(MakeStorageNames(u"\\Storage Card\\Backups\\Home", names));
    EXPECT_EQ(Text(u"\\Storage Card\\Backups\\Home"), names.path);
    EXPECT_EQ(Text(u"\\Storage Card\\Backups\\Home.sav"), names.sav);
    EXPECT_EQ(Text(u"\\Storage Card\\Backups\\Home.jrn"), names.journal);
    EXPECT_EQ(Text(u"\\Storage Card\\Backups\\Home.jrn_1"), names.journal_temporary);
}

// Intended: files that exist are found under this name. The journal's name keeps its dots.
TEST(StorageNamesTest, AFoldersDotCutsTheStorageFilesNameButNotTheJournals) {
    StorageNames names;
    ASSERT_TRUE(MakeStorageNames(u"\\Storage Card\\my.backup\\data", names));
    EXPECT_EQ(Text(u"\\Storage Card\\my.sav"), names.sav);
    EXPECT_EQ(Text(u"\\Storage Card\\my.backup\\data.jrn"), names.journal);
}

TEST(StorageNamesTest, TheSavNameOfASavNameIsItself) {
    char16_t sav[kStorageNameUnits];
    ASSERT_TRUE(MakeSavName(u"\\Card\\a.sav", sav));
    EXPECT_EQ(Text(u"\\Card\\a.sav"), sav);
    ASSERT_TRUE(MakeSavName(u"\\Storage Card\\my.backup\\data.sav", sav));
    EXPECT_EQ(Text(u"\\Storage Card\\my.sav"), sav);
}

TEST(StorageNamesTest, TheLongestPathHasAllItsExtensions) {
    const Text path = u"\\" + Text(258, u'p');
    StorageNames names;
    ASSERT_TRUE(MakeStorageNames(path.c_str(), names));
    EXPECT_EQ(path + u".sav", names.sav);
    EXPECT_EQ(path + u".jrn_1", names.journal_temporary);
}

TEST(StorageNamesTest, ALongerPathHasNoNames) {
    const Text path = u"\\" + Text(259, u'p');
    StorageNames names;
    EXPECT_FALSE(MakeStorageNames(path.c_str(), names));
    EXPECT_EQ(Text(), names.path);
    EXPECT_EQ(Text(), names.sav);
    EXPECT_EQ(Text(), names.journal);
    EXPECT_EQ(Text(), names.journal_temporary);
}

TEST(StorageNamesTest, AnEmptyPathHasNoNames) {
    StorageNames names;
    EXPECT_FALSE(MakeStorageNames(u"", names));
    EXPECT_EQ(Text(), names.sav);
}

TEST(StorageNamesTest, ASavNameThatDoesNotFitIsEmpty) {
    char16_t sav[kStorageNameUnits];
    EXPECT_FALSE(MakeSavName(Text(kStorageNameUnits - 4, u'p').c_str(), sav));
    EXPECT_EQ(Text(), sav);
}

// Scans leave the storage's files out by these names.
TEST(StorageNamesTest, ANameWithoutFolderBeginsBehindTheLastBackslash) {
    EXPECT_EQ(Text(u"Home.jrn_1"), NameWithoutFolder(u"\\Storage Card\\Backups\\Home.jrn_1"));
    EXPECT_EQ(Text(u"Home.sav"), NameWithoutFolder(u"Home.sav"));
    EXPECT_EQ(Text(), NameWithoutFolder(u"\\Storage Card\\"));
}

struct SplitRow {
    const char16_t* chosen;
    const char16_t* folder;
    const char16_t* stem;
};

class StorageLocationTest : public testing::TestWithParam<SplitRow> {};

TEST_P(StorageLocationTest, AChosenPathIsFolderAndStem) {
    StorageLocation location;
    ASSERT_TRUE(SplitStoragePath(GetParam().chosen, location));
    EXPECT_EQ(Text(GetParam().folder), location.folder);
    EXPECT_EQ(Text(GetParam().stem), location.stem);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, StorageLocationTest,
    testing::Values(SplitRow{u"\\Storage Card\\Backups\\Home.jrn", u"\\Storage Card\\Backups",
                             u"Home"},
                    SplitRow{u"\\Card\\a.b.jrn", u"\\Card", u"a"},
                    SplitRow{u"\\Card\\my.folder\\Home", u"\\Card\\my.folder", u"Home"},
                    SplitRow{u"\\Home.jrn", u"", u"Home"}, SplitRow{u"Home.jrn", u"", u"Home"},
                    SplitRow{u"\\Card\\.jrn", u"\\Card", u""}));

TEST(StorageLocationLengthTest, APathThatDoesNotFitIsRefused) {
    StorageLocation location;
    EXPECT_FALSE(SplitStoragePath((u"\\Card\\" + Text(254, u's')).c_str(), location));
    EXPECT_EQ(Text(), location.folder);
    EXPECT_EQ(Text(), location.stem);
}

struct FaultRow {
    Text chosen;
    NameFault fault;
};

class NameFaultTest : public testing::TestWithParam<FaultRow> {};

TEST_P(NameFaultTest, TellsWhyAChosenNameIsNone) {
    EXPECT_EQ(GetParam().fault, JudgeStorageName(GetParam().chosen.c_str()));
}

// The limits are those of the settings: 129 units of the folder with its backslash, 129 of the
// stem.
INSTANTIATE_TEST_SUITE_P(
    Rows, NameFaultTest,
    testing::Values(FaultRow{u"\\Card\\Home.jrn", NameFault::kNone},
                    FaultRow{u"\\Card\\a b.c d.jrn", NameFault::kNone},
                    FaultRow{u"\\" + Text(127, u'f') + u"\\" + Text(126, u's'), NameFault::kNone},
                    FaultRow{u"\\" + Text(128, u'f') + u"\\Home.jrn", NameFault::kTooLong},
                    FaultRow{u"\\Card\\" + Text(129, u's') + u".jrn", NameFault::kNone},
                    FaultRow{u"\\Card\\" + Text(130, u's') + u".jrn", NameFault::kTooLong},
                    FaultRow{u"\\Card\\" + Text(254, u's'), NameFault::kTooLong},
                    FaultRow{u"\\Card\\.jrn", NameFault::kEmpty},
                    FaultRow{u"\\Card\\", NameFault::kEmpty},
                    FaultRow{u"\\Card\\..jrn", NameFault::kEmpty},
                    FaultRow{u"\\Card\\a<.jrn", NameFault::kForbidden},
                    FaultRow{u"\\Card\\a>.jrn", NameFault::kForbidden},
                    FaultRow{u"\\Card\\a:.jrn", NameFault::kForbidden},
                    FaultRow{u"\\Card\\a\".jrn", NameFault::kForbidden},
                    FaultRow{u"\\Card\\a|.jrn", NameFault::kForbidden},
                    FaultRow{u"\\Card\\a/b.jrn", NameFault::kForbidden},
                    FaultRow{u"\\Card\\a*.jrn", NameFault::kForbidden},
                    FaultRow{u"\\Card\\a?.jrn", NameFault::kForbidden},
                    FaultRow{u"\\Card\\a\tb.jrn", NameFault::kForbidden},
                    FaultRow{u"\\Card\\a.b<.jrn", NameFault::kForbidden},
                    FaultRow{u"\\Card\\<.jrn", NameFault::kForbidden}));

}  // namespace
}  // namespace tolvenar
