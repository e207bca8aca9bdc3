// salvage: a new pair out of a storage file whose journal is lost or damaged.
#include <filesystem>
#include <fmt/format.h>

#include "pc/command/commands.h"
#include "pc/command/json.h"
#include "pc/command/new_pair.h"
#include "pc/storage/salvage_plan.h"

namespace tolvenar::pc {
namespace {

namespace fs = std::filesystem;

Json JsonOf(const std::vector<SalvageNote>& notes) {
    Json list = Json::array();
    for (const SalvageNote& note : notes) {
        Json& item = list.emplace_back(Json::object());
        AddText(item, "path", note.path);
        item["offset"] = note.offset;
    }
    return list;
}

Json JsonOf(const SalvageSource& source, const SalvagedState& state, std::size_t number) {
    Json json;
    json["state"] = number;
    json["old"] = state.old_number == 0 ? Json() : Json(state.old_number);
    json["made"] = UtcText(state.made);
    json["objects"] = state.stored;
    json["own_block"] = state.has_own_block;
    json["in_journal"] = source.records.count() == 0 ? Json() : Json(state.old_number != 0);
    return json;
}

void PrintJson(const SalvageSource& source, const Salvage& salvage, const Options& options,
               Console& console) {
    Json json;
    json["to"] = options.file;
    json["dry_run"] = options.dry_run;
    json["journal"] = source.journal.empty() ? Json() : Json(source.journal);
    json["records"] = source.records.count();
    json["states"] = Json::array();
    for (std::size_t i = 0; i < salvage.states.size(); ++i) {
        json["states"].push_back(JsonOf(source, salvage.states[i], i + 1));
    }
    json["proved"] = salvage.proved;
    json["unproved"] = salvage.unproved;
    json["records_without_id"] = salvage.records_without_id;
    json["lost_blocks"] = salvage.lost_blocks;
    json["description_lost"] = salvage.is_head_made;
    json["gaps"] = Json::array();
    for (const Gap& gap : salvage.gaps) {
        json["gaps"].push_back({{"offset", gap.offset}, {"bytes", gap.bytes}});
    }
    json["damaged"] = JsonOf(salvage.damaged);
    json["doubtful"] = JsonOf(salvage.doubtful);
    json["deleted"] = JsonOf(salvage.deleted);
    json["storage_bytes"] = salvage.plan.storage_bytes;
    json["journal_bytes"] = salvage.plan.journal.size() * sizeof(ObjectRecord);
    console.Line(json.dump(2));
}

// What is known of a state besides its time. An ended backup has a block in the storage file and
// none of its records in the journal.
std::string OriginOf(const SalvageSource& source, const SalvagedState& state) {
    if (!state.has_own_block) {
        return ", its own block is lost";
    }
    if (source.records.count() == 0) {
        return "";
    }
    return state.old_number != 0 ? fmt::format(", was state {}", state.old_number)
                                 : ", not in the journal: a backup that was ended, or its record "
                                   "is lost";
}

void PrintNotes(const char* what, const std::vector<SalvageNote>& notes, Console& console) {
    for (const SalvageNote& note : notes) {
        console.Line(fmt::format("{}: {}, at {}", what, Printable(note.path), note.offset));
    }
}

void PrintText(const SalvageSource& source, const Salvage& salvage, Console& console) {
    for (const Gap& gap : salvage.gaps) {
        console.Line(fmt::format("lost: {} bytes at {} are no block", gap.bytes, gap.offset));
    }
    PrintNotes("left out, damaged", salvage.damaged, console);
    PrintNotes("kept, but its end is not certain", salvage.doubtful, console);
    PrintNotes("kept, though a later state had deleted it", salvage.deleted, console);
    if (salvage.lost_blocks != 0) {
        console.Line(fmt::format("lost: {} blocks that records of the journal lead to",
                                 salvage.lost_blocks));
    }
    if (salvage.is_head_made) {
        console.Line("lost: the description of the storage");
    }
    for (std::size_t i = 0; i < salvage.states.size(); ++i) {
        const SalvagedState& state = salvage.states[i];
        console.Line(fmt::format("state {}: {} objects, made {}{}", i + 1, state.stored,
                                 LocalText(state.made), OriginOf(source, state)));
    }
    console.Line(fmt::format("{} objects proved by a record of the journal, {} by nothing",
                             salvage.proved, salvage.unproved));
    if (salvage.states.size() > 1) {
        console.Line("What was deleted between the states stays in the later ones.");
    }
    if (salvage.records_without_id != 0) {
        console.Line(
            fmt::format("{} database records have no id: earlier versions of them stay "
                        "beside the later ones.",
                        salvage.records_without_id));
    }
}

// Deletions are in the journal alone, and the first state has none.
ExitCode VerdictOn(const Salvage& salvage) {
    if (salvage.has_losses()) {
        return ExitCode::kDamaged;
    }
    return salvage.states.size() > 1 ? ExitCode::kIncomplete : ExitCode::kDone;
}

}  // namespace

ExitCode RunSalvage(const Options& options, Console& console) {
    SalvageSource source(FindPair(options.storage));
    const Salvage salvage = PlanSalvage(source);
    if (!options.dry_run) {
        const fs::path stem = fs::u8path(StemOf(options.file));
        WritePair(source.reader, salvage.plan, stem, "salvage", console);
        StoredPair made(FindPair(stem.u8string() + ".sav"));
        if (!IsSalvageOf(made, salvage.plan)) {
            RemovePair(stem);
            throw Failure(ExitCode::kCannot,
                          "the new pair does not hold what was found, and was taken away again");
        }
    }
    if (options.json) {
        PrintJson(source, salvage, options, console);
    } else {
        PrintText(source, salvage, console);
    }
    return VerdictOn(salvage);
}

}  // namespace tolvenar::pc
