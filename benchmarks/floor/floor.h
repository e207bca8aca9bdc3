// The floor that a backup and a restore are held against: a program that starts as Tolvenar does,
// makes the calls for each object that no program with these results can do without, with their
// sleeps and flushes, and nothing else. It keeps no lists, compares nothing and checks nothing.
#pragma once

#include "platform/win32.h"

#include "snapshot/text/progress.h"
#include "storage/format/info_block.h"

namespace floor_program {

inline constexpr wchar_t kStorage[] = L"\\Storage Card\\Floor.sav";
inline constexpr wchar_t kJournal[] = L"\\Storage Card\\Floor.jrn";
inline constexpr wchar_t kTemporary[] = L"\\Storage Card\\Floor.jrn_1";
inline constexpr DWORD kRecordBytes = 32;

// An object that was met on the device and is to be stored.
struct Thing {
    Thing* next;
    CEOID oid;             // of a file or folder; 0 for the registry
    HKEY root;             // of a key or value
    const wchar_t* path;   // of the file or key
    const wchar_t* value;  // null for a key
};

// Things in the order in which they were met, with their texts.
class Things {
public:
    void AddFile(CEOID oid, const wchar_t* path) { Add({nullptr, oid, nullptr, path, nullptr}); }
    void AddKey(HKEY root, const wchar_t* path) { Add({nullptr, 0, root, path, nullptr}); }
    // Of the key that was added last.
    void AddValue(const wchar_t* name);
    const Thing* first() const { return first_; }
    DWORD count() const { return count_; }

private:
    void Add(Thing thing);
    const wchar_t* Keep(const wchar_t* text);
    void* Room(std::size_t bytes);

    Thing* first_ = nullptr;
    Thing* last_ = nullptr;
    const Thing* last_key_ = nullptr;
    DWORD count_ = 0;
    char* slab_ = nullptr;
    std::size_t slab_left_ = 0;
};

// Describes every file, folder, key and value of the device and reads what it holds.
void ScanDevice(Things& things);
// Fills the describing block of a file or folder. False when it is gone.
bool Describe(CEOID oid, tolvenar::InfoBlock& block);

// Appends every thing to the storage, saves a record for each and loads them again.
void WriteStorage(const Things& things, tolvenar::Progress& progress);
// Reads the records, 32 bytes at a time.
void LoadJournal();
void SaveJournal(DWORD count);
// Looks at the head of every stored block.
void ReadStorage();
// How many records the journal has.
DWORD CountRecords();
// Writes every stored block back to the device, `count` of them.
void WriteBack(DWORD count, tolvenar::Progress& progress);

}  // namespace floor_program
