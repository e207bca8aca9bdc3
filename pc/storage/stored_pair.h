// A storage as it lies on this machine: both files open for reading, the journal loaded, and the
// pair checked as a restore of the device checks it. Nothing is ever written to it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "pc/storage/file_bytes.h"
#include "pc/storage/no_device.h"
#include "pc/storage/pair_files.h"
#include "pc/storage/totals.h"
#include "pc/text/file_time.h"
#include "snapshot/compare/pair_check.h"
#include "snapshot/compare/value_names.h"
#include "snapshot/records/object_list.h"
#include "storage/format/storage_reader.h"

namespace tolvenar::pc {

// A state that has a record of its own.
struct State {
    std::uint16_t number;
    const ObjectRecord* record;  // the journal's
    FileTime made;
    std::u16string description;
    bool is_damaged;  // its own block cannot be trusted: no time and no description
};

class StoredPair {
public:
    // Throws a Failure when a file cannot be read, the ".sav" has no head of a storage, or the
    // journal is not there.
    explicit StoredPair(const PairFiles& files);
    StoredPair(const StoredPair&) = delete;
    StoredPair& operator=(const StoredPair&) = delete;

    const PairFiles& files() const { return files_; }
    // The journal is what a save that was stopped left.
    bool reads_temporary() const { return reads_temporary_; }
    const StorageHeader& header() const { return header_; }
    const PairSizes& sizes() const { return sizes_; }
    const ObjectList& journal() const { return *journal_; }
    StorageReader& reader() { return reader_; }
    InfoSource& info() { return info_; }
    ValueNames& value_names() { return value_names_; }
    const PairCheck& check() const { return check_; }
    const StorageTotals& totals() const { return totals_; }
    // For who reads beside the reader, in another thread.
    ByteReader& storage_bytes() { return sav_; }
    // False when what belongs to which state is not certain. A whole block that no record points to
    // is what a failed item left, or an object whose record is lost.
    bool list_is_sound() const {
        return check_.findings_in_list() == 0 && check_.unclaimed().empty();
    }
    // What the check said, a line for each finding.
    const std::vector<std::u16string>& findings() const { return findings_; }

    const std::vector<State>& states() const { return states_; }  // in the order of their numbers
    // The number that `text` means: a number, "last" or nothing, or a local time, which means the
    // last state that was made until then. Throws a Failure when there is no such state.
    std::uint16_t FindState(const std::string& text) const;
    // The objects of a state. Throws a Failure without memory.
    std::unique_ptr<ObjectList> BuildState(std::uint16_t number);

    // Small pages: most blocks have contents behind them that nobody asks for, and copying is what
    // a read costs here.
    static constexpr std::uint32_t kPageBytes = 1024;

private:
    void LoadJournal();
    void Check();
    void CollectStates();
    std::uint16_t FindStateByTime(const std::string& text) const;

    const PairFiles files_;
    FileBytes sav_;
    StorageReader reader_{sav_, kPageBytes};
    NoDevice device_;
    InfoSource info_{reader_, device_};
    StorageHeader header_{};
    PairSizes sizes_{};
    bool reads_temporary_ = false;
    const std::unique_ptr<ObjectList> journal_;
    ValueNames value_names_;
    PairCheck check_;
    StorageTotals totals_;
    std::vector<std::u16string> findings_;
    std::vector<State> states_;
};

}  // namespace tolvenar::pc
