// What differs between two texts, line by line, in the form that patches have.
#pragma once

#include <string>
#include <vector>

namespace tolvenar::pc {

// The lines with "-" for what only `older` has, "+" for what only `newer` has and " " for `context`
// lines around them, each hunk behind its "@@" line. Empty for equal texts.
std::vector<std::string> UnifiedDifference(const std::vector<std::string>& older,
                                           const std::vector<std::string>& newer,
                                           std::size_t context = 3);

}  // namespace tolvenar::pc
