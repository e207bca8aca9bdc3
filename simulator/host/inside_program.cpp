#include "simulator/host/inside_program.h"

#include <windows.h>

namespace sim::host {
namespace {

constexpr DWORD kLimitMs = 10000;
constexpr SIZE_T kMemoryBytes = 4096;
constexpr std::size_t kHandlerPlace = 128;
constexpr std::size_t kFaultsPlace = 256;
constexpr std::size_t kBytesPlace = 512;
// Where a program that was linked for the device stands.
constexpr std::uint32_t kImageBase = 0x400000;
constexpr std::uint32_t kImageBytes = 0x100000;

std::uint32_t Word(const void* address) {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(address));
}

// Machine code of the host's programs.
class Code {
public:
    Code& Bytes(std::initializer_list<int> bytes) {
        for (const int byte : bytes) {
            code_ += static_cast<char>(byte);
        }
        return *this;
    }
    Code& Add(std::uint32_t word) {
        code_.append(reinterpret_cast<const char*>(&word), sizeof word);
        return *this;
    }
    const std::string& code() const { return code_; }

private:
    std::string code_;
};

// A thread that makes one call; its exit code is the answer.
std::string CallCode(std::uint32_t function, const std::vector<std::uint32_t>& arguments) {
    Code code;
    for (auto at = arguments.rbegin(); at != arguments.rend(); ++at) {
        code.Bytes({0x68}).Add(*at);  // push
    }
    code.Bytes({0xB8}).Add(function).Bytes({0xFF, 0xD0});  // mov eax; call eax
    return code.Bytes({0xC2, 4, 0}).code();                // ret 4
}

// A handler that counts a fault in the program's image and leaves it to the others.
std::string HandlerCode(std::uint32_t counter) {
    Code code;
    code.Bytes({0x8B, 0x44, 0x24, 4, 0x8B, 0, 0x8B, 0x40, 12});  // eax = where the fault is
    code.Bytes({0x2D}).Add(kImageBase);                          // sub eax
    code.Bytes({0x3D}).Add(kImageBytes);                         // cmp eax
    code.Bytes({0x73, 6, 0xFF, 5}).Add(counter);                 // jae; inc [counter]
    return code.Bytes({0x31, 0xC0, 0xC2, 4, 0}).code();          // xor eax, eax; ret 4
}

HANDLE ProcessOf(void* window) {
    DWORD pid = 0;
    ::GetWindowThreadProcessId(static_cast<HWND>(window), &pid);
    return ::OpenProcess(PROCESS_ALL_ACCESS, FALSE, pid);
}

}  // namespace

InsideProgram::InsideProgram(void* window)
    : process_(ProcessOf(window)),
      memory_(static_cast<unsigned char*>(::VirtualAllocEx(
          process_, nullptr, kMemoryBytes, MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE))) {
    const std::string handler = HandlerCode(Word(memory_ + kFaultsPlace));
    ::WriteProcessMemory(process_, memory_ + kHandlerPlace, handler.data(), handler.size(),
                         nullptr);
    Call("kernel32.dll", "AddVectoredExceptionHandler", {1, Word(memory_ + kHandlerPlace)});
}

InsideProgram::~InsideProgram() { ::CloseHandle(process_); }

std::optional<std::uint32_t> InsideProgram::Send(void* window, std::uint32_t message,
                                                 std::uint32_t wparam, std::intptr_t lparam) {
    return Call("user32.dll", "SendMessageW",
                {Word(window), message, wparam, static_cast<std::uint32_t>(lparam)});
}

std::intptr_t InsideProgram::Put(const void* bytes, std::size_t size) {
    ::WriteProcessMemory(process_, memory_ + kBytesPlace, bytes, size, nullptr);
    return reinterpret_cast<std::intptr_t>(memory_ + kBytesPlace);
}

std::string InsideProgram::Kept(std::size_t size) const {
    std::string bytes(size, '\0');
    ::ReadProcessMemory(process_, memory_ + kBytesPlace, &bytes[0], size, nullptr);
    return bytes;
}

unsigned InsideProgram::Faults() const {
    unsigned faults = 0;
    ::ReadProcessMemory(process_, memory_ + kFaultsPlace, &faults, sizeof faults, nullptr);
    return faults;
}

// The host's DLLs stand at the same addresses in all programs.
std::optional<std::uint32_t> InsideProgram::Call(const char* dll, const char* function,
                                                 const std::vector<std::uint32_t>& arguments) {
    const FARPROC address = ::GetProcAddress(::LoadLibraryA(dll), function);
    const std::string code = CallCode(Word(reinterpret_cast<const void*>(address)), arguments);
    ::WriteProcessMemory(process_, memory_, code.data(), code.size(), nullptr);
    const HANDLE thread = ::CreateRemoteThread(process_, nullptr, 0,
                                               reinterpret_cast<LPTHREAD_START_ROUTINE>(memory_),
                                               nullptr, 0, nullptr);
    DWORD answer = 0;
    const bool answered = ::WaitForSingleObject(thread, kLimitMs) == WAIT_OBJECT_0 &&
                          ::GetExitCodeThread(thread, &answer) &&
                          ::WaitForSingleObject(process_, 0) == WAIT_TIMEOUT;
    ::CloseHandle(thread);
    return answered ? std::optional<std::uint32_t>(answer) : std::nullopt;
}

}  // namespace sim::host
