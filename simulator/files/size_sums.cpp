#include "simulator/files/size_sums.h"

#include <algorithm>
#include <windows.h>

#include "simulator/files/file_table.h"
#include "simulator/files/key_number.h"

namespace sim::files {
namespace {

const std::u16string kNodes = u"f/n/";
constexpr unsigned kGroupBits = 6;

constexpr std::uint32_t PlacesOf(std::size_t level) { return 1u << (kGroupBits * level); }

// From the place itself up: who sees the mark of a group finds that of the place too. A kill in
// between does no harm, since the size has not changed yet.
void Mark(FileTable& table, std::uint32_t number) {
    for (std::size_t level = 0; level < kChangeLevels; ++level) {
        const std::uint32_t first = number & ~(PlacesOf(level) - 1);
        ::InterlockedIncrement(&table.slot(first).changes[level]);
    }
}

}  // namespace

std::int64_t SizeSums::Used(bool card) {
    const LogStore::View view(table_.store());
    if (!watches_) {
        watches_ = true;
        view.Watch(kNodes, *this);
    }
    for (std::size_t level = 0; level < kChangeLevels; ++level) {
        seen_[level].resize(end_ / PlacesOf(level) + 1);
    }
    for (std::uint32_t first = 0; first < end_; first += PlacesOf(kChangeLevels - 1)) {
        LookAtMarked(kChangeLevels - 1, first);
    }
    LookAtWritten();
    std::int64_t used = sums_[card];
    for (const std::uint32_t number : written_) {
        used += files_[number].on_card == card ? table_.ContentSize(number) : 0;
    }
    return used;
}

void SizeSums::Changed(const std::u16string& key, const std::string*, const std::string* now) {
    const std::uint32_t number = NumberOfKey(key.substr(kNodes.size()));
    const auto old = files_.find(number);
    if (old != files_.end()) {
        Keep(old->second, 0);
        written_.erase(number);
        files_.erase(old);
    }
    if (now == nullptr) {
        return;
    }
    const Node node = NodeOfEntry(number, *now);
    if (!node.is_folder() && !node.is_rom()) {
        files_[number].on_card = node.on_card;
        end_ = std::max(end_, number + 1);
        Look(number);
    }
}

void SizeSums::Keep(Kept& file, std::uint32_t size) {
    sums_[file.on_card] += static_cast<std::int64_t>(size) - file.size;
    file.size = size;
}

void SizeSums::Look(std::uint32_t number) {
    const auto file = files_.find(number);
    if (file == files_.end()) {
        return;
    }
    const Slot& place = table_.slot(number);
    const bool is_written = place.writers != 0;
    Keep(file->second, is_written ? 0 : static_cast<std::uint32_t>(place.size));
    if (is_written) {
        written_.insert(number);
    } else {
        written_.erase(number);
    }
}

void SizeSums::LookAtMarked(std::size_t level, std::uint32_t first) {
    const std::uint32_t number = first / PlacesOf(level);
    const long now = table_.slot(first).changes[level];
    table_.store().CountStep();
    if (seen_[level][number] == now) {
        return;
    }
    // Noted before the look: a mark that is made meanwhile counts the next time.
    seen_[level][number] = now;
    if (level == 0) {
        Look(first);
        return;
    }
    const std::uint32_t behind = std::min(end_, first + PlacesOf(level));
    for (std::uint32_t at = first; at < behind; at += PlacesOf(level - 1)) {
        LookAtMarked(level - 1, at);
    }
}

void SizeSums::LookAtWritten() {
    const std::vector<std::uint32_t> numbers(written_.begin(), written_.end());
    for (const std::uint32_t number : numbers) {
        table_.store().CountStep();
        Look(number);
    }
}

SizeChange::SizeChange(FileTable& table, std::uint32_t number) : place_(table.slot(number)) {
    ::InterlockedIncrement(&place_.writers);
    Mark(table, number);
}

SizeChange::~SizeChange() { ::InterlockedDecrement(&place_.writers); }

void SizeChange::Set(std::uint32_t size) {
    ::InterlockedExchange(&place_.size, static_cast<long>(size));
}

}  // namespace sim::files
