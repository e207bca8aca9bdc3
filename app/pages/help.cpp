#include "app/pages/help.h"

#include "app/operations/messages.h"
#include "app/operations/requests.h"
#include "app/pages/page.h"
#include "platform/processes.h"

namespace tolvenar {
namespace {

constexpr wchar_t kViewer[] = L"\\Windows\\peghelp.exe";

struct Section {
    int index;
    const wchar_t* argument;
};
// The about page has the contents, as the general help does.
constexpr Section kSections[] = {
    {kGeneralHelp, L"tolvenar.htc"},
    {kBackupPage, L"tolvenar_all.htp#tolvenar_manual_backup"},
    {kRestorePage, L"tolvenar_all.htp#tolvenar_normal_restore"},
    {kAdvancedPage, L"tolvenar_all.htp#tolvenar_advanced_restore"},
    {kStoragePage, L"tolvenar_all.htp#tolvenar_option_storage"},
    {kOptionsPage, L"tolvenar_all.htp#tolvenar_options_content"},
    {kAboutPage, L"tolvenar.htc"},
};

const wchar_t* ArgumentOf(int index) {
    for (const Section& section : kSections) {
        if (section.index == index) {
            return section.argument;
        }
    }
    return nullptr;
}

}  // namespace

void ShowHelp(const Application& app, int index) {
    const wchar_t* argument = ArgumentOf(index);
    if (argument == nullptr) {
        return;
    }
    if (WhyRefused(app, Wish::kShowHelp) != Refusal::kNone) {
        ShowInstallationMissing(app.main_dialog);
        return;
    }
    StartProgram(kViewer, argument);
}

}  // namespace tolvenar
