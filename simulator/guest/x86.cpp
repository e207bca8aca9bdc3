// The host runs this code itself, on the host's stack, where the platform's own calls stand too. So
// how deep the program is counts from where it was entered, and is seen at its platform calls: what
// a function uses that makes none is not.
#include <algorithm>

#include "simulator/guest/guest.h"

namespace sim::guest {
namespace {

Word AddressOf(const void* pointer) {
    return static_cast<Word>(reinterpret_cast<std::uintptr_t>(pointer));
}

}  // namespace

void NotePlatformCall(const Word* words) {
    Stack& stack = CurrentStack();
    if (stack.entry == 0) {
        return;  // the host itself asks for the command line before the program begins
    }
    stack.now = stack.entry_now - (stack.entry - AddressOf(words));
    stack.deepest = std::min(stack.deepest, stack.now);
}

// A platform call may call a procedure of the program, which then stands below what the program has
// used so far.
Word RunX86(const Image&, Stack& stack, Word function, const Word (&arguments)[4]) {
    const Stack outer = stack;
    stack.entry = AddressOf(__builtin_frame_address(0));
    stack.entry_now = outer.now;
    auto* const code = reinterpret_cast<Word(__cdecl*)(Word, Word, Word, Word)>(
        static_cast<std::uintptr_t>(function));
    const Word result = code(arguments[0], arguments[1], arguments[2], arguments[3]);
    const Word deepest = stack.deepest;
    stack = outer;
    stack.deepest = deepest;
    return result;
}

}  // namespace sim::guest
