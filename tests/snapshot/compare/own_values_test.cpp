#include "snapshot/compare/own_values.h"

#include <gtest/gtest.h>

#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

namespace tolvenar {
namespace {

constexpr OwnValues kOwn = {u"Software\\Vendor\\Program", u"Own"};

class OwnValuesTest : public testing::Test {
protected:
    // A value that only the older list has; its block stands in the storage file.
    void Deleted(std::uint32_t hive, const char16_t* key, const char16_t* value,
                 ObjectType type = kValue) {
        const std::uint32_t offset = next_++;
        info_.stored[offset] = {std::u16string(key) + u'\u00FF' + value, type, hive};
        list_->AddObject(JournalRecord(MakeRecord(type, 0, offset), 1, JF_DELETE, offset));
    }
    // One that is on the device.
    void Added(const char16_t* key, const char16_t* value) {
        const std::uint32_t id = next_++;
        info_.live[{id, 0}] = {std::u16string(key) + u'\u00FF' + value, kValue, 0x80000001};
        list_->AddObject(JournalRecord(MakeRecord(kValue, 0, id), 0, JF_ADD, 0));
    }
    std::size_t Left() {
        TakeOutOwnValues(*list_, kOwn, info_);
        return list_->CountRecords();
    }

    std::uint32_t next_ = 100;
    FakeInfoSource info_;
    std::unique_ptr<ObjectList> list_ = ObjectList::CreateList();
};

TEST_F(OwnValuesTest, AreTakenOutWhetherAddedOrDeleted) {
    Added(u"Software\\Vendor\\Program", u"OwnSchedule");
    Deleted(0x80000001, u"Software\\Vendor\\Program", u"OwnText");
    Deleted(0x80000001, u"Software\\Vendor\\Program", u"Own");
    EXPECT_EQ(0u, Left());
}

TEST_F(OwnValuesTest, OthersStay) {
    Added(u"Software\\Vendor\\Program", u"Setting");
    Added(u"Software\\Vendor\\Program", u"own");
    Added(u"Software\\Vendor\\Program", u"");
    Added(u"Software\\Vendor\\Program2", u"OwnText");
    Added(u"Software\\Vendor\\Program\\Below", u"OwnText");
    Added(u"Software\\Vendor", u"OwnText");
    Deleted(0x80000002, u"Software\\Vendor\\Program", u"OwnText");
    Deleted(0x80000001, u"Software\\Vendor\\Program", u"OwnText", kKey);
    EXPECT_EQ(8u, Left());
}

TEST_F(OwnValuesTest, OneThatCannotBeDescribedStays) {
    Deleted(0x80000001, u"Software\\Vendor\\Program", u"OwnText");
    info_.failing_reads = 1;
    EXPECT_EQ(1u, Left());
    EXPECT_EQ(0u, Left());
}

}  // namespace
}  // namespace tolvenar
