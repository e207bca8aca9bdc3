#include "tests/damage/campaign.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <sstream>

#include "simulator/host/host_files.h"
#include "tests/damage/exceptions.h"
#include "tests/support/text.h"

namespace tolvenar {
namespace {

constexpr std::size_t kMostLines = 8;  // of what a finding changed

// Spreads the chosen cases evenly without meeting the same bit of every byte.
std::uint32_t Mixed(std::size_t index, std::uint32_t seed) {
    auto mixed = static_cast<std::uint32_t>(index) * 0x9E3779B1u ^ (seed * 0x85EBCA6Bu);
    mixed = (mixed ^ mixed >> 15) * 0x2C1B3C6Du;
    mixed = (mixed ^ mixed >> 12) * 0x297A2D39u;
    return mixed ^ mixed >> 15;
}

std::size_t NumberIn(const std::string& text) {
    return static_cast<std::size_t>(std::strtoul(text.c_str(), nullptr, 10));
}

void TellLines(std::ostream& out, const std::vector<std::string>& lines) {
    for (std::size_t i = 0; i < std::min(lines.size(), kMostLines); ++i) {
        out << "    " << lines[i] << "\n";
    }
    if (lines.size() > kMostLines) {
        out << "    and " << lines.size() - kMostLines << " more\n";
    }
}

}  // namespace

bool ReadChoice(const std::string& words, Choice& choice) {
    std::istringstream in(words);
    for (std::string word; in >> word;) {
        const std::size_t sign = word.find('=');
        const std::string name = word.substr(0, sign);
        const std::string value = sign == word.npos ? "" : word.substr(sign + 1);
        if (name == "kind") {
            choice.kind = value;
        } else if (name == "scene") {
            choice.scene = value;
        } else if (name == "case") {
            choice.only = value;
        } else if (name == "every") {
            choice.every = std::max<std::size_t>(1, NumberIn(value));
        } else if (name == "most") {
            choice.most = NumberIn(value);
        } else if (name == "seed") {
            choice.seed = static_cast<std::uint32_t>(NumberIn(value));
        } else if (name == "worker") {
            choice.worker = NumberIn(value);
        } else if (name == "workers") {
            choice.workers = std::max<std::size_t>(1, NumberIn(value));
        } else if (name == "note") {
            choice.note = value;
        } else {
            return false;
        }
    }
    return true;
}

void Table::Count(const std::string& damage, const std::string& scene, Verdict verdict) {
    ++rows_[{damage, scene}][static_cast<std::size_t>(verdict)];
}

std::size_t Table::Findings() const {
    std::size_t findings = 0;
    for (const auto& [name, row] : rows_) {
        for (std::size_t i = 0; i < kVerdicts; ++i) {
            const bool counts = name.first.find('(') == std::string::npos;
            findings += counts && IsBad(static_cast<Verdict>(i)) ? row[i] : 0;
        }
    }
    return findings;
}

std::size_t Table::Cases() const {
    std::size_t cases = 0;
    for (const auto& [name, row] : rows_) {
        for (const std::size_t count : row) {
            cases += count;
        }
    }
    return cases;
}

std::size_t Table::Cases(Verdict verdict) const {
    std::size_t cases = 0;
    for (const auto& [name, row] : rows_) {
        cases += row[static_cast<std::size_t>(verdict)];
    }
    return cases;
}

void Table::Print(std::ostream& out) const {
    for (const auto& [name, row] : rows_) {
        out << "row|" << name.first << "|" << name.second;
        for (const std::size_t count : row) {
            out << "|" << count;
        }
        out << "\n";
    }
}

Table Campaign::Run() {
    for (const Scene& scene : stage_.scenes()) {
        for (const DamageKind& kind : kDamageTable) {
            const bool is_chosen = (choice_.scene.empty() || choice_.scene == scene.name) &&
                                   (choice_.kind.empty() || choice_.kind == kind.name);
            if (is_chosen) {
                RunKind(scene, kind);
            }
        }
    }
    return table_;
}

void Campaign::RunKind(const Scene& scene, const DamageKind& kind) {
    const std::size_t count = kind.count(stage_.storages().own);
    const std::string name = std::string(scene.name) + "/" + kind.name + "/";
    for (std::size_t index = 0; index < count; ++index) {
        if (IsChosen(name, index, count) && met_++ % choice_.workers == choice_.worker) {
            RunCase(scene, kind, index);
        }
    }
}

// Kinds of few cases run whole.
bool Campaign::IsChosen(const std::string& name, std::size_t index, std::size_t count) const {
    constexpr std::size_t kFew = 8;
    if (!choice_.only.empty()) {
        return choice_.only == name + std::to_string(index);
    }
    if (choice_.most != 0) {
        const std::size_t stride = std::max<std::size_t>(1, count / choice_.most);
        return count <= kFew || index % stride == Mixed(index / stride, choice_.seed) % stride;
    }
    return count <= kFew || Mixed(index, choice_.seed) % choice_.every == 0;
}

void Campaign::RunCase(const Scene& scene, const DamageKind& kind, std::size_t index) {
    const std::string name =
        std::string(scene.name) + "/" + kind.name + "/" + std::to_string(index);
    if (!choice_.note.empty()) {
        const std::wstring note(choice_.note.begin(), choice_.note.end());
        sim::host::WriteWhole(note, name + "\n");
    }
    const Damaged damaged = kind.make(stage_.storages(), index);
    const char* const exception = ExceptionOf(damaged);
    const Stage::Result result = stage_.Run(scene, damaged);
    const Verdict verdict = Judge(result.outcome, scene.before, result.wanted, result.after);
    const std::string row =
        exception == nullptr ? kind.name : std::string(kind.name) + " (" + exception + ")";
    table_.Count(row, scene.name, verdict);
    if (!choice_.only.empty() || (IsBad(verdict) && exception == nullptr)) {
        Tell(name, damaged, exception, scene, result, verdict);
    }
}

void Campaign::Tell(const std::string& name, const Damaged& damaged, const char* exception,
                    const Scene& scene, const Stage::Result& result, Verdict verdict) {
    out_ << kVerdictNames[static_cast<std::size_t>(verdict)] << " case=" << name
         << " seed=" << choice_.seed << "\n  " << damaged.what << ": " << DescribePlace(damaged)
         << (exception != nullptr ? std::string(" (") + exception + ")" : "") << "\n  state "
         << result.outcome.state << ", "
         << (result.outcome.began ? "code " + std::to_string(static_cast<int>(result.outcome.code))
                                  : "refused")
         << "; wanted -, after +:\n";
    TellLines(out_, tests::Differences(result.wanted.lines, result.after.lines));
    const auto lost =
        LostObjects(scene.before.objects, result.wanted.objects, result.after.objects);
    if (!lost.empty()) {
        out_ << "  lost:\n";
        TellLines(out_, lost);
    }
    out_ << "  log:\n";
    TellLines(out_, stage_.LogLines());
    out_.flush();
}

}  // namespace tolvenar
