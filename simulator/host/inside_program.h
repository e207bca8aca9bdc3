// Messages sent inside a running program, and its faults. All programs of a device see the same
// addresses; the host lets no message with an address of another program through, and goes on
// where a window's procedure faults.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim::host {

// What it puts into the program stays there until that ends.
class InsideProgram {
public:
    // The program of this window (an HWND).
    explicit InsideProgram(void* window);
    ~InsideProgram();
    InsideProgram(const InsideProgram&) = delete;
    InsideProgram& operator=(const InsideProgram&) = delete;

    // Sends a message from a thread of the program. Nothing if no answer comes within ten seconds
    // or the program ends.
    std::optional<std::uint32_t> Send(void* window, std::uint32_t message, std::uint32_t wparam,
                                      std::intptr_t lparam);
    // Puts bytes, which the next ones replace, into the program's memory; their address there.
    std::intptr_t Put(const void* bytes, std::size_t size);
    // What stands there now.
    std::string Kept(std::size_t size) const;
    // How often the program's own code has faulted since this was made.
    unsigned Faults() const;

private:
    std::optional<std::uint32_t> Call(const char* dll, const char* function,
                                      const std::vector<std::uint32_t>& arguments);

    void* process_;
    unsigned char* memory_;  // the program's: a call, a handler of faults, their number, the bytes
};

}  // namespace sim::host
