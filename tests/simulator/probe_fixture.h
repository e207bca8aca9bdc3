// A device with the probe, a program that does what its arguments say.
#pragma once

#include "tests/support/programs.h"

namespace tests {

class ProbeTest : public DeviceTest {
protected:
    ProbeTest() { InstallProgram(sim(), "probe.exe", kProbe); }
    sim::Device& sim() { return device().sim(); }
    // What it ends with.
    static std::uint32_t RunProbe(sim::Device& on, const std::wstring& arguments) {
        return sim::processes::Run(on, kProbe, arguments, kTimeoutMs).value_or(0xFFFF);
    }
    std::uint32_t RunProbe(const std::wstring& arguments) { return RunProbe(sim(), arguments); }

    static constexpr std::uint32_t kTimeoutMs = 20000;
    static constexpr wchar_t kProbe[] = L"\\Windows\\probe.exe";
};

}  // namespace tests
