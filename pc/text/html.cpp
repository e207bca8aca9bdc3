#include "pc/text/html.h"

#include <algorithm>

#include "pc/text/utf.h"

namespace tolvenar::pc {

std::string HtmlOf(std::string_view utf8) {
    std::string html;
    html.reserve(utf8.size());
    for (const char letter : utf8) {
        switch (letter) {
            case '&': html += "&amp;"; break;
            case '<': html += "&lt;"; break;
            case '>': html += "&gt;"; break;
            case '"': html += "&quot;"; break;
            case '\'': html += "&#39;"; break;
            default: html += letter; break;
        }
    }
    return html;
}

std::string HtmlOf(std::u16string_view units) { return HtmlOf(Printable(units)); }

std::string HtmlName(std::u16string_view units) { return "<bdi>" + HtmlOf(units) + "</bdi>"; }

std::string HtmlLines(std::u16string_view units) {
    std::string html;
    while (!units.empty()) {
        const std::size_t end = std::min(units.find_first_of(u"\r\n"), units.size());
        html += HtmlOf(units.substr(0, end));
        units.remove_prefix(end);
        const bool is_pair = units.substr(0, 2) == u"\r\n";
        html += units.empty() ? "" : "<br>";
        units.remove_prefix(std::min<std::size_t>(units.size(), is_pair ? 2 : 1));
    }
    return "<bdi>" + html + "</bdi>";
}

}  // namespace tolvenar::pc
