// A program that was built for a real device, run on the simulated one: its image stands at its own
// address, its code is interpreted (on x86: run), and each platform call goes, argument by
// argument, to the simulator's DLLs. Program and host share one address space and all layouts, so
// nothing is converted.
#pragma once

#include <cstdint>

namespace sim::guest {

using Word = std::uint32_t;

constexpr Word kDeviceStackBytes = 0x10000;
// Where a call into the program returns to; no code stands there.
constexpr Word kReturnAddress = 0xFFFF0000;

// The code of the program in memory.
struct Image {
    Word begin = 0;
    Word end = 0;
    Word entry = 0;
    std::uint16_t machine = 0;

    bool Holds(Word address) const { return address - begin < end - begin; }
};

// What a thread of the program uses of its stack.
struct Stack {
    Word low = 0;   // the page below faults
    Word high = 0;  // where the first call begins
    Word now = 0;
    Word deepest = 0;
    Word entry = 0;      // x86: where on the host's stack the code that runs was called
    Word entry_now = 0;  // x86: what was `now` then
};
// The stack of the calling thread, made at its first call.
Stack& CurrentStack();

// Runs the code at `function` with up to four arguments until it returns; its result.
using RunCode = Word(const Image& image, Stack& stack, Word function, const Word (&arguments)[4]);
RunCode RunArm, RunMips, RunX86;

// x86: what a program calls before each platform call; the arguments stand at `words`.
void NotePlatformCall(const Word* words);

// Instructions that all threads have run.
std::uint64_t InstructionCount();
void AddInstructions(std::uint64_t count);

// Ends the program and says in the device's folder what it did that a device would not bear.
[[noreturn]] void Stop(const char* what, Word address, Word value);

// A word, halfword or byte of the program's memory. Devices' processors fault on other than aligned
// accesses.
template <typename T>
T& At(Word address, Word pc) {
    if (address % sizeof(T) != 0) {
        Stop("unaligned access", pc, address);
    }
    return *reinterpret_cast<T*>(static_cast<std::uintptr_t>(address));
}

// A function of the host, with four arguments in registers and those that lie at `rest`.
std::uint64_t CallHost(Word function, const Word (&first)[4], const Word* rest);

}  // namespace sim::guest
