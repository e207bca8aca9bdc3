#include "simulator/windows/stylus.h"

#include <windows.h>

namespace sim::windows {
namespace {

void Send(DWORD flags) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    ::SendInput(1, &input, sizeof input);
}

}  // namespace

void TapScreen(int x, int y) {
    ::SetCursorPos(x, y);
    Send(MOUSEEVENTF_LEFTDOWN);
    Send(MOUSEEVENTF_LEFTUP);
}

}  // namespace sim::windows
