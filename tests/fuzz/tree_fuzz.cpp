// The difference tree of a damaged list over damaged blocks, in both views and to full depth.
#include <set>

#include "difftree/model/difference_tree.h"
#include "difftree/model/list_enumerator.h"
#include "snapshot/compare/record_info.h"
#include "tests/fuzz/fuzz_source.h"
#include "tests/native/recording_log.h"
#include "tests/support/fake_tree.h"
#include "tests/support/records.h"

using namespace tolvenar;

namespace {

const FailureTable kNoFailures;

// What was never stored has its block's name for contents.
class NamedContents final : public LiveContents {
public:
    bool ReadTextProperty(const ObjectRecord& record, const InfoBlock& block, std::uint32_t,
                          TextBuilder& text) override {
        text.Append(block.name());
        return (record.dwOID & 1) == 0;
    }
    bool ReadValueText(const ObjectRecord& record, TextBuilder& text) override {
        text.Append(u"\\Program Files\\Name\\");
        return (record.TolvOID & 4) == 0;
    }
};

struct Counts {
    std::uint32_t added = 0;
    std::uint32_t deleted = 0;
    std::uint32_t both = 0;

    void Add(const NodeRecord& node) {
        added += node.added;
        deleted += node.deleted;
        both += node.both;
        const std::uint32_t state = node.flags & kNodeStateMask;
        if ((node.flags & kNodeInformation) == 0) {
            added += state == kNodeAdded;
            deleted += state == kNodeDeleted;
            both += state == kNodeBoth;
        }
    }
};

// Walks to every leaf: each node has one item, stands below its parent once, and a parent counts
// what is below it.
void CheckItem(const FakeItem& item, std::uint32_t depth, std::set<const NodeRecord*>& seen) {
    const NodeRecord& node = *item.record;
    Require(seen.insert(&node).second && node.depth == depth && node.item == &item);
    std::set<std::u16string> captions;
    Counts counts;
    for (const FakeItem* child : item.children) {
        CheckItem(*child, depth + 1, seen);
        Require(captions.insert(child->record->caption).second);
        counts.Add(*child->record);
    }
    Require(counts.added == node.added && counts.deleted == node.deleted &&
            counts.both == node.both);
}

// Folders stand before files, at every depth.
void CheckOrder(const FakeItem& folder) {
    bool is_behind_leaf = false;
    for (const FakeItem* child : folder.children) {
        Require(!is_behind_leaf || child->children.empty());
        is_behind_leaf = child->children.empty();
        CheckOrder(*child);
    }
}

// A path has a node for every second unit at most; the rest are categories, hives and groups.
std::size_t MostNodes(std::size_t objects) { return 12 + objects * (kObjectNameUnits / 2 + 8); }

// Given out is what can be described as an object of its record's type.
void CheckObjects(const ObjectList& list, FuzzSource& info) {
    std::size_t expected = 0;
    for (const ObjectRecord& record : RecordsOf(list)) {
        InfoBlock block;
        expected += record.type != ObjectType::kState && FetchInfo(record, info, block) &&
                    block.type() == record.type;
    }
    NamedContents contents;
    ListEnumerator objects(&list, kNoFailures, &info.storage(), info, contents);
    EnumeratedObject object{};
    int answer = 0;
    while ((answer = objects.Next(object)) != DifferenceEnumerator::kEndOfList) {
        Require(answer == DifferenceEnumerator::kObject ||
                answer == DifferenceEnumerator::kNoObject);
        expected -= answer == DifferenceEnumerator::kObject;
    }
    Require(expected == 0);
}

void CheckTree(const ObjectList& list, FuzzSource& info, bool has_storage, const TreeBuild& build) {
    NamedContents contents;
    ListEnumerator objects(&list, kNoFailures, has_storage ? &info.storage() : nullptr, info,
                           contents);
    bool is_readable = true;
    for (const ObjectRecord& record : RecordsOf(list)) {
        is_readable = is_readable &&
                      (has_storage || record.propOffset == 0 || record.type == ObjectType::kState);
    }
    FakeTree tree;
    Require(BuildDifferenceTree(tree, EnglishTexts(), objects, build) == (is_readable ? 1 : 0));
    Require(tree.size() <= MostNodes(list.CountRecords()));
    Require(tree.root()->children.size() == 4);
    if (is_readable) {
        std::set<const NodeRecord*> seen;
        CheckItem(*tree.root(), 0, seen);
        Require(seen.size() == tree.size() && tree.shown_root == tree.root());
    }
    if (is_readable && build.advanced_view) {
        CheckOrder(*tree.Find({u"Files"}));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::uint32_t options = input.Byte();
    TreeBuild build;
    build.options = options & 15;
    build.root_caption = (options & 16) != 0 ? u"Since the last backup" : u"";
    build.expand_mask = input.Byte() * 0x01000001u;
    build.filter_mask = input.Half();
    const Bytes records = input.TakeBytes(sizeof(ObjectRecord) * (input.Byte() % 32));
    FuzzSource info(input.Rest());
    const auto list = LoadRecords(records.data(), records.size());
    CheckObjects(*list, info);
    for (const bool advanced_view : {false, true}) {
        build.advanced_view = advanced_view;
        CheckTree(*list, info, (options & 32) == 0, build);
        CheckTree(*ObjectList::CreateList(), info, false, build);
    }
    ClearLog();
    return 0;
}
