#include "snapshot/scan/file_scanner.h"

#include <memory>
#include <new>
#include <string_view>

#include "platform/file_mapping.h"
#include "platform/text.h"
#include "snapshot/records/checksum.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

constexpr DWORD kMountedCard = FILE_ATTRIBUTE_TEMPORARY;
constexpr DWORD kInRom = FILE_ATTRIBUTE_INROM | FILE_ATTRIBUTE_ROMMODULE;
constexpr std::u16string_view kAllEntries = u"\\*.*";

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
        kAllEntries.copy(path_ + length_, kAllEntries.size());
        path_[length_ + kAllEntries.size()] = 0;
        UniqueFind search(::FindFirstFileW(Wide(path_), &entry_));
        path_[length_] = 0;
        if (!search) {
            return;
        }
        do {
            VisitEntry();
        } while (::FindNextFileW(search.get(), &entry_));
    }

private:
    void VisitEntry() {
        if (entry_.cFileName[0] == L'.') {
            return;
        }
        maker_(scan_, path_, entry_);
        const bool is_folder = (entry_.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (!is_folder || (entry_.dwFileAttributes & kMountedCard) != 0) {
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
bool ChecksumOfContents(const char16_t* folder_path, const WIN32_FIND_DATAW& entry,
                        std::uint16_t& checksum) {
    TextBuffer<MAX_PATH> path;
    path.Append(folder_path).AppendUnit(u'\\').Append(Utf16(entry.cFileName));
    if (path.cut()) {
        return false;
    }
    const UniqueHandle mapping =
        MapFileForReading(Wide(path.text()), 0, entry.dwFileAttributes | FILE_FLAG_RANDOM_ACCESS);
    if (!mapping) {
        return false;
    }
    // The object store holds no file of 4 GB; a view longer than the file fails.
    const UniqueView view(::MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, entry.nFileSizeLow));
    if (!view) {
        return false;
    }
    checksum = Checksum16(view.get(), entry.nFileSizeLow);
    return true;
}

bool FingerprintOf(const char16_t* folder_path, const WIN32_FIND_DATAW& entry,
                   std::uint16_t& fingerprint) {
    if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        fingerprint = kFolderFingerprint;
        return (entry.dwFileAttributes & kMountedCard) == 0;
    }
    if (entry.nFileSizeLow == 0) {
        fingerprint = kEmptyFileFingerprint;
        return true;
    }
    return ChecksumOfContents(folder_path, entry, fingerprint);
}

}  // namespace

void ScanFiles(FileScan& scan, const char16_t* folder_path, FileMaker maker) {
    // Too big for the stack of a device's thread.
    const std::unique_ptr<Walk> walk(new (std::nothrow) Walk(scan, maker));
    if (walk != nullptr && walk->Start(folder_path)) {
        walk->VisitContents();
    }
}

// A file that is held open elsewhere is in no state (docs/oddities.md, 13).
void MakeFileObject(FileScan& scan, const char16_t* folder_path, const WIN32_FIND_DATAW& entry) {
    if (IsExcluded(ExclusionKind::kFile, folder_path, Utf16(entry.cFileName),
                   &scan.storage_files)) {
        return;
    }
    InfoBlock block;
    if ((entry.dwFileAttributes & kInRom) != 0 || !scan.info.GetOIDInfo(0, entry.dwOID, block)) {
        return;
    }
    ObjectRecord record{};
    if (!FingerprintOf(folder_path, entry, record.content_fingerprint)) {
        return;
    }
    record.dwOID = entry.dwOID;
    record.info_checksum = Checksum16(block.bytes(), block.size());
    record.state_number = kScannedFileState;
    record.flags = JF_PRESENT;
    record.type = ObjectType::kFile;
    scan.list.AddObject(record);
}

}  // namespace tolvenar
