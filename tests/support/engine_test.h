// A device with an open storage on its card, the parts that an operation works with, and short
// words for filling the device through the platform's own calls.
#pragma once

#include "platform/win32.h"

#include <string>
#include <vector>

#include "snapshot/text/progress.h"
#include "storage/opened/engine.h"
#include "storage/opened/journal.h"
#include "tests/support/device_test.h"

namespace tolvenar {

// Notes what would be shown.
class RecordingProgress final : public Progress {
public:
    void ProgressBegin(std::size_t count) override {
        if (!quiet) {
            begins.push_back(count);
        }
    }
    void ProgressStep(const char16_t* text) override {
        if (text == nullptr) {
            ++steps;
        } else if (!quiet) {
            texts.push_back(text);
        }
    }

    std::vector<std::size_t> begins;
    std::vector<std::u16string> texts;
    std::size_t steps = 0;  // without a text
    bool quiet = false;     // while allocations fail
};

// One property of a database record, as it is written.
struct TestProperty {
    CEPROPID propid;
    std::uint32_t number = 0;  // numbers, Booleans
    std::wstring text = {};    // CEVT_LPWSTR
    std::string blob = {};     // CEVT_BLOB
    double real = 0;           // CEVT_R8
    FILETIME time = {};        // CEVT_FILETIME
};

class EngineTest : public tests::DeviceTest {
protected:
    static constexpr const char16_t* kStoragePath = u"\\Storage Card\\Backup\\Home";
    static constexpr const wchar_t* kSavPath = L"\\Storage Card\\Backup\\Home.sav";
    static constexpr const wchar_t* kJournalPath = L"\\Storage Card\\Backup\\Home.jrn";

    void SetUp() override;
    void TearDown() override;

    // The settings that name the open storage, for a device that gets the card.
    static void SetStorageSettings();

    // As device().Fault, but nothing is allocated once the rule holds.
    void FailCall(const char* function, int n, std::uint32_t error);

    // The log's text; the storage's folder is a setting of the device.
    std::u16string Log();

    OpenedStorage storage_{};
    DatabaseLayer databases_;
    ObjectInfo info_{storage_.registry_objects, databases_};
    RecordingProgress progress_;
    Engine engine_{storage_, databases_, info_, progress_};
};

// The object-store identifier of a file or folder.
CEOID OidOfPath(const wchar_t* path);

// Registry.
void SetValue(HKEY root, const wchar_t* key_path, const wchar_t* name, DWORD type,
              const std::string& data);

// Databases.
CEOID MakeDatabase(const wchar_t* name, DWORD type = 1);
CEOID AddRecord(const wchar_t* database, const std::vector<TestProperty>& properties);
// A record whose last property was taken away.
CEOID AddEmptyRecord(const wchar_t* database);
// Merges the properties into a record that exists, or makes a new one with 0.
CEOID WriteRecord(const wchar_t* database, CEOID record,
                  const std::vector<TestProperty>& properties);

// Allocates until an allocation fails that a fault rule still waits for, `n` times at most. True
// when one did: what ran since the rule was made has not met it. The test's own containers would.
bool TakePendingFault(int n);

// The records of a list, from its front.
std::vector<ObjectRecord> RecordsOf(const ObjectList& list);

}  // namespace tolvenar
