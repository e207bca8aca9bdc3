// info: what a storage is, and the states that it holds.
#include <algorithm>
#include <fmt/format.h>

#include "pc/command/commands.h"
#include "pc/command/json.h"
#include "pc/command/opened.h"

namespace tolvenar::pc {
namespace {

StateTotals TotalsOf(const StorageTotals& totals, const State& state) {
    const auto found = totals.states.find(state.number);
    return found == totals.states.end() ? StateTotals{} : found->second;
}

Json JsonOf(const State& state, const StateTotals& totals) {
    Json json;
    json["state"] = state.number;
    json["made"] = UtcText(state.made);
    AddText(json, "description", state.description);
    json["added"] = totals.added;
    json["deleted"] = totals.deleted;
    json["bytes"] = totals.bytes;
    json["damaged"] = state.is_damaged;
    return json;
}

void PrintJson(StoredPair& pair, const StorageTotals& totals, Console& console) {
    const StorageHeader& header = pair.header();
    Json json;
    json["storage"] = pair.files().sav;
    json["journal"] = pair.reads_temporary() ? pair.files().temporary : pair.files().journal;
    json["storage_bytes"] = pair.sizes().storage;
    json["journal_bytes"] = pair.sizes().journal;
    AddText(json, "device", header.deviceName);
    json["processor"] = ToUtf8(ProcessorName(header.processorType));
    json["processor_type"] = header.processorType;
    json["system"] = fmt::format("{}.{:02}", header.osMajor, header.osMinor);
    json["format"] = fmt::format("{}.{}", header.formatFamily, header.formatRevision);
    json["created"] = UtcText(FileTime::Of(header.created_low, header.created_high));
    AddText(json, "description", header.description);
    json["states"] = Json::array();
    for (const State& state : pair.states()) {
        json["states"].push_back(JsonOf(state, TotalsOf(totals, state)));
    }
    json["records"] = pair.journal().CountRecords();
    json["unreferenced_bytes"] = totals.unclaimed_bytes;
    json["damaged_blocks"] = totals.damaged_blocks;
    json["findings_in_journal"] = pair.check().findings_in_list();
    console.Line(json.dump(2));
}

// A description of several lines as one.
std::string OneLine(std::u16string text) {
    std::replace_if(
        text.begin(), text.end(), [](char16_t unit) { return unit == u'\r' || unit == u'\n'; },
        u' ');
    return Printable(text);
}

void PrintHead(const StoredPair& pair, Console& console) {
    const StorageHeader& header = pair.header();
    const auto row = [&console](const char* name, const std::string& text) {
        console.Line(fmt::format("{:<12} {}", name, text));
    };
    row("Storage", fmt::format("{}, {} bytes", pair.files().sav, pair.sizes().storage));
    row("Journal",
        fmt::format("{}, {} records",
                    pair.reads_temporary() ? pair.files().temporary : pair.files().journal,
                    pair.journal().CountRecords()));
    row("Device", Printable(header.deviceName));
    row("Processor",
        fmt::format("{} ({})", ToUtf8(ProcessorName(header.processorType)), header.processorType));
    row("System", fmt::format("Windows CE {}.{:02}", header.osMajor, header.osMinor));
    row("Created", LocalText(FileTime::Of(header.created_low, header.created_high)));
    if (header.description[0] != 0) {
        row("Description", OneLine(header.description));
    }
}

void PrintStates(const StoredPair& pair, const StorageTotals& totals, Console& console) {
    console.Line("");
    console.Line("State  Made                    Added  Deleted         Bytes  Description");
    StateTotals sum;
    for (const State& state : pair.states()) {
        const StateTotals of_state = TotalsOf(totals, state);
        sum.added += of_state.added;
        sum.deleted += of_state.deleted;
        sum.bytes += of_state.bytes;
        const std::string told =
            state.is_damaged ? "(its own block is damaged)" : OneLine(state.description);
        console.Line(fmt::format("{:>5}  {:<19} {:>9} {:>8} {:>13}  {}", state.number,
                                 LocalText(state.made), of_state.added, of_state.deleted,
                                 of_state.bytes, told));
    }
    console.Line(fmt::format("{:>5}  {:<19} {:>9} {:>8} {:>13}", "all", "", sum.added, sum.deleted,
                             sum.bytes));
    if (totals.unclaimed_bytes != 0) {
        console.Line(
            fmt::format("Nothing refers to {} bytes: what an ended backup or a failed item left.",
                        totals.unclaimed_bytes));
    }
}

}  // namespace

ExitCode RunInfo(const Options& options, Console& console) {
    const std::unique_ptr<StoredPair> pair = OpenWhole(options.storage, console);
    const StorageTotals& totals = pair->totals();
    if (options.json) {
        PrintJson(*pair, totals, console);
    } else {
        PrintHead(*pair, console);
        PrintStates(*pair, totals, console);
    }
    if (totals.damaged_blocks != 0) {
        console.Tell(fmt::format("{} blocks are damaged: \"tolvenar verify\" tells which",
                                 totals.damaged_blocks));
        return ExitCode::kDamaged;
    }
    return ListVerdict(*pair);
}

}  // namespace tolvenar::pc
