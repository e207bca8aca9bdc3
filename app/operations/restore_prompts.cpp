#include "app/operations/restore_prompts.h"

#include "app/operations/messages.h"
#include "res/resource.h"

namespace tolvenar {

bool RestorePrompts::Ask(const wchar_t* question) {
    const int answer =
        ShowMessage(app_.main_dialog, question, MB_YESNO | MB_DEFBUTTON2 | MB_ICONWARNING);
    return answer == IDYES && !app_.is_ending;
}

bool RestorePrompts::MayWriteBackMissing(const DamageCount& damage) {
    wchar_t question[kMessageUnits];
    ::wsprintfW(question, ResourceText(IDS_ASK_WRITE_BACK).text(), CappedNumber(damage.in_list),
                CappedNumber(damage.objects));
    return Ask(question);
}

bool RestorePrompts::MayTakeOlderList(std::uint32_t states) {
    wchar_t question[kMessageUnits];
    ::wsprintfW(question, ResourceText(IDS_ASK_OLDER_LIST).text(), CappedNumber(states));
    return Ask(question);
}

bool RestorePrompts::MayGoOnWithoutRoom(std::uint64_t missing_bytes) {
    wchar_t question[kMessageUnits];
    ::wsprintfW(question, ResourceText(IDS_ASK_WITHOUT_ROOM).text(), CappedNumber(missing_bytes));
    return Ask(question);
}

}  // namespace tolvenar
