// Paths of the device: no drive letters, `\` is the root and the separator, relative names count
// from the root, names are case-insensitive and case-preserving.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sim::files {

// A path taken apart. `error` is a platform error code when it is none (a character that no name
// may have, more than 259 characters, an empty name inside), else 0.
struct Path {
    std::vector<std::wstring> names;
    std::uint32_t error = 0;
    bool ends_with_separator = false;
};
Path ParsePath(const wchar_t* text, bool wildcards_in_last = false);

// The form under which a name is compared.
std::wstring Fold(const std::wstring& name);

// `*` and `?`, case-insensitive; `*.*` matches names without a dot too.
bool Matches(const std::wstring& pattern, const std::wstring& name);

}  // namespace sim::files
