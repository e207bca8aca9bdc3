#include "simulator/command/named_devices.h"

#include <cstdlib>
#include <random>

#include "simulator/command/apply_setting.h"
#include "simulator/command/command_row.h"

namespace sim {
namespace {

struct Choice {
    const char* setting;
    const char* value;
};

// Everything that an old system may refuse or lack.
constexpr Choice kStrict211[] = {
    {"os.version", "2.11"},
    {"card.flush.error", "50"},
    {"card.oid", "own"},
    {"card.ready", "1500 55"},
    {"card.times", "fat"},
    {"database.empty.record", "no-data"},
    {"database.info.open", "refused"},
    {"database.no.data", "stays"},
    {"database.no.orders", "placeholder"},
    {"database.seek.fails", "stay"},
    {"database.unique", "refused"},
    {"database.volume", "written"},
    {"find.nothing", "2"},
    {"folder.open", "no"},
    {"locale.checks", "missing"},
    {"heap.first", "1000000"},
    {"mapping.failed", "open"},
    {"mapping.write", "refused"},
    {"mutex.last.error", "kept"},
    {"notification.early", "10"},
    {"notification.vanishes", "after"},
    {"order", "reversed"},
    {"process.no.arguments", "name"},
    {"program.name", "filled"},
    {"registry.delete.key", "refused"},
    {"registry.lengths", "with-terminator"},
    {"registry.null.data", "refused"},
    {"registry.unnamed", "listed"},
    {"registry.value.limit", "4096"},
    {"terminate.self", "nothing"},
};

// The same of a later one.
constexpr Choice kStrict4[] = {
    {"os.version", "4.0"},
    {"card.flush.error", "120"},
    {"card.oid", "ones"},
    {"card.ready", "1500 5"},
    {"card.temporary", "root"},
    {"card.times", "fat"},
    {"database.duplicate", "183"},
    {"database.empty.record", "no-data"},
    {"database.info.open", "refused"},
    {"database.volume", "written"},
    {"file.times", "separate"},
    {"heap.first", "1000000"},
    {"mapping.share", "ignored"},
    {"notification.vanishes", "never"},
    {"order", "shuffled:7"},
    {"registry.null.data", "refused"},
    {"registry.unnamed", "default"},
    {"registry.value.limit", "4096"},
    {"terminate.self", "nothing"},
};

template <std::size_t count>
void Apply(Device& device, const Choice (&choices)[count]) {
    for (const Choice& choice : choices) {
        ApplySetting(device, choice.setting, choice.value);
    }
}

constexpr char kRandom[] = "random-";

// Each choice of both, or what the kind device does.
void ApplyRandom(Device& device, const std::string& number) {
    char* end = nullptr;
    const unsigned long seed = std::strtoul(number.c_str(), &end, 10);
    if (number.empty() || *end != '\0') {
        throw CommandError("random- and a number: " + number);
    }
    std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
    const auto apply_some = [&](const auto& choices) {
        for (const Choice& choice : choices) {
            if (random() % 2 == 0) {
                ApplySetting(device, choice.setting, choice.value);
            }
        }
    };
    apply_some(kStrict211);
    apply_some(kStrict4);
}

}  // namespace

void ApplyNamedDevice(Device& device, const std::string& name) {
    if (name == "strict-2.11") {
        Apply(device, kStrict211);
    } else if (name == "strict-4") {
        Apply(device, kStrict4);
    } else if (name.compare(0, sizeof kRandom - 1, kRandom) == 0) {
        ApplyRandom(device, name.substr(sizeof kRandom - 1));
    } else if (name != "kind") {
        throw CommandError("no device of this name: " + name);
    }
}

}  // namespace sim
