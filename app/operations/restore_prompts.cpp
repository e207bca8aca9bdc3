#include "app/operations/restore_prompts.h"

#include <algorithm>

#include "app/operations/messages.h"

namespace tolvenar {
namespace {

constexpr std::size_t kQuestionUnits = 400;

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
    ::wsprintfW(
        question,
        L"The storage is damaged. Faults in its list of states: %u, in items to be "
        L"restored: %u.\nNothing will be deleted or overwritten. What is whole in the storage "
        L"and missing on the device can be written back.\nContinue?",
        Figure(damage.in_list), Figure(damage.objects));
    return Ask(question);
}

bool RestorePrompts::MayTakeOlderList(std::uint32_t states) {
    wchar_t question[kQuestionUnits];
    ::wsprintfW(question,
                L"The list of states is damaged. An older list with %u states, which was kept, is "
                L"whole.\nUse it instead? You can restore one of its states then.",
                Figure(states));
    return Ask(question);
}

bool RestorePrompts::MayGoOnWithoutRoom(std::uint64_t missing_bytes) {
    wchar_t question[kQuestionUnits];
    ::wsprintfW(question,
                L"The device lacks %u bytes for everything that is to be restored. Some items will "
                L"be missing afterwards.\nContinue?",
                Figure(missing_bytes));
    return Ask(question);
}

}  // namespace tolvenar
