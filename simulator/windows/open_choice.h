// What a name typed into the open dialog means, decided on the simulated file system. No windows
// here.
#pragma once

#include <string>
#include <vector>

#include "simulator/store/device.h"

namespace sim::windows {

struct FileFilter {
    std::wstring text;
    std::vector<std::wstring> patterns;
};

// Pairs of text and patterns ("*.jrn;*.sav"), each with a terminator, ended by an empty one.
std::vector<FileFilter> ParseFilters(const wchar_t* pairs);

struct ChoiceRules {
    std::wstring default_extension;  // without its dot
    bool file_must_exist = false;
    bool path_must_exist = false;
    bool create_prompt = false;
    bool overwrite_prompt = false;
};

enum class ChoiceKind {
    kNothing,       // nothing typed
    kFolder,        // go into `path`
    kPattern,       // list only what matches `path`
    kFile,          // the answer
    kAskCreate,     // the answer if the user agrees
    kAskOverwrite,  // the answer if the user agrees
    kNoSuchFolder,  // told to the user, the dialog stays
    kNoSuchFile,
};

struct Choice {
    ChoiceKind kind = ChoiceKind::kNothing;
    std::wstring path;  // a full device path, but a pattern for kPattern
};

Choice Decide(Device& device, const std::wstring& folder, const std::wstring& typed,
              const ChoiceRules& rules);

// What the dialog lists for `folder`: folders with a trailing backslash, then the files that match
// one of the patterns; hidden ones are left out.
std::vector<std::wstring> Listing(Device& device, const std::wstring& folder,
                                  const std::vector<std::wstring>& patterns);

// The folder above; the root's is the root.
std::wstring FolderAbove(const std::wstring& folder);

// `\` and a name need no second separator.
std::wstring Joined(const std::wstring& folder, const std::wstring& name);

}  // namespace sim::windows
