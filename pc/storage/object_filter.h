// Which objects a command line means.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tolvenar::pc {

// A path as somebody types it: what begins with "/" has slashes for backslashes, which shells want
// quoted.
std::u16string ParsePath(const std::string& text);

// Patterns of paths with "*" and "?"; each also takes everything below what it names. The case of
// letters does not count. Without a pattern every object is taken.
class ObjectFilter {
public:
    explicit ObjectFilter(const std::vector<std::string>& patterns);

    bool Takes(std::u16string_view path) const;

private:
    std::vector<std::u16string> patterns_;  // each followed by those for what is below it
};

}  // namespace tolvenar::pc
