#include "pc/serve/page_frame.h"

#include "pc/report/page.h"
#include "pc/text/html.h"
#include "pc/text/utf.h"

namespace tolvenar::pc {

PageFrame::PageFrame(std::u16string_view title) {
    BeginPage(out_, Printable(title), "<link rel=\"stylesheet\" href=\"style.css\">\n");
}

void PageFrame::WriteHeading(const std::string& utf8) {
    out_.Write("<header>\n<p><a href=\"./\">All states</a></p>\n<h1><bdi>" + HtmlOf(utf8) +
               "</bdi></h1>\n</header>\n");
}

Reply PageFrame::Finish() {
    EndPage(out_);
    Reply reply;
    reply.body = std::move(out_.text);
    return reply;
}

}  // namespace tolvenar::pc
