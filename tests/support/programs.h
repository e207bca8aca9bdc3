// Programs that tests start on a device, and waiting for what they do.
#pragma once

#include <functional>
#include <string>

#include "simulator/programs/programs.h"
#include "tests/support/device_test.h"

namespace tests {

// Puts a program that was built beside the tests ("probe.exe") on the device.
void InstallProgram(sim::Device& device, const std::string& name, const std::wstring& path);

// Whether `done` comes true within twenty seconds, whatever asking takes.
bool Eventually(const std::function<bool()>& done);

// A started program; ended and let go of with this object.
class Program {
public:
    // Throws when it cannot be started.
    Program(sim::Device& device, const std::wstring& path, const std::wstring& arguments);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    std::uint32_t pid() const { return started_.pid; }
    // Its exit code; -1 when it does not end within twenty seconds.
    int ExitCode();
    bool Runs();

private:
    sim::Device& device_;
    sim::processes::Started started_;
};

// Another device beside the one of the test.
class SecondDevice {
public:
    SecondDevice();
    ~SecondDevice();
    sim::Device& sim() { return *device_; }

private:
    std::wstring folder_;
    std::unique_ptr<sim::Device> device_;
};

}  // namespace tests
