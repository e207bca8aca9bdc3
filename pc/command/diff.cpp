// diff: what differs between two states.
#include <fmt/format.h>

#include "pc/command/commands.h"
#include "pc/command/difference_tree.h"
#include "pc/command/json.h"
#include "pc/command/object_json.h"
#include "pc/command/object_text.h"
#include "pc/command/opened.h"
#include "pc/storage/differences.h"
#include "pc/storage/object_data.h"
#include "pc/storage/object_filter.h"
#include "pc/text/line_difference.h"

namespace tolvenar::pc {
namespace {

// What is longer is told by its size alone.
constexpr std::uint32_t kMostBytesShown = 4 * 1024 * 1024;

std::uint16_t StateOrNothing(const StoredPair& pair, const std::string& text) {
    return text == "0" ? std::uint16_t{0} : pair.FindState(text);
}

char CodeOf(const Change& change) {
    return change.is_damaged() ? '!' : !change.before ? 'A' : !change.after ? 'D' : 'C';
}

const char* WordOf(const Change& change) {
    return !change.before ? "added" : !change.after ? "deleted" : "changed";
}

// The lines of one side, none when it is not there. False when they cannot be told.
bool SideOf(StoredPair& pair, const std::optional<StoredObject>& object,
            std::vector<std::string>& lines) {
    if (!object || !object->has_data) {
        return true;
    }
    if (object->data_bytes > kMostBytesShown || !DataAreSound(pair, *object)) {
        return false;
    }
    const std::vector<std::uint8_t> data = ReadData(pair, *object);
    lines = LinesOf(*object, data);
    return object->type() != ObjectType::kFile || IsText(data);
}

std::string BytesOf(const std::optional<StoredObject>& object) {
    return object ? fmt::format("{} bytes", object->has_data ? object->data_bytes : 0) : "nothing";
}

void PrintContents(StoredPair& pair, const Change& change, Console& console) {
    std::vector<std::string> before;
    std::vector<std::string> after;
    if (!SideOf(pair, change.before, before) || !SideOf(pair, change.after, after)) {
        console.Line(fmt::format("    {} -> {}, not shown: no text, too long or damaged",
                                 BytesOf(change.before), BytesOf(change.after)));
        return;
    }
    for (const std::string& line : UnifiedDifference(before, after)) {
        console.Line("    " + line);
    }
}

struct Compared {
    std::uint16_t older;
    std::uint16_t newer;
    std::vector<Change> changes;
    std::vector<TreeLine> tree;
};

void PrintJson(const Compared& compared, Console& console) {
    Json json;
    json["older"] = compared.older;
    json["newer"] = compared.newer;
    json["objects"] = Json::array();
    for (const Change& change : compared.changes) {
        Json told;
        AddText(told, "path", PathOf(change.object()));
        told["change"] = WordOf(change);
        told["before"] = change.before ? JsonOf(*change.before) : Json();
        told["after"] = change.after ? JsonOf(*change.after) : Json();
        json["objects"].push_back(std::move(told));
    }
    json["tree"] = JsonOf(compared.tree);
    console.Line(json.dump(2));
}

void PrintText(StoredPair& pair, const Compared& compared, const Options& options,
               Console& console) {
    if (!options.flat && !options.contents) {
        for (const TreeLine& line : compared.tree) {
            console.Line(LineOf(line));
        }
        return;
    }
    for (const Change& change : compared.changes) {
        console.Line(fmt::format("{} {}", CodeOf(change), Printable(PathOf(change.object()))));
        if (options.contents && !change.is_damaged()) {
            PrintContents(pair, change, console);
        }
    }
}

}  // namespace

ExitCode RunDiff(const Options& options, Console& console) {
    const std::unique_ptr<StoredPair> pair = OpenWhole(options.storage, console);
    Compared compared{
        StateOrNothing(*pair, options.older), StateOrNothing(*pair, options.newer), {}, {}};
    const std::unique_ptr<ObjectList> list = FindDifferences(*pair, compared.older, compared.newer);
    const ObjectFilter filter(options.patterns);
    ExitCode code = ListVerdict(*pair);
    for (Change& change : ChangesOf(*pair, *list)) {
        if (change.is_damaged() || filter.Takes(PathOf(change.object()))) {
            code = change.is_damaged() ? ExitCode::kDamaged : code;
            compared.changes.push_back(std::move(change));
        }
    }
    compared.tree = BuildTree(*pair, *list, !options.simple);
    if (options.json) {
        PrintJson(compared, console);
    } else {
        PrintText(*pair, compared, options, console);
    }
    return code;
}

}  // namespace tolvenar::pc
