// The simulator's own exports, for tests and tools that run inside one process with the program's
// code, and what a call ends in that the simulator does not have.
#include <cstdio>
#include <windows.h>

#include "simulator/files/mapping.h"
#include "simulator/store/device.h"
#include "simulator/system/handles.h"

// Makes coredll.dll of this process run on the device in `folder` (a host path; empty for none).
extern "C" void WINAPI SimAttachDevice(const wchar_t* folder) __asm__("_ce_SimAttachDevice");
void WINAPI SimAttachDevice(const wchar_t* folder) {
    sim::files::Mapping::UnmapAll();
    sim::handles::CloseAll();
    sim::Device::Attach(folder);
}

// How many handles of the simulator's own, views included, are open in this process.
extern "C" int WINAPI SimOpenHandles() __asm__("_ce_SimOpenHandles");
int WINAPI SimOpenHandles() { return sim::handles::OpenCount() + sim::files::Mapping::ViewCount(); }

// What this process's work on the device's state has come to: see LogStore::steps.
extern "C" unsigned long WINAPI SimSteps() __asm__("_ce_SimSteps");
unsigned long WINAPI SimSteps() {
    return static_cast<unsigned long>(sim::Device::Current().store().steps());
}

extern "C" void __cdecl ce_not_there_yet(const char* name) {
    std::fprintf(stderr, "coredll: %s is not in the simulator\n", name);
    std::fflush(stderr);
    sim::EndThisProcess(0xCE);
}
