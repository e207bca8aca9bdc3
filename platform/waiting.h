// Waiting on a thread that has windows: a thread that opens or closes a window sends messages to
// the window's owner, so whoever waits for it must let sent messages through.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

// Answers what was sent to this thread's windows; posted messages stay in the queue.
void AnswerSentMessages();
// Waits `timeout_ms` at most, or until a sent message was answered. True when `handle`, which may
// be null, is signalled.
bool WaitServingSentMessages(HANDLE handle, DWORD timeout_ms);
// Waits until `handle` is signalled, `timeout_ms` at most; whether it is.
bool WaitForThread(HANDLE handle, DWORD timeout_ms);

}  // namespace tolvenar
