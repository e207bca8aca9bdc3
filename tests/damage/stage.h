// The device on which damaged pairs are restored: how it stands in each scene, and the pairs that
// it had.
#pragma once

#include <array>
#include <optional>

#include "tests/damage/damage_kinds.h"
#include "tests/damage/judgement.h"
#include "tests/support/device_folder.h"

namespace tolvenar {

constexpr std::size_t kScenes = 4;

struct Scene {
    const char* name;
    std::optional<std::uint32_t> state;  // the state to restore; nothing is the last one
    tests::FolderCopy device;
    Holdings before;
};

class Stage {
public:
    // An odd seed is a storage that was restored from between its backups, which gave much of its
    // journal new ids; with every second pair of seeds its journal is in reverse order.
    explicit Stage(std::uint32_t seed);

    const Storages& storages() const { return storages_; }
    const std::array<Scene, kScenes>& scenes() const { return scenes_; }

    struct Result {
        Outcome outcome;
        Holdings wanted;
        Holdings after;
    };
    // Puts the scene back with the pair on its card and restores as an unattended restore does.
    Result Run(const Scene& scene, const Damaged& damaged);
    // What the last run logged.
    std::vector<std::string> LogLines();

private:
    tests::TestDevice& device() { return folder_.device(); }
    void MakeOwnStorage(bool is_restored_from);
    void MakeScenes();
    void MakeOtherStorages();
    void BeginStorage();
    void BackUp(SoundStorage& storage);
    // To the first state and back to the last one.
    void GoBackAndForth();
    Holdings Now() { return Holdings(tests::ImageOf(device().sim())); }
    Pair PairOnCard();
    void PutOnCard(const Pair& pair);
    void SetScene(std::size_t index, const char* name, std::optional<std::uint32_t> state);

    tests::DeviceFolder folder_{L"damage"};
    Storages storages_;
    std::array<Scene, kScenes> scenes_;
};

}  // namespace tolvenar
