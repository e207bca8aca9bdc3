// Patterns of names: "*" for any units, "?" for one. The case of letters does not count.
#pragma once

#include <string_view>

namespace tolvenar::pc {

bool MatchesWildcard(std::u16string_view pattern, std::u16string_view name);

}  // namespace tolvenar::pc
