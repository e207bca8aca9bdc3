#include "app/pages/restore_notice.h"

#include "platform/resource_text.h"
#include "res/resource.h"

namespace tolvenar {

void RestoreNotice::Show(std::int32_t selected) const {
    wchar_t text[kResourceTextUnits] = L"";
    const SavedCounts& saved = app_.storage.saved;
    if (text_ != 0) {
        ::wcsncpy(text, ResourceText(app_.instance, text_).text(), kResourceTextUnits - 1);
    } else if (selected != kNoState && static_cast<std::uint32_t>(selected) != saved.state_number) {
        ::wsprintfW(text, ResourceText(app_.instance, IDS_RESTORE_EFFECT).text(), selected);
    } else if (saved.state_number != 0) {
        ::wsprintfW(text, ResourceText(app_.instance, IDS_SAVED).text(), saved.state_number,
                    saved.added, saved.changed, saved.deleted);
    }
    ::SetWindowTextW(line_, text);
}

}  // namespace tolvenar
