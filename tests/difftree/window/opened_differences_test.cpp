// The difference list's objects as the tree gets them, stored ones and live ones.
#include "difftree/window/opened_differences.h"

#include <optional>

#include "tests/support/restore_fixture.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kTitle = 0x4013001F;
using Lines = std::vector<std::string>;

class OpenedDifferencesTest : public RestoreFixture {
protected:
    using Text = std::u16string;

    void TearDown() override {
        differences_.reset();
        RestoreFixture::TearDown();
    }
    static ObjectRecord Added(ObjectRecord record) {
        record.flags = JF_ADD;
        return record;
    }
    // The list as it stands, in the order of the records, with the storage file's bytes.
    DifferenceEnumerator& Enumerate(const std::vector<ObjectRecord>& records) {
        SaveStorage();
        MakeDifference(records);
        differences_.emplace(engine_);
        return differences_->enumerator();
    }
    int Next() { return differences_->enumerator().Next(object_); }
    Text Name() const { return object_.name; }
    Text Property(std::uint32_t propid) {
        TextBuffer<kObjectNameUnits> text;
        return differences_->enumerator().ReadTextProperty(propid, text) ? Text(u"=") + text.text()
                                                                         : Text(u"none");
    }
    Text Value() {
        TextBuffer<kObjectNameUnits> text;
        return differences_->enumerator().ReadValueText(text) ? Text(u"=") + text.text()
                                                              : Text(u"none");
    }
    static std::string Bytes(const Text& text) {
        return {reinterpret_cast<const char*>(text.c_str()), (text.size() + 1) * sizeof(char16_t)};
    }

    std::optional<OpenedDifferences> differences_;
    EnumeratedObject object_{};
};

TEST_F(OpenedDifferencesTest, StoredObjectsAreDescribedByTheirBlocks) {
    Enumerate({Added(StoreFile(u"\\a.txt", "hello", FILE_ATTRIBUTE_ARCHIVE, 77)),
               ToWriteBack(StoreKey(HKEY_USERS, u"Some\\Key")),
               Added(StoreValue(HKEY_CURRENT_USER, u"Some\\Key", u"v", REG_DWORD, Dword(1))),
               Added(StoreDatabase(u"People", 5)), Added(StoreRecord(u"People", 9, {}))});
    const struct {
        const char16_t* name;
        ObjectType type;
        std::uint16_t flags;
        std::uint32_t dwOID;
        std::uint32_t hive;
    } kObjects[] = {
        {u"\\a.txt", ObjectType::kFile, JF_ADD, 77, 0},
        {u"Some\\Key", ObjectType::kRegistryKey, JF_DELETE, 0, 0x80000003},
        {u"Some\\Key\u00FFv", ObjectType::kRegistryValue, JF_ADD, 0, 0x80000001},
        {u"People", ObjectType::kDatabase, JF_ADD, 902, 0},
        {u"People", ObjectType::kDatabaseRecord, JF_ADD, 9, 0},
    };
    for (const auto& expected : kObjects) {
        ASSERT_EQ(DifferenceEnumerator::kObject, Next());
        EXPECT_EQ(expected.name, Name());
        EXPECT_EQ(expected.type, object_.type);
        EXPECT_EQ(expected.flags, object_.flags);
        EXPECT_EQ(expected.dwOID, object_.dwOID);
        EXPECT_EQ(expected.hive, object_.hive);
    }
    EXPECT_EQ(DifferenceEnumerator::kEndOfList, Next());
    EXPECT_EQ(DifferenceEnumerator::kEndOfList, Next());
}

TEST_F(OpenedDifferencesTest, WithoutAListThereIsNothing) {
    differences_.emplace(engine_);
    EXPECT_EQ(DifferenceEnumerator::kEndOfList, Next());
}

TEST_F(OpenedDifferencesTest, AStateIsNoObject) {
    ObjectRecord state{};
    state.type = ObjectType::kState;
    Enumerate({state, Added(StoreFile(u"\\a.txt", ""))});
    EXPECT_EQ(DifferenceEnumerator::kNoObject, Next());
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
}

TEST_F(OpenedDifferencesTest, WhatCannotBeDescribedIsLoggedAndLeftOut) {
    ObjectRecord beyond = Added(StoreFile(u"\\a.txt", ""));
    beyond.propOffset = 1000000;
    ObjectRecord other = Added(StoreFile(u"\\b.txt", ""));
    other.type = ObjectType::kDatabase;  // not what the block says
    Enumerate({beyond, other, Live(ObjectType::kFile, 0x7654321),
               Added(StoreFile(u"\\c.txt", "", FILE_ATTRIBUTE_ARCHIVE, 5))});
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(DifferenceEnumerator::kNoObject, Next());
    }
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"\\c.txt", Name());
    EXPECT_EQ((Lines{"E BuildDifferenceTree: Fail GetInfoFromStorage",
                     "E BuildDifferenceTree: Fail GetInfoFromStorage",
                     "E BuildDifferenceTree: Fail GetOIDInfo"}),
              LogLines());
}

