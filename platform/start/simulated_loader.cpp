// The host's loader hands a program nothing. This entry point, in programs for the simulated device
// alone, hands the program's own what a device's loader does.
#include "platform/win32.h"

extern "C" {
[[noreturn]] void WinMainCRTStartup(HINSTANCE, HINSTANCE, LPWSTR, int);
[[noreturn, gnu::used]] void SimulatedLoaderStart();
}

__attribute__((force_align_arg_pointer)) void SimulatedLoaderStart() {
    WinMainCRTStartup(::GetModuleHandleW(nullptr), nullptr, ::GetCommandLineW(), SW_SHOW);
}
