// The line of the log that a start begins with.
#pragma once

namespace tolvenar {

// Whoever reads a log that was sent in learns from it which program ran on which system.
void LogStart(const char16_t* build);

}  // namespace tolvenar
