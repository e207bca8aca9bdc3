// The ids that CeWriteRecordProps has returned during one restore. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace tolvenar {

class WrittenRecords {
public:
    // Makes sure that the next Add succeeds; false when there is no memory.
    bool Reserve();
    // Enters an id, which is not 0; false when there is no memory.
    bool Add(std::uint32_t oid);
    bool Contains(std::uint32_t oid) const;

private:
    bool Grow();

    std::unique_ptr<std::uint32_t[]> slots_;  // open addressing, 0 is a free slot
    std::size_t slot_count_ = 0;
    std::size_t used_ = 0;
};

}  // namespace tolvenar
