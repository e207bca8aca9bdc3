#include "platform/waiting.h"

namespace tolvenar {

void AnswerSentMessages() {
    MSG message;
    ::PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
}

bool WaitServingSentMessages(HANDLE handle, DWORD timeout_ms) {
    const DWORD count = handle != nullptr ? 1 : 0;
    const DWORD woken =
        ::MsgWaitForMultipleObjectsEx(count, &handle, timeout_ms, QS_SENDMESSAGE, 0);
    AnswerSentMessages();
    return count == 1 && woken == WAIT_OBJECT_0;
}

bool WaitForThread(HANDLE handle, DWORD timeout_ms) {
    const DWORD start = ::GetTickCount();
    for (DWORD passed = 0; passed < timeout_ms; passed = ::GetTickCount() - start) {
        if (WaitServingSentMessages(handle, timeout_ms - passed)) {
            return true;
        }
    }
    return false;
}

}  // namespace tolvenar
