// A tree view that keeps its items as data, and objects given out one after the other, for the
// tests of the difference tree's model. Header only and platform-free.
#pragma once

#include <list>
#include <map>
#include <string>
#include <vector>

#include "difftree/model/difference_tree.h"

namespace tolvenar {

struct FakeItem {
    std::u16string text;
    NodeRecord* record = nullptr;
    bool has_button = false;
    bool is_bold = false;
    bool is_expanded = false;
    std::vector<FakeItem*> children;
};

class FakeTree final : public TreeControl {
public:
    ~FakeTree() { DeleteAllItems(); }

    void DeleteAllItems() override {
        for (FakeItem& item : items_) {
            FreeNodeRecord(item.record);
        }
        items_.clear();
    }
    TreeItem InsertItem(TreeItem parent, const ItemContent& content) override {
        if (insertions_left == 0) {
            return nullptr;
        }
        --insertions_left;
        items_.push_back(
            {content.text, content.record, content.has_button, content.is_bold, false, {}});
        if (parent != nullptr) {
            auto* const above = static_cast<FakeItem*>(parent);
            inserted_below_expanded = inserted_below_expanded || above->is_expanded;
            above->has_button = true;
            above->children.push_back(&items_.back());
        }
        return &items_.back();
    }
    void SetButton(TreeItem item, bool has_button) override {
        static_cast<FakeItem*>(item)->has_button = has_button;
    }
    void Expand(TreeItem item) override { static_cast<FakeItem*>(item)->is_expanded = true; }
    void ShowRoot(TreeItem root) override {
        static_cast<FakeItem*>(root)->is_expanded = true;
        shown_root = root;
    }
    // The letters that the tests use beside ASCII: Cyrillic capitals.
    void FoldCase(char16_t* text, std::size_t units) override {
        for (std::size_t i = 0; i < units; ++i) {
            if (text[i] >= u'\u0410' && text[i] <= u'\u042F') {
                text[i] = static_cast<char16_t>(text[i] + 0x20);
            }
        }
    }

    const FakeItem* root() const { return items_.empty() ? nullptr : &items_.front(); }
    std::size_t size() const { return items_.size(); }
    // The item at the end of a path of texts below the root; null when there is none.
    const FakeItem* Find(const std::vector<std::u16string>& path) const {
        const FakeItem* item = root();
        for (const std::u16string& text : path) {
            const FakeItem* found = nullptr;
            for (const FakeItem* child : item->children) {
                found = found == nullptr && child->text == text ? child : found;
            }
            if (found == nullptr) {
                return nullptr;
            }
            item = found;
        }
        return item;
    }
    // Items in order, a line each: a blank for each depth, the text, "*" for bold, and the counts
    // of marked groups, added, both and deleted.
    std::vector<std::u16string> Lines() const {
        std::vector<std::u16string> lines;
        if (root() != nullptr) {
            AddLines(*root(), 0, lines);
        }
        return lines;
    }

    // Their texts in the order in which they came.
    std::vector<std::u16string> Inserted() const {
        std::vector<std::u16string> texts;
        for (const FakeItem& item : items_) {
            texts.push_back(item.text);
        }
        return texts;
    }

    std::size_t insertions_left = static_cast<std::size_t>(-1);
    bool inserted_below_expanded = false;
    TreeItem shown_root = nullptr;

private:
    static std::u16string Number(std::uint32_t number) {
        const std::string digits = std::to_string(number);
        return {digits.begin(), digits.end()};
    }
    static void AddLines(const FakeItem& item, std::size_t depth,
                         std::vector<std::u16string>& lines) {
        std::u16string line = std::u16string(depth, u' ') + item.text + (item.is_bold ? u"*" : u"");
        const NodeRecord& node = *item.record;
        if (node.group_mark != 0) {
            line += u" +" + Number(node.added) + u" \u00B1" + Number(node.both) + u" -" +
                    Number(node.deleted);
        }
        lines.push_back(line);
        for (const FakeItem* child : item.children) {
            AddLines(*child, depth + 1, lines);
        }
    }

    std::list<FakeItem> items_;
};

// An object of a FakeEnumerator and what can be read of it.
struct FakeObject {
    ObjectType type;
    std::u16string name;
    std::uint16_t flags = JF_ADD;
    std::uint32_t dwOID = 0;
    std::uint32_t hive = 0x80000002;
    std::map<std::uint32_t, std::u16string> properties = {};
    const char16_t* value = nullptr;  // null: cannot be read
    int answer = DifferenceEnumerator::kObject;
    FailureReason reason = FailureReason::kNone;
    const ObjectRecord* record = nullptr;
};

class FakeEnumerator final : public DifferenceEnumerator {
public:
    explicit FakeEnumerator(std::vector<FakeObject> objects, int end = kEndOfList)
        : objects_(std::move(objects)), end_(end) {}

    int Next(EnumeratedObject& object) override {
        if (next_ == objects_.size()) {
            return end_;
        }
        current_ = &objects_[next_++];
        object.name[current_->name.copy(object.name, kObjectNameUnits - 1)] = 0;
        object.type = current_->type;
        object.flags = current_->flags;
        object.reason = current_->reason;
        object.record = current_->record;
        object.dwOID = current_->dwOID;
        object.hive = current_->hive;
        return current_->answer;
    }
    bool ReadTextProperty(std::uint32_t propid, TextBuilder& text) override {
        const auto found = current_->properties.find(propid);
        if (found == current_->properties.end()) {
            return false;
        }
        text.Append(found->second.c_str());
        return true;
    }
    bool ReadValueText(TextBuilder& text) override {
        text.Append(current_->value);
        return current_->value != nullptr;
    }

private:
    std::vector<FakeObject> objects_;
    std::size_t next_ = 0;
    int end_;
    const FakeObject* current_ = nullptr;
};

inline const TreeTexts& EnglishTexts() {
    static const TreeTexts texts = {
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
    return texts;
}

}  // namespace tolvenar
