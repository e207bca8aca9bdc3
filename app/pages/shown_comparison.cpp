#include "app/pages/shown_comparison.h"

#include "platform/resource_text.h"
#include "res/resource.h"

namespace tolvenar {

void ShownComparison::Put(UINT format, std::int32_t first, std::int32_t second, Text& text) const {
    ::wsprintfW(text, ResourceText(instance_, format).text(), first, second);
}

void ShownComparison::PutCaption(Text& text) const {
    text[0] = 0;
    if (older_ != kNoState) {
        ::wsprintfW(text, L"Differences from State %i to State %i", older_, state_);
    }
}

void ShownComparison::PutLine(std::int32_t selected, Text& text) const {
    if (!IsMade()) {
        Put(IDS_COMPARE_HINT, 0, 0, text);
    } else if (selected != state_ && selected != kNoState) {
        Put(IDS_COMPARE_OTHER, state_, selected, text);
    } else {
        Put(older_ == kNoState ? IDS_COMPARE_OLDEST : IDS_COMPARE_EFFECTS, state_, older_, text);
    }
}

void ShownComparison::PutEffect(int button, Text& text) const {
    text[0] = 0;
    if (older_ == kNoState) {
        return;
    }
    if (button == IDC_APPLY_CHANGES) {
        Put(IDS_EFFECT_APPLY, state_, older_, text);
    } else if (button == IDC_TAKE_BACK_CHANGES) {
        Put(IDS_EFFECT_TAKE_BACK, state_, older_, text);
    }
}

}  // namespace tolvenar
