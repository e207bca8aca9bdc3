// A second process of a test program: started with a role, it does that instead of running tests,
// says when it is ready and waits until it may go on or is killed.
#pragma once

#include <cstdint>
#include <string>

namespace sim::host {

class Child {
public:
    // Starts this program again. Throws std::runtime_error when that fails.
    Child(const std::wstring& role, const std::wstring& argument);
    // Kills it when it still runs.
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // False when it ended, or said nothing in 20 seconds.
    bool WaitReady();
    // Lets it go on and waits for its end; its exit code, or -1 when it does not end in 20 seconds.
    int Finish();
    void Kill();
    std::uint32_t pid() const { return pid_; }

private:
    std::uint32_t pid_ = 0;
    void* process_ = nullptr;
    void* ready_ = nullptr;
    void* go_ = nullptr;
};

// The child's side. The role is empty in a process that nobody started so.
std::wstring ChildRole();
std::wstring ChildArgument();
void TellReady();
void WaitForParent();
[[noreturn]] void EndChild(int code);

}  // namespace sim::host
