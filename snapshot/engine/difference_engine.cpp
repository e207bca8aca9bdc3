#include "snapshot/engine/difference_engine.h"

#include "platform/text.h"
#include "snapshot/compare/difference.h"
#include "snapshot/compare/own_files.h"
#include "snapshot/compare/prune.h"
#include "snapshot/compare/state_identifiers.h"
#include "snapshot/engine/descriptions.h"
#include "snapshot/engine/program_values.h"
#include "snapshot/scan/database_scanner.h"
#include "snapshot/scan/file_scanner.h"
#include "snapshot/scan/registry_scanner.h"
#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

// Spelled so; the log's readers know it.
constexpr char16_t kNoList[] = u"Could't create journal";

struct Hive {
    std::uint32_t root;
    const char16_t* progress_text;
};

constexpr Hive kHives[] = {
    {kHiveClassesRoot, u"Scanning HKCR registry entry..."},
    {kHiveCurrentUser, u"Scanning HKCU registry entry..."},
    {kHiveLocalMachine, u"Scanning HKLM registry entry..."},
    {kHiveUsers, u"Scanning HKU registry entry..."},
};

// What the lists have is told: so much has found room.
void LogLackOfMemory(const OpenedStorage& storage) {
    TextBuffer<64> text;
    text.Append(u"Not enough memory, objects found: ");
    text.AppendUnsigned(static_cast<std::uint32_t>(storage.newer->CountRecords()));
    LogMessage(text.text(), u"FindDifference", kLogError);
}

void ScanObjectStoreFiles(Engine& engine) {
    const OwnFiles own_files(engine.storage.names);
    FileScan scan{*engine.storage.newer, engine.info, own_files.names(), engine.storage.left_out};
    ScanFiles(scan, u"", MakeFileObject);
}

void ScanHives(Engine& engine, IdentifierHolders& holders) {
    RegistryScan scan{*engine.storage.newer, engine.info, engine.storage.registry_objects,
                      engine.storage.left_out, &holders};
    for (const Hive& hive : kHives) {
        engine.progress.ProgressStep(hive.progress_text);
        ScanRegistry(scan, hive.root, u"", MakeRegistryObject);
    }
}

// Scans the device into the newer list. `holders` have the identifiers of the older. False when
// memory was short.
bool ScanDevice(Engine& engine, IdentifierHolders& holders) {
    engine.progress.ProgressStep(u"Scanning files...");
    ScanObjectStoreFiles(engine);
    engine.storage.registry_objects.RegObjectClear();
    ScanHives(engine, holders);
    engine.progress.ProgressStep(u"Scanning databases...");
    DatabaseScan scan{*engine.storage.newer, engine.info, engine.databases,
                      engine.storage.left_out};
    ScanDatabases(scan, MakeDatabaseObject);
    return !engine.storage.left_out.lacks_memory();
}

// Compares the older list with the newer into the difference list, which is empty.
bool CompareLists(Engine& engine, InfoSource& info) {
    OpenedStorage& storage = engine.storage;
    engine.progress.ProgressStep(u"Finding differences...");
    if (!FindChanges(storage.older.get(), storage.newer.get(), *storage.difference, info)) {
        return false;
    }
    PruneDifferences(*storage.difference, kBackupPruning, info);
    return true;
}

// Makes `list` the object list of a stored state; number 0 is an empty one.
bool PrepareStateList(Engine& engine, std::unique_ptr<ObjectList>& list, std::uint32_t state,
                      InfoSource& info) {
    if (!ResetList(list)) {
        return false;
    }
    return state == 0 || BuildStateList(*list, *engine.storage.journal, state, info);
}

}  // namespace

int FindDifference(Engine& engine, std::uint32_t state) {
    OpenedStorage& storage = engine.storage;
    storage.left_out.Clear();
    Descriptions descriptions(engine);
    if (!descriptions.sav_file || storage.journal == nullptr) {
        return 0;
    }
    engine.progress.ProgressBegin(kDeviceSteps);
    engine.progress.ProgressStep(u"Preparing object list...");
    if (!PrepareStateList(engine, storage.older, state, descriptions.source)) {
        return 0;
    }
    if (!ResetList(storage.newer)) {
        descriptions.sav_file.Reset();
        LogMessage(kNoList, u"FindDifference", kLogError);
        return 0;
    }
    StateIdentifiers identifiers(descriptions.source);
    if (!identifiers.Build(*storage.older)) {
        return 0;
    }
    if (!ScanDevice(engine, identifiers)) {
        LogLackOfMemory(storage);
        storage.difference.reset();
        return 0;
    }
    if (!ResetList(storage.difference)) {
        descriptions.sav_file.Reset();
        ::MessageBoxW(nullptr, Wide(kNoList), L"FindDifference", MB_SETFOREGROUND);
        return 0;
    }
    storage.aimed_state = state;
    storage.opposite_state = 0;
    return CompareLists(engine, descriptions.source) ? 1 : 0;
}

int FindDifferenceEx(Engine& engine, std::uint32_t state_a, std::uint32_t state_b) {
    OpenedStorage& storage = engine.storage;
    engine.progress.ProgressBegin(kStateSteps);
    engine.progress.ProgressStep(u"Preparing object list...");
    Descriptions descriptions(engine);
    if (!descriptions.sav_file || storage.journal == nullptr) {
        return 0;
    }
    engine.progress.ProgressStep(u"Preparing list 1...");
    if (!PrepareStateList(engine, storage.older, state_a, descriptions.source)) {
        return 0;
    }
    engine.progress.ProgressStep(u"Preparing list 2...");
    if (!PrepareStateList(engine, storage.newer, state_b, descriptions.source)) {
        return 0;
    }
    if (!ResetList(storage.difference)) {
        descriptions.sav_file.Reset();
        LogMessage(u"Can't create journal", u"FindDifferenceEx", kLogError);
        return 0;
    }
    storage.aimed_state = state_a;
    storage.opposite_state = state_b;
    if (!CompareLists(engine, descriptions.source)) {
        return 0;
    }
    TakeOutOwnValues(*storage.difference, kOwnValues, descriptions.source);
    return 1;
}

}  // namespace tolvenar
