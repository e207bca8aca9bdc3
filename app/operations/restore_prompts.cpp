#include "app/operations/restore_prompts.h"

#include <algorithm>

#include "app/operations/messages.h"
#include "platform/resource_text.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr std::size_t kQuestionUnits = kResourceTextUnits + 24;  // with figures

unsigned Figure(std::uint64_t number) {
    return static_cast<unsigned>(std::min<std::uint64_t>(number, 0xFFFFFFFF));
}

}  // namespace

bool RestorePrompts::Ask(const wchar_t* question) {
    const int answer =
        ShowMessage(app_.main_dialog, question, MB_YESNO | MB_DEFBUTTON2 | MB_ICONWARNING);
    return answer == IDYES && !app_.is_ending;
}

bool RestorePrompts::MayWriteBackMissing(const DamageCount& damage) {
    wchar_t question[kQuestionUnits];
    ::wsprintfW(question, ResourceText(IDS_ASK_WRITE_BACK).text(), Figure(damage.in_list),
                Figure(damage.objects));
    return Ask(question);
}

bool RestorePrompts::MayTakeOlderList(std::uint32_t states) {
    wchar_t question[kQuestionUnits];
    ::wsprintfW(question, ResourceText(IDS_ASK_OLDER_LIST).text(), Figure(states));
    return Ask(question);
}

bool RestorePrompts::MayGoOnWithoutRoom(std::uint64_t missing_bytes) {
    wchar_t question[kQuestionUnits];
    ::wsprintfW(question, ResourceText(IDS_ASK_WITHOUT_ROOM).text(), Figure(missing_bytes));
    return Ask(question);
}

}  // namespace tolvenar
