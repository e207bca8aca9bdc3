// Writes the files of a new pair.
#pragma once

#include <filesystem>

#include "pc/command/console.h"
#include "pc/storage/pair_plan.h"

namespace tolvenar::pc {

// `reader` reads the old storage file. Nothing that is there is replaced; a Failure when anything
// could not be written, and then there is neither file.
void WritePair(StorageReader& reader, const PairPlan& plan, const std::filesystem::path& stem,
               const char* what, Console& console);
void RemovePair(const std::filesystem::path& stem);

}  // namespace tolvenar::pc
