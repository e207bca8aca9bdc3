#include "pc/command/new_pair.h"

#include <algorithm>
#include <string>
#include <vector>

#include "pc/command/interrupt.h"
#include "pc/command/progress_line.h"
#include "pc/storage/folder_writer.h"
#include "pc/text/failure.h"

namespace tolvenar::pc {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kChunkBytes = 64 * 1024;

bool CopyPieces(StorageReader& reader, const PairPlan& plan, ProgressLine& progress,
                const FolderWriter::Take& take) {
    std::vector<char> chunk(kChunkBytes);
    for (const PairPlan::Piece& piece : plan.pieces) {
        if (!piece.made.empty()) {
            if (!take(piece.made)) {
                return false;
            }
            continue;
        }
        reader.Expect(piece.offset, piece.bytes);
        for (std::uint32_t done = 0; done < piece.bytes;) {
            const std::uint32_t bytes = std::min(kChunkBytes, piece.bytes - done);
            std::uint32_t read = 0;
            if (IsInterrupted() ||
                !reader.ReadUpTo(piece.offset + done, chunk.data(), bytes, read) || read != bytes ||
                !take({chunk.data(), bytes})) {
                return false;
            }
            done += bytes;
            progress.Add(bytes);
        }
    }
    return true;
}

}  // namespace

void WritePair(StorageReader& reader, const PairPlan& plan, const fs::path& stem, const char* what,
               Console& console) {
    const InterruptWatch watch;
    FolderWriter folder(stem.has_parent_path() ? stem.parent_path().u8string() : ".");
    ProgressLine progress(console, what, plan.storage_bytes);
    const std::string name = stem.filename().u8string();
    std::string failure = folder.WriteFile({name + ".sav"}, {}, [&](const auto& take) {
        return CopyPieces(reader, plan, progress, take);
    });
    if (!failure.empty()) {
        throw Failure(ExitCode::kCannot, stem.u8string() + ".sav: " + failure);
    }
    failure = folder.WriteFile({name + ".jrn"}, {}, [&](const auto& take) {
        return take({reinterpret_cast<const char*>(plan.journal.data()),
                     plan.journal.size() * sizeof(ObjectRecord)});
    });
    if (!failure.empty()) {
        fs::remove(fs::u8path(stem.u8string() + ".sav"));
        throw Failure(ExitCode::kCannot, stem.u8string() + ".jrn: " + failure);
    }
}

void RemovePair(const fs::path& stem) {
    fs::remove(fs::u8path(stem.u8string() + ".jrn"));
    fs::remove(fs::u8path(stem.u8string() + ".sav"));
}

}  // namespace tolvenar::pc
