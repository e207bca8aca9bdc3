// Chooses cases, runs them and counts what came of them.
#pragma once

#include <iosfwd>
#include <map>
#include <string>

#include "tests/damage/stage.h"

namespace tolvenar {

struct Choice {
    std::string kind;   // empty: all
    std::string scene;  // empty: all
    std::string only;   // one case, as a finding names it: "changed/sav-bit/4711", with its seed
    std::size_t every = 1;   // about one case of so many
    std::size_t most = 0;    // at most so many of each kind in each scene; 0: no limit
    std::uint32_t seed = 0;  // which ones, and of which storage: see Stage
    std::size_t worker = 0;  // of so many, each of which runs its share
    std::size_t workers = 1;
    std::string note;  // a host file that names the case that runs; empty: none
};

// "every=7 kind=sav-bit …"; false when a word is none of these.
bool ReadChoice(const std::string& words, Choice& choice);

// How often each verdict was met, by damage and scene. What is an exception has rows of its own,
// whose names have it in brackets.
class Table {
public:
    using Row = std::array<std::size_t, kVerdicts>;
    void Count(const std::string& damage, const std::string& scene, Verdict verdict);
    // Of rows that are no exception, those of findings.
    std::size_t Findings() const;
    std::size_t Cases() const;
    std::size_t Cases(Verdict verdict) const;
    void Print(std::ostream& out) const;

private:
    std::map<std::pair<std::string, std::string>, Row> rows_;
};

class Campaign {
public:
    Campaign(Stage& stage, const Choice& choice, std::ostream& out)
        : stage_(stage), choice_(choice), out_(out) {}
    // Tells each finding as it is met.
    Table Run();

private:
    void RunKind(const Scene& scene, const DamageKind& kind);
    void RunCase(const Scene& scene, const DamageKind& kind, std::size_t index);
    bool IsChosen(const std::string& name, std::size_t index, std::size_t count) const;
    void Tell(const std::string& name, const Damaged& damaged, const char* exception,
              const Scene& scene, const Stage::Result& result, Verdict verdict);

    Stage& stage_;
    const Choice& choice_;
    std::ostream& out_;
    Table table_;
    std::size_t met_ = 0;
};

}  // namespace tolvenar
