// The states by their times, and how the storage grew. Places are parts of a hundred of the width,
// so a drawing fits every screen without a script.
#include <algorithm>
#include <fmt/format.h>

#include "pc/report/sections.h"
#include "pc/text/html.h"
#include "pc/text/sizes.h"

namespace tolvenar::pc {
namespace {

constexpr double kMargin = 2;  // of a hundred, left and right
// What is too small to be seen is drawn that high, of a hundred.
constexpr double kLeastHeight = 1.5;
constexpr double kWidestBar = 12;

// Those whose times are known.
std::vector<const ReportState*> Dated(const ReportData& data) {
    std::vector<const ReportState*> dated;
    for (const ReportState& state : data.states) {
        if (state.state.made.ticks != 0) {
            dated.push_back(&state);
        }
    }
    return dated;
}

std::string TitleOf(const ReportState& state) {
    return HtmlOf(fmt::format("State {}, {}: {}", state.state.number, LocalText(state.state.made),
                              SizeText(state.totals.bytes)));
}

double PlaceOf(FileTime time, std::uint64_t first, std::uint64_t last) {
    const double part =
        last == first ? 0.5
                      : static_cast<double>(time.ticks - first) / static_cast<double>(last - first);
    return kMargin + part * (100 - 2 * kMargin);
}

std::string DayOf(FileTime time) { return LocalText(time).substr(0, 10); }

void WriteBar(Output& out, const ReportState& state, double place, double width, double most) {
    const auto height = [most](std::uint64_t bytes) {
        return 100 * static_cast<double>(bytes) / most;
    };
    const double all = height(state.bytes_until);
    const double brought = std::min(all, std::max(kLeastHeight, height(state.totals.bytes)));
    out.Write(fmt::format(
        "<g><title>{}</title><rect class=before x=\"{:.2f}%\" y=\"{:.2f}%\" width=\"{:.2f}%\" "
        "height=\"{:.2f}%\"/><rect class=new x=\"{:.2f}%\" y=\"{:.2f}%\" width=\"{:.2f}%\" "
        "height=\"{:.2f}%\"/></g>",
        TitleOf(state), place, 100 - all, width, all, place, 100 - all, width, brought));
}

}  // namespace

void WriteTimeLine(Output& out, const ReportData& data, const Links& links) {
    const std::vector<const ReportState*> dated = Dated(data);
    if (dated.empty()) {
        return;
    }
    const auto [first, last] = std::minmax_element(
        dated.begin(), dated.end(),
        [](const auto* a, const auto* b) { return a->state.made.ticks < b->state.made.ticks; });
    const FileTime begin = (*first)->state.made;
    const FileTime end = (*last)->state.made;
    out.Write(
        "<h2>When</h2>\n<div class=card>\n<svg class=chart height=\"40\" role=\"img\" "
        "aria-label=\"The states by their times\"><line x1=\"0\" y1=\"50%\" x2=\"100%\" "
        "y2=\"50%\"/>");
    for (const ReportState* state : dated) {
        out.Write(fmt::format(
            "<a href=\"{}{}\"><circle cx=\"{:.2f}%\" cy=\"50%\" r=\"8\"><title>{}</title></circle>"
            "</a>",
            HtmlOf(links.state), state->state.number,
            PlaceOf(state->state.made, begin.ticks, end.ticks), TitleOf(*state)));
    }
    out.Write(
        fmt::format("</svg>\n<div class=\"ends soft\"><span>{}</span><span>{}</span></div>\n"
                    "</div>\n",
                    DayOf(begin), begin.ticks == end.ticks ? "" : DayOf(end)));
}

void WriteGrowth(Output& out, const ReportData& data) {
    if (data.states.empty()) {
        return;
    }
    const double most = std::max<double>(1, static_cast<double>(data.states.back().bytes_until));
    const auto count = static_cast<double>(data.states.size());
    const double width = std::min(80 / count, kWidestBar);
    out.Write(
        "<h2>Growth</h2>\n<div class=card>\n<svg class=chart height=\"140\" role=\"img\" "
        "aria-label=\"The size of the storage with each state\">");
    for (std::size_t i = 0; i < data.states.size(); ++i) {
        const double part = count > 1 ? static_cast<double>(i) / (count - 1) : 0;
        const double place = part * (100 - width);
        WriteBar(out, data.states[i], place, width, most);
    }
    out.Write(fmt::format(
        "<line x1=\"0\" y1=\"100%\" x2=\"100%\" y2=\"100%\"/></svg>\n"
        "<div class=\"ends soft\"><span>State {}</span><span>State {}</span></div>\n"
        "<p class=soft><span class=key>brought by the state</span> &nbsp; "
        "<span class=\"key before\">there before</span> &nbsp; {} with the last</p>\n</div>\n",
        data.states.front().state.number, data.states.back().state.number,
        SizeText(data.states.back().bytes_until)));
}

}  // namespace tolvenar::pc
