#include "pc/archive/tar_writer.h"
#include "pc/text/failure.h"

namespace tolvenar::pc {

TarWriter::TarWriter(Take take, FileTime usual_time)
    : take_(std::move(take)), usual_time_(usual_time), archive_(nullptr) {
    throw Failure(
        ExitCode::kCannot,
        "the program for Windows writes no tar files: take extract, and export reg and json");
}

TarWriter::~TarWriter() = default;

std::string TarWriter::MakeFolder(const std::vector<std::string>&) { return {}; }

std::string TarWriter::WriteFile(const std::vector<std::string>&, FileTime, std::uint64_t,
                                 const Fill&) {
    return {};
}

void TarWriter::Finish() {}

}  // namespace tolvenar::pc
