// find: in which states an object is, and when it changed.
#include <fmt/format.h>

#include "pc/command/commands.h"
#include "pc/command/json_list.h"
#include "pc/command/object_json.h"
#include "pc/command/opened.h"
#include "pc/storage/versions.h"

namespace tolvenar::pc {
namespace {

void Print(const History& history, std::uint16_t last_state, Console& console) {
    console.Line(Printable(history.path));
    for (const Version& version : history.versions) {
        const StoredObject& object = version.object;
        const std::string bytes =
            object.has_data ? fmt::format("{} bytes", object.data_bytes) : std::string("-");
        console.Line(fmt::format("    {:<8} {:>16}  {:<19}  in states: {}", KindOf(object), bytes,
                                 LocalText(object.time), Ranges(version.states)));
    }
    const std::vector<std::uint16_t>& newest = history.versions.back().states;
    if (!newest.empty() && newest.back() < last_state) {
        console.Line(fmt::format("    deleted before the backup of state {}", newest.back() + 1));
    }
}

Json JsonOf(const History& history) {
    Json json;
    AddText(json, "path", history.path);
    json["versions"] = Json::array();
    for (const Version& version : history.versions) {
        Json told = JsonOf(version.object);
        told["states"] = version.states;
        json["versions"].push_back(std::move(told));
    }
    return json;
}

}  // namespace

ExitCode RunFind(const Options& options, Console& console) {
    const std::unique_ptr<StoredPair> pair = OpenWhole(options.storage, console);
    const Histories found = FindHistories(*pair, ObjectFilter(options.patterns));
    if (options.json) {
        Json head;
        head["storage"] = pair->files().sav;
        head["states"] = found.states;
        head["damaged_versions"] = found.damaged_versions;
        JsonList list(console.out, head, "objects");
        for (const History& history : found.objects) {
            list.Add(JsonOf(history));
        }
        list.Finish();
    } else {
        const std::uint16_t last_state = found.states.empty() ? 0 : found.states.back();
        for (const History& history : found.objects) {
            Print(history, last_state, console);
        }
    }
    if (found.damaged_versions != 0) {
        console.Tell(fmt::format("{} versions are damaged: nobody knows whose they are",
                                 found.damaged_versions));
        return ExitCode::kDamaged;
    }
    if (found.objects.empty() && ListVerdict(*pair) == ExitCode::kDone) {
        throw Failure(ExitCode::kCannot, "no state has such an object");
    }
    return ListVerdict(*pair);
}

}  // namespace tolvenar::pc
