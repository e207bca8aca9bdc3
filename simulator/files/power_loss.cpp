#include "simulator/files/power_loss.h"

#include <algorithm>
#include <random>
#include <windows.h>

#include "simulator/files/files.h"
#include "simulator/files/space.h"
#include "simulator/files/unsynced.h"
#include "simulator/host/host_files.h"
#include "simulator/processes/processes.h"

namespace sim::files {
namespace {

constexpr std::uint32_t kSectorBytes = 512;

using Random = std::mt19937;

// The changes of one file or folder that the loss meets. A moment is a number of changes that have
// happened; those below `settled` have happened for certain.
struct Fate {
    std::uint32_t number = 0;
    CardBase base;
    std::vector<CardChange> changes;
    std::size_t settled = 0;
};

// What becomes of it.
struct Outcome {
    std::uint32_t number = 0;
    bool is_folder = false;
    bool exists = false;
    bool is_place_certain = false;
    std::uint32_t parent = 0;
    std::wstring name;
    std::uint32_t attributes = 0;
    Times times;
    std::string content;
};

// Some losses take nearly all, some nearly nothing: `eighths` of the pieces are as they were last.
std::size_t DrawMoment(Random& random, const Fate& fate, unsigned eighths) {
    const std::size_t last = fate.changes.size();
    if (random() % 8 < eighths) {
        return last;
    }
    if (random() % 2 == 0) {
        return fate.settled;
    }
    return fate.settled + random() % (last - fate.settled + 1);
}

unsigned DrawEighths(Random& random) {
    constexpr unsigned kChoices[] = {0, 1, 4, 7, 8};
    return kChoices[random() % std::size(kChoices)];
}

std::uint32_t SizeAfter(const CardChange& change, std::uint32_t size) {
    switch (change.kind) {
        case ChangeKind::kWrite:
            return std::max(size, change.value + static_cast<std::uint32_t>(change.bytes.size()));
        case ChangeKind::kSize: return change.value;
        default: return size;
    }
}

// A file's contents as sectors that are written on their own.
class Sectors {
public:
    Sectors(Random& random, const Fate& fate, unsigned eighths) : bytes_(fate.base.content) {
        auto size = static_cast<std::uint32_t>(bytes_.size());
        std::uint32_t most = size;
        for (const CardChange& change : fate.changes) {
            size = SizeAfter(change, size);
            most = std::max(most, size);
        }
        const bool is_noise = random() % 2 != 0;
        while (bytes_.size() < most) {
            bytes_ += is_noise ? static_cast<char>(random()) : '\0';
        }
        for (std::uint32_t at = 0; at < most; at += kSectorBytes) {
            moments_.push_back(DrawMoment(random, fate, eighths));
        }
    }
    // The change with this index, in those sectors that it has reached. `size` is that before it.
    void Apply(std::size_t index, const CardChange& change, std::uint32_t size) {
        const std::uint32_t begin = change.value;
        if (begin > size) {
            Put(index, size, std::string(begin - size, '\0'));
        }
        if (change.kind == ChangeKind::kWrite) {
            Put(index, begin, change.bytes);
        }
    }
    const std::string& bytes() const { return bytes_; }

private:
    void Put(std::size_t index, std::uint32_t offset, const std::string& bytes) {
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            if (moments_[(offset + i) / kSectorBytes] > index) {
                bytes_[offset + i] = bytes[i];
            }
        }
    }

