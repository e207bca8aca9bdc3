#include "benchmarks/floor/floor.h"
#include "platform/file_mapping.h"
#include "platform/registry_key.h"
#include "platform/text.h"
#include "snapshot/records/checksum.h"

namespace floor_program {
namespace {

using tolvenar::Checksum16;
using tolvenar::InfoBlock;
using tolvenar::UniqueHandle;
using tolvenar::UniqueHkey;
using tolvenar::UniqueView;

constexpr wchar_t kJoint = 0xFF;  // between the path of a key and the name of a value
constexpr DWORD kDataBytes = 0x10000;

// Small data with room for its block before it, for one write.
constexpr DWORD kBlockRoom = 600;
BYTE piece[kBlockRoom + kDataBytes];
BYTE* const value_data = piece + kBlockRoom;
volatile unsigned checksums;

UniqueHandle Open(const wchar_t* path, DWORD access, DWORD creation) {
    return UniqueHandle(::CreateFileW(path, access, FILE_SHARE_READ, nullptr, creation,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
}

void Write(HANDLE file, const void* bytes, DWORD count) {
    DWORD written = 0;
    ::WriteFile(file, bytes, count, &written, nullptr);
}

void WriteFileThing(HANDLE storage, const Thing& thing) {
    InfoBlock block;
    if (!Describe(thing.oid, block)) {
        return;
    }
    Write(storage, block.bytes(), static_cast<DWORD>(block.size()));
    if (block.head().data_bytes == 0) {
        return;
    }
    MEMORYSTATUS memory{};
    ::GlobalMemoryStatus(&memory);
    UniqueHandle mapping = tolvenar::MapFileForReading(thing.path, 0, FILE_FLAG_RANDOM_ACCESS);
    UniqueView view(::MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0));
    if (view) {
        checksums = checksums + Checksum16(view.get(), block.head().data_bytes);
        Write(storage, view.get(), block.head().data_bytes);
        view.Close();
        mapping.Close();
    }
}

void FillRegistryBlock(const Thing& thing, DWORD type, DWORD bytes, InfoBlock& block) {
    block.SetName(tolvenar::Utf16(thing.path), ::wcslen(thing.path));
    if (thing.value != nullptr) {
        const char16_t joint = kJoint;
        block.AppendName(&joint, 1);
        block.AppendName(tolvenar::Utf16(thing.value), ::wcslen(thing.value));
    }
    block.head().hive = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(thing.root));
    block.head().value_type = type;
    block.head().data_bytes = bytes;
    block.head().type =
        static_cast<std::uint16_t>(thing.value != nullptr ? tolvenar::ObjectType::kRegistryValue
                                                          : tolvenar::ObjectType::kRegistryKey);
}

void WriteRegistryThing(HANDLE storage, HKEY key, const Thing& thing) {
    DWORD type = 0;
    DWORD bytes = thing.value != nullptr ? kDataBytes : 0;
    if (thing.value != nullptr) {
        ::RegQueryValueExW(key, thing.value, nullptr, &type, value_data, &bytes);
    }
    InfoBlock block;
    FillRegistryBlock(thing, type, bytes, block);
    checksums = checksums + Checksum16(block.bytes(), block.size()) + Checksum16(value_data, bytes);
    BYTE* const start = value_data - block.size();
    std::memcpy(start, block.bytes(), block.size());
    Write(storage, start, static_cast<DWORD>(block.size()) + bytes);
}

// Walks over the blocks of the storage through views of the size that a window has: small data are
// in view with their block.
template <typename Visit>
void EachBlock(Visit visit) {
    DWORD size = 0;
    const UniqueHandle mapping = tolvenar::MapFileForReading(
        kStorage, FILE_SHARE_READ | FILE_SHARE_WRITE, FILE_FLAG_RANDOM_ACCESS, &size);
    constexpr DWORD kWindow = 0x40000;
    UniqueView view;
    DWORD window = 0;
    for (DWORD at = 0; mapping && at < size;) {
        if (!view || at - window > kWindow / 2) {
            window = at & ~0xFFFFu;
            if (view) {
                view.Close();
            }
            view.Reset(::MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, window,
                                       size - window < kWindow ? size - window : kWindow));
        }
        InfoBlock block;
        const auto* bytes = static_cast<const BYTE*>(view.get()) + (at - window);
        if (!tolvenar::ParseInfoBlock(bytes, size - at, block)) {
            return;
        }
        const DWORD head = static_cast<DWORD>(block.size());
        visit(mapping.get(), block, at + head, bytes + head);
        at += head + block.head().data_bytes;
    }
}

struct StoredData {
    StoredData(HANDLE mapping, DWORD offset, DWORD length)
        : adjust(offset & 0xFFFF),
          view(length != 0
                   ? ::MapViewOfFile(mapping, FILE_MAP_READ, 0, offset - adjust, length + adjust)
                   : nullptr) {}
    ~StoredData() {
        if (view) {
            view.Close();
        }
    }
    const BYTE* bytes() const { return static_cast<const BYTE*>(view.get()) + adjust; }
    DWORD adjust;
    UniqueView view;
};

// The new object's identifier is asked for.
void LookAt(const wchar_t* path) {
    WIN32_FIND_DATAW found;
    tolvenar::UniqueFind find(::FindFirstFileW(path, &found));
    if (find) {
        find.Close();
    }
}

void WriteFileBack(HANDLE mapping, const InfoBlock& block, DWORD offset) {
    const wchar_t* const path = tolvenar::Wide(block.name());
    UniqueHandle file(::CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        return;
    }
    if (block.head().data_bytes != 0) {
        MEMORYSTATUS memory{};
        STORE_INFORMATION store{};
        ::GlobalMemoryStatus(&memory);
        ::GetStoreInformation(&store);
        const StoredData data(mapping, offset, block.head().data_bytes);
        Write(file.get(), data.bytes(), block.head().data_bytes);
        ::FlushFileBuffers(file.get());
    }
    const FILETIME time = {block.head().time_low, block.head().time_high};
    ::SetFileTime(file.get(), &time, &time, &time);
    file.Close();
    ::SetFileAttributesW(path, block.head().attributes);
    LookAt(path);
}

void WriteFolderBack(const InfoBlock& block) {
    const wchar_t* const path = tolvenar::Wide(block.name());
    ::CreateDirectoryW(path, nullptr);
    ::SetFileAttributesW(path, block.head().attributes);
    LookAt(path);
}

// The key stays open for the values that follow.
class ValueWriter {
public:
    void Write(InfoBlock& block, const BYTE* data) {
        wchar_t* const path = tolvenar::Wide(block.name());
        wchar_t* const joint = ::wcschr(path, kJoint);
        if (joint == nullptr) {
            return;
        }
        *joint = 0;
        if (::wcscmp(path, path_) != 0 || block.head().hive != hive_) {
            Close();
            key_ = tolvenar::OpenKey(tolvenar::RootKey(block.head().hive), path);
            ::wcscpy(path_, path);
            hive_ = block.head().hive;
        }
        ::RegSetValueExW(key_.get(), joint + 1, 0, block.head().value_type, data,
                         block.head().data_bytes);
    }
    void Close() {
        if (key_) {
            key_.Close();
        }
    }

private:
    UniqueHkey key_;
    std::uint32_t hive_ = 0;
    wchar_t path_[tolvenar::kMaxNameBytes / sizeof(wchar_t) + 1] = L"";
};

void WriteKeyBack(const InfoBlock& block) {
    UniqueHkey key;
    ::RegCreateKeyExW(tolvenar::RootKey(block.head().hive), tolvenar::Wide(block.name()), 0,
                      nullptr, 0, KEY_ALL_ACCESS, nullptr, key.Put(), nullptr);
    if (key) {
        key.Close();
    }
}

}  // namespace

