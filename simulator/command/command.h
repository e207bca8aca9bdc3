// The commands that make, fill, inspect, drive and break a device: what `cedev` runs, and tests
// too. The handlers stand by family in command_*.cpp; what they share is in command_row.h.
#pragma once

#include <string>
#include <vector>

#include "simulator/store/device.h"

namespace sim {

// `text` is one line: JSON when it went well, otherwise why it did not.
struct CommandResult {
    bool ok = false;
    std::string text;
};

// Runs one command on `device`. Its first word is the command's name. Never throws.
CommandResult RunCommand(Device& device, const std::vector<std::string>& words);

// The words of one line of a script: a word with blanks stands in double quotes, a backslash is
// itself, and a line that begins with # holds none. Throws std::runtime_error on an open quote.
std::vector<std::string> SplitWords(const std::string& line);

}  // namespace sim