TEST_F(OpenedDifferencesTest, WithoutTheStorageFileTheFirstStoredObjectAborts) {
    device().PutFile(L"\\live.txt", "x");
    const ObjectRecord live = LiveFile(L"\\live.txt");
    device().Fault("CreateFileForMappingW", 1, 1, ERROR_SHARING_VIOLATION, "t.sav");
    Enumerate({live, Added(StoreFile(u"\\a.txt", ""))});
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"\\live.txt", Name());
    EXPECT_EQ(DifferenceEnumerator::kAbort, Next());
}

TEST_F(OpenedDifferencesTest, LiveRegistryObjectsAreDescribedByTheTable) {
    SetValue(HKEY_LOCAL_MACHINE, L"Live", L"v", REG_SZ, Bytes(u"text of it"));
    SetValue(HKEY_LOCAL_MACHINE, L"Live", L"n", REG_DWORD, Dword(4));
    Enumerate({LiveKey(HKEY_LOCAL_MACHINE, u"Live"), LiveValue(HKEY_LOCAL_MACHINE, u"Live", u"v"),
               LiveValue(HKEY_LOCAL_MACHINE, u"Live", u"n"),
               LiveValue(HKEY_LOCAL_MACHINE, u"Live", u"gone")});
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"Live", Name());
    EXPECT_EQ(0x80000002u, object_.hive);
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"Live\u00FFv", Name());
    EXPECT_EQ(u"=text of it", Value());
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"none", Value());
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"none", Value());
}

// Nothing but its length ends it.
TEST_F(OpenedDifferencesTest, ALiveValueWithoutATerminatorIsReadToItsEnd) {
    SetValue(HKEY_LOCAL_MACHINE, L"Live", L"long", REG_SZ, Bytes(Text(200, u'x')));
    SetValue(HKEY_LOCAL_MACHINE, L"Live", L"v", REG_SZ, std::string("a\0b\0", 4));
    Enumerate({LiveValue(HKEY_LOCAL_MACHINE, u"Live", u"long"),
               LiveValue(HKEY_LOCAL_MACHINE, u"Live", u"v")});
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"=" + Text(200, u'x'), Value());
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"=ab", Value());
}

TEST_F(OpenedDifferencesTest, AnIdThatLeadsToAnotherKindOfObjectIsLeftOut) {
    MakeDatabase(u"People");
    Enumerate({Live(ObjectType::kFile, AddRecord(u"People", L"Ann", 1))});
    EXPECT_EQ(DifferenceEnumerator::kNoObject, Next());
}

TEST_F(OpenedDifferencesTest, ALiveRecordsTitleIsReadFromItsDatabase) {
    MakeDatabase(u"People");
    const CEOID ann = AddRecord(u"People", L"Ann", 1);
    Enumerate({Live(ObjectType::kDatabaseRecord, ann)});
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"People", Name());
    EXPECT_EQ(u"=Ann", Property(kName));
    EXPECT_EQ(u"none", Property(kTitle));
}

TEST_F(OpenedDifferencesTest, AStoredRecordsTitleIsReadFromItsData) {
    ObjectRecord damaged = Added(StoreRecord(u"People", 3, {{kTitle, 0, u"Cid", ""}}));
    damaged.data_offset = 1000000;
    Enumerate({Added(StoreRecord(u"People", 1, {{kNumber, 5, u"", ""}, {kTitle, 0, u"Ann", ""}})),
               Added(StoreRecord(u"People", 2, {{kTitle, 0, u"", ""}})), damaged});
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"=Ann", Property(kTitle));
    EXPECT_EQ(u"none", Property(kName));
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"=", Property(kTitle));
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"none", Property(kTitle));
}

TEST_F(OpenedDifferencesTest, OnlyTextsOfStoredValuesAreRead) {
    const Text longer(300, u'x');
    Enumerate({Added(StoreValue(HKEY_CURRENT_USER, u"k", u"a", REG_SZ, Bytes(u"\\Program Files"))),
               Added(StoreValue(HKEY_CURRENT_USER, u"k", u"b", REG_EXPAND_SZ, Bytes(longer))),
               Added(StoreValue(HKEY_CURRENT_USER, u"k", u"c", REG_BINARY, Bytes(u"no")))});
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"=\\Program Files", Value());
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"=" + longer.substr(0, 260), Value());
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
    EXPECT_EQ(u"none", Value());
}

// Blocks that stand far apart, in both directions, one of them across the views' borders.
TEST_F(OpenedDifferencesTest, BlocksAreFoundAnywhereInALargeFile) {
    std::vector<ObjectRecord> records = {Added(StoreFile(u"\\first", ""))};
    sav_.resize(0x40000 - 30);
    records.push_back(Added(StoreFile(u"\\across the border", "")));
    sav_.resize(1500000);
    records.push_back(Added(StoreRecord(u"People", 1, {{kTitle, 0, Text(200000, u'x'), ""}})));
    records.push_back(Added(StoreFile(u"\\last", "")));
    records.push_back(records[0]);
    records.back().dwOID = 4711;
    Enumerate(records);
    for (const char16_t* name :
         {u"\\first", u"\\across the border", u"People", u"\\last", u"\\first"}) {
        ASSERT_EQ(DifferenceEnumerator::kObject, Next());
        EXPECT_EQ(name, Name());
        if (object_.type == ObjectType::kDatabaseRecord) {
            EXPECT_EQ(u"=" + Text(260, u'x'), Property(kTitle));
        }
    }
}

}  // namespace
}  // namespace tolvenar
