// The lists of platform/ against what the simulated device's DLLs export, every one resolved.
#include "platform/win32.h"

#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <string>

#include "simulator/system/host_calls.h"
#include "test_folders.h"

namespace {

std::set<std::string> Listed(const std::string& file) {
    std::set<std::string> names;
    std::ifstream in(std::string(TOLVENAR_SOURCE_DIR) + file);
    for (std::string line; std::getline(in, line);) {
        const bool is_name = !line.empty() && line[0] != ';' && line != "EXPORTS" &&
                             line.find(' ') == std::string::npos;
        if (is_name) {
            names.insert(line);
        }
    }
    return names;
}

std::set<std::string> Exported(void* module) {
    const auto* base = static_cast<const char*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto* directory = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(
        base + nt->OptionalHeader.DataDirectory[0].VirtualAddress);
    const auto* names = reinterpret_cast<const DWORD*>(base + directory->AddressOfNames);
    std::set<std::string> result;
    for (DWORD i = 0; i < directory->NumberOfNames; ++i) {
        result.insert(base + names[i]);
    }
    return result;
}

void Compare(const wchar_t* dll, const std::set<std::string>& listed) {
    void* module = sim::host::LoadModule(dll);
    ASSERT_NE(nullptr, module);
    EXPECT_FALSE(listed.empty());
    EXPECT_EQ(listed, Exported(module));
    for (const std::string& name : listed) {
        const std::wstring wide(name.begin(), name.end());
        EXPECT_NE(nullptr, sim::host::FindFunction(module, wide.c_str())) << name;
    }
}

TEST(ExportsTest, CoredllIsTheList) {
    std::set<std::string> all = Listed("/platform/coredll.def");
    for (const char* file : {"/platform/coredll_crt.def", "/simulator/exports/control.def"}) {
        const std::set<std::string> more = Listed(file);
        all.insert(more.begin(), more.end());
    }
    Compare(L"coredll.dll", all);
}

TEST(ExportsTest, CommctrlIsTheList) { Compare(L"commctrl.dll", Listed("/platform/commctrl.def")); }

TEST(ExportsTest, CommdlgIsTheList) { Compare(L"commdlg.dll", Listed("/platform/commdlg.def")); }

}  // namespace
