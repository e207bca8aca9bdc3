// A card that is not there yet: after a start or a resume its driver is unloaded and loaded again,
// and for some seconds programs do not reach it. What a tester does reaches it all the same.
//   setting "card.ready"   milliseconds that it takes, and the error of calls meanwhile (0 0)
//   f/b                    the host's time at which the card is back
#pragma once

#include <cstdint>

#include "simulator/files/file_table.h"

namespace sim::files {

// The device was off and is on again.
void Resume(Device& device);
// The error of calls to the card, 0 while it is there.
std::uint32_t CardAbsence(Device& device);
// The same for a node that a program has open.
std::uint32_t AbsenceOf(FileTable& table, const Node& node);

// Where a path leads a program: what is on a card that is away ends in its error.
Found FindAsProgram(FileTable& table, const Path& path);
Found FindAsProgram(FileTable& table, const wchar_t* path);
// Whether a search shows this node: with "path not found" for its error the card's folder is gone
// from the root, with any other one it stands there.
bool IsListed(FileTable& table, const Node& node);

// Throws std::runtime_error when it is no value of "card.ready".
void CheckCardReady(const std::string& value);

}  // namespace sim::files
