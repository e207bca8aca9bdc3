// trim: a new pair with only the states that are kept. On the device storages only grow.
#include <filesystem>
#include <fmt/format.h>

#include "pc/command/commands.h"
#include "pc/command/json.h"
#include "pc/command/new_pair.h"
#include "pc/command/opened.h"
#include "pc/storage/kept_states.h"
#include "pc/storage/trim_plan.h"

namespace tolvenar::pc {
namespace {

namespace fs = std::filesystem;

// Nobody should find out on a device that a new pair is wrong.
void Prove(StoredPair& pair, const std::vector<State>& kept, const fs::path& stem) {
    StoredPair trimmed(FindPair(stem.u8string() + ".sav"));
    if (!IsTrimOf(trimmed, pair, kept)) {
        RemovePair(stem);
        throw Failure(ExitCode::kCannot,
                      "the new pair does not hold what the old one does, and "
                      "was taken away again");
    }
}

void PrintText(const StoredPair& pair, const PairPlan& plan, const std::vector<State>& kept,
               Console& console) {
    for (std::size_t i = 0; i < kept.size(); ++i) {
        console.Line(fmt::format("state {} is state {} now, made {}", kept[i].number, i + 1,
                                 LocalText(kept[i].made)));
    }
    console.Line(fmt::format("{} of {} states, {} of {} bytes", kept.size(), pair.states().size(),
                             plan.storage_bytes, pair.sizes().storage));
}

void PrintJson(const PairPlan& plan, const std::vector<State>& kept, const Options& options,
               Console& console) {
    Json json;
    json["to"] = options.file;
    json["dry_run"] = options.dry_run;
    json["states"] = Json::array();
    for (std::size_t i = 0; i < kept.size(); ++i) {
        json["states"].push_back({{"old", kept[i].number}, {"new", i + 1}});
    }
    json["storage_bytes"] = plan.storage_bytes;
    json["journal_bytes"] = plan.journal.size() * sizeof(ObjectRecord);
    console.Line(json.dump(2));
}

}  // namespace

ExitCode RunTrim(const Options& options, Console& console) {
    const std::unique_ptr<StoredPair> pair = OpenWhole(options.storage, console);
    if (!pair->list_is_sound()) {
        throw Failure(ExitCode::kDamaged, "a damaged storage is not trimmed: nothing was written");
    }
    const std::vector<State> kept = ChooseStates(*pair, options.keep);
    const PairPlan plan = PlanTrim(*pair, kept);
    if (!options.dry_run) {
        const fs::path stem = fs::u8path(StemOf(options.file));
        WritePair(pair->reader(), plan, stem, "trim", console);
        Prove(*pair, kept, stem);
    }
    if (options.json) {
        PrintJson(plan, kept, options, console);
    } else {
        PrintText(*pair, plan, kept, console);
    }
    return ExitCode::kDone;
}

}  // namespace tolvenar::pc
