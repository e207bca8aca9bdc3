#include "pc/report/report.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fmt/format.h>

#include "pc/command/interrupt.h"
#include "pc/command/json.h"
#include "pc/command/opened.h"
#include "pc/report/page.h"
#include "pc/report/sections.h"
#include "pc/storage/differences.h"
#include "pc/storage/folder_writer.h"
#include "pc/text/html.h"

namespace tolvenar::pc {
namespace {

const Links kLinks = {"#changes-", "#changes-"};

// Takes what is written to a file that gets its name when it is whole.
class FileOutput final : public Output {
public:
    explicit FileOutput(const FolderWriter::Take& take) : take_(take) {}

private:
    bool Put(std::string_view bytes) override {
        waiting_ += bytes;
        return waiting_.size() < kWaitingBytes || Flush();
    }
    bool Flush() override {
        const bool is_taken = !IsInterrupted() && take_(waiting_);
        waiting_.clear();
        return is_taken;
    }

    static constexpr std::size_t kWaitingBytes = 64 * 1024;

    const FolderWriter::Take& take_;
    std::string waiting_;
};

// What each state changed, the newest first.
void WriteChanges(Output& out, StoredPair& pair, const ReportData& data) {
    out.Write("<h2>Differences</h2>\n");
    for (std::size_t i = data.states.size(); i-- > 0 && !out.failed() && !IsInterrupted();) {
        const std::uint16_t newer = data.states[i].state.number;
        const std::uint16_t older = i == 0 ? std::uint16_t{0} : data.states[i - 1].state.number;
        const std::vector<TreeLine> tree =
            BuildTree(pair, *FindDifferences(pair, older, newer), true);
        out.Write(fmt::format("<details class=card id=\"changes-{}\"><summary>{}{}</summary>\n",
                              newer,
                              older == 0 ? fmt::format("State {}, the first", newer)
                                         : fmt::format("State {} against {}", newer, older),
                              tree.empty() ? "" : CountsOf(tree.front())));
        WriteTree(out, tree);
        out.Write("</details>\n");
    }
}

void WriteReport(Output& out, StoredPair& pair, const ReportData& data) {
    BeginPage(out, ToUtf8(pair.header().deviceName) + ", " + ToUtf8(NameOf(pair)), InlineStyle());
    WriteHead(out, pair, data);
    out.Write("<main>\n");
    WriteTimeLine(out, data, kLinks);
    WriteGrowth(out, data);
    WriteStates(out, data, kLinks);
    WriteFailures(out, data);
    WriteChanges(out, pair, data);
    WriteLargest(out, data);
    WriteMostChanged(out, data, kLinks);
    out.Write("</main>\n<footer class=soft>Made by Tolvenar from the storage alone.</footer>\n");
    EndPage(out);
}

void ThrowIfInterrupted() {
    if (IsInterrupted()) {
        throw Failure(ExitCode::kCannot, "interrupted");
    }
}

void WriteFile(const std::string& file, StoredPair& pair, const ReportData& data) {
    const std::filesystem::path path = std::filesystem::u8path(file);
    FolderWriter writer(path.has_parent_path() ? path.parent_path().u8string() : ".");
    const std::string failure =
        writer.WriteFile({path.filename().u8string()}, {}, [&](const FolderWriter::Take& take) {
            FileOutput out(take);
            WriteReport(out, pair, data);
            return out.Finish();
        });
    if (!failure.empty()) {
        ThrowIfInterrupted();
        throw Failure(ExitCode::kCannot, file + ": " + failure);
    }
}

Json JsonOf(const ReportData& data, const std::string& file) {
    Json json;
    json["to"] = file;
    json["states"] = data.states.size();
    json["damaged"] = data.damaged;
    json["damaged_state_blocks"] = data.damaged_states;
    json["journal_is_sound"] = data.list_is_sound;
    return json;
}

ExitCode RunReport(const Options& options, Console& console) {
    if (options.json && options.file.empty()) {
        throw Failure(ExitCode::kUsage, "--json tells of a file: name it with -o");
    }
    const std::unique_ptr<StoredPair> pair = OpenWhole(options.storage, console);
    const InterruptWatch watch;
    const ReportData data = GatherReport(*pair, console);
    if (options.file.empty()) {
        WriteReport(console.out, *pair, data);
        ThrowIfInterrupted();
    } else {
        WriteFile(options.file, *pair, data);
    }
    if (options.json) {
        console.Line(JsonOf(data, options.file).dump(2));
    }
    return data.is_sound() ? ExitCode::kDone : ExitCode::kDamaged;
}

void AddReportOptions(CLI::App& app, Options& options) {
    AddStorageOfAllStates(app, options);
    app.add_option("-o,--output", options.file, "the page, a file that is not there yet");
}

}  // namespace

const Command kReportCommand = {"report", "tells of a storage on one page for a browser",
                                "tolvenar report Home.sav -o Home.html", AddReportOptions,
                                RunReport};

}  // namespace tolvenar::pc
