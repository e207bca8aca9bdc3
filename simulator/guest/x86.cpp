// The host runs this code itself. How deep its stack is nobody sees.
#include "simulator/guest/guest.h"

namespace sim::guest {

Word RunX86(const Image&, Stack&, Word function, const Word (&arguments)[4]) {
    auto* const code = reinterpret_cast<Word(__cdecl*)(Word, Word, Word, Word)>(
        static_cast<std::uintptr_t>(function));
    return code(arguments[0], arguments[1], arguments[2], arguments[3]);
}

}  // namespace sim::guest
