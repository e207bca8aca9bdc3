// The parts of a page that tell of a storage. Each stands under a heading of its own.
#pragma once

#include <string>
#include <vector>

#include "pc/command/console.h"
#include "pc/command/difference_tree.h"
#include "pc/report/report_data.h"

namespace tolvenar::pc {

// Where what is told of a state leads to: its number follows.
struct Links {
    std::string state;
    std::string changes;  // that it brought
};

// "Home.sav".
std::u16string NameOf(const StoredPair& pair);

// Device, verdict and the figures of the whole.
void WriteHead(Output& out, const StoredPair& pair, const ReportData& data);
// The states by their times.
void WriteTimeLine(Output& out, const ReportData& data, const Links& links);
// The size of the storage with each state.
void WriteGrowth(Output& out, const ReportData& data);
void WriteStates(Output& out, const ReportData& data, const Links& links);
void WriteLargest(Output& out, const ReportData& data);
void WriteMostChanged(Output& out, const ReportData& data, const Links& links);
// What is damaged, and what of it is whole elsewhere.
void WriteFailures(Output& out, const ReportData& data);

// Differences as the device's program shows them, each item to be opened.
void WriteTree(Output& out, const std::vector<TreeLine>& tree);
// "+2 −1 ±3".
std::string CountsOf(const TreeLine& line);

}  // namespace tolvenar::pc
