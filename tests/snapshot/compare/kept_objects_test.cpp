#include "snapshot/compare/kept_objects.h"

#include <gtest/gtest.h>

#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kHive = 0x80000001;

class KeptObjectsTest : public testing::Test {
protected:
    // An object of the device that is to be deleted.
    void AddDeletion(ObjectType type, std::uint32_t TolvOID, const char16_t* name,
                     std::uint32_t hive = kHive) {
        info_.live[{TolvOID, 0}] = {name, type, hive};
        ObjectRecord record = MakeRecord(type, 0, TolvOID);
        record.flags = JF_ADD;
        Insert(record);
    }
    // An object of the state that is to be written back; its block stands at `offset`.
    void AddWriteBack(ObjectType type, std::uint32_t TolvOID, std::uint32_t offset,
                      const char16_t* name) {
        info_.stored[offset] = {name, type, kHive};
        ObjectRecord record = MakeRecord(type, 0, TolvOID);
        record.propOffset = offset;
        record.flags = JF_DELETE;
        record.info_checksum = 1;
        Insert(record);
    }
    void Insert(const ObjectRecord& record) { diff_->InsertCopy(StatelessKeyOf(record), record); }
    int Deletions() {
        EXPECT_TRUE(KeepStoredObjects(*diff_, info_));
        int count = 0;
        for (const KeyedRecord& entry : Walk(*diff_)) {
            count += (entry.record.flags & JF_ADD) != 0;
        }
        return count;
    }

    FakeInfoSource info_;
    std::unique_ptr<ObjectList> diff_ = ObjectList::CreateList();
};

TEST_F(KeptObjectsTest, AKeyThatTheStateHasNotIsDeleted) {
    AddDeletion(kKey, 5, u"Software\\New");
    EXPECT_EQ(1, Deletions());
}

TEST_F(KeptObjectsTest, AKeyThatIsWrittenBackTooIsKept) {
    AddDeletion(kKey, 5, u"Software");
    AddWriteBack(kKey, 5, 500, u"Software");
    EXPECT_EQ(0, Deletions());
    EXPECT_EQ(2u, diff_->CountRecords());
}

TEST_F(KeptObjectsTest, TheCollisionCounterMakesNoOtherObject) {
    AddDeletion(kKey, 0x01000005, u"Software");
    AddWriteBack(kKey, 0x00000005, 500, u"Software");
    EXPECT_EQ(0, Deletions());
}

TEST_F(KeptObjectsTest, AmongManyEachIsHeldAgainstItsOwn) {
    for (std::uint32_t id = 1; id <= 20; ++id) {
        AddWriteBack(kKey, id * 7 % 41, 500 + id, u"Software");
    }
    AddDeletion(kKey, 7 * 13 % 41, u"Software");
    AddDeletion(kKey, 7 * 21 % 41, u"Software");
    EXPECT_EQ(1, Deletions());
}

TEST_F(KeptObjectsTest, AnUnreadableStoredDescriptionKeepsWhatItMayBe) {
    AddDeletion(kKey, 5, u"Software");
    AddDeletion(kValue, 6, u"Software\u00FFName");
    AddWriteBack(kKey, 5, 500, u"Software");
    AddWriteBack(kValue, 6, 600, u"Software\u00FFName");
    info_.stored.clear();
    EXPECT_EQ(0, Deletions());
}

TEST_F(KeptObjectsTest, AnotherNameHiveOrTypeIsAnotherObject) {
    AddDeletion(kKey, 5, u"Software\\A");
    AddDeletion(kKey, 6, u"Software\\B", 0x80000002);
    AddDeletion(kKey, 7, u"Software\\C");
    AddWriteBack(kKey, 5, 500, u"Software\\Other");
    AddWriteBack(kKey, 6, 600, u"Software\\B");
    AddWriteBack(kValue, 7, 700, u"Software\\C");
    EXPECT_EQ(3, Deletions());
}

TEST_F(KeptObjectsTest, AChangedValueIsDeletedFirst) {
    AddDeletion(kValue, 0x00110005, u"Software\u00FFName");
    AddWriteBack(kValue, 0x00220005, 500, u"Software\u00FFName");
    EXPECT_EQ(1, Deletions());
}

// Were it deleted first, a write that fails would leave neither version.
TEST_F(KeptObjectsTest, AChangedValueWithTheSameIdentifierIsWrittenOverNotDeleted) {
    AddDeletion(kValue, 0x00110005, u"Software\u00FFName");
    AddWriteBack(kValue, 0x00110005, 500, u"Software\u00FFName");
    EXPECT_EQ(0, Deletions());
    EXPECT_EQ(2u, diff_->CountRecords());
}

TEST_F(KeptObjectsTest, FilesAreLeftAlone) {
    ObjectRecord file = MakeRecord(kFile, 9, 0);
    file.flags = JF_ADD;
    Insert(file);
    EXPECT_EQ(1, Deletions());
}

}  // namespace
}  // namespace tolvenar
