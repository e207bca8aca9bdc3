#include "simulator/command/package_file.h"

#include <cstdlib>
#include <cstring>
#include <map>

#include "simulator/command/command_row.h"

namespace sim {
namespace {

// Numbers and texts at places of a file; a place outside it throws.
class Bytes {
public:
    explicit Bytes(std::string bytes) : bytes_(std::move(bytes)) {}

    std::string Part(std::size_t at, std::size_t count) const {
        if (at > bytes_.size() || count > bytes_.size() - at) {
            throw CommandError("the installation file is cut off");
        }
        return bytes_.substr(at, count);
    }
    std::uint32_t Number(std::size_t at, std::size_t bytes) const {
        const std::string part = Part(at, bytes);
        std::uint32_t number = 0;
        std::memcpy(&number, part.data(), bytes);
        return number;
    }
    std::uint32_t Half(std::size_t at) const { return Number(at, 2); }
    std::uint32_t Word(std::size_t at) const { return Number(at, 4); }
    std::string Text(std::size_t at) const {
        const std::size_t end = bytes_.find('\0', at);
        if (end == std::string::npos) {
            throw CommandError("the installation file is cut off");
        }
        return bytes_.substr(at, end - at);
    }
    bool StartsWith(const char* mark) const { return bytes_.rfind(mark, 0) == 0; }

private:
    std::string bytes_;
};

constexpr std::size_t kFolderRow = 36, kFolderCount = 26, kFileCount = 28, kFilesAt = 16;
constexpr std::size_t kFileRow = 16, kBlockHead = 8;

// What a cabinet of one uncompressed folder holds, by the names' endings: "000", "001".
std::map<unsigned long, std::string> ReadParts(const Bytes& cabinet) {
    if (!cabinet.StartsWith("MSCF") || cabinet.Half(kFolderCount) != 1 ||
        cabinet.Half(kFolderRow + 6) != 0) {
        throw CommandError("not a cabinet with one uncompressed folder");
    }
    std::string data;
    std::size_t at = cabinet.Word(kFolderRow);
    for (std::uint32_t left = cabinet.Half(kFolderRow + 4); left > 0; --left) {
        const std::uint32_t bytes = cabinet.Half(at + 4);
        data += cabinet.Part(at + kBlockHead, bytes);
        at += kBlockHead + bytes;
    }
    const Bytes whole(data);
    std::map<unsigned long, std::string> parts;
    at = cabinet.Word(kFilesAt);
    for (std::uint32_t left = cabinet.Half(kFileCount); left > 0; --left) {
        const std::string name = cabinet.Text(at + kFileRow);
        const std::string ending = name.substr(name.find_last_of('.') + 1);
        parts[std::strtoul(ending.c_str(), nullptr, 10)] =
            whole.Part(cabinet.Word(at + 4), cabinet.Word(at));
        at += kFileRow + name.size() + 1;
    }
    return parts;
}

// The kinds of rows of NAME.000, in the order of their counts and places in its head.
enum Kind { kStrings, kFolders, kFiles, kKeys, kValues, kLinks };
// Bytes of a row before what its last two tell the length of.
constexpr std::size_t kRowBytes[] = {4, 4, 12, 8, 12, 12};
constexpr std::size_t kCounts = 48, kPlaces = 60, kNames = 84;

class Setup {
public:
    explicit Setup(const std::string& bytes) : bytes_(bytes) {
        if (!bytes_.StartsWith("MSCE")) {
            throw CommandError("the cabinet says nothing of an installation");
        }
        for (const std::size_t row : Rows(kStrings)) {
            strings_[bytes_.Half(row)] = bytes_.Text(row + kRowBytes[kStrings]);
        }
        for (const std::size_t row : Rows(kFolders)) {
            folders_[bytes_.Half(row)] = PathAt(row + kRowBytes[kFolders]);
        }
    }

    Package Read(const std::map<unsigned long, std::string>& parts) const {
        Package package;
        package.name = bytes_.Text(bytes_.Half(kNames));
        package.provider = bytes_.Text(bytes_.Half(kNames + 4));
        package.processor = bytes_.Word(20);
        package.major = bytes_.Word(24);
        package.minor = bytes_.Word(28);
        std::map<std::uint32_t, std::size_t> numbers;
        for (const std::size_t row : Rows(kFiles)) {
            numbers[bytes_.Half(row)] = package.files.size();
            package.files.push_back({folders_.at(bytes_.Half(row + 2)),
                                     bytes_.Text(row + kRowBytes[kFiles]),
                                     parts.at(bytes_.Half(row + 4))});
        }
        ReadValues(package);
        for (const std::size_t row : Rows(kLinks)) {
            package.links.push_back({bytes_.Half(row + 4), PathAt(row + kRowBytes[kLinks]),
                                     numbers.at(bytes_.Half(row + 6))});
        }
        return package;
    }

private:
    std::vector<std::size_t> Rows(Kind kind) const {
        std::vector<std::size_t> rows;
        std::size_t at = bytes_.Word(kPlaces + 4 * kind);
        for (std::uint32_t left = bytes_.Half(kCounts + 2 * kind); left > 0; --left) {
            rows.push_back(at);
            at += kRowBytes[kind] + bytes_.Half(at + kRowBytes[kind] - 2);
        }
        return rows;
    }

    std::string PathAt(std::size_t at) const {
        std::string path;
        for (; bytes_.Half(at) != 0; at += 2) {
            path += (path.empty() ? "" : "\\") + strings_.at(bytes_.Half(at));
        }
        return path;
    }

    void ReadValues(Package& package) const {
        constexpr const char* kRoots[] = {"", "HKCR", "HKCU", "HKLM", "HKU"};
        constexpr std::uint32_t kNumber = 0x00010001, kKeep = 0x00000002;
        std::map<std::uint32_t, std::string> keys;
        for (const std::size_t row : Rows(kKeys)) {
            keys[bytes_.Half(row)] = std::string(kRoots[bytes_.Half(row + 2) % 5]) + "\\" +
                                     PathAt(row + kRowBytes[kKeys]);
        }
        for (const std::size_t row : Rows(kValues)) {
            PackageValue value;
            value.key = keys.at(bytes_.Half(row + 2));
            value.name = bytes_.Text(row + kRowBytes[kValues]);
            const std::uint32_t flags = bytes_.Word(row + 6);
            const std::size_t data = row + kRowBytes[kValues] + value.name.size() + 1;
            value.keeps_existing = (flags & kKeep) != 0;
            value.is_number = (flags & kNumber) == kNumber;
            if (value.is_number) {
                value.number = bytes_.Word(data);
            } else {
                value.text = bytes_.Text(data);
            }
            package.values.push_back(value);
        }
    }

    Bytes bytes_;
    std::map<std::uint32_t, std::string> strings_;
    std::map<std::uint32_t, std::string> folders_;
};

}  // namespace

Package ReadPackage(const std::string& bytes) {
    const auto parts = ReadParts(Bytes(bytes));
    try {
        return Setup(parts.at(0)).Read(parts);
    } catch (const std::out_of_range&) {
        throw CommandError("the installation file names what it lacks");
    }
}

}  // namespace sim
