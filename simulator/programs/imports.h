// What a program's file asks of the DLLs before it can run.
#pragma once

#include <string>
#include <vector>

namespace sim::processes {

struct Import {
    std::wstring dll;  // in lower case
    std::wstring name;
};
// The names that the file at this path of the host imports; none of what is no program.
std::vector<Import> ReadImports(const std::wstring& host_file);

}  // namespace sim::processes
