#include "app/pages/page_table.h"

#include "app/pages/about_page.h"
#include "app/pages/backup_page.h"
#include "app/pages/options_page.h"
#include "app/pages/restore_page.h"
#include "app/pages/storage_page.h"

namespace tolvenar {

std::unique_ptr<Page> MakePage(int index, Application& app, Frame& frame) {
    switch (index) {
        case kBackupPage: return std::unique_ptr<Page>(new BackupPage(app, frame));
        case kRestorePage: return std::unique_ptr<Page>(new RestorePage(app, frame));
        case kStoragePage: return std::unique_ptr<Page>(new StoragePage(app, frame));
        case kOptionsPage: return std::unique_ptr<Page>(new OptionsPage(app, frame));
        case kAboutPage: return std::unique_ptr<Page>(new AboutPage(app, frame));
        default: return nullptr;
    }
}

int OwnerOfPage(int index) { return index == kAdvancedPage ? kRestorePage : index; }

}  // namespace tolvenar
