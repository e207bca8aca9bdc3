#include "app/pages/storage_notes.h"

#include "app/operations/storage_files.h"
#include "platform/resource_text.h"
#include "platform/text.h"
#include "res/resource.h"
#include "storage/files/card_space.h"

namespace tolvenar {

static_assert(kResourceTextUnits <= kSettingPathUnits);

// The weightiest first: what has no line of the two is left out.
StorageNotes::StorageNotes(const Application& app, bool is_open) : app_(app) {
    if (StorageFolderIsFixed()) {
        AddFixedFolder(is_open);
    }
    if (is_open) {
        AddOpenStorage();
    }
}

void StorageNotes::Add(const wchar_t* text) {
    if (count_ < kLines) {
        ::wcscpy(lines_[count_++], text);
    }
}

// The folder of an open storage is shown above.
void StorageNotes::AddFixedFolder(bool is_open) {
    Add(ResourceText(app_.instance, IDS_STORAGE_FIXED_FOLDER).text());
    if (!is_open) {
        char16_t folder[kSettingPathUnits];
        ReadStorageFolder(folder);
        Add(Wide(folder));
    }
}

void StorageNotes::AddOpenStorage() {
    const StorageNames& names = app_.storage.names;
    if (!IsOnMountedCard(names.sav)) {
        Add(ResourceText(app_.instance, IDS_STORAGE_IN_MEMORY).text());
    }
    if (StorageIsWriteProtected(names)) {
        Add(ResourceText(app_.instance, IDS_STORAGE_PROTECTED).text());
    }
    Add(ResourceText(app_.instance, IDS_BROWSE_EFFECT).text());
}

}  // namespace tolvenar
