#include "app/operations/card_wait.h"

#include "platform/win32.h"

#include "platform/keep_awake.h"
#include "platform/text.h"

namespace tolvenar {
namespace {

constexpr int kTries = 30;
constexpr DWORD kTryMs = 500;

bool IsFolder(const char16_t* path) {
    const DWORD attributes = ::GetFileAttributesW(Wide(path));
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace

void WaitForStorageFolder(const char16_t* path) {
    StorageLocation location;
    if (!SplitStoragePath(path, location) || location.folder[0] == 0) {  // the root is always there
        return;
    }
    for (int i = 0; i < kTries && !IsFolder(location.folder); ++i) {
        StayAwake();
        ::Sleep(kTryMs);
    }
}

}  // namespace tolvenar
