// What the host's rundll32 calls to carry a window of another program: `CLASS|TITLE|ANSWER`.
#include <cwchar>
#include <windows.h>

#include "simulator/windows/stub.h"

extern "C" void WINAPI SimWindowStubW(HWND, HINSTANCE, wchar_t* line,
                                      int) __asm__("_ce_SimWindowStubW");
void WINAPI SimWindowStubW(HWND, HINSTANCE, wchar_t* line, int) {
    const std::wstring text = line;
    const std::size_t first = text.find(L'|');
    const std::size_t last = text.rfind(L'|');
    if (first == last) {
        return;
    }
    sim::windows::RunStub(text.substr(0, first), text.substr(first + 1, last - first - 1),
                          std::wcstol(text.c_str() + last + 1, nullptr, 10));
}
