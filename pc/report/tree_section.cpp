// The difference tree as nested lists. End tags that HTML lets away are left away: a tree may have
// a hundred thousand items.
#include <fmt/format.h>

#include "difftree/model/node_record.h"
#include "pc/report/sections.h"
#include "pc/text/html.h"

namespace tolvenar::pc {
namespace {

const char* ClassOf(std::uint32_t change) {
    switch (change) {
        case kNodeAdded: return " class=a";
        case kNodeDeleted: return " class=d";
        case kNodeBoth: return " class=c";
        default: return "";
    }
}

// Writes the item at `place` and those below it. A path has few components: the depth is bounded.
std::size_t WriteItem(Output& out, const std::vector<TreeLine>& tree, std::size_t place) {
    const TreeLine& line = tree[place++];
    const bool is_leaf = place == tree.size() || tree[place].depth <= line.depth;
    if (is_leaf) {
        out.Write(fmt::format("<li{}>{}\n", ClassOf(line.change), HtmlName(line.caption)));
        return place;
    }
    out.Write(fmt::format("<li><details{}><summary><span{}>{}</span>{}</summary><ul>\n",
                          line.depth == 0 ? " open" : "", ClassOf(line.change),
                          HtmlName(line.caption), CountsOf(line)));
    while (place < tree.size() && tree[place].depth > line.depth) {
        place = WriteItem(out, tree, place);
    }
    out.Write("</ul></details>\n");
    return place;
}

}  // namespace

std::string CountsOf(const TreeLine& line) {
    std::string counts;
    const auto add = [&counts](const char* name, const char* mark, std::uint32_t number) {
        if (number != 0) {
            counts += fmt::format("{}<span class={}>{}{}</span>", counts.empty() ? "" : " ", name,
                                  mark, number);
        }
    };
    add("a", "+", line.added);
    add("d", "\u2212", line.deleted);
    add("c", "\u00B1", line.both);
    return counts.empty() ? counts : "<span class=count>" + counts + "</span>";
}

void WriteTree(Output& out, const std::vector<TreeLine>& tree) {
    if (tree.empty() || tree.front().added + tree.front().deleted + tree.front().both == 0) {
        out.Write("<p>Nothing differs.</p>\n");
        return;
    }
    out.Write("<ul class=tree>\n");
    WriteItem(out, tree, 0);
    out.Write("</ul>\n");
}

}  // namespace tolvenar::pc
