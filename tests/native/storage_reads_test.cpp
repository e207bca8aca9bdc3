// What a comparison with a storage of thirty states reads of the storage file, held against one
// read of a longest block for each description that is asked for.
#include <gtest/gtest.h>
#include <map>
#include <random>

#include "snapshot/compare/difference.h"
#include "snapshot/records/checksum.h"
#include "storage/format/storage_appender.h"
#include "storage/format/storage_reader.h"
#include "tests/support/memory_bytes.h"

namespace tolvenar {
namespace {

constexpr std::size_t kValues = 3000;
constexpr std::uint16_t kStates = 30;

// Counts what is asked of the reader.
class CountedReader final : public StoredObjects {
public:
    explicit CountedReader(ByteReader& file) : reader_(file) {}
    bool GetInfoFromStorage(std::uint32_t offset, InfoBlock& block) override {
        ++asked;
        return reader_.GetInfoFromStorage(offset, block);
    }
    std::uint64_t asked = 0;

private:
    StorageReader reader_;
};

// A device of registry values, backed up thirty times with a few changes before each.
class StorageReadsTest : public testing::Test, public LiveObjects {
protected:
    struct Value {
        std::u16string name;
        std::string data;
        ObjectRecord record{};  // of its last version
    };

    StorageReadsTest() : values_(kValues) {
        for (std::size_t i = 0; i < kValues; ++i) {
            const std::string number = std::to_string(i * 7919 % kValues);
            const std::string name =
                "Software\\Vendor\\Program " + number.substr(0, 2) + "!" + number;
            values_[i].name.assign(name.begin(), name.end());
        }
        for (std::uint16_t state = 1; state <= kStates; ++state) {
            BackUp(state);
        }
    }
    void BackUp(std::uint16_t state) {
        for (Value& value : values_) {
            if (state > 1 && random_() % 40 != 0) {
                continue;
            }
            if (state > 1) {
                ObjectRecord deletion = value.record;
                deletion.state_number = state;
                deletion.flags = JF_DELETE;
                EXPECT_TRUE(journal_->AddObject(deletion));
            }
            value.data = std::to_string(state) + std::string(random_() % 60, 'd');
            value.record = Store(value, state);
            EXPECT_TRUE(journal_->AddObject(value.record));
        }
    }
    ObjectRecord Store(const Value& value, std::uint16_t state) {
        ObjectRecord record = Describe(value);
        InfoBlock block;
        EXPECT_TRUE(GetOIDInfo(record.TolvOID, 0, block));
        EXPECT_TRUE(storage_.WriteBlock(block.bytes(), kInfoHeadBytes, record.propOffset, true));
        EXPECT_TRUE(storage_.WriteBlock(value.data.data(),
                                        static_cast<std::uint32_t>(value.data.size()),
                                        record.data_offset, false));
        EXPECT_TRUE(storage_.Flush());
        record.state_number = state;
        record.flags = JF_ADD;
        return record;
    }
    // As a scan makes it.
    ObjectRecord Describe(const Value& value) {
        ObjectRecord record{};
        record.TolvOID = MakeTolvOID(value.name.c_str(), value.data.data(), value.data.size(), 0);
        record.content_fingerprint = Checksum16(value.data.data(), value.data.size());
        record.flags = JF_PRESENT;
        record.type = ObjectType::kRegistryValue;
        names_[record.TolvOID] = value.name;
        return record;
    }
    bool GetOIDInfo(std::uint32_t TolvOID, std::uint32_t, InfoBlock& block) override {
        block.Clear();
        block.head().type = static_cast<std::uint16_t>(ObjectType::kRegistryValue);
        const std::u16string& name = names_[TolvOID];
        return block.SetName(name.data(), name.size());
    }
    const RegistryObject* FindRegistryObject(std::uint32_t) override { return nullptr; }

    std::mt19937 random_{30};
    std::vector<Value> values_;
    std::map<std::uint32_t, std::u16string> names_;
    MemoryBytes file_{std::string(236, '\0')};
    StorageAppender storage_{file_, 236};
    std::unique_ptr<ObjectList> journal_ = ObjectList::CreateList();
};

TEST_F(StorageReadsTest, AComparisonReadsNoMoreBytesThanOneBlockADescription) {
    CountedReader reader(file_);
    InfoSource info(reader, *this);
    const auto state = ObjectList::CreateList();
    const auto device = ObjectList::CreateList();
    const auto difference = ObjectList::CreateList();
    ASSERT_TRUE(BuildStateList(*state, *journal_, kStates, info));
    for (const Value& value : values_) {
        ASSERT_TRUE(device->AddObject(Describe(value)));
    }
    ASSERT_TRUE(CmpLists(state.get(), device.get(), *difference, info));
    EXPECT_GE(reader.asked, kValues);
    EXPECT_LE(file_.bytes_read, reader.asked * kInfoBlockBytes);
    EXPECT_LE(static_cast<std::uint64_t>(file_.reads) * 4, reader.asked);
    RecordProperty("asked", static_cast<int>(reader.asked));
    RecordProperty("bytes_read", static_cast<int>(file_.bytes_read));
    RecordProperty("reads", file_.reads);
}

}  // namespace
}  // namespace tolvenar
