// How a build of the difference tree goes: labels, order of insertions, ends and failures.
#include "tests/difftree/model/difference_tree_fixture.h"

namespace tolvenar {
namespace {

using Lines = std::vector<std::u16string>;

class TreeBuildTest : public DifferenceTreeFixture {};

TEST_F(TreeBuildTest, MarksAndBoldAreOptions) {
    build_.options = 0;
    Advanced({File(u"\\a"), File(u"\\b", JF_DELETE)});
    EXPECT_EQ((Lines{u"a", u"b"}), Below(u"Files"));
    build_.options = kTreeMarks;
    Advanced({File(u"\\a")});
    EXPECT_EQ(Lines{u"a (+)"}, Below(u"Files"));
    build_.options = kTreeBold;
    Advanced({File(u"\\a")});
    EXPECT_EQ(Lines{u"a*"}, Below(u"Files"));
}

TEST_F(TreeBuildTest, BoldFollowsTheStylesOfTheStates) {
    build_.styles = {{0, true}, {0, false}, {0, true}, {0, false}};
    Advanced({File(u"\\a"), File(u"\\b", JF_DELETE), File(u"\\c"), File(u"\\C", JF_DELETE)});
    EXPECT_FALSE(tree_.Find({u"Files", u"a (+)"})->is_bold);
    EXPECT_FALSE(tree_.Find({u"Files", u"b (-)"})->is_bold);
    EXPECT_TRUE(tree_.Find({u"Files", u"c (±)"})->is_bold);
    EXPECT_TRUE(tree_.root()->is_bold);
}

TEST_F(TreeBuildTest, TheRestorePagesValues) {
    const TreeBuild build;
    EXPECT_EQ(15u, build.options);
    EXPECT_EQ(0x40000016u, build.expand_mask);
    EXPECT_EQ(12u, build.filter_mask);
    EXPECT_EQ(1u, kTreeColours);
    EXPECT_EQ(2u, kTreeCounts);
    EXPECT_EQ(4u, kTreeMarks);
    EXPECT_EQ(8u, kTreeBold);
}

TEST_F(TreeBuildTest, TheDefaultStyles) {
    EXPECT_EQ(0x000000u, StyleOf(kDefaultStyles, 0).colour);
    EXPECT_FALSE(StyleOf(kDefaultStyles, kNodeObject).is_bold);
    EXPECT_EQ(0xFF0000u, StyleOf(kDefaultStyles, kNodeAdded | kNodeObject).colour);
    EXPECT_EQ(0x0000FFu, StyleOf(kDefaultStyles, kNodeDeleted).colour);
    EXPECT_EQ(0x808080u, StyleOf(kDefaultStyles, kNodeBoth).colour);
    EXPECT_TRUE(StyleOf(kDefaultStyles, kNodeBoth).is_bold);
}

TEST_F(TreeBuildTest, OnRequestTheBranchesThatHoldSomethingAreOpen) {
    Advanced({File(u"\\a\\b")});
    EXPECT_FALSE(tree_.Find({u"Files"})->is_expanded);
    build_.opens_branches = true;
    Advanced({File(u"\\a\\b")});
    EXPECT_TRUE(tree_.Find({u"Files"})->is_expanded);
    EXPECT_TRUE(tree_.Find({u"Files", u"a"})->is_expanded);
    EXPECT_FALSE(tree_.Find({u"Files", u"a", u"b (+)"})->is_expanded);
    EXPECT_FALSE(tree_.Find({u"Registry"})->is_expanded);
}

TEST_F(TreeBuildTest, ItemsOfOneChangeStateAloneAreShownAndCounted) {
    TreeCounts counts;
    build_.counts = &counts;
    build_.shown_kind = kNodeBoth;
    Advanced({File(u"\\a\\new"), File(u"\\a\\old", JF_DELETE), File(u"\\a\\b"),
              File(u"\\a\\b", JF_DELETE), File(u"\\c\\new")});
    EXPECT_EQ((Lines{u"a", u" b (±)*"}), Below(u"Files"));
    EXPECT_EQ(1u, counts.shown);
    EXPECT_EQ(4u, counts.all);
    EXPECT_NE(nullptr, tree_.Find({u"Registry"}));
    build_.shown_kind = 0;
    Advanced({File(u"\\a\\new")});
    EXPECT_EQ(1u, counts.shown);
    EXPECT_EQ(1u, counts.all);
}

TEST_F(TreeBuildTest, AnItemKnowsWhyItsObjectsFailed) {
    FakeObject held = File(u"\\a\\b", JF_DELETE);
    held.reason = FailureReason::kInUse;
    FakeObject damaged = File(u"\\a\\B");
    damaged.reason = FailureReason::kDamaged;
    Advanced({held, damaged});
    const std::uint32_t flags = tree_.Find({u"Files", u"a", u"b (±)"})->record->flags;
    EXPECT_TRUE(HasReason(flags, FailureReason::kInUse));
    EXPECT_TRUE(HasReason(flags, FailureReason::kDamaged));
    EXPECT_FALSE(HasReason(flags, FailureReason::kNoRoom));
    EXPECT_FALSE(HasReason(tree_.Find({u"Files", u"a"})->record->flags, FailureReason::kInUse));
}

TEST_F(TreeBuildTest, ItemsThatFailedAloneAreShownAndAllOfThemCounted) {
    FakeObject held = File(u"\\a\\b", JF_DELETE);
    held.reason = FailureReason::kInUse;
    TreeCounts counts;
    build_.counts = &counts;
    build_.shown_kind = kShowFailed;
    Advanced({File(u"\\a\\new"), held, File(u"\\c", JF_DELETE)});
    EXPECT_EQ((Lines{u"a", u" b (-)*"}), Below(u"Files"));
    EXPECT_EQ(1u, counts.shown);
    EXPECT_EQ(3u, counts.all);
    EXPECT_EQ(1u, counts.failed);
    build_.shown_kind = kNodeAdded;
    Advanced({File(u"\\a\\new"), held});
    EXPECT_EQ(1u, counts.shown);
    EXPECT_EQ(1u, counts.failed);
}

TEST_F(TreeBuildTest, AnItemKnowsBothVersionsOfItsObjectAndKeepsTheFirst) {
    const ObjectRecord records[4] = {};
    const auto Of = [&records](FakeObject object, int record) {
        object.record = &records[record];
        return object;
    };
    Advanced({Of(File(u"\\a\\b"), 0), Of(File(u"\\a\\b", JF_DELETE), 1), Of(File(u"\\a\\B"), 2),
              Of(Value(u"Key", u"x", JF_DELETE), 3), Of(Key(u"Key"), 2), Of(Database(u"Db"), 0),
              Of(Record(u"Db", 7), 1)});
    const NodeRecord& file = *tree_.Find({u"Files", u"a", u"b (±)"})->record;
    EXPECT_EQ(&records[0], file.after);
    EXPECT_EQ(&records[1], file.before);
    const NodeRecord& key = *tree_.Find({u"Registry", u"HKLM", u"Key (+)"})->record;
    EXPECT_EQ(&records[2], key.after);
    EXPECT_EQ(nullptr, key.before);
    EXPECT_EQ(&records[3],
              tree_.Find({u"Registry", u"HKLM", u"Key (+)", u"x (-)"})->record->before);
    const FakeItem* database = tree_.Find({u"Databases", u"Other", u"Db"});
    EXPECT_EQ(&records[0], database->record->after);
    EXPECT_EQ(&records[1], database->children[0]->record->after);
    EXPECT_EQ(nullptr, tree_.Find({u"Files", u"a"})->record->after);
}

TEST_F(TreeBuildTest, ADocumentsVersionsStandAtBothOfItsItems) {
    const ObjectRecord record{};
    FakeObject document = File(u"\\My Documents\\a");
    document.record = &record;
    Simple({document});
    EXPECT_EQ(&record, tree_.Find({u"Documents", u"a (+)"})->record->after);
    EXPECT_EQ(&record, tree_.Find({u"Other", u"\\My Documents\\a (+)"})->record->after);
}

TEST_F(TreeBuildTest, RecordsOfItemsKnowTheirItemsAndPlainCaptions) {
    Advanced({File(u"\\a\\b")});
    const FakeItem* item = tree_.Find({u"Files", u"a", u"b (+)"});
    ASSERT_NE(nullptr, item);
    EXPECT_EQ(item, item->record->item);
    EXPECT_EQ(u"b", std::u16string(item->record->caption));
    EXPECT_EQ(3u, item->record->depth);
    EXPECT_EQ(0u, item->record->group_mark);
    EXPECT_EQ(1u, tree_.Find({u"Files"})->record->group_mark);
}

TEST_F(TreeBuildTest, TheEndAndPausesOfAnEnumerator) {
    FakeObject pause = File(u"\\pause");
    pause.answer = DifferenceEnumerator::kNoObject;
    FakeObject other = File(u"\\other");
    other.answer = 5;
    FakeObject end = File(u"\\end");
    end.answer = DifferenceEnumerator::kEnd;
    Advanced({pause, other, end, File(u"\\after")});
    EXPECT_EQ(Lines{u"other (+)*"}, Below(u"Files"));
}

TEST_F(TreeBuildTest, AnAbortLeavesWhatWasBuilt) {
    FakeEnumerator enumerator({File(u"\\a"), Value(u"Software\\Apps\\One", u"Instl")},
                              DifferenceEnumerator::kAbort);
    build_.advanced_view = true;
    EXPECT_EQ(0, BuildDifferenceTree(tree_, EnglishTexts(), enumerator, build_));
    EXPECT_NE(nullptr, tree_.Find({u"Files", u"a"}));
    EXPECT_EQ(0u, tree_.root()->record->group_mark);
    EXPECT_TRUE(tree_.Find({u"Applications"})->children.empty());
    EXPECT_EQ(nullptr, tree_.shown_root);
}

TEST_F(TreeBuildTest, ANewBuildDeletesTheOldItems) {
    for (int i = 0; i < 100; ++i) {
        Advanced({File(u"\\a\\b"), Value(u"Software\\Apps\\One", u"Instl")});
        EXPECT_EQ(13u, tree_.size());
    }
}

TEST_F(TreeBuildTest, ATreeViewThatIsFullLeavesTheRestOut) {
    const std::vector<FakeObject> objects = {File(u"\\a\\b"), File(u"\\a\\c")};
    build_.advanced_view = true;
    for (std::size_t room = 0; room < 8; ++room) {
        FakeTree tree;
        tree.insertions_left = room;
        FakeEnumerator enumerator(objects);
        EXPECT_EQ(0, BuildDifferenceTree(tree, EnglishTexts(), enumerator, build_)) << room;
        EXPECT_EQ(room, tree.size());
    }
    FakeEnumerator enumerator(objects);
    EXPECT_EQ(1, BuildDifferenceTree(tree_, EnglishTexts(), enumerator, build_));
    EXPECT_EQ(8u, tree_.size());
}

// A child gives its parent a button, so the groups are looked at before they have any.
TEST_F(TreeBuildTest, TheButtonOfOtherDatabasesFollowsTheMaskThatOfOutlookDataNot) {
    for (const std::uint32_t mask : {0u, kExpandOtherDatabases}) {
        build_.advanced_view = true;
        build_.expand_mask = mask;
        FakeTree tree;
        tree.insertions_left = 5 + 2;  // the root, its categories and both groups
        FakeEnumerator enumerator({Database(u"Contacts Database"), Database(u"Notes")});
        EXPECT_EQ(0, BuildDifferenceTree(tree, EnglishTexts(), enumerator, build_));
        ASSERT_EQ(7u, tree.size());
        EXPECT_TRUE(tree.Find({u"Databases", u"Outlook Data"})->has_button);
        EXPECT_EQ(mask != 0, tree.Find({u"Databases", u"Other"})->has_button);
    }
}

// A control looks a parent up among its items, from the first on.
TEST_F(TreeBuildTest, ItemsThatAreNoParentsAreInsertedLast) {
    Advanced({File(u"\\a\\1"), File(u"\\a\\2"), File(u"\\b\\c\\3"), File(u"\\b\\4")});
    EXPECT_EQ((Lines{u"Differences", u"Applications", u"Databases", u"Registry", u"Files", u"a",
                     u"b", u"c", u"4 (+)", u"1 (+)", u"2 (+)", u"3 (+)"}),
              tree_.Inserted());
}

TEST_F(TreeBuildTest, ManyChildrenOfOneNode) {
    std::vector<FakeObject> objects;
    for (int i = 0; i < 2000; ++i) {
        objects.push_back(File(u"\\a\\" + std::u16string(1, static_cast<char16_t>(0x4E00 + i))));
    }
    const std::vector<FakeObject> once = objects;
    objects.insert(objects.end(), once.begin(), once.end());
    Advanced(objects);
    EXPECT_EQ(2000u, tree_.Find({u"Files", u"a"})->children.size());
    EXPECT_EQ(2000u, tree_.root()->record->added);
}

}  // namespace
}  // namespace tolvenar
