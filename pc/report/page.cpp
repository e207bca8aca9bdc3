#include "pc/report/page.h"

#include "pc/text/html.h"

namespace tolvenar::pc {

void BeginPage(Output& out, const std::string& title, std::string_view style) {
    out.Write(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<meta name=\"color-scheme\" content=\"light dark\">\n"
        "<meta name=\"referrer\" content=\"no-referrer\">\n");
    out.Write(style);
    out.Write("<title>" + HtmlOf(title) + "</title>\n</head>\n<body>\n");
}

void EndPage(Output& out) { out.Write("</body>\n</html>\n"); }

std::string InlineStyle() {
    return "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
           "style-src 'unsafe-inline'; base-uri 'none'; form-action 'none'\">\n<style>" +
           std::string(kPageStyle) + "</style>\n";
}

}  // namespace tolvenar::pc
