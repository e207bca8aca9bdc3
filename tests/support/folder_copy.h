// A device's folder kept in memory and put back before every run, so that each begins with the same
// device. No process may run on the device meanwhile.
#pragma once

#include <map>
#include <string>

namespace tests {

class FolderCopy {
public:
    FolderCopy() = default;
    explicit FolderCopy(const std::wstring& folder);
    void PutBack(const std::wstring& folder) const;

private:
    std::map<std::wstring, std::string> files_;  // by path in the folder; not the gate's
};

}  // namespace tests
