// Object ids that whoever makes a device asks for. Header only.
#pragma once

#include <cstdint>
#include <set>
#include <stdexcept>
#include <string>

#include "simulator/store/device.h"

namespace sim {

class AskedIds {
public:
    // From `next` on nobody asks for any.
    AskedIds(Device& device, std::uint32_t next) : device_(device), next_(next) {}

    // The object that is made next gets this id; with 0 one that nobody asks for. Throws
    // std::runtime_error when it was asked for before.
    void Ask(std::uint32_t id) {
        if (id != 0 && !asked_.insert(id).second) {
            throw std::runtime_error("object id " + std::to_string(id) + " is asked for twice");
        }
        device_.SetNextObjectId(id != 0 ? id : next_++);
    }
    // What the device makes from now on gets ids that nobody asked for.
    void Finish() { device_.SetNextObjectId(next_); }

private:
    Device& device_;
    std::uint32_t next_;
    std::set<std::uint32_t> asked_;
};

}  // namespace sim
