#include "platform/processes.h"

namespace tolvenar {

bool StartProgram(const wchar_t* program, const wchar_t* arguments) {
    PROCESS_INFORMATION process{};
    // Windows CE only reads the arguments.
    if (!::CreateProcessW(program, const_cast<wchar_t*>(arguments), nullptr, nullptr, FALSE, 0,
                          nullptr, nullptr, nullptr, &process)) {
        return false;
    }
    const UniqueHandle thread_owner(process.hThread);
    const UniqueHandle process_owner(process.hProcess);
    return true;
}

UniqueHandle StartThread(LPTHREAD_START_ROUTINE run, void* parameter) {
    return UniqueHandle(::CreateThread(nullptr, 0, run, parameter, 0, nullptr));
}

// Success need not clear the last error, which alone tells whether the mutex was there.
UniqueHandle NamedMutex(const wchar_t* name) {
    ::SetLastError(ERROR_SUCCESS);
    return UniqueHandle(::CreateMutexW(nullptr, FALSE, name));
}

}  // namespace tolvenar
