#include "snapshot/scan/file_scanner.h"

#include <memory>
#include <new>
#include <string_view>

#include "platform/file_entry.h"
#include "platform/file_mapping.h"
#include "platform/keep_awake.h"
#include "platform/text.h"
#include "snapshot/records/checksum.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

constexpr std::u16string_view kAllEntries = u"\\*.*";
// The same behind a path that leaves no room for the longer one.
constexpr std::u16string_view kAllEntriesShort = u"\\*";

constexpr std::uint16_t kFolderFingerprint = 0;
constexpr std::uint16_t kEmptyFileFingerprint = 0xFFFF;

// What all levels of one walk share, so that a level costs little of a device's stack.
class Walk {
public:
    Walk(FileScan& scan, FileMaker maker) : scan_(scan), maker_(maker) {}

    bool Start(const char16_t* folder_path) {
        length_ = std::u16string_view(folder_path).size();
        if (length_ > MAX_PATH) {
            return false;
        }
        std::u16string_view(folder_path).copy(path_, length_);
        path_[length_] = 0;
        return true;
    }

    // Visits the contents of the folder in path_. Each level lengthens the path, so the path's
    // limit bounds the depth.
    void VisitContents() {
        const std::u16string_view pattern =
            length_ + kAllEntries.size() < MAX_PATH ? kAllEntries : kAllEntriesShort;
        path_[length_ + pattern.copy(path_ + length_, pattern.size())] = 0;
        UniqueFind search(::FindFirstFileW(Wide(path_), &entry_));
        path_[length_] = 0;
        if (!search) {
            return;
        }
        do {
            VisitEntry();
        } while (::FindNextFileW(search.get(), &entry_));
        search.Close();
    }

private:
    void VisitEntry() {
        if (entry_.cFileName[0] == L'.') {
            return;
        }
        StayAwakeBetweenObjects();
        maker_(scan_, path_, entry_);
        if (!IsFolder(entry_) || IsMountedCard(entry_)) {
            return;
        }
        const std::size_t folder_length = length_;
        if (EnterFolder(Utf16(entry_.cFileName))) {
            VisitContents();
        }
        length_ = folder_length;
        path_[length_] = 0;
    }

    bool EnterFolder(std::u16string_view name) {
        if (length_ + 1 + name.size() > MAX_PATH) {
            return false;
        }
        path_[length_] = u'\\';
        name.copy(path_ + length_ + 1, name.size());
        length_ += 1 + name.size();
        path_[length_] = 0;
        return true;
    }

    FileScan& scan_;
    FileMaker maker_;
    std::size_t length_ = 0;
    char16_t path_[MAX_PATH + kAllEntries.size() + 1];
    WIN32_FIND_DATAW entry_;
};

// False when the file is held by someone else or its contents cannot be mapped.
bool ChecksumOfContents(const char16_t* path, const WIN32_FIND_DATAW& entry,
                        std::uint16_t& checksum) {
    UniqueHandle mapping =
        MapFileForReading(Wide(path), 0, entry.dwFileAttributes | FILE_FLAG_RANDOM_ACCESS);
    if (!mapping) {
        return false;
    }
    // The object store holds no file of 4 GB; a view longer than the file fails.
    UniqueView view(::MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, entry.nFileSizeLow));
    if (!view) {
        return false;
    }
    checksum = Checksum16(view.get(), entry.nFileSizeLow);
    view.Close();
    mapping.Close();
    return true;
}

bool FingerprintOf(const char16_t* path, const WIN32_FIND_DATAW& entry,
                   std::uint16_t& fingerprint) {
    if (IsFolder(entry)) {
        fingerprint = kFolderFingerprint;
        return true;
    }
    if (entry.nFileSizeLow == 0) {
        fingerprint = kEmptyFileFingerprint;
        return true;
    }
    return ChecksumOfContents(path, entry, fingerprint);
}

// Files outside the object store have no identifier of it; which they tell instead depends on the
// system.
bool HasStoreId(const WIN32_FIND_DATAW& entry) {
    return entry.dwOID != 0 && entry.dwOID != 0xFFFFFFFF;
}

// What no state is to hold. Something without an identifier cannot be described: 0 means the state
// that is being written.
bool IsPassedOver(const FileScan& scan, const char16_t* folder_path,
                  const WIN32_FIND_DATAW& entry) {
    return !HasStoreId(entry) || IsInRom(entry.dwFileAttributes) || IsMountedCard(entry) ||
           IsExcluded(ExclusionKind::kFile, folder_path, Utf16(entry.cFileName),
                      &scan.storage_files);
}

}  // namespace

void ScanFiles(FileScan& scan, const char16_t* folder_path, FileMaker maker) {
    // Too big for the stack of a device's thread.
    const std::unique_ptr<Walk> walk(new (std::nothrow) Walk(scan, maker));
    if (walk == nullptr) {
        scan.left_out.NoteLackOfMemory();
    } else if (walk->Start(folder_path)) {
        walk->VisitContents();
    }
}

// A file that is held open elsewhere gets no record (docs/oddities.md, 13).
void MakeFileObject(FileScan& scan, const char16_t* folder_path, const WIN32_FIND_DATAW& entry) {
    if (IsPassedOver(scan, folder_path, entry)) {
        return;
    }
    TextBuffer<MAX_PATH> path;
    path.Append(folder_path).AppendUnit(u'\\').Append(Utf16(entry.cFileName));
    InfoBlock block;
    ObjectRecord record{};
    if (path.cut() || !scan.info.GetOIDInfo(0, entry.dwOID, block) ||
        !FingerprintOf(path.text(), entry, record.content_fingerprint)) {
        scan.left_out.Add(ObjectType::kFile, path.text());
        return;
    }
    record.dwOID = entry.dwOID;
    record.info_checksum = Checksum16(block.bytes(), block.size());
    record.state_number = kScannedFileState;
    record.flags = JF_PRESENT;
    record.type = ObjectType::kFile;
    if (!scan.list.AddObject(record)) {
        scan.left_out.NoteLackOfMemory();
    }
}

}  // namespace tolvenar
