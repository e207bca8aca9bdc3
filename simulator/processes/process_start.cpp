#include "simulator/processes/process_start.h"

#include <cwchar>
#include <windows.h>

namespace sim::processes {
namespace {

bool SetsOneOf(const wchar_t* entry, std::initializer_list<const wchar_t*> names) {
    for (const wchar_t* name : names) {
        const std::size_t length = std::wcslen(name);
        if (::_wcsnicmp(entry, name, length) == 0 && entry[length] == L'=') {
            return true;
        }
    }
    return false;
}

std::wstring OwnPath() {
    wchar_t path[32768] = L"";
    ::GetEnvironmentVariableW(L"PATH", path, 32768);
    return path;
}

// This process's environment with the device, the program and the way to the simulator's DLLs in
// it.
std::wstring EnvironmentFor(const StartRequest& request) {
    std::wstring block;
    wchar_t* own = ::GetEnvironmentStringsW();
    for (const wchar_t* entry = own; *entry != L'\0'; entry += std::wcslen(entry) + 1) {
        if (SetsOneOf(entry, {L"CEDEVICE", L"CEPROGRAM", L"CEGUEST", L"PATH"})) {
            continue;
        }
        block.append(entry).push_back(L'\0');
    }
    ::FreeEnvironmentStringsW(own);
    block.append(L"CEDEVICE=").append(request.device_folder).push_back(L'\0');
    block.append(L"CEPROGRAM=").append(request.path).push_back(L'\0');
    block.append(L"CEGUEST=").append(request.host_file).push_back(L'\0');
    block.append(L"PATH=")
        .append(SimulatorFolder())
        .append(L";")
        .append(OwnPath())
        .push_back(L'\0');
    block.push_back(L'\0');
    return block;
}

// Made for Windows CE itself: the host's loader takes no such program.
bool IsDeviceProgram(const std::wstring& file) {
    HANDLE handle = ::CreateFileW(file.c_str(), GENERIC_READ,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return false;
    }
    const auto read = [handle](LONG offset, void* part, DWORD bytes) {
        DWORD taken = 0;
        return ::SetFilePointer(handle, offset, nullptr, FILE_BEGIN) ==
                   static_cast<DWORD>(offset) &&
               ::ReadFile(handle, part, bytes, &taken, nullptr) && taken == bytes;
    };
    IMAGE_DOS_HEADER start{};
    IMAGE_NT_HEADERS32 head{};
    const bool is_read = read(0, &start, sizeof start) && read(start.e_lfanew, &head, sizeof head);
    ::CloseHandle(handle);
    return is_read && head.Signature == IMAGE_NT_SIGNATURE &&
           head.OptionalHeader.Subsystem == IMAGE_SUBSYSTEM_WINDOWS_CE_GUI;
}

std::wstring FolderOf(HMODULE module) {
    wchar_t path[MAX_PATH] = L"";
    ::GetModuleFileNameW(module, path, MAX_PATH);
    std::wstring folder = path;
    folder.resize(folder.find_last_of(L'\\') == std::wstring::npos ? 0
                                                                   : folder.find_last_of(L'\\'));
    return folder;
}

}  // namespace

// Tests and tools link this code and stand in the same folder as the DLLs; a program on a device
// stands elsewhere, but there this code is part of coredll.dll.
std::wstring SimulatorFolder() {
    HMODULE own = nullptr;
    ::GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<LPCWSTR>(&SimulatorFolder), &own);
    return FolderOf(own);
}

Started StartHostFile(const StartRequest& request) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.lpDesktop = const_cast<wchar_t*>(request.desktop.c_str());
    std::wstring environment = EnvironmentFor(request);
    // One quoted word and one blank before the arguments, so that these can be taken back verbatim.
    std::wstring command_line = L"\"" + request.path + L"\" " + request.arguments;
    const std::wstring host_program = IsDeviceProgram(request.host_file)
                                          ? SimulatorFolder() + L"\\ce_guest.exe"
                                          : request.host_file;
    PROCESS_INFORMATION info{};
    Started started;
    if (!::CreateProcessW(host_program.c_str(), &command_line[0], nullptr, nullptr, FALSE,
                          CREATE_SUSPENDED | CREATE_UNICODE_ENVIRONMENT, &environment[0], nullptr,
                          &startup, &info)) {
        started.error = ::GetLastError();
        return started;
    }
    started.pid = info.dwProcessId;
    started.thread_id = info.dwThreadId;
    started.process = info.hProcess;
    started.thread = info.hThread;
    return started;
}

const wchar_t* CommandLine() {
    const wchar_t* at = ::GetCommandLineW();
    const wchar_t end = *at == L'"' ? L'"' : L' ';
    if (end == L'"') {
        ++at;
    }
    while (*at != L'\0' && *at != end) {
        ++at;
    }
    if (end == L'"' && *at != L'\0') {
        ++at;
    }
    return *at == L' ' ? at + 1 : at;
}

}  // namespace sim::processes
