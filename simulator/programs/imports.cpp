#include "simulator/programs/imports.h"

#include <algorithm>
#include <cstring>
#include <cwctype>
#include <windows.h>

#include "simulator/host/host_files.h"

namespace sim::processes {
namespace {

// A program's file, of any processor. What lies outside it reads as zeros.
class ProgramFile {
public:
    explicit ProgramFile(const std::wstring& path) : bytes_(host::ReadWhole(path).value_or("")) {
        const auto start = In<IMAGE_DOS_HEADER>(0);
        const auto place = static_cast<std::size_t>(start.e_lfanew);
        head_ = In<IMAGE_NT_HEADERS32>(place);
        is_program_ = start.e_magic == IMAGE_DOS_SIGNATURE && head_.Signature == IMAGE_NT_SIGNATURE;
        sections_ = place + offsetof(IMAGE_NT_HEADERS32, OptionalHeader) +
                    head_.FileHeader.SizeOfOptionalHeader;
    }

    bool is_program() const { return is_program_; }
    DWORD ImportTable() const {
        return head_.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    }
    template <typename T>
    T At(DWORD address) const {
        return In<T>(OffsetOf(address));
    }
    std::string TextAt(DWORD address) const {
        const std::size_t offset = OffsetOf(address);
        return offset < bytes_.size() ? bytes_.c_str() + offset : "";
    }

private:
    template <typename T>
    T In(std::size_t offset) const {
        T value{};
        if (offset <= bytes_.size() && bytes_.size() - offset >= sizeof value) {
            std::memcpy(&value, bytes_.data() + offset, sizeof value);
        }
        return value;
    }
    std::size_t OffsetOf(DWORD address) const {
        for (WORD i = 0; i < head_.FileHeader.NumberOfSections; ++i) {
            const auto section =
                In<IMAGE_SECTION_HEADER>(sections_ + i * sizeof(IMAGE_SECTION_HEADER));
            if (address - section.VirtualAddress < section.SizeOfRawData) {
                return section.PointerToRawData + (address - section.VirtualAddress);
            }
        }
        return bytes_.size();
    }

    std::string bytes_;
    IMAGE_NT_HEADERS32 head_{};
    std::size_t sections_ = 0;
    bool is_program_ = false;
};

std::wstring Widened(const std::string& text) { return {text.begin(), text.end()}; }

std::wstring LowerCase(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](wchar_t unit) { return static_cast<wchar_t>(std::towlower(unit)); });
    return text;
}

void ReadNames(const ProgramFile& file, const IMAGE_IMPORT_DESCRIPTOR& row,
               std::vector<Import>& all) {
    const std::wstring dll = LowerCase(Widened(file.TextAt(row.Name)));
    DWORD at = row.OriginalFirstThunk != 0 ? row.OriginalFirstThunk : row.FirstThunk;
    while (const DWORD name = file.At<DWORD>(at)) {
        at += sizeof name;
        if (!IMAGE_SNAP_BY_ORDINAL32(name)) {
            all.push_back({dll, Widened(file.TextAt(name + sizeof(WORD)))});
        }
    }
}

}  // namespace

std::vector<Import> ReadImports(const std::wstring& host_file) {
    std::vector<Import> all;
    const ProgramFile file(host_file);
    DWORD at = file.is_program() ? file.ImportTable() : 0;
    while (at != 0) {
        const auto row = file.At<IMAGE_IMPORT_DESCRIPTOR>(at);
        if (row.Name == 0) {
            break;
        }
        ReadNames(file, row, all);
        at += sizeof row;
    }
    return all;
}

}  // namespace sim::processes
