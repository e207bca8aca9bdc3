#include "tests/support/engine_test.h"

#include <algorithm>

#include "simulator/databases/database_store.h"
#include "simulator/gate/rules.h"
#include "storage/files/handle_bytes.h"
#include "tests/support/device_folder.h"
#include "tests/support/log_lines.h"
#include "tests/support/text.h"

namespace tolvenar {

using sim::databases::DatabaseStore;

void StorageTest::SetUp() {
    device().MakeFolder(L"\\Storage Card\\Backup");
    SetStorageSettings();
    ASSERT_TRUE(MakeStorageNames(kStoragePath, storage_.names));
}

void StorageTest::TearDown() {
    CloseStorage(storage_);
    DeviceTest::TearDown();
}

void StorageTest::LetTimePass() {
    tests::StepClock(device());
    device().Fault("Sleep", 1, 1000000000, 1);
    ::Sleep(0);  // the rule has fired, whether a restore comes or not
}

void StorageTest::ResetDevice() {
    tests::ResetDevice(device());
    LetTimePass();
}

void StorageTest::Fail(const char* function, int n, std::uint32_t error) {
    sim::Rule rule;
    rule.function = function;
    rule.first = n;
    rule.value = static_cast<long>(error);
    sim::AddRule(device().sim(), rule);
}

long StorageTest::SeenAllocations() {
    const long seen = sim::Rules(device().sim()).at(0).seen;
    device().DropFaults();
    return seen;
}

UniqueHandle StorageTest::Reader(const char16_t* path) {
    UniqueHandle file =
        OpenFile(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
    EXPECT_TRUE(file);
    return file;
}

UniqueHandle StorageTest::Hold(const char16_t* path) {
    return OpenFile(path, GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING);
}

Text StorageTest::Log() {
    if (!Exists(kLog)) {
        return {};
    }
    return TextIn(Content(kLog));
}

Lines StorageTest::LogLines() { return Exists(kLog) ? tests::LogLinesIn(Content(kLog)) : Lines(); }

const ObjectRecord* StorageTest::RecordOf(const ObjectList& list, CEOID oid) {
    for (const ObjectList::Node& node : list) {
        if (node.record->dwOID == oid) {
            return node.record;
        }
    }
    return nullptr;
}

const ObjectRecord* StorageTest::JournalRecord(std::uint16_t state, CEOID oid, ObjectType type) {
    for (const ObjectList::Node& node : *storage_.journal) {
        const ObjectRecord& record = *node.record;
        if (record.state_number == state && record.dwOID == oid && record.type == type) {
            return &record;
        }
    }
    return nullptr;
}

bool StorageTest::DatabaseExists(const char16_t* name) {
    return DatabaseStore(device().sim()).ByName(name).has_value();
}

Lines StorageTest::Records(const char16_t* database) {
    const DatabaseStore store(device().sim());
    const std::uint32_t oid = store.ByName(database).value().oid;
    Lines lines;
    for (const std::uint32_t record_oid : store.Records(oid)) {
        const sim::databases::Record record = store.Read(oid, record_oid).value();
        Text name;
        std::int32_t number = 0;
        for (const sim::databases::Property& property : record) {
            if (property.propid == kName) {
                name = TextIn(property.value);
            } else if (property.propid == kNumber) {
                std::memcpy(&number, property.value.data(), sizeof number);
            }
        }
        lines.push_back(tests::Narrow(name) + "=" + std::to_string(number));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

void StorageTest::ExpectClosed(bool with_differences) {
    EXPECT_TRUE(!Exists(kSav) || IsFree(kSav));
    EXPECT_TRUE(!Exists(kJournal) || IsFree(kJournal));
    EXPECT_EQ(nullptr, storage_.older);
    EXPECT_EQ(nullptr, storage_.newer);
    EXPECT_EQ(with_differences, storage_.difference != nullptr);
}

void EngineTest::SetUp() {
    StorageTest::SetUp();
    ASSERT_TRUE(Make());
}

}  // namespace tolvenar
