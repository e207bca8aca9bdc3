// A running enumeration of a folder: what a search handle stands for. The entries are those that
// were there when it began; each is shown as it is when its turn comes, and left out when it is
// gone.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "simulator/files/file_table.h"
#include "simulator/files/open_file.h"

namespace sim::files {

struct FindEntry {
    FileInfo info;
    std::wstring name;
};

class Search {
public:
    // Null with a platform error when the parent is missing or nothing matches: then the setting
    // "find.nothing" tells the error (18, no more files).
    static std::shared_ptr<Search> Begin(Device& device, const wchar_t* pattern, FindEntry& first,
                                         std::uint32_t& error);
    Search(FileTable& table, std::vector<std::uint32_t> numbers, std::wstring pattern)
        : table_(table), numbers_(std::move(numbers)), pattern_(std::move(pattern)) {}

    // False at the end.
    bool Next(FindEntry& entry);

private:
    FileTable& table_;
    std::vector<std::uint32_t> numbers_;
    std::wstring pattern_;
    std::size_t at_ = 0;
};

}  // namespace sim::files
