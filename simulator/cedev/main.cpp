// cedev DEVICE COMMAND …, or cedev DEVICE - with one command per line on standard input. DEVICE is
// a host folder and is made when it is not there. Prints one line of JSON for each command; ends
// with 0, or after the first command that fails with 1 and one line that says why.
#include <cstdio>
#include <iostream>
#include <windows.h>

#include "simulator/command/command.h"
#include "simulator/command/command_row.h"
#include "simulator/files/files.h"

namespace {

bool RunAndPrint(sim::Device& device, const sim::Words& words) {
    const sim::CommandResult result = sim::RunCommand(device, words);
    std::FILE* out = result.ok ? stdout : stderr;
    std::fprintf(out, "%s%s\n", result.ok ? "" : "cedev: ", result.text.c_str());
    std::fflush(out);
    return result.ok;
}

bool RunScript(sim::Device& device) {
    for (std::string line; std::getline(std::cin, line);) {
        const sim::Words words = sim::SplitWords(line);
        if (!words.empty() && !RunAndPrint(device, words)) {
            return false;
        }
    }
    return true;
}

std::wstring FullPath(const std::wstring& path) {
    wchar_t full[MAX_PATH] = L"";
    ::GetFullPathNameW(path.c_str(), MAX_PATH, full, nullptr);
    return full;
}

int Run(const sim::Words& arguments) {
    if (arguments.size() < 2) {
        std::fprintf(stderr, "usage: cedev DEVICE COMMAND ..., or cedev DEVICE -\n");
        return 1;
    }
    const std::wstring folder = FullPath(sim::HostPath(arguments[0]));
    ::CreateDirectoryW(folder.c_str(), nullptr);
    sim::Device::Attach(folder);
    sim::Device& device = sim::Device::Current();
    sim::files::MountCard(device);  // a device that is new has one too
    if (arguments[1] == "-" && arguments.size() == 2) {
        return RunScript(device) ? 0 : 1;
    }
    return RunAndPrint(device, sim::Words(arguments.begin() + 1, arguments.end())) ? 0 : 1;
}

}  // namespace

int wmain(int count, wchar_t** texts) {
    sim::Words arguments;
    for (int i = 1; i < count; ++i) {
        arguments.push_back(sim::Utf8(std::wstring(texts[i])));
    }
    try {
        return Run(arguments);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "cedev: %s\n", error.what());
        return 1;
    }
}
