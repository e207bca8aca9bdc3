// What a state holds, as a tree, and one object of it.
#include <algorithm>
#include <fmt/format.h>
#include <map>

#include "pc/command/object_text.h"
#include "pc/serve/page_frame.h"
#include "pc/serve/pages.h"
#include "pc/storage/object_data.h"
#include "pc/text/html.h"
#include "pc/text/sizes.h"
#include "pc/text/utf.h"
#include "snapshot/text/letter_case.h"

namespace tolvenar::pc {
namespace {

// What is longer is only saved.
constexpr std::uint32_t kMostBytesShown = 256 * 1024;

struct Node {
    std::u16string caption;
    const StoredObject* object = nullptr;
    std::map<std::u16string, Node> below;  // what is one in the device's eyes is one node
};

Node& Below(Node& node, std::u16string_view caption, const std::u16string& mark) {
    std::u16string key = mark + std::u16string(caption);
    std::transform(key.begin(), key.end(), key.begin(), Capital);
    Node& child = node.below[key];
    child.caption = child.caption.empty() ? caption : child.caption;
    return child;
}

Node& Split(Node& root, std::u16string_view path) {
    Node* node = &root;
    for (std::size_t begin = 0; begin < path.size();) {
        const std::size_t end = std::min(path.find(u'\\', begin), path.size());
        if (end != begin) {
            node = &Below(*node, path.substr(begin, end - begin), u"");
        }
        begin = end + 1;
    }
    return *node;
}

// A mark keeps a value from the key of its name. The number of records is their order.
Node& PlaceOf(Node& root, const StoredObject& object) {
    switch (object.type()) {
        case ObjectType::kFile: return Split(Below(root, u"Files", u"1"), object.name);
        case ObjectType::kRegistryKey:
        case ObjectType::kRegistryValue: {
            Node& hive = Below(Below(root, u"Registry", u"2"), HiveName(object.hive()), u"");
            Node& key = Split(hive, object.name);
            const bool is_key = object.type() == ObjectType::kRegistryKey;
            return is_key ? key
                          : Below(key, object.value_name.empty() ? u"(Default)" : object.value_name,
                                  u"\\");
        }
        default: break;
    }
    Node& database = Below(Below(root, u"Databases", u"3"), object.name, u"");
    if (object.type() == ObjectType::kDatabase) {
        return database;
    }
    const std::u16string id = ToUtf16(std::to_string(object.record.dwOID));
    return Below(database, id, std::u16string(16 - std::min<std::size_t>(id.size(), 16), u'0'));
}

std::string Get(const char* word, std::uint16_t state, const StoredObject& object, const char* form,
                const char* label) {
    return fmt::format(" <a class=get href=\"{}-{}-{}{}\">{}</a>", word, state,
                       object.record.propOffset, form, label);
}

std::string DownloadsOf(std::uint16_t state, const StoredObject* object) {
    if (object == nullptr) {
        return {};
    }
    switch (object->type()) {
        case ObjectType::kFile:
            return object->is_folder() || object->is_in_rom()
                       ? ""
                       : Get("file", state, *object, "", "save");
        case ObjectType::kRegistryKey: return Get("key", state, *object, ".reg", ".reg");
        case ObjectType::kDatabase:
            return Get("database", state, *object, ".csv", "CSV") +
                   Get("database", state, *object, ".json", "JSON");
        default: return {};
    }
}

std::string CaptionOf(const Node& node, std::uint16_t state) {
    const std::string name = HtmlName(node.caption);
    if (node.object == nullptr || node.object->is_folder() ||
        node.object->type() == ObjectType::kRegistryKey ||
        node.object->type() == ObjectType::kDatabase) {
        return name;
    }
    return fmt::format("<a href=\"object-{}-{}\">{}</a> <small>{}</small>", state,
                       node.object->record.propOffset, name,
                       node.object->is_in_rom() ? "in the ROM" : SizeText(node.object->data_bytes));
}

// A path has few components: the depth is bounded.
void WriteNode(Output& out, const Node& node, std::uint16_t state) {
    const std::string downloads = DownloadsOf(state, node.object);
    if (node.below.empty()) {
        out.Write("<li>" + CaptionOf(node, state) + downloads + "\n");
        return;
    }
    out.Write("<li><details><summary>" + HtmlName(node.caption) + downloads + "</summary><ul>\n");
    for (const auto& [key, child] : node.below) {
        WriteNode(out, child, state);
    }
    out.Write("</ul></details>\n");
}

void WriteDamaged(Output& out, const std::vector<const StoredObject*>& damaged) {
    if (damaged.empty()) {
        return;
    }
    out.Write("<h2>Damaged</h2>\n<ul>\n");
    for (const StoredObject* object : damaged) {
        out.Write("<li class=d>" + HtmlName(PathOf(*object)) + "\n");
    }
    out.Write("</ul>\n");
}

const State& StateOf(const Site& site, std::uint16_t number) {
    const auto& states = site.data().states;
    return std::find_if(states.begin(), states.end(),
                        [number](const auto& state) { return state.state.number == number; })
        ->state;
}

void WriteContents(Output& out, Site& site, const StoredObject& object) {
    if (object.has_data && !DataAreSound(site.pair(), object)) {
        out.Write("<p class=\"verdict bad\">Its contents are damaged.</p>\n");
        return;
    }
    if (!object.has_data || object.data_bytes > kMostBytesShown) {
        return;
    }
    const std::vector<std::uint8_t> data = ReadData(site.pair(), object);
    const std::vector<std::string> lines = LinesOf(object, data);
    if (lines.empty()) {
        return;
    }
    out.Write("<pre>");
    for (const std::string& line : lines) {
        out.Write(HtmlOf(line) + "\n");
    }
    out.Write("</pre>\n");
}

void WriteFact(Output& out, const char* name, const std::string& told) {
    out.Write(fmt::format("<div><dt>{}</dt><dd>{}</dd></div>\n", name, told));
}

}  // namespace

Reply StatePage(Site& site, std::uint16_t state) {
    const State& told = StateOf(site, state);
    const std::string title = fmt::format("State {}", state);
    PageFrame page(ToUtf16(title));
    Output& out = page.out();
    page.WriteHeading(title);
    out.Write(fmt::format(
        "<p class=soft>{} \u00B7 {}</p>\n<p><a href=\"changes-{}\">What it changed</a> \u00B7 "
        "<a href=\"registry-{}.reg\">its registry as .reg</a> \u00B7 "
        "<a href=\"databases-{}.json\">its databases as JSON</a></p>\n",
        LocalText(told.made), HtmlLines(told.description), state, state, state));
    Node root;
    std::vector<const StoredObject*> damaged;
    for (const StoredObject& object : site.Objects(state)) {
        if (object.is_damaged) {
            damaged.push_back(&object);
        } else {
            PlaceOf(root, object).object = &object;
        }
    }
    WriteDamaged(out, damaged);
    out.Write("<main class=card>\n<ul class=tree>\n");
    for (const auto& [key, node] : root.below) {
        WriteNode(out, node, state);
    }
    out.Write("</ul>\n</main>\n");
    return page.Finish();
}

Reply ObjectPage(Site& site, std::uint16_t state, const StoredObject& object) {
    const std::u16string path = PathOf(object);
    PageFrame page(path);
    Output& out = page.out();
    page.WriteHeading(Printable(path));
    if (object.is_damaged) {
        out.Write("<p class=\"verdict bad\">Its block is damaged.</p>\n");
        return page.Finish();
    }
    out.Write(fmt::format("<p><a href=\"state-{}\">State {}</a>{}</p>\n<dl class=tiles>\n", state,
                          state, DownloadsOf(state, &object)));
    WriteFact(out, "Kind", KindOf(object));
    WriteFact(out, "Size", SizeText(object.has_data ? object.data_bytes : 0));
    if (object.time.ticks != 0) {
        WriteFact(out, "Time", LocalText(object.time));
    }
    WriteFact(out, "Stored by state", std::to_string(object.record.state_number));
    out.Write("</dl>\n<main>\n");
    WriteContents(out, site, object);
    out.Write("</main>\n");
    return page.Finish();
}

}  // namespace tolvenar::pc
