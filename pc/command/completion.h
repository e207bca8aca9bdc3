// What a shell offers when a word of the command line is begun: the commands, the options of a
// command, and files.
#pragma once

#include <CLI/App.hpp>
#include <string>

namespace tolvenar::pc {

std::string BashCompletion(const CLI::App& app);
std::string ZshCompletion(const CLI::App& app);
std::string FishCompletion(const CLI::App& app);

}  // namespace tolvenar::pc
