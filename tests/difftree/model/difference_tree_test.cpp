// Where the difference tree shows which object, as data.
#include "tests/difftree/model/difference_tree_fixture.h"

namespace tolvenar {
namespace {

using Lines = std::vector<std::u16string>;

constexpr std::uint16_t kBothFlag = kFlagAddition20;
constexpr std::uint32_t kName = 0x4013001F;
constexpr std::uint32_t kSubject = 0x0037001F;
constexpr std::uint32_t kMailSubject = 0x0007001F;

class DifferenceTreeTest : public DifferenceTreeFixture {};

TEST_F(DifferenceTreeTest, TheCategoriesOfTheSimpleView) {
    EXPECT_EQ((Lines{u"Differences +0 ±0 -0", u" Applications +0 ±0 -0", u" Documents +0 ±0 -0",
                     u" Outlook Data +0 ±0 -0", u" Other +0 ±0 -0"}),
              Simple({}));
}

TEST_F(DifferenceTreeTest, TheCategoriesOfTheAdvancedView) {
    EXPECT_EQ((Lines{u"Differences +0 ±0 -0", u" Applications +0 ±0 -0", u" Databases +0 ±0 -0",
                     u" Registry +0 ±0 -0", u" Files +0 ±0 -0"}),
              Advanced({}));
}

TEST_F(DifferenceTreeTest, CategoriesCarryTheirCodesAndDepths) {
    Simple({});
    const std::vector<std::uint32_t> simple = {64, 128, 4, 0};
    for (std::size_t i = 0; i < simple.size(); ++i) {
        EXPECT_EQ(simple[i], tree_.root()->children[i]->record->category);
        EXPECT_EQ(1u, tree_.root()->children[i]->record->depth);
        EXPECT_EQ(8u, tree_.root()->children[i]->record->flags);
    }
    Advanced({});
    const std::vector<std::uint32_t> advanced = {64, 4, 2, 16};
    for (std::size_t i = 0; i < advanced.size(); ++i) {
        EXPECT_EQ(advanced[i], tree_.root()->children[i]->record->category);
    }
    EXPECT_EQ(0u, tree_.root()->record->depth);
    EXPECT_EQ(8u, tree_.root()->record->flags);
    EXPECT_EQ(0u, tree_.root()->record->category);
}

TEST_F(DifferenceTreeTest, NodesCarryTheTypeOfTheirObject) {
    Advanced({File(u"\\a\\b"), Value(u"k", u"v"), Key(u"l"), Database(u"Notes"),
              Record(u"Notes", 7), Value(u"Software\\Apps\\One", u"Instl")});
    const auto type_of = [&](const Lines& path) { return tree_.Find(path)->record->category; };
    EXPECT_EQ(16u, type_of({u"Files", u"a"}));
    EXPECT_EQ(16u, type_of({u"Files", u"a", u"b (+)"}));
    EXPECT_EQ(2u, type_of({u"Registry", u"HKLM"}));
    EXPECT_EQ(2u, type_of({u"Registry", u"HKLM", u"k"}));
    EXPECT_EQ(1u, type_of({u"Registry", u"HKLM", u"k", u"v (+)"}));
    EXPECT_EQ(2u, type_of({u"Registry", u"HKLM", u"l (+)"}));
    EXPECT_EQ(4u, type_of({u"Databases", u"Other"}));
    EXPECT_EQ(4u, type_of({u"Databases", u"Other", u"Notes"}));
    EXPECT_EQ(8u, type_of({u"Databases", u"Other", u"Notes", u"7 (+)"}));
    EXPECT_EQ(64u, type_of({u"Applications", u"One (+)"}));
}

TEST_F(DifferenceTreeTest, ButtonsOfEmptyCategoriesFollowTheMask) {
    build_.expand_mask = 0;
    Simple({});
    EXPECT_TRUE(tree_.Find({u"Applications"})->has_button);
    EXPECT_TRUE(tree_.Find({u"Documents"})->has_button);
    EXPECT_FALSE(tree_.Find({u"Outlook Data"})->has_button);
    EXPECT_FALSE(tree_.Find({u"Other"})->has_button);
    build_.expand_mask = kExpandOther | 4;
    Simple({});
    EXPECT_TRUE(tree_.Find({u"Outlook Data"})->has_button);
    EXPECT_TRUE(tree_.Find({u"Other"})->has_button);
    build_.expand_mask = 2;
    Advanced({});
    EXPECT_FALSE(tree_.Find({u"Databases"})->has_button);
    EXPECT_TRUE(tree_.Find({u"Registry"})->has_button);
    EXPECT_FALSE(tree_.Find({u"Files"})->has_button);
}

TEST_F(DifferenceTreeTest, WithoutChangesTheRootHasNoButton) {
    Simple({});
    EXPECT_FALSE(tree_.root()->has_button);
    EXPECT_EQ(tree_.root(), tree_.shown_root);
    for (const std::uint16_t flags : {JF_ADD, JF_DELETE, kBothFlag}) {
        build_.filter_mask = flags;
        Simple({File(u"\\a", flags)});
        EXPECT_TRUE(tree_.root()->has_button) << flags;
        EXPECT_EQ(tree_.root(), tree_.shown_root);
    }
}

TEST_F(DifferenceTreeTest, TheCallersCaptionIsTheRoots) {
    build_.root_caption = u"Differences from State 1 to State 2";
    Simple({});
    EXPECT_EQ(u"Differences from State 1 to State 2", tree_.root()->text);
    build_.root_caption = u"";
    Simple({});
    EXPECT_EQ(u"Differences", tree_.root()->text);
}

TEST_F(DifferenceTreeTest, ADocumentStandsTwiceInTheSimpleView) {
    EXPECT_EQ((Lines{u"Differences +2 ±0 -0", u" Applications +0 ±0 -0", u" Documents +1 ±0 -0",
                     u"  a.doc (+)*", u" Outlook Data +0 ±0 -0", u" Other +1 ±0 -0",
                     u"  \\My Documents\\a.doc (+)*"}),
              Simple({File(u"\\My Documents\\a.doc")}));
}

TEST_F(DifferenceTreeTest, DocumentsAreSplitBelowTheirFolder) {
    Simple({File(u"\\my documents\\Letters\\a.doc"), File(u"My Documents\\letters\\B.doc")});
    EXPECT_EQ((Lines{u"Letters", u" a.doc (+)*", u" B.doc (+)*"}), Below(u"Documents"));
}

TEST_F(DifferenceTreeTest, DocumentsKeepTheirOrder) {
    Simple({File(u"\\My Documents\\z.txt"), File(u"\\My Documents\\a\\1")});
    EXPECT_EQ((Lines{u"z.txt (+)*", u"a", u" 1 (+)*"}), Below(u"Documents"));
}

TEST_F(DifferenceTreeTest, TheDocumentsFolderItselfIsNoDocument) {
    Simple({File(u"\\My Documents")});
    EXPECT_EQ(Lines{}, Below(u"Documents"));
    EXPECT_EQ(Lines{u"\\My Documents (+)*"}, Below(u"Other"));
}

TEST_F(DifferenceTreeTest, AFolderThatOnlyBeginsLikeTheDocumentsIsNoDocument) {
    Simple({File(u"\\My Documents2\\a.doc"), File(u"\\\\My Documents\\b.doc")});
    EXPECT_EQ(Lines{}, Below(u"Documents"));
}

TEST_F(DifferenceTreeTest, FilesAreSplitInTheAdvancedView) {
    EXPECT_EQ((Lines{u"Differences +1 ±0 -1", u" Applications +0 ±0 -0", u" Databases +0 ±0 -0",
                     u" Registry +0 ±0 -0", u" Files +1 ±0 -1", u"  Windows", u"   a.txt (+)*",
                     u"   b.txt (-)*"}),
              Advanced({File(u"\\Windows\\a.txt"), File(u"\\Windows\\b.txt", JF_DELETE)}));
}

TEST_F(DifferenceTreeTest, PathsThatDifferInCaseShareTheirNodes) {
    Advanced({File(u"\\Windows\\A.txt"), File(u"\\WINDOWS\\a.TXT", JF_DELETE), File(u"\\Папка\\Ёж"),
              File(u"\\ПАПКА\\x")});
    EXPECT_EQ((Lines{u"Windows", u" A.txt (±)*", u"Папка", u" Ёж (+)*", u" x (+)*"}),
              Below(u"Files"));
    EXPECT_EQ(1u, tree_.Find({u"Files"})->record->both);
}

TEST_F(DifferenceTreeTest, ATrailingSeparatorPutsTheFlagsOnTheLastComponent) {
    Advanced({File(u"\\a\\\\b\\\\")});
    EXPECT_EQ((Lines{u"a", u" b (+)*"}), Below(u"Files"));
}

TEST_F(DifferenceTreeTest, AFolderAndItsFilesCountEach) {
    Advanced({File(u"\\a"), File(u"\\a\\b"), File(u"\\a\\c", JF_DELETE)});
    EXPECT_EQ((Lines{u"a (+)*", u" b (+)*", u" c (-)*"}), Below(u"Files"));
    EXPECT_EQ(2u, tree_.root()->record->added);
    EXPECT_EQ(1u, tree_.root()->record->deleted);
    EXPECT_EQ(1u, tree_.Find({u"Files", u"a (+)"})->record->added);
}

TEST_F(DifferenceTreeTest, NodesWithChildrenComeBeforeLeavesInFilesAlone) {
    Advanced({File(u"\\z.txt"), File(u"\\a\\1"), File(u"\\a\\d\\2"), File(u"\\y.txt"),
              InHive(Value(u"", u"v"), 0x80000001), InHive(Value(u"k", u"w"), 0x80000001)});
    EXPECT_EQ((Lines{u"a", u" d", u"  2 (+)*", u" 1 (+)*", u"z.txt (+)*", u"y.txt (+)*"}),
              Below(u"Files"));
    EXPECT_EQ((Lines{u"HKCU", u" v (+)*", u" k", u"  w (+)*"}), Below(u"Registry"));
}

TEST_F(DifferenceTreeTest, OnlyStatesThatTheFilterLetsThroughAreShown) {
    Advanced({File(u"\\both", kBothFlag), File(u"\\none", JF_PRESENT), File(u"\\failed", JF_FAILED),
              File(u"\\plain", 0)});
    EXPECT_EQ(Lines{}, Below(u"Files"));
    build_.filter_mask = JF_ADD | JF_DELETE | kBothFlag;
    Advanced({File(u"\\both", kBothFlag), File(u"\\added", JF_ADD | JF_DELETE | kBothFlag),
              File(u"\\deleted", JF_DELETE | kBothFlag | JF_FAILED)});
    EXPECT_EQ((Lines{u"both (±)*", u"added (+)*", u"deleted (-)*"}), Below(u"Files"));
}

TEST_F(DifferenceTreeTest, KnownDatabasesStandAmongOutlookData) {
    const std::vector<FakeObject> objects = {
        Database(u"contacts DATABASE"), Database(u"Tasks Database", JF_DELETE),
        Database(u"Appointments Database"), Database(u"\\pmaildb"), Database(u"Notes")};
    EXPECT_EQ((Lines{u"Differences +4 ±0 -1", u" Applications +0 ±0 -0", u" Databases +4 ±0 -1",
                     u"  Outlook Data* +3 ±0 -1", u"   Contacts* +0 ±0 -0", u"   Tasks* +0 ±0 -0",
                     u"   Appointments* +0 ±0 -0", u"   Inbox* +0 ±0 -0", u"  Other* +1 ±0 -0",
                     u"   Notes* +0 ±0 -0", u" Registry +0 ±0 -0", u" Files +0 ±0 -0"}),
              Advanced(objects));
    EXPECT_EQ((Lines{u"Differences +4 ±0 -1", u" Applications +0 ±0 -0", u" Documents +0 ±0 -0",
                     u" Outlook Data +3 ±0 -1", u"  Contacts* +0 ±0 -0", u"  Tasks* +0 ±0 -0",
                     u"  Appointments* +0 ±0 -0", u"  Inbox* +0 ±0 -0", u" Other +1 ±0 -0",
                     u"  Notes (+)*"}),
              Simple(objects));
}

// A group of databases shows their state in its colour but is not counted itself.
TEST_F(DifferenceTreeTest, FlagsOfDatabaseNodesAndTheirGroups) {
    Advanced({Database(u"Contacts Database", JF_DELETE), Record(u"Notes", 7)});
    EXPECT_EQ(2u | 4 | 8 | 16, tree_.Find({u"Databases", u"Outlook Data"})->record->flags);
    EXPECT_EQ(2u | 4 | 8, tree_.Find({u"Databases", u"Outlook Data", u"Contacts"})->record->flags);
    EXPECT_EQ(8u | 16, tree_.Find({u"Databases", u"Other"})->record->flags);
    EXPECT_EQ(8u, tree_.Find({u"Databases", u"Other", u"Notes"})->record->flags);
    EXPECT_EQ(1u | 4, tree_.Find({u"Databases", u"Other", u"Notes", u"7 (+)"})->record->flags);
}

TEST_F(DifferenceTreeTest, RecordsOfKnownDatabasesAreShownByTheirTitles) {
    Advanced({Record(u"Contacts Database", 1, {{kName, u"Ann"}, {kSubject, u"no"}}),
              Record(u"Tasks Database", 2, {{kSubject, u"Shop"}}),
              Record(u"Appointments Database", 3, {{kSubject, u"Dentist"}}),
              Record(u"\\PMAILDB", 4, {{kMailSubject, u"Hello"}})});
    EXPECT_EQ((Lines{u"Outlook Data +4 ±0 -0", u" Contacts +1 ±0 -0", u"  Ann (+)*",
                     u" Tasks +1 ±0 -0", u"  Shop (+)*", u" Appointments +1 ±0 -0",
                     u"  Dentist (+)*", u" Inbox +1 ±0 -0", u"  Hello (+)*"}),
              Below(u"Databases"));
}

TEST_F(DifferenceTreeTest, AnEmptyTitleIsUnknownOrNoSubject) {
    Simple({Record(u"Contacts Database", 1, {{kName, u""}}),
            Record(u"Tasks Database", 2, {{kSubject, u""}}),
            Record(u"Appointments Database", 3, {{kSubject, u""}}),
            Record(u"\\PMAILDB", 4, {{kMailSubject, u""}})});
    EXPECT_EQ(
        (Lines{u"Contacts +1 ±0 -0", u" Unknown (+)*", u"Tasks +1 ±0 -0", u" Unknown (+)*",
               u"Appointments +1 ±0 -0", u" Unknown (+)*", u"Inbox +1 ±0 -0", u" No subject (+)*"}),
        Below(u"Outlook Data"));
}

TEST_F(DifferenceTreeTest, ARecordWithoutTitleIsShownByItsNumber) {
    Simple({Record(u"Contacts Database", 4000000000u, {{kSubject, u"x"}}),
            Record(u"Notes", 12, {{kName, u"x"}})});
    EXPECT_EQ((Lines{u"Contacts +1 ±0 -0", u" 4000000000 (+)*"}), Below(u"Outlook Data"));
    EXPECT_EQ((Lines{u"Notes", u" 12 (+)*"}), Below(u"Other"));
}

TEST_F(DifferenceTreeTest, RecordsWithTheSameTitleShareANode) {
    Simple({Record(u"Contacts Database", 1, {{kName, u"Ann"}}),
            Record(u"Contacts Database", 2, {{kName, u"ANN"}}, JF_DELETE)});
    EXPECT_EQ((Lines{u"Contacts +0 ±1 -0", u" Ann (±)*"}), Below(u"Outlook Data"));
}

TEST_F(DifferenceTreeTest, RegistryObjectsStandBelowTheirHives) {
    Advanced({InHive(Value(u"Software\\A", u"v"), 0x80000002),
              InHive(Key(u"Software\\B\\"), 0x80000001), InHive(Value(u"a", u"v"), 0x80000000),
              InHive(Value(u"Software\\A", u"", JF_DELETE), 0x80000003)});
    EXPECT_EQ((Lines{u"HKLM", u" Software", u"  A", u"   v (+)*", u"HKCU", u" Software",
                     u"  B (+)*", u"HKCR", u" a", u"  v (+)*", u"HKUS", u" Software", u"  A (-)*"}),
              Below(u"Registry"));
    EXPECT_EQ(0u, tree_.Find({u"Registry", u"HKLM"})->record->flags);
}

// The hive is the last node then; a change would not be seen otherwise.
TEST_F(DifferenceTreeTest, WhatIsTheHiveItselfPutsItsFlagsOnTheHive) {
    Advanced({InHive(Value(u"", u""), 0x80000001), InHive(Key(u"\\", JF_DELETE), 0x80000000)});
    EXPECT_EQ((Lines{u"HKCU (+)*", u"HKCR (-)*"}), Below(u"Registry"));
    EXPECT_EQ(1u, tree_.Find({u"Registry"})->record->added);
    EXPECT_TRUE(tree_.Find({u"Registry", u"HKCU (+)"})->has_button);
}

TEST_F(DifferenceTreeTest, AValueNameMayHoldSeparatorsOfPaths) {
    Advanced({InHive(Value(u"k", u"a\\b"), 0x80000002)});
    EXPECT_EQ((Lines{u"HKLM", u" k", u"  a\\b (+)*"}), Below(u"Registry"));
}

TEST_F(DifferenceTreeTest, TheNameIsCutAtItsLastSeparator) {
    Advanced({Value(u"a\u00FFb", u"c")});
    EXPECT_EQ((Lines{u"HKLM", u" a\u00FFb", u"  c (+)*"}), Below(u"Registry"));
}

TEST_F(DifferenceTreeTest, AnObjectOfNoHiveIsNotShown) {
    Advanced({InHive(Value(u"a", u"v"), 0x80000007)});
    EXPECT_EQ(Lines{}, Below(u"Registry"));
}

TEST_F(DifferenceTreeTest, TheSimpleViewShowsValuesByTheirWholeNamesAndNoKeys) {
    Simple({Key(u"Software\\A"), Value(u"Software\\A", u"v"), Value(u"Software\\A", u"")});
    EXPECT_EQ((Lines{u"Software\\A\u00FFv (+)*", u"Software\\A\u00FF (+)*"}), Below(u"Other"));
}

TEST_F(DifferenceTreeTest, StatesAndUnknownTypesAreNotShown) {
    Simple({{ObjectType::kState, u"Title"}, {static_cast<ObjectType>(77), u"x"}});
    EXPECT_EQ(5u, tree_.size());
}

}  // namespace
}  // namespace tolvenar
