// What every page of HTML begins and ends with. Nothing in it is a script, and nothing comes from
// another place.
#pragma once

#include <string>
#include <string_view>

#include "pc/command/console.h"

namespace tolvenar::pc {

extern const std::string_view kPageStyle;

// `style` are tags that bring it.
void BeginPage(Output& out, const std::string& title, std::string_view style);
void EndPage(Output& out);

// The style inside of the page, and the word to the browser that the page has nothing else.
std::string InlineStyle();

}  // namespace tolvenar::pc
