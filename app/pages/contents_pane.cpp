#include "app/pages/contents_pane.h"

#include <memory>
#include <new>

#include "difftree/window/object_details.h"
#include "platform/resource_text.h"
#include "platform/text.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr std::size_t kContentsUnits = 4000;

// The tree may be older than the list: a record that is not in it any more is none.
bool Holds(const ObjectList* list, const ObjectRecord* record) {
    if (list == nullptr || record == nullptr) {
        return false;
    }
    for (const ObjectList::Node& node : *list) {
        if (node.record == record) {
            return true;
        }
    }
    return false;
}

}  // namespace

void ContentsPane::ShowVersion(int control, Engine& engine, const NodeRecord* node,
                               const ObjectRecord* version) const {
    const bool is_object = node != nullptr && (node->before != nullptr || node->after != nullptr);
    if (!is_object || !Holds(engine.storage.difference.get(), version)) {
        const UINT text = is_object ? IDS_DETAILS_ABSENT : IDS_DETAILS_SELECT;
        ::SetDlgItemTextW(page_, control, ResourceText(instance_, text).text());
        return;
    }
    const std::unique_ptr<char16_t[]> buffer(new (std::nothrow) char16_t[kContentsUnits]);
    if (buffer == nullptr) {
        return;
    }
    TextBuilder text(buffer.get(), kContentsUnits);
    text.Clear();
    ObjectDetails(instance_, engine).Append(*version, text);
    ::SetDlgItemTextW(page_, control, Wide(text.text()));
}

void ContentsPane::Show(Engine& engine, const NodeRecord* node) const {
    if (!::IsWindowVisible(::GetDlgItem(page_, IDC_OLD_CONTENTS))) {
        return;
    }
    ShowVersion(IDC_OLD_CONTENTS, engine, node, node != nullptr ? node->before : nullptr);
    ShowVersion(IDC_NEW_CONTENTS, engine, node, node != nullptr ? node->after : nullptr);
}

}  // namespace tolvenar
