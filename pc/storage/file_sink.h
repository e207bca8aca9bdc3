// Where exported files go: a folder of this machine, or an archive. Header only.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "pc/text/file_time.h"

namespace tolvenar::pc {

class FileSink {
public:
    using Take = std::function<bool(std::string_view bytes)>;
    using Fill = std::function<bool(const Take& take)>;

    virtual ~FileSink() = default;
    // Both give why it was not done, or an empty text. Names are safe ones.
    virtual std::string MakeFolder(const std::vector<std::string>& components) = 0;
    // `fill` is called with what takes the file's `bytes` bytes, and is false when it must not be
    // kept.
    virtual std::string WriteFile(const std::vector<std::string>& components, FileTime time,
                                  std::uint64_t bytes, const Fill& fill) = 0;
};

}  // namespace tolvenar::pc
