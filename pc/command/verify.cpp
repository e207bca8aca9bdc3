// verify: the check of the device's program, and beyond it every content.
#include <fmt/format.h>

#include "pc/command/commands.h"
#include "pc/command/json.h"
#include "pc/command/judgement.h"
#include "pc/command/object_json.h"
#include "pc/command/opened.h"
#include "pc/storage/versions.h"

namespace tolvenar::pc {
namespace {

Json JsonOf(const Judged& judged) {
    Json json = JsonOf(judged.object);
    json["states"] = judged.states;
    if (judged.damage != Damage::kNone) {
        json["damage"] = WordOf(judged.damage);
        json["whole_in_states"] = judged.whole_in_states;
    }
    return json;
}

void PrintJson(const StoredPair& pair, const Judgement& judgement, Console& console) {
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
        json["objects"].push_back(JsonOf(judged));
    }
    console.Line(json.dump(2));
}

void PrintObject(const Judged& judged, Console& console) {
    const std::string path = Printable(PathOf(judged.object));
    if (judged.damage == Damage::kNone) {
        console.Line(fmt::format("whole: {}, in states: {}", path, Ranges(judged.states)));
        return;
    }
    console.Line(fmt::format("damaged {}: {}, stored by state {}, in states: {}",
                             WordOf(judged.damage), path, judged.object.record.state_number,
                             Ranges(judged.states)));
    if (!judged.whole_in_states.empty()) {
        console.Line(
            fmt::format("    a whole version is in states: {}", Ranges(judged.whole_in_states)));
    }
}

void PrintText(const StoredPair& pair, const Judgement& judgement, Console& console) {
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
        PrintObject(judged, console);
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
    const Judgement judgement = Judge(*pair, options.all, "verify", console);
    const bool is_sound = judgement.damaged == 0 && judgement.damaged_states == 0 &&
                          ListVerdict(*pair) == ExitCode::kDone;
    if (options.json) {
        PrintJson(*pair, judgement, console);
    } else {
        PrintText(*pair, judgement, console);
        console.Line(is_sound ? "No errors were found."
                              : fmt::format("Errors were found: {} in the journal, {} objects and "
                                            "{} states' own blocks damaged.",
                                            pair->check().findings_in_list(), judgement.damaged,
                                            judgement.damaged_states));
    }
    return is_sound ? ExitCode::kDone : ExitCode::kDamaged;
}

}  // namespace tolvenar::pc
