// What stands where in a storage file, and which of its bytes no checksum of the format covers.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/damage/pairs.h"

namespace tolvenar {

class SavMap {
public:
    explicit SavMap(const Pair& pair);

    // "block of \Docs\a.txt (type 16) + 4".
    std::string Describe(std::size_t offset) const;
    // Why no checksum covers the byte; null when one does.
    const char* Unchecked(std::size_t offset) const;

private:
    void AddObject(const ObjectRecord& record);
    void AddProperties(const ObjectRecord& record, std::size_t count);
    void AddProperty(std::size_t data, std::size_t index);
    void Mark(std::size_t begin, std::size_t bytes, const char* why);
    void Cover(std::size_t begin, std::size_t bytes) { Mark(begin, bytes, nullptr); }

    const Bytes& sav_;
    std::map<std::size_t, std::string> places_;  // by where they begin
    std::vector<const char*> unchecked_;         // by offset
};

}  // namespace tolvenar
