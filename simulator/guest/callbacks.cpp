#include "simulator/guest/callbacks.h"

#include <cstring>
#include <windows.h>

#include "simulator/guest/report.h"
#include "simulator/guest/thunks.h"

namespace sim::guest {
namespace {

const Image* program;
RunCode* run_code;
DWORD stack_slot;

Word AddressOf(const void* pointer) {
    return static_cast<Word>(reinterpret_cast<std::uintptr_t>(pointer));
}

void EndThread() {
    const Stack& stack = CurrentStack();
    ReportThread(stack.high - stack.deepest, InstructionCount());
}

Word EnterProgram(Word function, const Word (*arguments)[4]) {
    return CallProgram(function, *arguments);
}

// What the host may call for a procedure of the program.
const void* HostProcedure(const void* procedure) {
    const Word function = AddressOf(procedure);
    return program->Holds(function) ? CallableByHost(function, &EnterProgram) : procedure;
}

// What the program may call for a function of the host.
Word ForProgram(const void* function) {
    return program->machine == IMAGE_FILE_MACHINE_I386 ? CallableByX86(function)
                                                       : AddressOf(function);
}

FARPROC InCoredll(const char* name) {
    return ::GetProcAddress(::GetModuleHandleW(L"coredll.dll"), name);
}
template <typename Function>
Function* Platform(const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(InCoredll(name)));
}

// The platform's calls that take a procedure, or end the program.
ATOM WINAPI RegisterWithProcedure(const WNDCLASSW* given) {
    WNDCLASSW row = *given;
    row.lpfnWndProc = reinterpret_cast<WNDPROC>(
        const_cast<void*>(HostProcedure(reinterpret_cast<const void*>(given->lpfnWndProc))));
    return Platform<ATOM WINAPI(const WNDCLASSW*)>("RegisterClassW")(&row);
}

using DialogCall = INT_PTR WINAPI(HINSTANCE, LPCDLGTEMPLATEW, HWND, const void*, LPARAM);
INT_PTR WINAPI RunDialog(HINSTANCE instance, LPCDLGTEMPLATEW layout, HWND owner,
                         const void* procedure, LPARAM parameter) {
    return Platform<DialogCall>("DialogBoxIndirectParamW")(instance, layout, owner,
                                                           HostProcedure(procedure), parameter);
}
INT_PTR WINAPI CreateDialogWindow(HINSTANCE instance, LPCDLGTEMPLATEW layout, HWND owner,
                                  const void* procedure, LPARAM parameter) {
    return Platform<DialogCall>("CreateDialogIndirectParamW")(instance, layout, owner,
                                                              HostProcedure(procedure), parameter);
}

struct ThreadStart {
    Word function;
    Word argument;
};
DWORD WINAPI RunThread(void* parameter) {
    const ThreadStart start = *static_cast<ThreadStart*>(parameter);
    delete static_cast<ThreadStart*>(parameter);
    const DWORD code = CallProgram(start.function, {start.argument, 0, 0, 0});
    EndThread();
    return code;
}
HANDLE WINAPI StartProgramThread(void* security, DWORD stack, Word function, Word argument,
                                 DWORD flags, DWORD* id) {
    using Create = HANDLE WINAPI(void*, DWORD, LPTHREAD_START_ROUTINE, void*, DWORD, DWORD*);
    return Platform<Create>("CreateThread")(security, stack, &RunThread,
                                            new ThreadStart{function, argument}, flags, id);
}

BOOL WINAPI EndProgram(HANDLE process, UINT code) {
    EndThread();
    return Platform<BOOL WINAPI(HANDLE, UINT)>("TerminateProcess")(process, code);
}

Word WINAPI FindLate(HMODULE module, const wchar_t* name) {
    const FARPROC found =
        Platform<FARPROC WINAPI(HMODULE, const wchar_t*)>("GetProcAddressW")(module, name);
    return found == nullptr ? 0 : ForProgram(reinterpret_cast<const void*>(found));
}

const struct {
    const char* name;
    const void* function;
} kOwn[] = {
    {"RegisterClassW", reinterpret_cast<const void*>(&RegisterWithProcedure)},
    {"DialogBoxIndirectParamW", reinterpret_cast<const void*>(&RunDialog)},
    {"CreateDialogIndirectParamW", reinterpret_cast<const void*>(&CreateDialogWindow)},
    {"CreateThread", reinterpret_cast<const void*>(&StartProgramThread)},
    {"TerminateProcess", reinterpret_cast<const void*>(&EndProgram)},
    {"GetProcAddressW", reinterpret_cast<const void*>(&FindLate)},
};

}  // namespace

// As much as a device gives a thread, with a page below that faults.
Stack& CurrentStack() {
    constexpr Word kPage = 0x1000;
    constexpr Word kCallersPart = 256;  // a platform call may read arguments that nobody has passed
    const DWORD error = ::GetLastError();
    auto* stack = static_cast<Stack*>(::TlsGetValue(stack_slot));
    if (stack == nullptr) {
        char* const memory = static_cast<char*>(::VirtualAlloc(
            nullptr, kPage + kDeviceStackBytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD before = 0;
        ::VirtualProtect(memory, kPage, PAGE_NOACCESS, &before);
        stack = new Stack;
        stack->low = AddressOf(memory) + kPage;
        stack->high = stack->low + kDeviceStackBytes - kCallersPart;
        stack->now = stack->deepest = stack->high;
        ::TlsSetValue(stack_slot, stack);
    }
    ::SetLastError(error);
    return *stack;
}

void BeginCalls(const Image& image, RunCode* run) {
    program = &image;
    run_code = run;
    stack_slot = ::TlsAlloc();
}

Word CallProgram(Word function, const Word (&arguments)[4]) {
    return run_code(*program, CurrentStack(), function, arguments);
}

Word FindPlatformFunction(const char* dll, const char* name) {
    for (const auto& row : kOwn) {
        if (std::strcmp(row.name, name) == 0) {
            return ForProgram(row.function);
        }
    }
    const FARPROC found = ::GetProcAddress(::LoadLibraryA(dll), name);
    if (found == nullptr) {
        Stop(name, 0, 0);
    }
    return ForProgram(reinterpret_cast<const void*>(found));
}

// Twenty words are passed whatever the function takes; whoever cleans up, the stack is as it was.
extern "C" std::uint64_t PassTwentyWords(Word function, const Word* words);
asm(R"(
    .globl _PassTwentyWords
_PassTwentyWords:
    push %ebp
    mov %esp, %ebp
    push %esi
    push %edi
    sub $80, %esp
    mov 12(%ebp), %esi
    mov %esp, %edi
    mov $20, %ecx
    cld
    rep movsl
    mov 8(%ebp), %eax
    call *%eax
    lea -8(%ebp), %esp
    pop %edi
    pop %esi
    pop %ebp
    ret
)");

std::uint64_t CallHost(Word function, const Word (&first)[4], const Word* rest) {
    Word words[20];
    std::memcpy(words, first, sizeof first);
    std::memcpy(words + 4, rest, sizeof words - sizeof first);
    return PassTwentyWords(function, words);
}

}  // namespace sim::guest
