// The storage that a command names, opened, and what its damage means for every command.
#pragma once

#include <memory>
#include <string>

#include "pc/command/console.h"
#include "pc/storage/stored_pair.h"
#include "pc/text/failure.h"

namespace tolvenar::pc {

struct Opened {
    std::unique_ptr<StoredPair> pair;
    std::string state;  // as the address says it
};

// Tells what of the pair is not as a backup leaves it.
Opened OpenAddress(const std::string& address, Console& console);
// The same for a command that takes no state: a Failure when one is given.
std::unique_ptr<StoredPair> OpenWhole(const std::string& address, Console& console);

// Damaged when the journal is: then nothing in it can be trusted.
ExitCode ListVerdict(const StoredPair& pair);

}  // namespace tolvenar::pc
