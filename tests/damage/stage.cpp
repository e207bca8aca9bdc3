#include "tests/damage/stage.h"

#include <algorithm>

#include "platform/text.h"
#include "snapshot/compare/states.h"
#include "storage/log/operation_log.h"
#include "tests/damage/history.h"
#include "tests/support/engine_parts.h"
#include "tests/support/log_lines.h"

namespace tolvenar {
namespace {

// The scene in which an older state is restored.
constexpr std::uint32_t kOlderState = 2;

bool IsListed(const ObjectList& journal, std::uint32_t number) {
    const std::vector<ObjectRecord> records = RecordsOf(journal);
    return std::any_of(records.begin(), records.end(), [&](const ObjectRecord& record) {
        return record.type == kState && record.state_number == number;
    });
}

// The state that is restored: an older one is chosen from those that are listed. 0: none.
std::uint32_t StateToRestore(const ObjectList& journal, std::optional<std::uint32_t> chosen) {
    if (!chosen) {
        return LastStoredState(&journal);
    }
    return IsListed(journal, *chosen) ? *chosen : 0;
}

}  // namespace

Stage::Stage(std::uint32_t seed) {
    InstallOperationLog();
    folder_.Attach();
    MakeOwnStorage((seed & 1) != 0);
    MakeScenes();
    MakeOtherStorages();
    if ((seed & 2) != 0) {
        Bytes& journal = *storages_.own.pairs.back().journal;
        journal = Reversed(journal);
    }
}

void Stage::MakeOwnStorage(bool is_restored_from) {
    sim::files::MountCard(device().sim());
    tests::StepClock(device());
    device().MakeFolder(L"\\Storage Card\\Backup");
    SetStorageSettings();
    BeginStorage();
    for (std::uint32_t state = 1; state <= kStates; ++state) {
        ReachState(device(), state);
        BackUp(storages_.own);
        if (is_restored_from && state + 1 == kStates) {
            GoBackAndForth();
        }
    }
    device().sim().store().Compact();
}

void Stage::MakeScenes() {
    SetScene(0, "unchanged", std::nullopt);
    SetScene(1, "older", kOlderState);
    ChangeSince(device());
    SetScene(2, "changed", std::nullopt);
    tests::ResetDevice(device());
    tests::StepClock(device());
    SetScene(3, "reset", std::nullopt);
}

void Stage::MakeOtherStorages() {
    folder_.PutBack(scenes_[0].device);
    BeginStorage();
    BackUp(storages_.fresh);
    tests::ResetDevice(device());
    FillForeignDevice(device());
    BeginStorage();
    BackUp(storages_.foreign);
}

void Stage::BeginStorage() {
    PutOnCard({});
    EXPECT_TRUE(EngineParts().Make());
}

void Stage::BackUp(SoundStorage& storage) {
    EngineParts parts;
    EXPECT_TRUE(parts.Open());
    const auto number = static_cast<std::uint32_t>(storage.states.size() + 1);
    EXPECT_EQ(Done(), parts.Backup(number, u"described"));
    storage.pairs.push_back(PairOnCard());
    storage.states.push_back(Now());
}

void Stage::GoBackAndForth() {
    EngineParts parts;
    EXPECT_TRUE(parts.Open());
    EXPECT_EQ(Done(), parts.Restore(1));
    EXPECT_EQ(Done(), parts.Restore(kStates - 1));
    EXPECT_EQ(storages_.own.states.back().lines, Now().lines);
}

void Stage::SetScene(std::size_t index, const char* name, std::optional<std::uint32_t> state) {
    const Holdings before = Now();
    if (device().Exists(Wide(kLog))) {
        device().Remove(Wide(kLog));
    }
    scenes_[index] = {name, state, folder_.Keep(), before};
    folder_.Attach();
}

Pair Stage::PairOnCard() {
    return {device().FileBytes(Wide(kSav)), device().FileBytes(Wide(kJournal))};
}

void Stage::PutOnCard(const Pair& pair) {
    const auto put = [this](const wchar_t* path, const std::optional<Bytes>& bytes) {
        if (bytes) {
            device().PutFile(path, *bytes);
        } else if (device().Exists(path)) {
            device().Remove(path);
        }
    };
    put(Wide(kSav), pair.sav);
    put(Wide(kJournal), pair.journal);
}

Stage::Result Stage::Run(const Scene& scene, const Damaged& damaged) {
    folder_.PutBack(scene.device);
    PutOnCard(damaged.pair);
    const SoundStorage& storage = *damaged.storage;
    const auto last = static_cast<std::uint32_t>(storage.states.size());
    Result result;
    Outcome& outcome = result.outcome;
    outcome.state = scene.state.value_or(last);
    {
        EngineParts parts;
        parts.progress_.quiet = true;
        const std::uint32_t state =
            parts.Open() ? StateToRestore(*parts.storage_.journal, scene.state) : 0;
        if (state != 0) {
            outcome.began = true;
            outcome.is_earlier = !scene.state && state < last;
            outcome.state = state;
            outcome.code = parts.Restore(state).code;
        }
    }
    result.wanted = storage.states[std::min(outcome.state, last) - 1];
    result.after = Now();
    return result;
}

std::vector<std::string> Stage::LogLines() {
    const std::wstring path = Wide(kLog);
    return device().Exists(path) ? tests::LogLinesIn(device().FileBytes(path))
                                 : std::vector<std::string>();
}

}  // namespace tolvenar
