#include "pc/storage/stored_pair.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "pc/storage/storage_head.h"
#include "pc/text/failure.h"
#include "snapshot/compare/difference.h"
#include "snapshot/compare/states.h"
#include "snapshot/text/log.h"
#include "storage/format/journal_records.h"
#include "storage/format/state_block.h"

namespace tolvenar::pc {
namespace {

std::unique_ptr<ObjectList> NewList() {
    std::unique_ptr<ObjectList> list = ObjectList::CreateList();
    if (list == nullptr) {
        throw std::bad_alloc();
    }
    return list;
}

// The lines of the check, of which the operation log knows one sink.
std::vector<std::u16string>* kept_lines = nullptr;

void KeepLine(const char16_t* message, const char16_t*, std::uint32_t) {
    kept_lines->push_back(message);
}

class KeptLines {
public:
    explicit KeptLines(std::vector<std::u16string>& lines) {
        kept_lines = &lines;
        before_ = InstallLogSink(KeepLine);
    }
    ~KeptLines() { InstallLogSink(before_); }
    KeptLines(const KeptLines&) = delete;
    KeptLines& operator=(const KeptLines&) = delete;

private:
    LogSink before_;
};

bool HoldsAState(const ObjectList& journal) { return LastStoredState(&journal) != 0; }

// The bytes of a file, read at once: record by record each would be a call of the system.
class LoadedBytes final : public ByteReader {
public:
    explicit LoadedBytes(const std::string& path) {
        FileBytes file(path);
        std::uint32_t size = 0;
        std::uint32_t read = 0;
        if (!file.Size(size)) {
            throw Failure(ExitCode::kCannot, path + ": its size cannot be told");
        }
        bytes_.resize(size);
        if (!file.ReadAt(0, bytes_.data(), size, read) || read != size) {
            throw Failure(ExitCode::kCannot, path + ": cannot be read to its end");
        }
    }
    bool ReadAt(std::uint32_t offset, void* buffer, std::uint32_t bytes,
                std::uint32_t& read) override {
        const std::size_t left = bytes_.size() - std::min<std::size_t>(offset, bytes_.size());
        read = static_cast<std::uint32_t>(std::min<std::size_t>(bytes, left));
        if (read != 0) {
            std::copy_n(bytes_.data() + offset, read, static_cast<char*>(buffer));
        }
        return true;
    }
    bool Size(std::uint32_t& bytes) override {
        bytes = static_cast<std::uint32_t>(bytes_.size());
        return true;
    }

private:
    std::vector<char> bytes_;
};

// The size of the file.
std::uint32_t ReadJournal(const std::string& path, ObjectList& journal) {
    LoadedBytes file(path);
    std::uint32_t bytes = 0;
    std::uint32_t taken = 0;
    if (!file.Size(bytes) || !journal.Reserve(bytes / sizeof(ObjectRecord)) ||
        !ReadJournalRecords(file, journal, nullptr, taken)) {
        throw std::bad_alloc();
    }
    return bytes;
}

}  // namespace

StoredPair::StoredPair(const PairFiles& files)
    : files_(files),
      sav_(files.sav),
      journal_(NewList()),
      value_names_(journal_.get(), reader_, device_),
      check_(*journal_, reader_) {
    if (!sav_.Size(sizes_.storage)) {
        throw Failure(ExitCode::kCannot, files_.sav + ": its size cannot be told, or is too large");
    }
    const LogPause no_lines;
    header_ = ReadStorageHead(reader_, files_.sav);
    sizes_.storage_head = static_cast<std::uint32_t>(StorageHeadSize(header_));
    LoadJournal();
    Check();
    CollectStates();
}

// As the device's program would, but that nothing is renamed: a temporary journal counts where
// there is no other and it holds a state.
void StoredPair::LoadJournal() {
    const std::string& path = files_.has_journal ? files_.journal : files_.temporary;
    const bool is_there = files_.has_journal || files_.has_temporary;
    if (is_there) {
        sizes_.journal = ReadJournal(path, *journal_);
    }
    reads_temporary_ = !files_.has_journal && is_there && HoldsAState(*journal_);
    if (!files_.has_journal && !reads_temporary_) {
        journal_->ClearList();
        sizes_.journal = 0;
    }
    if (journal_->CountRecords() == 0 && sizes_.storage > StorageHeaderBytesToRead(header_)) {
        throw Failure(
            ExitCode::kDamaged,
            files_.journal +
                (files_.has_journal ? ": the journal is empty" : ": the journal is not there") +
                ", and without it nobody knows what \"" + files_.sav + "\" holds");
    }
}

void StoredPair::Check() {
    const KeptLines lines(findings_);
    TotalsCounter counter(sizes_, totals_);
    if (!check_.Run(sizes_, &counter)) {
        throw std::bad_alloc();
    }
    counter.Finish(*journal_);
}

void StoredPair::CollectStates() {
    for (const ObjectList::Node& node : *journal_) {
        const ObjectRecord& record = *node.record;
        if (record.type != ObjectType::kState) {
            continue;
        }
        StateBlock block{};
        const bool is_sound =
            check_.DamageOf(record) != Damage::kBlock && ReadStateBlock(reader_, record, block);
        const auto made = is_sound ? FileTime::Of(block.time_low, block.time_high) : FileTime{};
        states_.push_back({record.state_number, &record, made,
                           is_sound ? block.description : std::u16string(), !is_sound});
    }
    std::stable_sort(states_.begin(), states_.end(),
                     [](const State& a, const State& b) { return a.number < b.number; });
}

std::uint16_t StoredPair::FindState(const std::string& text) const {
    if (text.empty() || text == "last") {
        const std::uint32_t last = LastStoredState(journal_.get());
        if (last == 0) {
            throw Failure(ExitCode::kCannot, files_.sav + ": the storage has no state yet");
        }
        return static_cast<std::uint16_t>(last);
    }
    if (text.find_first_not_of("0123456789") != text.npos) {
        return FindStateByTime(text);
    }
    const unsigned long number = std::strtoul(text.c_str(), nullptr, 10);
    if (number == 0 || number > 0xFFFF ||
        !HasState(*journal_, static_cast<std::uint32_t>(number))) {
        throw Failure(ExitCode::kCannot, "there is no state " + text + "; the last one is " +
                                             std::to_string(LastStoredState(journal_.get())));
    }
    return static_cast<std::uint16_t>(number);
}

std::uint16_t StoredPair::FindStateByTime(const std::string& text) const {
    const std::optional<FileTime> until = ParseLocalTime(text);
    if (!until) {
        throw Failure(ExitCode::kUsage,
                      "\"" + text + "\" is no state: give a number, \"last\", or a time such as " +
                          "2026-11-16 or \"2026-11-16 04:33\"");
    }
    std::uint16_t found = 0;
    for (const State& state : states_) {
        found = !state.is_damaged && state.made.ticks <= until->ticks ? state.number : found;
    }
    if (found == 0) {
        throw Failure(ExitCode::kCannot, "no state was made until " + text);
    }
    return found;
}

std::unique_ptr<ObjectList> StoredPair::BuildState(std::uint16_t number) {
    std::unique_ptr<ObjectList> list = NewList();
    if (!BuildStateList(*list, *journal_, number, info_)) {
        throw std::bad_alloc();
    }
    return list;
}

}  // namespace tolvenar::pc
