// Writes files below one folder of this machine and nowhere else: no link is followed, nothing that
// is there is replaced, and no half file stands under its final name.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "pc/text/file_time.h"

namespace tolvenar::pc {

class FolderWriter {
public:
    // Makes the folder when it is not there. A Failure when it cannot be made or opened.
    explicit FolderWriter(const std::string& root);
    ~FolderWriter();
    FolderWriter(const FolderWriter&) = delete;
    FolderWriter& operator=(const FolderWriter&) = delete;

    // Both give why it was not done, or an empty text.
    std::string MakeFolder(const std::vector<std::string>& components);
    // `fill` is called with what takes the file's bytes and is false when it must not be kept.
    using Take = std::function<bool(std::string_view bytes)>;
    std::string WriteFile(const std::vector<std::string>& components, FileTime time,
                          const std::function<bool(const Take& take)>& fill);

private:
    class System;
    std::unique_ptr<System> system_;
};

}  // namespace tolvenar::pc
