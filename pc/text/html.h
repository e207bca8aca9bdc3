// Text as HTML has it. Whatever a storage holds, it is text there and nothing else.
#pragma once

#include <string>
#include <string_view>

namespace tolvenar::pc {

// Both are safe between tags and inside quoted attributes.
std::string HtmlOf(std::string_view utf8);
// What would be invisible or reorder the line stands as its number, also a lone surrogate.
std::string HtmlOf(std::u16string_view units);
// A name, whose direction of reading does not reach its neighbours.
std::string HtmlName(std::u16string_view units);

// The same of a text that may have several lines.
std::string HtmlLines(std::u16string_view units);

}  // namespace tolvenar::pc
