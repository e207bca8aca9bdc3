// The native tests' operation log: it keeps the lines in memory.
#pragma once

#include <string>
#include <vector>

namespace tolvenar {

// The lines since the last ClearLog, as "E module: message" or "I module: message".
const std::vector<std::string>& LogLines();
void ClearLog();

}  // namespace tolvenar
