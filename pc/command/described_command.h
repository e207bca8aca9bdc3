// The parts of the parser that a description of the command line is made of.
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace tolvenar::pc {

// Those that --help tells of.
std::vector<const CLI::App*> CommandsOf(const CLI::App& app);
// With dashes; without them, what is given by its place alone.
std::vector<const CLI::Option*> OptionsOf(const CLI::App& command);
std::vector<const CLI::Option*> OperandsOf(const CLI::App& command);

// "--output", and "-o" where there is one.
std::vector<std::string> NamesOf(const CLI::Option& option);
bool TakesValue(const CLI::Option& option);

}  // namespace tolvenar::pc
