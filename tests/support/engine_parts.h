// The engine of a storage on a device's card, wired as the application wires it, and short words
// for filling the device through the platform's own calls.
#pragma once

#include "platform/win32.h"

#include <ostream>
#include <string>
#include <vector>

#include "storage/opened/engine.h"
#include "storage/operations/backup_result.h"
#include "storage/operations/restore_result.h"
#include "tests/support/bytes.h"
#include "tests/support/recording_progress.h"
#include "tests/support/records.h"

namespace tolvenar {

constexpr char16_t kStoragePath[] = u"\\Storage Card\\Backup\\Home";
constexpr char16_t kSav[] = u"\\Storage Card\\Backup\\Home.sav";
constexpr char16_t kJournal[] = u"\\Storage Card\\Backup\\Home.jrn";
constexpr char16_t kJournalTemporary[] = u"\\Storage Card\\Backup\\Home.jrn_1";
constexpr char16_t kLog[] = u"\\Storage Card\\Backup\\tolvenar_log.txt";

// What an operation answers.
struct Answer {
    bool done;
    ResultCode code;

    bool operator==(const Answer& other) const { return done == other.done && code == other.code; }
};
std::ostream& operator<<(std::ostream& stream, const Answer& answer);
constexpr Answer Done(ResultCode code = ResultCode::kSuccess) { return {true, code}; }
constexpr Answer Failed(ResultCode code = ResultCode::kFailed) { return {false, code}; }

class EngineParts {
public:
    // Opens the storage and its journal as the program's start does; false when one of them fails.
    bool Open();
    // The same for a storage that is made first.
    bool Make();

    Answer Backup(std::uint32_t state, const char16_t* description = u"", bool keep_closed = false);
    // As the state behind the last one.
    Answer Backup();
    Answer Restore(std::uint32_t state);
    Answer RestoreAdvanced(bool invert);

    // What the check of the storage's pair finds in its list and at its blocks: none in a sound
    // one.
    std::size_t FindingsInPair();

    OpenedStorage storage_{};
    DatabaseLayer databases_;
    ObjectInfo info_{storage_.registry_objects, databases_};
    RecordingProgress progress_;
    Engine engine_{storage_, databases_, info_, progress_};
    BackupResult backup_;                    // the last one's
    RestoreResult restore_;                  // the same
    RestoreQuestions* questions_ = nullptr;  // whom a restore asks
};

// The settings that name the storage, for a device that gets the card.
void SetStorageSettings();
void SetAdvancedDatabaseRestoring(std::uint32_t value);

// The object-store identifier of a file or folder.
CEOID OidOfPath(const wchar_t* path);

// Registry.
void SetValue(HKEY root, const std::wstring& key_path, const std::wstring& name, DWORD type,
              const Bytes& data);
bool KeyExists(HKEY root, const std::wstring& key_path);
// "type:bytes", "" when it is absent.
Bytes Value(HKEY root, const std::wstring& key_path, const std::wstring& name);

// Databases.
constexpr CEPROPID kName = 0x0001001F;    // a CEVT_LPWSTR
constexpr CEPROPID kNumber = 0x00020003;  // a CEVT_I4
constexpr CEPROPID kBytes = 0x00030041;   // a CEVT_BLOB

struct TestProperty {
    CEPROPID propid;
    std::uint32_t number = 0;  // numbers, Booleans
    std::wstring text = {};    // CEVT_LPWSTR
    Bytes blob = {};           // CEVT_BLOB
    double real = 0;           // CEVT_R8
    FILETIME time = {};        // CEVT_FILETIME
};

CEOID MakeDatabase(const std::wstring& name, DWORD type = 1,
                   const std::vector<SORTORDERSPEC>& sort_orders = {});
CEOID AddRecord(const std::wstring& database, const std::vector<TestProperty>& properties);
// One with a kName and a kNumber.
CEOID AddRecord(const std::wstring& database, const std::wstring& name, std::uint32_t number);
// A record whose last property was taken away.
CEOID AddEmptyRecord(const std::wstring& database);
// Merges the properties into a record that exists, or makes a new one with 0.
CEOID WriteRecord(const std::wstring& database, CEOID record,
                  const std::vector<TestProperty>& properties);

// Allocates until an allocation fails that a fault rule still waits for, `n` times at most. True
// when one did: what ran since the rule was made has not met it. The test's own containers would.
bool TakePendingFault(int n);

}  // namespace tolvenar
