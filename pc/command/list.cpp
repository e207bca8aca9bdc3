// ls: the objects of a state.
#include <fmt/format.h>

#include "pc/command/commands.h"
#include "pc/command/json_list.h"
#include "pc/command/object_json.h"
#include "pc/command/opened.h"
#include "pc/storage/object_filter.h"
#include "pc/storage/state_objects.h"

namespace tolvenar::pc {
namespace {

std::string LineOf(const StoredObject& object, bool is_long) {
    const std::string path = Printable(PathOf(object));
    if (!is_long) {
        return path;
    }
    const std::string bytes = object.has_data ? std::to_string(object.data_bytes) : "-";
    return fmt::format("{:<8} {:>10}  {:<19}  {}", KindOf(object), bytes, LocalText(object.time),
                       path);
}

Json HeadOf(const StoredPair& pair, std::uint16_t state) {
    Json head;
    head["storage"] = pair.files().sav;
    head["state"] = state;
    return head;
}

}  // namespace

ExitCode RunList(const Options& options, Console& console) {
    const Opened opened = OpenAddress(options.storage, console);
    StoredPair& pair = *opened.pair;
    const std::uint16_t state = pair.FindState(opened.state);
    const ObjectFilter filter(options.patterns);
    std::vector<StoredObject> objects = ObjectsOf(pair, state);
    ExitCode code = ListVerdict(pair);
    std::size_t taken = 0;

    const auto each = [&](auto show) {
        for (const StoredObject& object : objects) {
            if (object.is_damaged || filter.Takes(PathOf(object))) {
                show(object);
                taken += object.is_damaged ? 0 : 1;
                code = object.is_damaged ? ExitCode::kDamaged : code;
            }
        }
    };
    if (options.json) {
        JsonList list(console.out, HeadOf(pair, state), "objects");
        each([&list](const StoredObject& object) { list.Add(JsonOf(object)); });
        list.Finish();
    } else {
        each([&](const StoredObject& object) { console.Line(LineOf(object, options.is_long)); });
    }
    if (taken == 0 && !options.patterns.empty() && code == ExitCode::kDone) {
        throw Failure(ExitCode::kCannot, fmt::format("State {} has no such object", state));
    }
    return code;
}

}  // namespace tolvenar::pc
