// Names for extracted files that any PC takes, whatever the storage says: nothing leads out of the
// folder, means a device, or falls together with another name.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tolvenar::pc {

// One component: characters that some system forbids become "_", as do blanks and dots at its end;
// a name that means a device gets one in front; one that is too long is cut.
std::string SafeComponent(std::u16string_view name);

struct SafePath {
    std::vector<std::string> components;
    bool is_renamed = false;  // some component is not as the storage has it
};

// The names of one extraction. What differs in the case of letters alone is one folder on the
// device and stays one here.
class SafeNames {
public:
    SafePath Place(std::u16string_view path, bool is_folder);

private:
    struct Folder {
        std::map<std::u16string, std::string> named;  // by the folded name and the kind
        std::map<std::u16string, int> taken;          // folded names that are given out
        std::map<std::string, Folder> below;
    };

    static std::string Choose(Folder& folder, std::u16string_view name, bool is_folder);

    Folder root_;
};

}  // namespace tolvenar::pc
