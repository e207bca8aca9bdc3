// The first page, that of differences, and those that stand in the place of one.
#include "pc/serve/pages.h"

#include <fmt/format.h>

#include "pc/report/page.h"
#include "pc/report/sections.h"
#include "pc/serve/page_frame.h"
#include "pc/storage/differences.h"
#include "pc/text/html.h"

namespace tolvenar::pc {
namespace {

const Links kLinks = {"state-", "changes-"};

void WriteChoice(Output& out, const Site& site, const char* word, const char* label,
                 std::uint16_t chosen) {
    out.Write(fmt::format("<label>{}<select name=\"{}\">\n", label, word));
    for (const ReportState& state : site.data().states) {
        const std::uint16_t number = state.state.number;
        out.Write(fmt::format("<option value=\"{}\"{}>State {}, {}</option>\n", number,
                              number == chosen ? " selected" : "", number,
                              LocalText(state.state.made)));
    }
    out.Write("</select></label>\n");
}

void WriteComparing(Output& out, const Site& site) {
    const std::vector<ReportState>& states = site.data().states;
    if (states.size() < 2) {
        return;
    }
    out.Write("<h2>Differences</h2>\n<form action=\"compare\" method=\"get\">\n");
    WriteChoice(out, site, "older", "Older", states[states.size() - 2].state.number);
    WriteChoice(out, site, "newer", "Newer", states.back().state.number);
    out.Write("<button>Compare</button>\n</form>\n");
}

void WriteVersion(Output& out, const char* label, std::uint16_t state,
                  const std::optional<StoredObject>& object) {
    if (object && !object->is_damaged && state != 0) {
        out.Write(fmt::format(" <a class=get href=\"object-{}-{}\">{}</a>", state,
                              object->record.propOffset, label));
    }
}

std::string MarkOf(const Change& change) {
    return !change.before  ? "<span class=a>+ "
           : !change.after ? "<span class=d>\u2212 "
                           : "<span class=c>\u00B1 ";
}

// Each object with its versions.
void WriteObjects(Output& out, Site& site, const ObjectList& list, std::uint16_t older,
                  std::uint16_t newer) {
    out.Write("<h2>Objects</h2>\n<ul class=tree>\n");
    for (const Change& change : ChangesOf(site.pair(), list)) {
        out.Write("<li>" + MarkOf(change) + HtmlName(PathOf(change.object())) + "</span>");
        WriteVersion(out, "before", older, change.before);
        WriteVersion(out, "after", newer, change.after);
        out.Write("\n");
    }
    out.Write("</ul>\n");
}

}  // namespace

Reply OverviewPage(Site& site) {
    PageFrame page(NameOf(site.pair()));
    Output& out = page.out();
    WriteHead(out, site.pair(), site.data());
    out.Write("<main>\n");
    WriteTimeLine(out, site.data(), kLinks);
    WriteGrowth(out, site.data());
    WriteStates(out, site.data(), kLinks);
    WriteComparing(out, site);
    WriteFailures(out, site.data());
    WriteLargest(out, site.data());
    WriteMostChanged(out, site.data(), kLinks);
    out.Write("</main>\n");
    return page.Finish();
}

Reply ChangesPage(Site& site, std::uint16_t older, std::uint16_t newer) {
    const std::string title = older == 0 ? fmt::format("State {}, the first", newer)
                                         : fmt::format("State {} against {}", newer, older);
    PageFrame page(ToUtf16(title));
    Output& out = page.out();
    page.WriteHeading(title);
    const std::unique_ptr<ObjectList> list = FindDifferences(site.pair(), older, newer);
    out.Write("<main>\n<div class=card>\n");
    WriteTree(out, BuildTree(site.pair(), *list, true));
    out.Write("</div>\n");
    WriteObjects(out, site, *list, older, newer);
    out.Write("</main>\n");
    return page.Finish();
}

Reply MissingPage(const std::vector<std::string>& missing, const std::string& address) {
    PageFrame page(u"Not everything can be given");
    page.WriteHeading("Not everything can be given");
    Output& out = page.out();
    out.Write("<main>\n<ul>\n");
    for (const std::string& line : missing) {
        out.Write("<li>" + HtmlOf(line) + "\n");
    }
    out.Write("</ul>\n<p><a href=\"" + HtmlOf(address) +
              "\">Download what is whole</a></p>\n</main>\n");
    return page.Finish();
}

Reply ErrorPage(int status, const std::string& told) {
    Reply reply;
    reply.status = status;
    reply.type = "text/plain; charset=utf-8";
    reply.body = told + "\n";
    return reply;
}

}  // namespace tolvenar::pc
