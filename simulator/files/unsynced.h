// The changes of the card that no flush has made certain, noted while the setting "card.unsynced"
// is "yes", or "always" for a card on which a flush makes nothing certain. A loss of power
// (power_loss.h) takes any of them back. FlushFileBuffers makes everything of its file certain:
// contents, size, times, its name, and the folders that it lies in. Nothing else does: a removable
// card is written when the file system likes, and what a program knows of it ends with the closing
// of the handle. What a tester does is certain at once.
//   f/u/b/<number>  a file or folder before its first change
//   f/u/c/<change>  one change, numbered in the order of the calls
//   f/u/n/<number>/<change>  a change of that file or folder
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "simulator/files/file_table.h"

namespace sim::files {

enum class ChangeKind : std::uint32_t {
    kWrite,  // `bytes` at `value`
    kSize,   // `value` is the new size
    kEntry,  // times or attributes
    kPlace,  // made, or renamed: in the folder `value` under the name in `bytes`
    kGone,   // deleted
    kFlush,
};

struct CardChange {
    ChangeKind kind = ChangeKind::kFlush;
    std::uint32_t value = 0;
    std::string bytes;
};

// The bytes of a kPlace, and back.
std::string NameBytes(const std::wstring& name);
std::wstring NameOfBytes(const std::string& bytes);

// A file or folder as the card has it for certain.
struct CardBase {
    bool exists = false;
    std::uint32_t parent = 0;
    std::uint32_t attributes = 0;
    Times times;
    std::wstring name;
    std::string content;
};

struct NumberedChange {
    std::uint32_t number = 0;  // of the change, among those of all files; counted from 0
    CardChange change;
};

struct CardHistory {
    CardBase base;
    std::vector<NumberedChange> changes;  // oldest first
};

bool IsUnsynced(FileTable& table, const Node& node);
// Before a node is opened for writing: a content that a program holds alone cannot be read any
// more.
void KeepBase(FileTable& table, const Node& node);
// All of these do nothing for a node that is not on such a card. A deletion is noted before it
// happens, everything else may be noted after it.
void NoteNew(FileTable& table, const Node& node);
void NoteChange(FileTable& table, const Node& node, const CardChange& change);
void NoteFlush(FileTable& table, const Node& node);

// What a tester changed is certain, and so is everything else of that file.
void Forget(FileTable& table, std::uint32_t number);
void ForgetAll(FileTable& table);

// By node. A node without changes was only opened.
std::map<std::uint32_t, CardHistory> CardHistories(FileTable& table);
std::uint32_t CountChanges(FileTable& table);

}  // namespace sim::files
