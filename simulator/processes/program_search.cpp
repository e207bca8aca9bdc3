// Where a start looks for a program.
#include "simulator/processes/process_start.h"

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

}  // namespace

std::wstring FindProgram(Device& device, const std::wstring& name) {
    if (name.empty()) {
        return {};
    }
    const std::wstring program = WithExtension(name);
    if (program.front() == L'\\') {
        return HostFileOf(device, program).empty() ? std::wstring() : program;
    }
    for (const wchar_t* folder : {L"\\Windows\\", L"\\"}) {
        std::wstring path = folder + program;
        if (!HostFileOf(device, path).empty()) {
            return path;
        }
    }
    return {};
}

}  // namespace sim::processes
