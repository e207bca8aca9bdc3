// verify: the check of the device's program, and beyond it every content.
#include <fmt/format.h>
#include <map>

#include "pc/command/commands.h"
#include "pc/command/json.h"
#include "pc/command/object_json.h"
#include "pc/command/opened.h"
#include "pc/command/progress_line.h"
#include "pc/storage/object_data.h"
#include "pc/storage/state_objects.h"
#include "pc/storage/versions.h"
#include "snapshot/text/letter_case.h"

namespace tolvenar::pc {
namespace {

struct Judged {
    StoredObject object;
    std::vector<std::uint16_t> states;  // that hold it
    const char* damage;                 // null for none, "block" or "contents"
};

struct StateCount {
    std::size_t objects = 0;
    std::size_t damaged = 0;
};

struct Judgement {
    std::vector<Judged> objects;  // in the order of the storage file
    std::map<std::uint16_t, StateCount> states;
    std::size_t damaged = 0;
    std::size_t damaged_states = 0;  // whose own blocks are
};

const char* DamageOf(StoredPair& pair, const StoredObject& object) {
    return object.is_damaged ? "block" : DataAreSound(pair, object) ? nullptr : "contents";
}

Judgement Judge(StoredPair& pair, Console& console) {
    Judgement judgement;
    Holders holders = FindHolders(pair, StatesOf(pair));
    ProgressLine progress(console, "verify", pair.sizes().storage);
    for (StoredObject& object : DescribeAll(pair, AdditionsOf(pair.journal()))) {
        const char* const damage = DamageOf(pair, object);
        progress.Add(kInfoHeadBytes + 2 * object.name.size() + object.data_bytes);
        std::vector<std::uint16_t>& states = holders[object.record.propOffset];
        for (const std::uint16_t state : states) {
            ++judgement.states[state].objects;
            judgement.states[state].damaged += damage != nullptr ? 1 : 0;
        }
        judgement.damaged += damage != nullptr ? 1 : 0;
        judgement.objects.push_back({std::move(object), std::move(states), damage});
    }
    for (const State& state : pair.states()) {
        judgement.damaged_states += state.is_damaged ? 1 : 0;
    }
    return judgement;
}

// The states that hold a whole version of a damaged object; of one without a name nobody knows.
std::vector<std::uint16_t> StatesWithWhole(const Judgement& judgement, const Judged& damaged) {
    std::vector<std::uint16_t> states;
    const std::u16string path = PathOf(damaged.object);
    for (const Judged& other : judgement.objects) {
        if (other.damage == nullptr && other.object.type() == damaged.object.type() &&
            EqualIgnoringCase(PathOf(other.object), path)) {
            states.insert(states.end(), other.states.begin(), other.states.end());
        }
    }
    return states;
}

Json JsonOf(const Judgement& judgement, const Judged& judged) {
    Json json = JsonOf(judged.object);
    json["states"] = judged.states;
    if (judged.damage != nullptr) {
        json["damage"] = judged.damage;
        json["whole_in_states"] = StatesWithWhole(judgement, judged);
    }
    return json;
}

void PrintJson(const StoredPair& pair, const Judgement& judgement, bool all, Console& console) {
    Json json;
    json["storage"] = pair.files().sav;
    json["findings"] = Json::array();
    for (const std::u16string& line : pair.findings()) {
        json["findings"].push_back(ToUtf8(line));
    }
    json["unclaimed_blocks"] = Json::array();
    for (const UnclaimedBlock& block : pair.check().unclaimed()) {
        json["unclaimed_blocks"].push_back(block.offset);
    }
    json["states"] = Json::array();
    for (const auto& [number, count] : judgement.states) {
        json["states"].push_back(
            {{"state", number}, {"objects", count.objects}, {"damaged", count.damaged}});
    }
    json["damaged_state_blocks"] = judgement.damaged_states;
    json["objects"] = Json::array();
    for (const Judged& judged : judgement.objects) {
        if (all || judged.damage != nullptr) {
            json["objects"].push_back(JsonOf(judgement, judged));
        }
    }
    console.Line(json.dump(2));
}

void PrintObject(const Judgement& judgement, const Judged& judged, Console& console) {
    const std::string path = Printable(PathOf(judged.object));
    if (judged.damage == nullptr) {
        console.Line(fmt::format("whole: {}, in states: {}", path, Ranges(judged.states)));
        return;
    }
    console.Line(fmt::format("damaged {}: {}, stored by state {}, in states: {}", judged.damage,
                             path, judged.object.record.state_number, Ranges(judged.states)));
    const std::vector<std::uint16_t> whole = StatesWithWhole(judgement, judged);
    if (!whole.empty()) {
        console.Line(fmt::format("    a whole version is in states: {}", Ranges(whole)));
    }
}

void PrintText(const StoredPair& pair, const Judgement& judgement, bool all, Console& console) {
    for (const std::u16string& line : pair.findings()) {
        console.Line(Printable(line));
    }
    for (const UnclaimedBlock& block : pair.check().unclaimed()) {
        console.Line(
            fmt::format("at {} stands a whole block of no state: a failed item of the "
                        "backup after state {}, or an object whose record is lost",
                        block.offset, block.state));
    }
    for (const Judged& judged : judgement.objects) {
        if (all || judged.damage != nullptr) {
            PrintObject(judgement, judged, console);
        }
    }
    for (const State& state : pair.states()) {
        if (state.is_damaged) {
            console.Line(fmt::format("damaged: time and description of state {}", state.number));
        }
    }
    console.Line("State   Objects   Damaged");
    for (const auto& [number, count] : judgement.states) {
        console.Line(fmt::format("{:>5} {:>9} {:>9}", number, count.objects, count.damaged));
    }
}

}  // namespace

ExitCode RunVerify(const Options& options, Console& console) {
    const std::unique_ptr<StoredPair> pair = OpenWhole(options.storage, console);
    const Judgement judgement = Judge(*pair, console);
    const bool is_sound = judgement.damaged == 0 && judgement.damaged_states == 0 &&
                          ListVerdict(*pair) == ExitCode::kDone;
    if (options.json) {
        PrintJson(*pair, judgement, options.all, console);
    } else {
        PrintText(*pair, judgement, options.all, console);
        console.Line(is_sound ? "No errors were found."
                              : fmt::format("Errors were found: {} in the journal, {} objects and "
                                            "{} states' own blocks damaged.",
                                            pair->check().findings_in_list(), judgement.damaged,
                                            judgement.damaged_states));
    }
    return is_sound ? ExitCode::kDone : ExitCode::kDamaged;
}

}  // namespace tolvenar::pc
