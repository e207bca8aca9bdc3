// What the Storage file page tells of the place of a storage: two lines.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

class StorageNotes {
public:
    static constexpr std::size_t kLines = 2;

    // Looks at the settings, and at the files of the open storage; `is_open` tells whether there is
    // one.
    StorageNotes(const Application& app, bool is_open);
    const wchar_t* line(std::size_t index) const { return lines_[index]; }

private:
    void Add(const wchar_t* text);
    void AddFixedFolder(bool is_open);
    void AddOpenStorage();

    const Application& app_;
    std::size_t count_ = 0;
    wchar_t lines_[kLines][kSettingPathUnits] = {};
};

}  // namespace tolvenar
