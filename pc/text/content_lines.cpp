#include "pc/text/content_lines.h"

#include "pc/text/utf.h"

namespace tolvenar::pc {
namespace {

constexpr std::size_t kLineBytes = 75;
constexpr char16_t kReplacement = 0xFFFD;

bool IsControl(char16_t unit) {
    return (unit < u' ' && unit != u'\t') || (unit >= 0x7F && unit < 0xA0);
}

// The end of the piece that begins at `begin` and has room for `bytes`.
std::size_t EndOfPiece(std::string_view line, std::size_t begin, std::size_t bytes) {
    if (line.size() - begin <= bytes) {
        return line.size();
    }
    std::size_t end = begin + bytes;
    while (end > begin + 1 && (line[end] & 0xC0) == 0x80) {
        --end;
    }
    return end;
}

}  // namespace

void ContentLines::Add(std::string_view name, std::string_view value) {
    std::string line(name);
    line += ':';
    line += value;
    std::size_t begin = 0;
    for (;;) {
        // A line that goes on begins with a blank.
        const std::size_t end = EndOfPiece(line, begin, kLineBytes - (begin != 0));
        text_.append(line, begin, end - begin);
        text_ += "\r\n";
        if (end == line.size()) {
            return;
        }
        text_ += ' ';
        begin = end;
    }
}

std::string EscapedText(std::u16string_view text) {
    std::u16string escaped;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (unit == u'\r' || unit == u'\n') {
            const bool is_pair = unit == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
            i += is_pair;
            escaped += u"\\n";
        } else if (IsControl(unit)) {
            escaped += kReplacement;
        } else {
            if (unit == u'\\' || unit == u',' || unit == u';') {
                escaped += u'\\';
            }
            escaped += unit;
        }
    }
    return ToUtf8(escaped);
}

bool EscapesExactly(std::u16string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') {
            ++i;
        } else if (IsControl(text[i])) {
            return false;
        }
    }
    return IsWellFormed(text);
}

}  // namespace tolvenar::pc
