#include "simulator/programs/programs.h"

#include <windows.h>

#include "simulator/files/files.h"
#include "simulator/processes/process_handles.h"
#include "simulator/processes/process_start.h"
#include "simulator/programs/imports.h"
#include "simulator/system/missing_names.h"
#include "simulator/windows/desktop.h"

namespace sim::processes {
namespace {

// A name without extension gets ".exe" unless it ends with a dot or contains a path.
std::wstring WithExtension(const std::wstring& name) {
    const bool bare = name.find_first_of(L"\\/") == std::wstring::npos;
    if (!bare || name.find(L'.') != std::wstring::npos) {
        return name;
    }
    return name + L".exe";
}

// The platform's loader starts no program that imports what the system lacks.
bool LacksImport(const Device& device, const std::wstring& host_file) {
    for (const Import& import : ReadImports(host_file)) {
        if (IsMissing(device, import.dll, import.name)) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::wstring FindProgram(Device& device, const std::wstring& name) {
    if (name.empty()) {
        return {};
    }
    const std::wstring program = WithExtension(name);
    if (program.front() == L'\\') {
        return files::HostFile(device, program).empty() ? std::wstring() : program;
    }
    for (const wchar_t* folder : {L"\\Windows\\", L"\\"}) {
        std::wstring path = folder + program;
        if (!files::HostFile(device, path).empty()) {
            return path;
        }
    }
    return {};
}

Started Start(Device& device, const std::wstring& path, const std::wstring& arguments,
              bool suspended) {
    Started started;
    const std::wstring program = FindProgram(device, path);
    if (program.empty()) {
        started.error = ERROR_FILE_NOT_FOUND;
        return started;
    }
    if (LacksImport(device, files::HostFile(device, program))) {
        started.error = ERROR_PROC_NOT_FOUND;
        return started;
    }
    // Suspended until it stands in the table: whoever sees it run also finds it there.
    started = StartHostFile({files::HostFile(device, program), program, arguments, device.folder(),
                             windows::PrepareDesktop(device)});
    if (started.error != 0) {
        return started;
    }
    Register(device, started.pid, program, arguments);
    if (!suspended) {
        ::ResumeThread(started.thread);
    }
    return started;
}

std::optional<std::uint32_t> Run(Device& device, const std::wstring& path,
                                 const std::wstring& arguments, std::uint32_t timeout_ms,
                                 std::uint32_t* error) {
    const Started started = Start(device, path, arguments);
    if (started.error != 0) {
        if (error != nullptr) {
            *error = started.error;
        }
        return std::nullopt;
    }
    const auto code = Wait(started.process, timeout_ms);
    if (!code && error != nullptr) {
        *error = ERROR_TIMEOUT;
    }
    CloseStarted(started);
    return code;
}

}  // namespace sim::processes
