#include "platform/file_chooser.h"

#include "platform/system_function.h"
#include "platform/unique_resource.h"

namespace tolvenar {
namespace {

using Chooser = decltype(::GetOpenFileNameW);
constexpr wchar_t kName[] = L"GetOpenFileNameW";
constexpr WORD kNumberInCoredll = 488;

}  // namespace

// Newer systems have it in coredll.dll and no longer in commdlg.dll, some by its number alone.
FileChoice ChooseFile(OPENFILENAMEW& request) {
    Chooser* choose = FindSystemFunction<Chooser>(kName);
    UniqueModule library;
    if (choose == nullptr) {
        library.Reset(::LoadLibraryW(L"commdlg.dll"));
        choose = FindFunction<Chooser>(library.get(), kName);
    }
    if (choose == nullptr) {
        choose = FindSystemFunction<Chooser>(MAKEINTRESOURCEW(kNumberInCoredll));
    }
    if (choose == nullptr) {
        return FileChoice::kNoChooser;
    }
    return choose(&request) ? FileChoice::kChosen : FileChoice::kNone;
}

}  // namespace tolvenar
