// verify: the check of the device's program, and beyond it every content.
#include <fmt/format.h>
#include <map>

#include "pc/command/commands.h"
#include "pc/command/json.h"
#include "pc/command/object_json.h"
#include "pc/command/opened.h"
#include "pc/command/progress_line.h"
#include "pc/storage/content_proof.h"
#include "pc/storage/lifetimes.h"
#include "pc/storage/versions.h"

namespace tolvenar::pc {
namespace {

struct Judged {
    StoredObject object;
    std::vector<std::uint16_t> states;           // that hold it
    Damage damage;                               // of the block or of the contents
    std::vector<std::uint16_t> whole_in_states;  // other versions of a damaged one
};

struct StateCount {
    std::size_t objects = 0;
    std::size_t damaged = 0;
};

struct Judgement {
    std::vector<Judged> objects;  // those that are told of, in the order of the storage file
    std::map<std::uint16_t, StateCount> states;
    std::size_t damaged = 0;
    std::size_t damaged_states = 0;  // whose own blocks are
};

const char* WordOf(Damage damage) { return damage == Damage::kBlock ? "block" : "contents"; }

// How many objects each state has, and how many of them are damaged.
void CountStates(const Lifetimes& lifetimes, const PairCheck& check,
                 const std::vector<Damage>& damage, Judgement& judgement) {
    // What comes with a state, and goes behind one.
    std::map<std::uint32_t, StateCount> coming;
    std::map<std::uint32_t, StateCount> going;
    for (std::size_t i = 0; i < damage.size(); ++i) {
        const ObjectRecord& record = *check.begin()[i].record;
        if (record.type == ObjectType::kState) {
            continue;
        }
        const std::size_t damaged = damage[i] != Damage::kNone ? 1 : 0;
        judgement.damaged += damaged;
        lifetimes.ForEachSpan(record.propOffset, [&](const Lifetimes::Span& span) {
            ++coming[span.first].objects;
            coming[span.first].damaged += damaged;
            ++going[span.last].objects;
            going[span.last].damaged += damaged;
        });
    }
    StateCount now = coming[0];
    std::uint32_t before = 0;
    for (const std::uint16_t state : lifetimes.states()) {
        for (; before < state; ++before) {
            now.objects -= going[before].objects;
            now.damaged -= going[before].damaged;
            now.objects += coming[before + 1].objects;
            now.damaged += coming[before + 1].damaged;
        }
        judgement.states[state] = now;
    }
}

// The states that hold a whole version of each object whose contents are damaged.
void FindWholeVersions(StoredPair& pair, const Lifetimes& lifetimes,
                       const std::vector<Damage>& damage, std::vector<Judged>& objects) {
    std::map<std::u16string, std::vector<std::uint16_t>> whole;
    for (const Judged& judged : objects) {
        if (judged.damage == Damage::kData) {
            whole[IdentityOf(judged.object)];
        }
    }
    for (std::size_t i = 0; i < damage.size() && !whole.empty(); ++i) {
        const ObjectRecord& record = *pair.check().begin()[i].record;
        const auto found = damage[i] == Damage::kNone && record.type != ObjectType::kState
                               ? whole.find(IdentityOf(Describe(pair, record)))
                               : whole.end();
        if (found != whole.end()) {
            const std::vector<std::uint16_t> states = lifetimes.StatesOf(record.propOffset);
            found->second.insert(found->second.end(), states.begin(), states.end());
        }
    }
    for (Judged& judged : objects) {
        if (judged.damage == Damage::kData) {
            judged.whole_in_states = whole[IdentityOf(judged.object)];
        }
    }
}

Judgement Judge(StoredPair& pair, bool all, Console& console) {
    ContentProof proof(pair);
    const Lifetimes lifetimes(pair, StatesOf(pair));
    ProgressLine progress(console, "verify", pair.sizes().storage);
    const std::vector<Damage>& damage =
        proof.Finish([&progress](std::uint64_t bytes) { progress.Add(bytes); });
    Judgement judgement;
    CountStates(lifetimes, pair.check(), damage, judgement);
    for (std::size_t i = 0; i < damage.size(); ++i) {
        const ObjectRecord& record = *pair.check().begin()[i].record;
        if (record.type != ObjectType::kState && (all || damage[i] != Damage::kNone)) {
            StoredObject object = Describe(pair, record);
            object.is_damaged = damage[i] == Damage::kBlock;
            judgement.objects.push_back(
                {std::move(object), lifetimes.StatesOf(record.propOffset), damage[i], {}});
        }
    }
    FindWholeVersions(pair, lifetimes, damage, judgement.objects);
    for (const State& state : pair.states()) {
        judgement.damaged_states += state.is_damaged ? 1 : 0;
    }
    return judgement;
}

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
    const Judgement judgement = Judge(*pair, options.all, console);
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
