// Which files of this machine a storage is made of.
#pragma once

#include <string>

namespace tolvenar::pc {

struct PairFiles {
    std::string sav;
    std::string journal;    // where it is, or would be
    std::string temporary;  // what a save that was stopped leaves of it; may be absent
    bool has_journal = false;
    bool has_temporary = false;
};

// The files of the storage that `name` is the ".sav", the journal or the common name of: a final
// ".sav", ".jrn" or ".jrn_1" is cut, whatever the case of its letters. Cards keep names in any
// case, so where no file has the name as it stands one that differs in case alone is taken. The
// device cuts the ".sav" name at the first dot: "my.old.jrn" belongs to "my.sav" when there is no
// "my.old.sav". Throws a Failure when there is no ".sav".
PairFiles FindPair(const std::string& name);

// The common name of a storage's files: `name` without its final extension.
std::string StemOf(const std::string& name);

// A storage and, behind the last "@", a state of it: "Home.sav@3".
struct StorageAddress {
    std::string storage;
    std::string state;  // empty when none is said
};
// An "@" in the name of a file that is there is no sign of a state.
StorageAddress ParseAddress(const std::string& text);

}  // namespace tolvenar::pc
