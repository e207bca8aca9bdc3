// extract: the files of a state into a folder.
#include <fmt/format.h>
#include <optional>

#include "pc/command/commands.h"
#include "pc/command/interrupt.h"
#include "pc/command/json.h"
#include "pc/command/object_json.h"
#include "pc/command/opened.h"
#include "pc/command/progress_line.h"
#include "pc/storage/folder_writer.h"
#include "pc/storage/object_data.h"
#include "pc/storage/object_filter.h"
#include "pc/storage/safe_names.h"
#include "pc/storage/state_objects.h"

namespace tolvenar::pc {
namespace {

struct Item {
    StoredObject object;
    SafePath place;
    std::string failure;  // why it was not extracted; empty when it was
    bool is_damaged = false;
};

std::string Joined(const SafePath& place) {
    std::string path;
    for (const std::string& component : place.components) {
        path += path.empty() ? component : "/" + component;
    }
    return path;
}

// The files of a state that the filter takes, and every damaged object: it may have been one.
std::vector<Item> Plan(StoredPair& pair, std::uint16_t state, const ObjectFilter& filter) {
    std::vector<Item> plan;
    SafeNames names;
    for (StoredObject& object : FilesOf(pair, state)) {
        if (object.is_damaged) {
            plan.push_back({std::move(object), {}, "its block is damaged", true});
        } else if (filter.Takes(object.name)) {
            SafePath place = names.Place(object.name, object.is_folder());
            const char* failure =
                object.is_in_rom() ? "a file of the device's ROM: no storage has its contents" : "";
            plan.push_back({std::move(object), std::move(place), failure, false});
        }
    }
    return plan;
}

std::uint64_t BytesOf(const std::vector<Item>& plan) {
    std::uint64_t bytes = 0;
    for (const Item& item : plan) {
        bytes += item.object.has_data ? item.object.data_bytes : 0;
    }
    return bytes;
}

// Does nothing but find out what would fail when `writer` is absent.
void Extract(StoredPair& pair, Item& item, FolderWriter* writer) {
    if (item.object.is_folder()) {
        item.failure = writer != nullptr ? writer->MakeFolder(item.place.components) : "";
        return;
    }
    if (!DataAreSound(pair, item.object)) {
        item.failure = "its contents are damaged";
        item.is_damaged = true;
        return;
    }
    if (writer == nullptr) {
        return;
    }
    item.failure = writer->WriteFile(
        item.place.components, item.object.time, [&](const FolderWriter::Take& take) {
            return StreamData(pair, item.object, [&take](std::string_view bytes) {
                return !IsInterrupted() && take(bytes);
            });
        });
}

void ExtractAll(StoredPair& pair, std::vector<Item>& plan, FolderWriter* writer, Console& console) {
    const InterruptWatch watch;
    ProgressLine progress(console, "extract", BytesOf(plan));
    for (Item& item : plan) {
        if (item.failure.empty()) {
            Extract(pair, item, writer);
        }
        if (IsInterrupted()) {
            throw Failure(ExitCode::kCannot, "interrupted; what is there is whole");
        }
        progress.Add(item.object.has_data ? item.object.data_bytes : 0);
    }
}

ExitCode VerdictOf(const std::vector<Item>& plan) {
    ExitCode code = ExitCode::kDone;
    for (const Item& item : plan) {
        if (!item.failure.empty()) {
            code = Graver(code, item.is_damaged ? ExitCode::kDamaged : ExitCode::kIncomplete);
        }
    }
    return code;
}

void PrintText(const std::vector<Item>& plan, const Options& options, Console& console) {
    std::size_t files = 0;
    std::size_t folders = 0;
    std::uint64_t bytes = 0;
    for (const Item& item : plan) {
        const std::string path = Printable(PathOf(item.object));
        if (!item.failure.empty()) {
            console.Line(fmt::format("not extracted: {}: {}", path, item.failure));
            continue;
        }
        (item.object.is_folder() ? folders : files) += 1;
        bytes += item.object.has_data ? item.object.data_bytes : 0;
        if (item.place.is_renamed) {
            console.Line(fmt::format("renamed: {} -> {}", path, Joined(item.place)));
        } else if (options.dry_run) {
            console.Line(fmt::format("{} -> {}", path, Joined(item.place)));
        }
    }
    console.Line(fmt::format("{} files, {} folders, {} bytes {}", files, folders, bytes,
                             options.dry_run ? "would be extracted" : "extracted"));
}

void PrintJson(const std::vector<Item>& plan, std::uint16_t state, const Options& options,
               Console& console) {
    Json json;
    json["state"] = state;
    json["folder"] = options.folder;
    json["dry_run"] = options.dry_run;
    json["extracted"] = Json::array();
    json["not_extracted"] = Json::array();
    for (const Item& item : plan) {
        Json told = JsonOf(item.object);
        if (item.failure.empty()) {
            told["to"] = Joined(item.place);
            told["renamed"] = item.place.is_renamed;
            json["extracted"].push_back(std::move(told));
        } else {
            told["reason"] = item.failure;
            json["not_extracted"].push_back(std::move(told));
        }
    }
    console.Line(json.dump(2));
}

}  // namespace

ExitCode RunExtract(const Options& options, Console& console) {
    const Opened opened = OpenAddress(options.storage, console);
    StoredPair& pair = *opened.pair;
    const std::uint16_t state = pair.FindState(opened.state);
    std::vector<Item> plan = Plan(pair, state, ObjectFilter(options.patterns));
    if (plan.empty() && !options.patterns.empty()) {
        throw Failure(ExitCode::kCannot, fmt::format("State {} has no such file", state));
    }
    std::optional<FolderWriter> writer;
    if (!options.dry_run) {
        writer.emplace(options.folder);
    }
    ExtractAll(pair, plan, writer ? &*writer : nullptr, console);
    if (options.json) {
        PrintJson(plan, state, options, console);
    } else {
        PrintText(plan, options, console);
    }
    return Graver(VerdictOf(plan), ListVerdict(pair));
}

}  // namespace tolvenar::pc
