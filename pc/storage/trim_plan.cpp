#include "pc/storage/trim_plan.h"

#include <map>
#include <string>

#include "pc/storage/stored_object.h"
#include "pc/text/failure.h"
#include "pc/text/utf.h"

namespace tolvenar::pc {
namespace {

Blocks BlocksOf(StoredPair& pair, std::uint16_t state) {
    Blocks blocks;
    const std::unique_ptr<ObjectList> list = pair.BuildState(state);
    for (const ObjectList::Node& node : *list) {
        if (node.record->type != ObjectType::kState) {
            blocks[node.record->propOffset] = *node.record;
        }
    }
    return blocks;
}

void RequireSound(StoredPair& pair, const ObjectRecord& record) {
    if (pair.check().DamageOf(record) != Damage::kNone) {
        throw Failure(ExitCode::kDamaged,
                      Printable(PathOf(Describe(pair, record))) +
                          " is damaged, and a new pair must not be: nothing was written");
    }
}

// The bytes of a block's head and name, and those of its data by their checksum's record.
std::multimap<std::string, std::uint16_t> ContentsOf(StoredPair& pair, std::uint16_t state) {
    std::multimap<std::string, std::uint16_t> contents;
    for (const auto& [offset, record] : BlocksOf(pair, state)) {
        InfoBlock block;
        if (pair.reader().GetInfoFromStorage(offset, block)) {
            contents.emplace(
                std::string(reinterpret_cast<const char*>(block.bytes()), block.size()) +
                    std::to_string(record.dwOID),
                record.content_fingerprint);
        }
    }
    return contents;
}

}  // namespace

PairPlan PlanTrim(StoredPair& pair, const std::vector<State>& kept) {
    PairPlanner planner(pair.reader(), pair.info());
    planner.CopyHead(pair.sizes().storage_head);
    for (const State& state : kept) {
        RequireSound(pair, *state.record);
        Blocks blocks = BlocksOf(pair, state.number);
        for (const auto& [offset, record] : blocks) {
            RequireSound(pair, record);
        }
        planner.AddState(*state.record, {}, std::move(blocks));
    }
    return planner.Finish();
}

bool IsTrimOf(StoredPair& trimmed, StoredPair& pair, const std::vector<State>& kept) {
    if (!trimmed.findings().empty() || trimmed.states().size() != kept.size()) {
        return false;
    }
    for (std::size_t i = 0; i < kept.size(); ++i) {
        if (ContentsOf(trimmed, trimmed.states()[i].number) != ContentsOf(pair, kept[i].number)) {
            return false;
        }
    }
    return true;
}

}  // namespace tolvenar::pc
