// The manual page of the program.
#pragma once

#include <CLI/App.hpp>
#include <string>

namespace tolvenar::pc {

std::string ManualPage(const CLI::App& app);

}  // namespace tolvenar::pc
