// The lines of vCards and calendars: folded, escaped, in UTF-8 (RFC 6350 and RFC 5545).
#pragma once

#include <string>
#include <string_view>

namespace tolvenar::pc {

class ContentLines {
public:
    // "NAME;TYPE=home:value", which must be one line, folded to 75 bytes without parting a
    // character.
    void Add(std::string_view name, std::string_view value);

    const std::string& text() const { return text_; }

private:
    std::string text_;
};

// A text as a value, or as one component of a value: "\\", "\,", "\;", and "\n" for the end of a
// line. Other control characters cannot be told and become U+FFFD, as do surrogates that stand
// alone.
std::string EscapedText(std::u16string_view text);
// True when EscapedText loses nothing of it: "\n" is read as the device's CR LF.
bool EscapesExactly(std::u16string_view text);

}  // namespace tolvenar::pc
