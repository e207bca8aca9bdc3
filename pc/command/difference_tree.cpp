#include "pc/command/difference_tree.h"

#include <algorithm>
#include <deque>
#include <fmt/format.h>
#include <new>

#include "difftree/model/difference_tree.h"
#include "difftree/model/list_enumerator.h"
#include "pc/storage/no_device.h"
#include "pc/text/utf.h"
#include "snapshot/text/letter_case.h"

namespace tolvenar::pc {
namespace {

// The texts of the device's program.
constexpr TreeTexts kTexts = {
    u"Differences",
    u"Applications",
    u"Documents",
    u"Databases",
    u"Registry",
    u"Files",
    u"Other",
    u"Outlook Data",
    u"Other",
    u"Unknown",
    {u"Contacts Database", u"Tasks Database", u"Appointments Database", u"\\PMAILDB"},
    {u"Contacts", u"Tasks", u"Appointments", u"Inbox"},
    u"My Documents\\",
    u"No subject"};

class NoContents final : public LiveContents {
public:
    bool ReadTextProperty(const ObjectRecord&, const InfoBlock&, std::uint32_t,
                          TextBuilder&) override {
        return false;
    }
    bool ReadValueText(const ObjectRecord&, TextBuilder&) override { return false; }
};

// The tree view: items as data.
class ItemTree final : public TreeControl {
public:
    ItemTree() = default;
    ~ItemTree() { DeleteAllItems(); }
    ItemTree(const ItemTree&) = delete;
    ItemTree& operator=(const ItemTree&) = delete;

    void DeleteAllItems() override {
        for (Item& item : items_) {
            FreeNodeRecord(item.record);
        }
        items_.clear();
    }
    TreeItem InsertItem(TreeItem parent, const ItemContent& content) override {
        items_.push_back({content.text, content.record, {}});
        if (parent != nullptr) {
            static_cast<Item*>(parent)->children.push_back(&items_.back());
        }
        return &items_.back();
    }
    void SetButton(TreeItem, bool) override {}
    void Expand(TreeItem) override {}
    void ShowRoot(TreeItem) override {}
    void FoldCase(char16_t* text, std::size_t units) override {
        std::transform(text, text + units, text, Capital);
    }

    std::vector<TreeLine> Lines() const {
        std::vector<TreeLine> lines;
        if (!items_.empty()) {
            AddLines(items_.front(), lines);
        }
        return lines;
    }

private:
    struct Item {
        std::u16string text;
        NodeRecord* record;
        std::vector<const Item*> children;
    };

    // A path has few components: the depth is bounded.
    static void AddLines(const Item& item, std::vector<TreeLine>& lines) {
        const NodeRecord& node = *item.record;
        lines.push_back({item.text, node.added, node.deleted, node.both, node.group_mark != 0,
                         node.flags & kNodeStateMask, node.depth});
        for (const Item* child : item.children) {
            AddLines(*child, lines);
        }
    }

    std::deque<Item> items_;
};

Json ItemOf(const std::vector<TreeLine>& tree, std::size_t& place) {
    const TreeLine& line = tree[place++];
    Json json;
    AddText(json, "caption", line.caption);
    json["added"] = line.added;
    json["deleted"] = line.deleted;
    json["both"] = line.both;
    json["items"] = Json::array();
    while (place < tree.size() && tree[place].depth > line.depth) {
        json["items"].push_back(ItemOf(tree, place));
    }
    return json;
}

}  // namespace

std::vector<TreeLine> BuildTree(StoredPair& pair, const ObjectList& differences, bool is_advanced) {
    const FailureTable no_failures;
    NoDevice device;
    NoContents contents;
    ListEnumerator enumerator(&differences, no_failures, &pair.reader(), device, contents);
    TreeBuild build;
    build.advanced_view = is_advanced;
    ItemTree tree;
    if (BuildDifferenceTree(tree, kTexts, enumerator, build) != 1) {
        throw std::bad_alloc();
    }
    return tree.Lines();
}

std::string LineOf(const TreeLine& line) {
    std::string text = std::string(2 * line.depth, ' ') + Printable(line.caption);
    if (!line.has_counts) {
        return text;
    }
    std::string counts;
    const auto add = [&counts](const char* mark, std::uint32_t number) {
        counts +=
            number == 0 ? "" : fmt::format("{}{}{}", counts.empty() ? "" : ", ", mark, number);
    };
    add("+", line.added);
    add("-", line.deleted);
    add("\u00B1", line.both);
    return counts.empty() ? text : text + " (" + counts + ")";
}

Json JsonOf(const std::vector<TreeLine>& tree) {
    std::size_t place = 0;
    return tree.empty() ? Json() : ItemOf(tree, place);
}

}  // namespace tolvenar::pc
