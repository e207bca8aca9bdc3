#include "tests/faults/fault_fixture.h"

#include "simulator/databases/database_store.h"
#include "simulator/gate/counters.h"
#include "simulator/gate/gate_file.h"
#include "simulator/gate/rules.h"
#include "simulator/host/attach.h"
#include "storage/opened/journal.h"

namespace tolvenar {
namespace {

using sim::databases::DatabaseStore;

constexpr long kNever = 1000000000;
constexpr std::size_t kStandingRules = 1;  // that of DeviceFolder
sim::Rule RuleFor(const tests::FaultRow& row, long first) {
    sim::Rule rule;
    rule.kind =
        row.kind == tests::FaultKind::kShort ? sim::RuleKind::kShort : sim::RuleKind::kFault;
    rule.function = row.function;
    rule.first = first;
    rule.value = static_cast<long>(row.error);
    return rule;
}

// The calls of a function that are made to fail: all of few; of many the first ones, every
// seventh behind them, and the last.
std::vector<long> Chosen(long count) {
    constexpr long kAllUpTo = 16;
    constexpr long kStride = 7;
    std::vector<long> chosen;
    for (long n = 1; n <= count; n += n < kAllUpTo ? 1 : kStride) {
        chosen.push_back(n);
    }
    if (count > 0 && chosen.back() != count) {
        chosen.push_back(count);
    }
    return chosen;
}

// Of all attachments that this process has made; only the last one changes.
long HeapBlocks(const sim::GateFile& gate) {
    long blocks = 0;
    for (const sim::GateProcess& process : gate.processes) {
        blocks += process.gauges[static_cast<std::size_t>(sim::Gauge::kHeapBlocks)];
    }
    return blocks;
}

}  // namespace

void FaultTest::MakeDevice(const std::function<void()>& prepare) {
    folder_.Attach();
    sim::files::MountCard(device().sim());
    tests::StepClock(device());
    prepare();
    device().MakeFolder(L"\\Storage Card\\Backup");
    SetStorageSettings();
    device().PutFile(L"\\Docs\\a.txt", "first");
    device().PutFile(L"\\Docs\\Deep\\b.txt", "second");
    device().PutFile(L"\\kept.txt", "never changed");
    device().PutFile(L"\\empty", "");
    SetValue(HKEY_CURRENT_USER, L"Test", L"Kept", REG_DWORD, std::string(4, '\1'));
    SetValue(HKEY_CURRENT_USER, L"Test\\Deep", L"Number", REG_DWORD, std::string(4, '\2'));
    SetValue(HKEY_LOCAL_MACHINE, L"Test", L"", REG_SZ, Terminated(u"text"));
    MakeDatabase(L"Contacts");
    AddRecord(L"Contacts", {{kNumber, 1}, {kName, 0, L"Ann"}, {kBytes, 0, {}, "abc"}});
    AddRecord(L"Contacts", {{kNumber, 2}, {kName, 0, L"Bob"}});
    MakeDatabase(L"Kept");
    AddRecord(L"Kept", {{kNumber, 3}});
    ASSERT_TRUE(QuietParts().Make());
}

void FaultTest::ChangeDevice(int round) {
    const std::wstring name = L"\\New" + std::to_wstring(round);
    device().PutFile(L"\\Docs\\a.txt", "changed " + std::to_string(round));
    device().Remove(round % 2 == 1 ? L"\\Docs\\Deep" : L"\\New1");
    device().PutFile(name + L"\\n.txt", "new");
    const std::string number(4, static_cast<char>(0x10 + round));
    SetValue(HKEY_CURRENT_USER, L"Test\\Deep", L"Number", REG_DWORD, number);
    SetValue(HKEY_CURRENT_USER, L"Test", name.substr(1), REG_BINARY, number);
    SetValue(HKEY_CLASSES_ROOT, L"." + name.substr(1), L"v", REG_BINARY, "xyz");
    ::RegDeleteKeyW(HKEY_LOCAL_MACHINE, L"Test");

    DatabaseStore store(device().sim());
    const std::uint32_t contacts = store.ByName(u"Contacts")->oid;
    const std::vector<std::uint32_t> records = store.Records(contacts);
    WriteRecord(L"Contacts", records.at(0), {{kNumber, static_cast<std::uint32_t>(100 + round)}});
    store.DeleteRecord(contacts, records.at(1));
    AddRecord(L"Contacts", {{kNumber, static_cast<std::uint32_t>(200 + round)}});
    MakeDatabase(name.substr(1), 5);
    AddRecord(name.substr(1), {{kName, 0, L"in a new database"}});
    if (const auto older = store.ByName(u"New1"); older && round > 1) {
        store.Delete(older->oid);
    }
}

tests::Contents FaultTest::BackUp() {
    QuietParts parts;
    EXPECT_TRUE(parts.Open());
    EXPECT_EQ(Done(), parts.Backup());
    return Now();
}

std::uint32_t FaultTest::BackUpAgain() {
    QuietParts parts;
    EXPECT_TRUE(parts.Open());
    const ResultCode code = parts.Backup().code;
    EXPECT_TRUE(code == ResultCode::kSuccess || code == ResultCode::kNoDifference);
    return HighestStateNumber(parts.storage_.journal.get());
}

ResultCode FaultTest::Restore(std::uint32_t state) {
    QuietParts parts;
    EXPECT_TRUE(parts.Open());
    return parts.Restore(state).code;
}

bool FaultTest::IsCutJournal(const FaultRun& run, const std::string& whole) {
    const auto records = static_cast<long>(whole.size() / sizeof(ObjectRecord));
    const long written = run.number - 1 - (run.count - records);
    if (std::string("WriteFile") != run.row.function || written < 0) {
        return false;
    }
    const std::size_t bytes = static_cast<std::size_t>(written) * sizeof(ObjectRecord);
    EXPECT_TRUE(Content(kJournal) == whole.substr(0, bytes));
    return true;
}

void FaultTest::KeepDevice() { copy_ = folder_.Keep(); }

// From arming on nothing of the test may allocate, since its blocks come from the program's heap:
// the rules are read and taken away in the mapped file itself.
ResultCode FaultTest::RunOnce(const Operation& operation, bool opens_itself,
                              const std::vector<sim::Rule>& rules) {
    const sim::MappedGate gate(folder_.folder());
    met_.assign(sim::kRuleCount, {});
    const long blocks_before = HeapBlocks(*gate);
    ResultCode code{};
    {
        QuietParts parts;
        EXPECT_TRUE(opens_itself || parts.Open());
        for (const sim::Rule& rule : rules) {
            sim::AddRule(device().sim(), rule);
        }
        for (sim::GateRule& rule : gate->rules) {
            rule.seen = 0;
        }
        code = operation(parts);
        for (std::size_t i = 0; i < sim::kRuleCount; ++i) {
            met_[i] = {gate->rules[i].seen, gate->rules[i].fired};
            gate->rules[i].state = sim::kRuleFree;
        }
        for (volatile long& watch : gate->watch) {
            watch = 0;
        }
    }
    left_something_ = HeapBlocks(*gate) != blocks_before || sim::host::OpenHandlesOfCoredll() != 0;
    return code;
}

std::vector<long> FaultTest::CountCalls(const FaultRows& rows, const Operation& operation,
                                        bool opens_itself) {
    std::vector<sim::Rule> rules;
    for (const tests::FaultRow& row : rows) {
        rules.push_back(RuleFor(row, kNever));
    }
    sim::ClearCounters(device().sim());
    RunOnce(operation, opens_itself, rules);
    for (const auto& [function, calls] : sim::TotalCalls(device().sim())) {
        bool known = tests::CannotFail(function.c_str());
        for (const tests::FaultRow& row : tests::FaultRows()) {
            known = known || function == row.function;
        }
        EXPECT_TRUE(known) << function << " is called and never made to fail";
    }
    std::vector<long> counts;
    for (std::size_t i = 0; i < rules.size(); ++i) {
        counts.push_back(met_[i + kStandingRules].seen);
    }
    return counts;
}

std::string FaultTest::JournalAfter(const Operation& operation) {
    PutBack();
    RunOnce(operation, false, {});
    const std::string journal = Content(kJournal);
    Detach();
    return journal;
}

FaultRun FaultTest::RunWithFault(const Operation& operation, bool opens_itself,
                                 const tests::FaultRow& row, long number, long count) {
    FaultRun run{row, number, count};
    run.code = RunOnce(operation, opens_itself, {RuleFor(row, number)});
    run.has_fired = met_[kStandingRules].fired != 0;
    EXPECT_TRUE(!left_something_ || row.kind == tests::FaultKind::kCloses)
        << "handles or memory were left";
    Detach();  // closes what a call that could not close left open
    folder_.Attach();
    return run;
}

void FaultTest::FailEachCall(const Operation& operation,
                             const std::function<void(FaultRun&)>& check, bool opens_itself) {
    MeetEachCall(tests::FaultRows(), operation, check, opens_itself);
}

void FaultTest::ShortenEachCall(const Operation& operation,
                                const std::function<void(FaultRun&)>& check, bool opens_itself) {
    MeetEachCall(tests::ShortRows(), operation, check, opens_itself);
}

void FaultTest::MeetEachCall(const FaultRows& rows, const Operation& operation,
                             const std::function<void(FaultRun&)>& check, bool opens_itself) {
    PutBack();
    const std::vector<long> counts = CountCalls(rows, operation, opens_itself);
    Detach();
    for (std::size_t i = 0; i < counts.size(); ++i) {
        for (const long number : Chosen(counts[i])) {
            SCOPED_TRACE(std::string(rows[i].function) + " " + std::to_string(number) + " of " +
                         std::to_string(counts[i]));
            PutBack();
            FaultRun run = RunWithFault(operation, opens_itself, rows[i], number, counts[i]);
            EXPECT_TRUE(run.has_fired) << "the call never failed";
            check(run);
            Detach();
        }
    }
}

}  // namespace tolvenar
