// The kinds of damage, and the cases of each.
#pragma once

#include <array>
#include <string>

#include "tests/damage/pairs.h"

namespace tolvenar {

struct Damaged {
    Pair pair;
    std::string what;             // what was done to it
    const SoundStorage* storage;  // the one whose states its journal tells
};

struct DamageKind {
    const char* name;
    std::size_t (*count)(const SoundStorage& own);
    Damaged (*make)(const Storages& storages, std::size_t index);
};

constexpr std::size_t kDamageKinds = 23;
extern const std::array<DamageKind, kDamageKinds> kDamageTable;

}  // namespace tolvenar