    std::string bytes_;
    std::vector<std::size_t> moments_;
};

std::string ContentOf(Random& random, const Fate& fate, std::size_t entry_moment) {
    Sectors sectors(random, fate, DrawEighths(random));
    auto size = static_cast<std::uint32_t>(fate.base.content.size());
    std::uint32_t told_size = size;
    for (std::size_t i = 0; i < fate.changes.size(); ++i) {
        const CardChange& change = fate.changes[i];
        if (change.kind == ChangeKind::kWrite || change.kind == ChangeKind::kSize) {
            sectors.Apply(i, change, size);
            size = SizeAfter(change, size);
        }
        told_size = i < entry_moment ? size : told_size;
    }
    return sectors.bytes().substr(0, told_size);
}

// Where it is: after the certain changes, or after any of those behind them that move it.
void DrawPlace(Random& random, const Fate& fate, Outcome& outcome) {
    std::vector<std::size_t> moments = {fate.settled};
    for (std::size_t i = fate.settled; i < fate.changes.size(); ++i) {
        const ChangeKind kind = fate.changes[i].kind;
        if (kind == ChangeKind::kPlace || kind == ChangeKind::kGone) {
            moments.push_back(i + 1);
        }
    }
    outcome.is_place_certain = moments.size() == 1;
    outcome.exists = fate.base.exists;
    outcome.parent = fate.base.parent;
    outcome.name = fate.base.name;
    const std::size_t moment = moments[random() % moments.size()];
    for (std::size_t i = 0; i < moment; ++i) {
        const CardChange& change = fate.changes[i];
        if (change.kind == ChangeKind::kGone) {
            outcome.exists = false;
        } else if (change.kind == ChangeKind::kPlace) {
            outcome.exists = true;
            outcome.parent = change.value;
            outcome.name = NameOfBytes(change.bytes);
        }
    }
}

Outcome Draw(Random& random, FileTable& table, const Fate& fate) {
    Outcome outcome;
    outcome.number = fate.number;
    outcome.is_folder = (fate.base.attributes & kFolder) != 0;
    DrawPlace(random, fate, outcome);
    const std::size_t entry_moment = DrawMoment(random, fate, DrawEighths(random));
    outcome.attributes = fate.base.attributes;
    outcome.times = fate.base.times;
    if (entry_moment != 0) {
        const std::optional<Node> now = table.Get(fate.number);
        const Slot& slot = table.slot(fate.number);
        outcome.attributes = now ? now->stored_attributes : outcome.attributes;
        outcome.times = {LoadTime(slot.created), LoadTime(slot.accessed), LoadTime(slot.modified)};
    }
    outcome.content = outcome.is_folder ? "" : ContentOf(random, fate, entry_moment);
    return outcome;
}

// Of each file and folder what happened before `moment`; those of which all is certain are left
// out.
std::vector<Fate> Fates(FileTable& table, std::uint32_t moment) {
    std::vector<Fate> fates;
    for (auto& [number, history] : CardHistories(table)) {
        Fate fate;
        fate.number = number;
        fate.base = std::move(history.base);
        for (NumberedChange& numbered : history.changes) {
            if (numbered.number >= moment) {
                break;
            }
            const bool is_flush = numbered.change.kind == ChangeKind::kFlush;
            fate.changes.push_back(std::move(numbered.change));
            fate.settled = is_flush ? fate.changes.size() : fate.settled;
        }
        if (fate.changes.size() < history.changes.size() || fate.settled < fate.changes.size()) {
            fates.push_back(std::move(fate));
        }
    }
    return fates;
}

// Brings the card's tree to the outcomes. Files are made anew under other numbers.
class Aftermath {
public:
    Aftermath(FileTable& table, std::vector<Outcome> outcomes)
        : table_(table), outcomes_(std::move(outcomes)) {}

    void Enter() {
        RemoveFiles();
        RemoveFolders();
        for (const bool folders : {true, false}) {
            for (const bool certain : {true, false}) {
                for (const Outcome& outcome : outcomes_) {
                    if (outcome.exists && outcome.is_folder == folders &&
                        outcome.is_place_certain == certain) {
                        Place(outcome);
                    }
                }
            }
        }
    }

private:
    void RemoveFiles() {
        for (const Outcome& outcome : outcomes_) {
            const std::optional<Node> node = table_.Get(outcome.number);
            if (node && !outcome.is_folder) {
                GiveSpaceBack(table_, true, table_.ContentSize(node->number));
                table_.Remove(*node);
            }
        }
    }
    // Those in others go first: they were made later. One with something that is certain stays.
    void RemoveFolders() {
        std::vector<std::uint32_t> numbers;
        for (const Outcome& outcome : outcomes_) {
            if (outcome.is_folder && !outcome.exists) {
                numbers.push_back(outcome.number);
            }
        }
        std::sort(numbers.rbegin(), numbers.rend());
        for (const std::uint32_t number : numbers) {
            const std::optional<Node> node = table_.Get(number);
            if (node && !table_.HasChildren(number)) {
                table_.Remove(*node);
            }
        }
    }
    void Place(const Outcome& outcome) {
        const auto renumbered = renumbered_.find(outcome.parent);
        const std::optional<Node> parent =
            table_.Get(renumbered != renumbered_.end() ? renumbered->second : outcome.parent);
        std::optional<Node> now = table_.Get(outcome.number);
        // In a folder that is lost nothing is found, and one name leads to one file.
        if (!parent || table_.Child(parent->number, outcome.name)) {
            return;
        }
        if (now) {
            table_.Move(*now, *parent, outcome.name);
            return;
        }
        const Node made = table_.Add(*parent, outcome.name, outcome.attributes);
        renumbered_[outcome.number] = made.number;
        if (!outcome.is_folder) {
            host::WriteWhole(table_.ContentFile(made.number), outcome.content);
            const auto size = static_cast<std::uint32_t>(outcome.content.size());
            AddToUsed(table_, true, size);
            SizeChange(table_, made.number).Set(size);
            table_.SetTimes(made, outcome.times);
        }
    }

    FileTable& table_;
    std::vector<Outcome> outcomes_;
    std::map<std::uint32_t, std::uint32_t> renumbered_;
};

}  // namespace

std::uint32_t LosePower(Device& device, std::uint32_t seed, std::uint32_t moment) {
    processes::KillAll(device);
    FileTable& table = FileTable::Of(device);
    LogStore::Change change(table.store());
    Random random(seed);
    std::vector<Outcome> outcomes;
    for (const Fate& fate : Fates(table, moment)) {
        outcomes.push_back(Draw(random, table, fate));
    }
    for (std::size_t i = outcomes.size(); i > 1; --i) {
        std::swap(outcomes[i - 1], outcomes[random() % i]);
    }
    Aftermath(table, std::move(outcomes)).Enter();
    const std::uint32_t noted = CountChanges(table);
    ForgetAll(table);
    return noted;
}

}  // namespace sim::files
