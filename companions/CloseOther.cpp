// Ends a running agent and waits until it is gone. Exit code 0 when no agent runs any more, 1 when
// one does not end.
#include "platform/win32.h"

#include "companions/agent.h"
#include "platform/processes.h"

namespace {

constexpr DWORD kRoundMs = 50;
constexpr int kRounds = 100;

// An agent that is just starting owns the mutex but has no window yet, so the request is repeated.
bool EndAgent(HANDLE mutex) {
    for (int round = 0; round < kRounds; ++round) {
        HWND agent = ::FindWindowW(kAgentClass, nullptr);
        if (agent != nullptr) {
            ::PostMessageW(agent, WM_CLOSE, 0, 0);
        }
        if (::WaitForSingleObject(mutex, kRoundMs) != WAIT_TIMEOUT) {
            ::ReleaseMutex(mutex);
            return true;
        }
    }
    return false;
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPWSTR, int) {
    const tolvenar::UniqueHandle mutex = tolvenar::NamedMutex(kAgentMutex);
    return mutex && EndAgent(mutex.get()) ? 0 : 1;
}
