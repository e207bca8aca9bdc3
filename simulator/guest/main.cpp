// ce_guest: the simulator starts it in the place of a program that was built for a real device.
// CEGUEST names the program's file on the host.
#include <windows.h>

#include "simulator/guest/callbacks.h"
#include "simulator/guest/image.h"

namespace {

using namespace sim::guest;

constexpr struct {
    std::uint16_t machine;
    RunCode* run;
} kProcessors[] = {
    {IMAGE_FILE_MACHINE_ARM, &RunArm},
    {IMAGE_FILE_MACHINE_R4000, &RunMips},
    {IMAGE_FILE_MACHINE_I386, &RunX86},
};

RunCode* ProcessorOf(const Image& image) {
    for (const auto& row : kProcessors) {
        if (row.machine == image.machine) {
            return row.run;
        }
    }
    Stop("no processor for the program", 0, image.machine);
}

template <typename Function>
Function* Platform(const char* name) {
    return reinterpret_cast<Function*>(
        static_cast<std::uintptr_t>(FindPlatformFunction("coredll.dll", name)));
}

}  // namespace

int main() {
    wchar_t file[MAX_PATH] = L"";
    ::GetEnvironmentVariableW(L"CEGUEST", file, MAX_PATH);
    const Image image = LoadImage(file);
    BeginCalls(image, ProcessorOf(image));
    FillImports(image, &FindPlatformFunction);
    const auto* command_line = Platform<const wchar_t * WINAPI()>("GetCommandLineW")();
    const Word result = CallProgram(
        image.entry, {image.begin, 0,
                      static_cast<Word>(reinterpret_cast<std::uintptr_t>(command_line)), SW_SHOW});
    Stop("the entry point returned", image.entry, result);
}
