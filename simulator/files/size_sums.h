// What the files of the object store and of the card take, kept as sums. The tree is in the log,
// whose changes are told; the sizes are in the slot file, where any process may change them at any
// moment. So whoever changes a size marks it first (SizeChange), and a question looks again at what
// was marked since the last one, and at the files that are open for writing.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "simulator/files/slots.h"
#include "simulator/store/device.h"

namespace sim::files {

class FileTable;

class SizeSums final : public LogStore::Watcher {
public:
    explicit SizeSums(FileTable& table) : table_(table) {}

    // Bytes that the files outside ROM take on one volume: the sum of what `SizeOf` tells of each.
    std::int64_t Used(bool card);

private:
    struct Kept {
        bool on_card = false;
        std::uint32_t size = 0;  // as it is in the sum; 0 for one in `written_`
    };
    void Changed(const std::u16string& key, const std::string* before,
                 const std::string* now) override;
    void Look(std::uint32_t number);
    void LookAtMarked(std::size_t level, std::uint32_t first);
    void LookAtWritten();
    void Keep(Kept& file, std::uint32_t size);

    FileTable& table_;
    bool watches_ = false;
    std::unordered_map<std::uint32_t, Kept> files_;
    std::unordered_set<std::uint32_t> written_;  // those that may be open for writing
    std::int64_t sums_[2] = {};                  // of the object store and of the card
    std::vector<long> seen_[kChangeLevels];      // the marks of each level as they were last
    std::uint32_t end_ = 0;                      // behind the last number
};

// Whoever changes a file's size holds one meanwhile. As long as it lives the content's own size
// counts, also after a kill.
class SizeChange {
public:
    SizeChange(FileTable& table, std::uint32_t number);
    ~SizeChange();
    SizeChange(const SizeChange&) = delete;
    SizeChange& operator=(const SizeChange&) = delete;
    void Set(std::uint32_t size);

private:
    Slot& place_;
};

}  // namespace sim::files
