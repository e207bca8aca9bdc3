// cat: what an object holds. A file as its bytes; values and records as text for people, or as the
// bytes that are stored.
#include <algorithm>
#include <fmt/format.h>

#include "pc/command/commands.h"
#include "pc/command/json.h"
#include "pc/command/object_json.h"
#include "pc/command/object_text.h"
#include "pc/command/opened.h"
#include "pc/storage/object_data.h"
#include "pc/storage/object_filter.h"
#include "pc/storage/state_objects.h"
#include "pc/text/hex.h"
#include "snapshot/text/letter_case.h"

namespace tolvenar::pc {
namespace {

StoredObject FindObject(StoredPair& pair, std::uint16_t state, const std::string& text) {
    const std::u16string path = ParsePath(text);
    for (StoredObject& object : ObjectsOf(pair, state)) {
        if (EqualIgnoringCase(PathOf(object), path)) {
            return std::move(object);
        }
    }
    throw Failure(ExitCode::kCannot, fmt::format("State {} has no \"{}\"", state, text));
}

// Why there is nothing to show; null when there is something.
const char* NothingIn(const StoredObject& object) {
    if (object.is_in_rom()) {
        return "a file of the device's ROM: no storage has its contents";
    }
    switch (object.type()) {
        case ObjectType::kRegistryValue:
        case ObjectType::kDatabaseRecord: return nullptr;
        case ObjectType::kFile:
            return object.is_folder() ? "a folder: \"tolvenar ls\" tells what is in it" : nullptr;
        default: return "holds other objects alone: \"tolvenar ls\" tells which";
    }
}

}  // namespace

ExitCode RunCat(const Options& options, Console& console) {
    const Opened opened = OpenAddress(options.storage, console);
    StoredPair& pair = *opened.pair;
    const StoredObject object = FindObject(pair, pair.FindState(opened.state), options.object);
    const std::string path = Printable(PathOf(object));
    if (const char* reason = NothingIn(object)) {
        throw Failure(object.is_in_rom() ? ExitCode::kIncomplete : ExitCode::kCannot,
                      path + ": " + reason);
    }
    if (!DataAreSound(pair, object)) {
        throw Failure(ExitCode::kDamaged, path + ": its contents are damaged, and not shown");
    }
    if (options.json) {
        Json json = JsonOf(object);
        const std::vector<std::uint8_t> data = ReadData(pair, object);
        json["data"] = HexOf({reinterpret_cast<const char*>(data.data()), data.size()});
        console.Line(json.dump());
    } else if (options.raw || object.type() == ObjectType::kFile) {
        const bool is_whole = StreamData(pair, object, [&console](std::string_view bytes) {
            console.out.Write(bytes);
            return !console.out.failed();
        });
        if (!is_whole) {
            throw Failure(ExitCode::kCannot, path + ": cannot be read or written to its end");
        }
    } else {
        for (const std::string& line : LinesOf(object, ReadData(pair, object))) {
            console.Line(line);
        }
    }
    return ListVerdict(pair);
}

}  // namespace tolvenar::pc
