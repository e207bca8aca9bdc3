// Figures and tables of a page.
#include "pc/report/sections.h"

#include <filesystem>
#include <fmt/format.h>

#include "pc/text/html.h"
#include "pc/text/sizes.h"
#include "pc/text/utf.h"
#include "storage/format/storage_header.h"

namespace tolvenar::pc {
namespace {

void WriteTile(Output& out, const char* name, const std::string& figure) {
    out.Write(fmt::format("<div><dt>{}</dt><dd>{}</dd></div>\n", name, HtmlOf(figure)));
}

void WriteVerdict(Output& out, const ReportData& data) {
    if (data.is_sound()) {
        out.Write(
            "<p class=verdict>Every block and all contents were proved: no errors were "
            "found.</p>\n");
        return;
    }
    out.Write(fmt::format(
        "<p class=\"verdict bad\">Errors were found: {} objects and {} states\u2019 own blocks are "
        "damaged{}. <a href=\"#failures\">What failed</a></p>\n",
        data.damaged, data.damaged_states,
        data.list_is_sound ? "" : ", and the journal is not certain"));
}

std::string CellOf(const char* name, const std::string& html, const char* look = "") {
    return fmt::format("<td{} data-name=\"{}\">{}</td>", look, name, html);
}

constexpr const char* kNumber = " class=number";

std::string LinkTo(const std::string& prefix, std::uint16_t state, const std::string& text) {
    return fmt::format("<a href=\"{}{}\">{}</a>", HtmlOf(prefix), state, text);
}

}  // namespace

std::u16string NameOf(const StoredPair& pair) {
    return ToUtf16(std::filesystem::u8path(pair.files().sav).filename().u8string());
}

void WriteHead(Output& out, const StoredPair& pair, const ReportData& data) {
    const StorageHeader& header = pair.header();
    out.Write(fmt::format(
        "<header>\n<h1>{}</h1>\n<p class=soft>{} \u00B7 {} \u00B7 Windows CE {}.{:02} \u00B7 "
        "storage of {}</p>\n",
        HtmlName(header.deviceName), HtmlOf(NameOf(pair)),
        HtmlOf(ProcessorName(header.processorType)), header.osMajor, header.osMinor,
        LocalText(FileTime::Of(header.created_low, header.created_high))));
    if (header.description[0] != 0) {
        out.Write("<p>" + HtmlLines(header.description) + "</p>\n");
    }
    WriteVerdict(out, data);
    out.Write("<dl class=tiles>\n");
    WriteTile(out, "States", std::to_string(data.states.size()));
    if (!data.states.empty()) {
        WriteTile(out, "Last state", LocalText(data.states.back().state.made).substr(0, 10));
        WriteTile(out, "Objects in it", std::to_string(data.states.back().count.objects));
    }
    WriteTile(out, "Storage", SizeText(pair.sizes().storage));
    if (data.unclaimed_bytes != 0) {
        WriteTile(out, "Of no state", SizeText(data.unclaimed_bytes));
    }
    out.Write("</dl>\n</header>\n");
}

void WriteStates(Output& out, const ReportData& data, const Links& links) {
    out.Write(
        "<h2>States</h2>\n<table class=cards>\n<thead><tr><th>State<th>Made<th>Description"
        "<th class=number>Objects<th class=number>Stored<th class=number>Deleted"
        "<th class=number>Size</thead>\n<tbody>\n");
    for (auto state = data.states.rbegin(); state != data.states.rend(); ++state) {
        const std::uint16_t number = state->state.number;
        const std::string told = state->state.is_damaged ? "its own block is damaged"
                                                         : HtmlLines(state->state.description);
        out.Write(fmt::format(
            "<tr>{}{}{}{}{}{}{}</tr>\n",
            CellOf("State", LinkTo(links.state, number, std::to_string(number))),
            CellOf("Made", LocalText(state->state.made), " class=time"),
            CellOf("Description", told),
            CellOf("Objects", std::to_string(state->count.objects), kNumber),
            CellOf("Stored", LinkTo(links.changes, number, std::to_string(state->totals.added)),
                   kNumber),
            CellOf("Deleted", std::to_string(state->totals.deleted), kNumber),
            CellOf("Size", SizeText(state->totals.bytes), kNumber)));
    }
    out.Write("</tbody>\n</table>\n");
}

void WriteLargest(Output& out, const ReportData& data) {
    if (data.largest.empty()) {
        return;
    }
    out.Write(
        "<h2>Largest in the last state</h2>\n<table class=cards>\n<thead><tr><th>Object<th>Kind"
        "<th class=number>Size</thead>\n<tbody>\n");
    for (const LargeObject& object : data.largest) {
        out.Write(fmt::format("<tr><td>{}</td>{}{}</tr>\n", HtmlName(object.path),
                              CellOf("Kind", object.kind),
                              CellOf("Size", SizeText(object.bytes), kNumber)));
    }
    out.Write("</tbody>\n</table>\n");
}

void WriteMostChanged(Output& out, const ReportData& data, const Links& links) {
    if (data.most_changed.empty()) {
        return;
    }
    out.Write(
        "<h2>Most often changed</h2>\n<table class=cards>\n<thead><tr><th>Object<th>Kind"
        "<th class=number>Versions<th>Stored by state</thead>\n<tbody>\n");
    for (const ChangedObject& object : data.most_changed) {
        std::string states;
        for (const std::uint16_t state : object.stored_by) {
            states +=
                (states.empty() ? "" : ", ") + LinkTo(links.changes, state, std::to_string(state));
        }
        out.Write(fmt::format("<tr><td>{}</td>{}{}{}</tr>\n", HtmlName(object.path),
                              CellOf("Kind", object.kind),
                              CellOf("Versions", std::to_string(object.stored_by.size()), kNumber),
                              CellOf("Stored by", states)));
    }
    out.Write("</tbody>\n</table>\n");
}

void WriteFailures(Output& out, const ReportData& data) {
    out.Write("<h2 id=\"failures\">What failed</h2>\n");
    if (data.is_sound() && data.findings.empty()) {
        out.Write("<p>Nothing: whatever a checksum covers is whole.</p>\n");
        return;
    }
    if (!data.list_is_sound) {
        out.Write(
            "<p>The journal is damaged, or lacks a record: what belongs to which state is "
            "not certain.</p>\n");
    }
    out.Write("<ul>\n");
    for (const std::u16string& finding : data.findings) {
        out.Write("<li>" + HtmlName(finding) + "\n");
    }
    for (const Loss& loss : data.losses) {
        out.Write(fmt::format("<li class=d>damaged {}: {}, in states: {}{}\n", loss.damage,
                              HtmlName(loss.path), Ranges(loss.states),
                              loss.whole_in.empty()
                                  ? ""
                                  : "; a whole version is in states: " + Ranges(loss.whole_in)));
    }
    if (data.damaged > data.losses.size()) {
        out.Write(fmt::format("<li>and {} more, which \u201Ctolvenar verify\u201D tells\n",
                              data.damaged - data.losses.size()));
    }
    out.Write("</ul>\n");
}

}  // namespace tolvenar::pc
