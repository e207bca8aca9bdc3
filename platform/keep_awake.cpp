#include "platform/keep_awake.h"

#include "platform/win32.h"

namespace tolvenar {
namespace {

constexpr DWORD kIntervalMs = 10000;
constexpr unsigned kSmallSteps = 8;

// Two threads at once at most press once more.
DWORD last_press = 0;
unsigned small_steps = 0;

}  // namespace

void KeepAwake() {
    ::keybd_event(VK_SHIFT, 0, KEYEVENTF_SILENT, 0);
    ::keybd_event(VK_SHIFT, 0, KEYEVENTF_SILENT | KEYEVENTF_KEYUP, 0);
    last_press = ::GetTickCount();
}

void StayAwake() {
    if (::GetTickCount() - last_press >= kIntervalMs) {
        KeepAwake();
    }
}

void StayAwakeBetweenObjects() {
    if (++small_steps % kSmallSteps == 0) {
        StayAwake();
    }
}

}  // namespace tolvenar
