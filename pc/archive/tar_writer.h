// A tar file (pax) that is written as it comes, into whatever takes bytes. The program for Windows
// makes none: there it is a Failure.
#pragma once

#include <memory>

#include "pc/storage/file_sink.h"

struct archive;

namespace tolvenar::pc {

class TarWriter final : public FileSink {
public:
    // What has no time of its own gets `usual_time`. A Failure without memory.
    TarWriter(Take take, FileTime usual_time);
    ~TarWriter() override;

    std::string MakeFolder(const std::vector<std::string>& components) override;
    // A file that was begun and cannot be ended ends the archive: that is a Failure, as is a `take`
    // that refuses.
    std::string WriteFile(const std::vector<std::string>& components, FileTime time,
                          std::uint64_t bytes, const Fill& fill) override;
    void Finish();

private:
    void WriteHead(const std::vector<std::string>& components, FileTime time, bool is_folder,
                   std::uint64_t bytes);
    void Check(int result) const;

    Take take_;
    const FileTime usual_time_;
    archive* const archive_;
};

}  // namespace tolvenar::pc