void WriteStorage(const Things& things, tolvenar::Progress& progress) {
    progress.ProgressBegin(things.count());
    {
        const UniqueHandle storage = Open(kStorage, GENERIC_WRITE, CREATE_ALWAYS);
        UniqueHkey key;
        const wchar_t* open_path = nullptr;
        for (const Thing* thing = things.first(); thing != nullptr; thing = thing->next) {
            progress.ProgressStep();
            if (thing->root == nullptr) {
                WriteFileThing(storage.get(), *thing);
                continue;
            }
            if (thing->value != nullptr && thing->path != open_path) {
                if (key) {
                    key.Close();
                }
                key = tolvenar::OpenKey(thing->root, thing->path);
                open_path = thing->path;
            }
            WriteRegistryThing(storage.get(), key.get(), *thing);
        }
        ::FlushFileBuffers(storage.get());
    }
    SaveJournal(things.count());
    LoadJournal();
}

void SaveJournal(DWORD count) {
    {
        const UniqueHandle journal = Open(kTemporary, GENERIC_WRITE, CREATE_ALWAYS);
        const BYTE record[kRecordBytes] = {};
        for (DWORD i = 0; i < count; ++i) {
            Write(journal.get(), record, kRecordBytes);
        }
        ::FlushFileBuffers(journal.get());
    }
    ::DeleteFileW(kJournal);
    ::MoveFileW(kTemporary, kJournal);
}

void LoadJournal() {
    const UniqueHandle journal = Open(kJournal, GENERIC_READ, OPEN_ALWAYS);
    BYTE record[kRecordBytes];
    DWORD done = 0;
    while (::ReadFile(journal.get(), record, kRecordBytes, &done, nullptr) && done != 0) {
    }
}

DWORD CountRecords() {
    const UniqueHandle journal = Open(kJournal, GENERIC_READ, OPEN_ALWAYS);
    return ::GetFileSize(journal.get(), nullptr) / kRecordBytes;
}

void ReadStorage() {
    EachBlock([](HANDLE, const InfoBlock&, DWORD, const BYTE*) {});
}

void WriteBack(DWORD count, tolvenar::Progress& progress) {
    progress.ProgressBegin(count);
    const auto is_file = [](const InfoBlock& block) {
        return block.type() == tolvenar::ObjectType::kFile;
    };
    EachBlock([&](HANDLE mapping, const InfoBlock& block, DWORD offset, const BYTE*) {
        if (!is_file(block)) {
            return;
        }
        if ((block.head().attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            WriteFolderBack(block);
        } else {
            WriteFileBack(mapping, block, offset);
        }
        progress.ProgressStep();
    });
    ::Sleep(100);
    ValueWriter values;
    EachBlock([&](HANDLE, InfoBlock& block, DWORD, const BYTE* data) {
        if (is_file(block)) {
            return;
        }
        if (block.type() == tolvenar::ObjectType::kRegistryKey) {
            WriteKeyBack(block);
        } else {
            values.Write(block, data);
        }
        progress.ProgressStep();
    });
    values.Close();
    SaveJournal(count);
    LoadJournal();
}

}  // namespace floor_program
