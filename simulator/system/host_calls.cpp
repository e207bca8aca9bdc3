#include "simulator/system/host_calls.h"

#include <windows.h>

namespace sim::host {

std::uint32_t TickCount() { return ::GetTickCount(); }

void Sleep(std::uint32_t milliseconds) { ::Sleep(milliseconds); }

std::uintptr_t SetTimer(void* window, std::uintptr_t id, std::uint32_t milliseconds,
                        void* procedure) {
    return ::SetTimer(static_cast<HWND>(window), id, milliseconds,
                      reinterpret_cast<TIMERPROC>(procedure));
}

void* StartThread(void* security, std::uint32_t stack_bytes, unsigned long(__stdcall* run)(void*),
                  void* parameter, std::uint32_t flags, unsigned long* id) {
    return ::CreateThread(static_cast<LPSECURITY_ATTRIBUTES>(security), stack_bytes, run, parameter,
                          flags, id);
}

void EndThread(std::uint32_t code) {
    ::ExitThread(code);
    for (;;) {
    }
}

void* LoadModule(const wchar_t* name) { return ::LoadLibraryW(name); }

void* FindModule(const wchar_t* name) { return ::GetModuleHandleW(name); }

bool UnloadModule(void* module) { return ::FreeLibrary(static_cast<HMODULE>(module)) != 0; }

void* FindFunction(void* module, const wchar_t* name) {
    char ascii[256];
    std::size_t i = 0;
    for (; name[i] != L'\0' && i + 1 < sizeof ascii; ++i) {
        ascii[i] = static_cast<char>(name[i]);
    }
    ascii[i] = '\0';
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(module), ascii));
}

std::wstring ModulePath(void* module) {
    wchar_t path[2 * MAX_PATH] = L"";
    const bool is_program = module == nullptr || module == ::GetModuleHandleW(nullptr);
    if (is_program && ::GetEnvironmentVariableW(L"CEPROGRAM", path, 2 * MAX_PATH) != 0) {
        return path;
    }
    if (::GetModuleFileNameW(static_cast<HMODULE>(module), path, MAX_PATH) == 0) {
        return {};
    }
    // A program that was not started from a device's file, and every DLL, stands in \Windows.
    const std::wstring whole = path;
    return L"\\Windows\\" + whole.substr(whole.rfind(L'\\') + 1);
}

void* CreateHeap(std::uint32_t options, std::size_t first, std::size_t most) {
    return ::HeapCreate(options, first, most);
}

bool DestroyHeap(void* heap) { return ::HeapDestroy(heap) != 0; }

void* AllocateBlock(void* heap, std::uint32_t flags, std::size_t bytes) {
    return ::HeapAlloc(heap, flags, bytes);
}

bool FreeBlock(void* heap, std::uint32_t flags, void* block) {
    return ::HeapFree(heap, flags, block) != 0;
}

void* AllocateLocal(std::uint32_t flags, std::size_t bytes) { return ::LocalAlloc(flags, bytes); }

void* FreeLocal(void* block) { return ::LocalFree(block); }

std::size_t BlockBytes(void* heap, const void* block) {
    if (block == nullptr) {
        return 0;
    }
    const SIZE_T bytes =
        heap != nullptr ? ::HeapSize(heap, 0, block) : ::LocalSize(const_cast<void*>(block));
    return bytes != static_cast<SIZE_T>(-1) ? bytes : 0;
}

int LocaleInfo(std::uint32_t locale, std::uint32_t type, wchar_t* text, int units) {
    return ::GetLocaleInfoW(locale, type, text, units);
}

bool IsInstalledLocale(std::uint32_t locale) {
    return ::IsValidLocale(locale, LCID_INSTALLED) != 0;
}

bool IsInstalledCodePage(std::uint32_t code_page) { return ::IsValidCodePage(code_page) != 0; }

}  // namespace sim::host
