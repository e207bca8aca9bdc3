// The platform's open and save dialogs: a small dialog over the simulated file system that shows
// and answers device paths.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/windows/open_choice.h"

namespace sim::windows {

// Control ids, those that common dialogs have.
enum OpenDialogId : int {
    kOpenNameEdit = 0x480,
    kOpenFileList = 0x460,
    kOpenFilterBox = 0x470,
    kOpenFolderText = 0x440,
    kOpenUpButton = 0x400,
    kOpenReadOnlyCheck = 0x410,
};

struct OpenRequest {
    void* owner = nullptr;
    std::wstring title;
    std::wstring file;            // what the name field shows first; may hold a path
    std::wstring initial_folder;  // empty, or one that is not there: the root
    std::vector<FileFilter> filters;
    std::uint32_t filter_index = 1;  // counted from 1
    ChoiceRules rules;
    bool shows_read_only = true;
};

struct OpenAnswer {
    std::wstring path;
    std::uint32_t filter_index = 1;
    bool read_only = false;
};

// None when the user cancels or the dialog cannot be shown.
std::optional<OpenAnswer> AskForFile(Device& device, const OpenRequest& request);

}  // namespace sim::windows
