#include "app/page_table.h"

#include "app/backup_page.h"
#include "app/restore_page.h"

namespace tolvenar {

std::unique_ptr<Page> MakePage(int index, Application& app, Frame& frame) {
    switch (index) {
        case kBackupPage: return std::unique_ptr<Page>(new BackupPage(app, frame));
        case kRestorePage: return std::unique_ptr<Page>(new RestorePage(app, frame));
        default: return nullptr;
    }
}

int OwnerOfPage(int index) { return index == kAdvancedPage ? kRestorePage : index; }

}  // namespace tolvenar
