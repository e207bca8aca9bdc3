// Start-up of a program on a Windows CE device: what a C run time would do, for a program that has
// none. The private heap and operator new live in platform/heap.cpp.
#include "platform/win32.h"

#include <cstddef>
#include <new>

extern "C" {
using Function = void (*)();
extern Function __CTOR_LIST__[];  // made by the linker: -1, the constructors, 0

[[noreturn, gnu::used]] void WinMainCRTStartup(HINSTANCE, HINSTANCE, LPWSTR, int);
int atexit(Function);
void __cxa_pure_virtual();
[[noreturn]] void abort();
int wmemcmp(const wchar_t*, const wchar_t*, std::size_t);
wchar_t* wmemchr(const wchar_t*, wchar_t, std::size_t);
}

namespace {
constexpr int kMaxExitFunctions = 32;
Function exit_functions[kMaxExitFunctions];
int exit_function_count;

void RunConstructors() {
    int count = 0;
    while (__CTOR_LIST__[count + 1] != nullptr) {
        ++count;
    }
    for (int i = count; i > 0; --i) {
        __CTOR_LIST__[i]();
    }
}

void RunExitFunctions() {
    while (exit_function_count > 0) {
        exit_functions[--exit_function_count]();
    }
}

// A device may refuse a process its own termination; the end of the first thread is its end too.
[[noreturn]] void EndProcess(UINT code) {
    ::TerminateProcess(::GetCurrentProcess(), code);
    for (;;) {  // not every header says that ExitThread does not return
        ::ExitThread(code);
    }
}
}  // namespace

int atexit(Function function) {
    if (exit_function_count == kMaxExitFunctions) {
        return 1;
    }
    exit_functions[exit_function_count++] = function;
    return 0;
}

void abort() { EndProcess(3); }

void __cxa_pure_virtual() { abort(); }

// std::wstring_view calls these; coredll.dll has none of them.
int wmemcmp(const wchar_t* a, const wchar_t* b, std::size_t n) {
    for (; n != 0; --n, ++a, ++b) {
        if (*a != *b) {
            return *a < *b ? -1 : 1;
        }
    }
    return 0;
}
wchar_t* wmemchr(const wchar_t* s, wchar_t c, std::size_t n) {
    for (; n != 0; --n, ++s) {
        if (*s == c) {
            return const_cast<wchar_t*>(s);
        }
    }
    return nullptr;
}

namespace std {  // what inline library code calls when it would throw
const nothrow_t nothrow{};
void __throw_out_of_range_fmt(const char*, ...) { ::abort(); }
void __throw_length_error(const char*) { ::abort(); }
void __throw_bad_alloc() { ::abort(); }
void __throw_bad_array_new_length() { ::abort(); }
void __throw_bad_function_call() { ::abort(); }
#ifdef _GLIBCXX_ASSERTIONS
void __glibcxx_assert_fail(const char*, int, const char*, const char*) noexcept { ::abort(); }
#endif
}  // namespace std

// The loader hands over the command line without the program's name. An x86 loader aligns the stack
// to four bytes, the compiler counts on sixteen.
#ifdef __i386__
__attribute__((force_align_arg_pointer))
#endif
void WinMainCRTStartup(HINSTANCE instance, HINSTANCE previous, LPWSTR command_line, int show) {
    RunConstructors();
    const int result = ::WinMain(instance, previous, command_line, show);
    RunExitFunctions();
    EndProcess(static_cast<UINT>(result));
}
