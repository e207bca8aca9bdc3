// trim: a new pair with only the states that are kept. On the device storages only grow.
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>

#include "pc/command/commands.h"
#include "pc/command/interrupt.h"
#include "pc/command/json.h"
#include "pc/command/opened.h"
#include "pc/command/progress_line.h"
#include "pc/storage/folder_writer.h"
#include "pc/storage/kept_states.h"
#include "pc/storage/trim_plan.h"

namespace tolvenar::pc {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kChunkBytes = 64 * 1024;

bool CopyPieces(StoredPair& pair, const TrimPlan& plan, ProgressLine& progress,
                const FolderWriter::Take& take) {
    std::vector<char> chunk(kChunkBytes);
    for (const TrimPlan::Piece& piece : plan.pieces) {
        pair.reader().Expect(piece.offset, piece.bytes);
        for (std::uint32_t done = 0; done < piece.bytes;) {
            const std::uint32_t bytes = std::min(kChunkBytes, piece.bytes - done);
            std::uint32_t read = 0;
            if (IsInterrupted() ||
                !pair.reader().ReadUpTo(piece.offset + done, chunk.data(), bytes, read) ||
                read != bytes || !take({chunk.data(), bytes})) {
                return false;
            }
            done += bytes;
            progress.Add(bytes);
        }
    }
    return true;
}

void Write(StoredPair& pair, const TrimPlan& plan, const fs::path& stem, Console& console) {
    const InterruptWatch watch;
    FolderWriter folder(stem.has_parent_path() ? stem.parent_path().string() : ".");
    ProgressLine progress(console, "trim", plan.storage_bytes);
    const std::string name = stem.filename().string();
    std::string failure = folder.WriteFile({name + ".sav"}, {}, [&](const auto& take) {
        return CopyPieces(pair, plan, progress, take);
    });
    if (!failure.empty()) {
        throw Failure(ExitCode::kCannot, stem.string() + ".sav: " + failure);
    }
    failure = folder.WriteFile({name + ".jrn"}, {}, [&](const auto& take) {
        return take({reinterpret_cast<const char*>(plan.journal.data()),
                     plan.journal.size() * sizeof(ObjectRecord)});
    });
    if (!failure.empty()) {
        fs::remove(stem.string() + ".sav");
        throw Failure(ExitCode::kCannot, stem.string() + ".jrn: " + failure);
    }
}

// Nobody should find out on a device that a new pair is wrong.
void Prove(StoredPair& pair, const std::vector<State>& kept, const fs::path& stem) {
    StoredPair trimmed(FindPair(stem.string() + ".sav"));
    if (!IsTrimOf(trimmed, pair, kept)) {
        fs::remove(stem.string() + ".jrn");
        fs::remove(stem.string() + ".sav");
        throw Failure(ExitCode::kCannot,
                      "the new pair does not hold what the old one does, and "
                      "was taken away again");
    }
}

void PrintText(const StoredPair& pair, const TrimPlan& plan, const std::vector<State>& kept,
               Console& console) {
    for (std::size_t i = 0; i < kept.size(); ++i) {
        console.Line(fmt::format("state {} is state {} now, made {}", kept[i].number, i + 1,
                                 LocalText(kept[i].made)));
    }
    console.Line(fmt::format("{} of {} states, {} of {} bytes", kept.size(), pair.states().size(),
                             plan.storage_bytes, pair.sizes().storage));
}

void PrintJson(const TrimPlan& plan, const std::vector<State>& kept, const Options& options,
               Console& console) {
    Json json;
    json["to"] = options.file;
    json["dry_run"] = options.dry_run;
    json["states"] = Json::array();
    for (std::size_t i = 0; i < kept.size(); ++i) {
        json["states"].push_back({{"old", kept[i].number}, {"new", i + 1}});
    }
    json["storage_bytes"] = plan.storage_bytes;
    json["journal_bytes"] = plan.journal.size() * sizeof(ObjectRecord);
    console.Line(json.dump(2));
}

}  // namespace

ExitCode RunTrim(const Options& options, Console& console) {
    const std::unique_ptr<StoredPair> pair = OpenWhole(options.storage, console);
    if (!pair->list_is_sound()) {
        throw Failure(ExitCode::kDamaged, "a damaged storage is not trimmed: nothing was written");
    }
    const std::vector<State> kept = ChooseStates(*pair, options.keep);
    const TrimPlan plan = PlanTrim(*pair, kept);
    if (!options.dry_run) {
        const fs::path stem = StemOf(options.file);
        Write(*pair, plan, stem, console);
        Prove(*pair, kept, stem);
    }
    if (options.json) {
        PrintJson(plan, kept, options, console);
    } else {
        PrintText(*pair, plan, kept, console);
    }
    return ExitCode::kDone;
}

}  // namespace tolvenar::pc
