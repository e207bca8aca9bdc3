#include "app/pages/contents_pane.h"

#include <memory>
#include <new>

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

void ContentsPane::ShowText(int control, UINT text) const {
    ::SetDlgItemTextW(page_, control, ResourceText(instance_, text).text());
}

void ContentsPane::ShowVersion(int control, ObjectDetails& details,
                               const ObjectRecord& version) const {
    const std::unique_ptr<char16_t[]> buffer(new (std::nothrow) char16_t[kContentsUnits]);
    if (buffer == nullptr) {
        return;
    }
    TextBuilder text(buffer.get(), kContentsUnits);
    text.Clear();
    details.Append(version, text);
    ::SetDlgItemTextW(page_, control, Wide(text.text()));
}

void ContentsPane::Show(Engine& engine, const NodeRecord* node) const {
    if (!::IsWindowVisible(::GetDlgItem(page_, IDC_OLD_CONTENTS))) {
        return;
    }
    if (node == nullptr || (node->before == nullptr && node->after == nullptr)) {
        ShowText(IDC_OLD_CONTENTS, IDS_DETAILS_SELECT);
        ShowText(IDC_NEW_CONTENTS, IDS_DETAILS_SELECT);
        return;
    }
    ObjectDetails details(instance_, engine);
    const struct {
        int control;
        const ObjectRecord* version;
    } sides[] = {{IDC_OLD_CONTENTS, node->before}, {IDC_NEW_CONTENTS, node->after}};
    for (const auto& side : sides) {
        if (Holds(engine.storage.difference.get(), side.version)) {
            ShowVersion(side.control, details, *side.version);
        } else {
            ShowText(side.control, IDS_DETAILS_ABSENT);
        }
    }
}

}  // namespace tolvenar
