#include "simulator/guest/image.h"

#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <windows.h>

#include "simulator/host/host_files.h"

namespace sim::guest {
namespace {

template <typename T>
const T* In(const void* bytes, Word offset) {
    return reinterpret_cast<const T*>(static_cast<const char*>(bytes) + offset);
}

const IMAGE_NT_HEADERS32& Headers(const void* bytes) {
    const auto offset = static_cast<Word>(In<IMAGE_DOS_HEADER>(bytes, 0)->e_lfanew);
    return *In<IMAGE_NT_HEADERS32>(bytes, offset);
}

}  // namespace

Image LoadImage(const std::wstring& file) {
    const std::optional<std::string> bytes = host::ReadWhole(file);
    if (!bytes) {
        Stop("the program's file cannot be opened", 0, ::GetLastError());
    }
    const IMAGE_NT_HEADERS32& head = Headers(bytes->data());
    const IMAGE_OPTIONAL_HEADER32& optional = head.OptionalHeader;
    void* const base = reinterpret_cast<void*>(static_cast<std::uintptr_t>(optional.ImageBase));
    if (::VirtualAlloc(base, optional.SizeOfImage, MEM_RESERVE | MEM_COMMIT,
                       PAGE_EXECUTE_READWRITE) != base) {
        Stop("the program's address is taken", 0, optional.ImageBase);
    }
    std::memcpy(base, bytes->data(), optional.SizeOfHeaders);
    const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(&head);
    for (int i = 0; i < head.FileHeader.NumberOfSections; ++i, ++section) {
        std::memcpy(static_cast<char*>(base) + section->VirtualAddress,
                    bytes->data() + section->PointerToRawData, section->SizeOfRawData);
    }
    Image image;
    image.begin = optional.ImageBase;
    image.end = optional.ImageBase + optional.SizeOfImage;
    image.entry = optional.ImageBase + optional.AddressOfEntryPoint;
    image.machine = head.FileHeader.Machine;
    return image;
}

void FillImports(const Image& image, FindImport* find) {
    char* const base = reinterpret_cast<char*>(static_cast<std::uintptr_t>(image.begin));
    const auto& directory =
        Headers(base).OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (directory.VirtualAddress == 0) {
        return;
    }
    for (const auto* row = In<IMAGE_IMPORT_DESCRIPTOR>(base, directory.VirtualAddress);
         row->Name != 0; ++row) {
        auto* slot = reinterpret_cast<Word*>(base + row->FirstThunk);
        for (const auto* name = In<Word>(base, row->OriginalFirstThunk); *name != 0; ++name) {
            *slot++ = find(In<char>(base, row->Name), In<char>(base, *name + 2));
        }
    }
}

}  // namespace sim::guest
