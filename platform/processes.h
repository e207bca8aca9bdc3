// Starting programs and threads, and the mutexes that programs know one another by.
#pragma once

#include "platform/unique_resource.h"

namespace tolvenar {

// Starts a program and leaves it to itself. False when it cannot be started. Without arguments it
// gets an empty command line: what comes of none at all is not the same on every system.
bool StartProgram(const wchar_t* program, const wchar_t* arguments = L"");

// Empty when the thread cannot be started.
UniqueHandle StartThread(LPTHREAD_START_ROUTINE run, void* parameter);

// The mutex of this name, not owned by the caller; the last error is ERROR_ALREADY_EXISTS when
// another process has it. Empty when the platform refuses.
UniqueHandle NamedMutex(const wchar_t* name);

}  // namespace tolvenar
