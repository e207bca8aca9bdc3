// The name that a browser saves a download under.
#pragma once

#include <string>

namespace tolvenar::pc {

// The value of Content-Disposition, RFC 6266: letters that every browser takes, and the name itself
// behind them. `name` is one component, in UTF-8.
std::string DispositionOf(const std::string& name);

}  // namespace tolvenar::pc
