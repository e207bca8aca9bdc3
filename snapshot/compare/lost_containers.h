// The folders, keys and databases that a backup could not write. Platform-free.
#pragma once

#include <cstddef>
#include <memory>

#include "storage/format/info_block.h"

namespace tolvenar {

// A state must not hold what is in a container that it lacks: its restore could never write that
// back.
class LostContainers {
public:
    LostContainers() = default;
    LostContainers(const LostContainers&) = delete;
    LostContainers& operator=(const LostContainers&) = delete;

    bool empty() const { return count_ == 0 && !is_overfull_; }
    // Enters an object that could not be written; what contains nothing is passed over. Without
    // memory everything counts as contained from then on.
    void Add(const InfoBlock& object);
    // True for what is in one of them, at any depth.
    bool Contain(const InfoBlock& object) const;

private:
    std::unique_ptr<InfoBlock[]> blocks_;
    std::size_t count_ = 0;
    std::size_t room_ = 0;
    bool is_overfull_ = false;
};

}  // namespace tolvenar
