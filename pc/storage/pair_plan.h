// Which bytes and records a new pair is made of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_list.h"
#include "storage/format/storage_reader.h"

namespace tolvenar::pc {

struct PairPlan {
    // Bytes of the old storage file, or new ones, which follow one another in the new one.
    struct Piece {
        std::uint32_t offset;
        std::uint32_t bytes;
        std::string made;  // when not empty these are the bytes, and `offset` means nothing
    };
    std::vector<Piece> pieces;
    std::vector<ObjectRecord> journal;
    std::vector<std::size_t> objects;  // of each state
    std::uint32_t storage_bytes = 0;
};

// The objects of a state by the places of their blocks in the old storage file, which tell one
// version from another.
using Blocks = std::map<std::uint32_t, ObjectRecord>;

// Writes down one state after the other: its own block, then the differences to the state before.
// Blocks and data stay as they are, ids and checksums too.
class PairPlanner {
public:
    // Both read the old storage file.
    PairPlanner(StorageReader& reader, InfoSource& info) : reader_(reader), info_(info) {}

    void CopyHead(std::uint32_t bytes) { Copy(0, bytes); }
    void MakeHead(const std::string& bytes) { Make(bytes); }
    // The state's own block is that of `title`, or `made`, a block with its data, when not empty.
    void AddState(const ObjectRecord& title, const std::string& made, Blocks blocks);
    PairPlan Finish() { return std::move(plan_); }

private:
    std::uint32_t Enter(ObjectList& changes, const ObjectRecord& record);
    bool IsReplaced(const ObjectList& added, const ObjectRecord& record);
    void MakeTitle(const std::string& made);
    ObjectRecord Place(const ObjectRecord& record, std::uint32_t TolvOID);
    void Delete(std::uint32_t offset, std::uint32_t TolvOID);
    void Record(ObjectRecord record, std::uint16_t flags);
    void Copy(std::uint32_t offset, std::uint32_t bytes);
    void Make(const std::string& bytes);
    void Grow(std::size_t bytes);

    StorageReader& reader_;
    InfoSource& info_;
    PairPlan plan_;
    std::uint16_t number_ = 0;
    Blocks before_;  // of the state before
    Blocks placed_;  // the new records, by the old places
};

}  // namespace tolvenar::pc
