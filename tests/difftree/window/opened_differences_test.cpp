// The difference list's objects as the tree gets them, stored ones and live ones.
#include "difftree/window/opened_differences.h"

#include <optional>

#include "tests/support/restore_fixture.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kTitle = 0x4013001F;

class OpenedDifferencesTest : public RestoreFixture {
protected:
    void TearDown() override {
        differences_.reset();
        RestoreFixture::TearDown();
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
    void Step() { EXPECT_EQ(DifferenceEnumerator::kObject, Next()); }
    Text NextName() {
        Step();
        return Name();
    }
    Text NextValue() {
        Step();
        return Value();
    }
    Text NextProperty(std::uint32_t propid) {
        Step();
        return Property(propid);
    }
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

    std::optional<OpenedDifferences> differences_;
    EnumeratedObject object_{};
};

TEST_F(OpenedDifferencesTest, StoredObjectsAreDescribedByTheirBlocks) {
    Enumerate({StoreFile(u"\\a.txt", "hello", FILE_ATTRIBUTE_ARCHIVE, 77),
               ToWriteBack(StoreKey(HKEY_USERS, u"Some\\Key")),
               StoreValue(HKEY_CURRENT_USER, u"Some\\Key", u"v", REG_DWORD, Word(1)),
               StoreDatabase(u"People", 5), StoreRecord(u"People", 9, {})});
    const struct {
        const char16_t* name;
        ObjectType type;
        std::uint16_t flags;
        std::uint32_t dwOID;
        std::uint32_t hive;
    } kObjects[] = {
        {u"\\a.txt", kFile, JF_ADD, 77, 0},
        {u"Some\\Key", kKey, JF_DELETE, 0, 0x80000003},
        {u"Some\\Key\u00FFv", kValue, JF_ADD, 0, 0x80000001},
        {u"People", kDatabase, JF_ADD, 902, 0},
        {u"People", kDbRecord, JF_ADD, 9, 0},
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
    state.type = kState;
    Enumerate({state, StoreFile(u"\\a.txt", "")});
    EXPECT_EQ(DifferenceEnumerator::kNoObject, Next());
    EXPECT_EQ(DifferenceEnumerator::kObject, Next());
}

TEST_F(OpenedDifferencesTest, WhatCannotBeDescribedIsLoggedAndLeftOut) {
    ObjectRecord beyond = StoreFile(u"\\a.txt", "");
    beyond.propOffset = 1000000;
    ObjectRecord other = StoreFile(u"\\b.txt", "");
    other.type = kDatabase;  // not what the block says
    Enumerate({beyond, other, Live(kFile, 0x7654321),
               StoreFile(u"\\c.txt", "", FILE_ATTRIBUTE_ARCHIVE, 5)});
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(DifferenceEnumerator::kNoObject, Next());
    }
    EXPECT_EQ(u"\\c.txt", NextName());
    EXPECT_EQ((Lines{"E BuildDifferenceTree: Fail GetInfoFromStorage",
                     "E BuildDifferenceTree: Fail GetInfoFromStorage",
                     "E BuildDifferenceTree: Fail GetOIDInfo"}),
              LogLines());
}

TEST_F(OpenedDifferencesTest, WithoutTheStorageFileTheFirstStoredObjectAborts) {
    device().PutFile(L"\\live.txt", "x");
    const ObjectRecord live = LiveFile(L"\\live.txt");
    device().Fault("CreateFileForMappingW", 1, 1, ERROR_SHARING_VIOLATION, "Home.sav");
    Enumerate({live, StoreFile(u"\\a.txt", "")});
    EXPECT_EQ(u"\\live.txt", NextName());
    EXPECT_EQ(DifferenceEnumerator::kAbort, Next());
}

TEST_F(OpenedDifferencesTest, LiveRegistryObjectsAreDescribedByTheTable) {
    SetValue(HKEY_LOCAL_MACHINE, L"Live", L"v", REG_SZ, Terminated(u"text of it"));
    SetValue(HKEY_LOCAL_MACHINE, L"Live", L"n", REG_DWORD, Word(4));
    Enumerate({LiveKey(HKEY_LOCAL_MACHINE, u"Live"), LiveValue(HKEY_LOCAL_MACHINE, u"Live", u"v"),
               LiveValue(HKEY_LOCAL_MACHINE, u"Live", u"n"),
               LiveValue(HKEY_LOCAL_MACHINE, u"Live", u"gone")});
    EXPECT_EQ(u"Live", NextName());
    EXPECT_EQ(0x80000002u, object_.hive);
    EXPECT_EQ(u"Live\u00FFv", NextName());
    EXPECT_EQ(u"=text of it", Value());
    EXPECT_EQ(u"none", NextValue());
    EXPECT_EQ(u"none", NextValue());
}

// Nothing but its length ends it.
TEST_F(OpenedDifferencesTest, ALiveValueWithoutATerminatorIsReadToItsEnd) {
    SetValue(HKEY_LOCAL_MACHINE, L"Live", L"long", REG_SZ, Terminated(Text(200, u'x')));
    SetValue(HKEY_LOCAL_MACHINE, L"Live", L"v", REG_SZ, Units(u"ab"));
    Enumerate({LiveValue(HKEY_LOCAL_MACHINE, u"Live", u"long"),
               LiveValue(HKEY_LOCAL_MACHINE, u"Live", u"v")});
    EXPECT_EQ(u"=" + Text(200, u'x'), NextValue());
    EXPECT_EQ(u"=ab", NextValue());
}

TEST_F(OpenedDifferencesTest, AnIdThatLeadsToAnotherKindOfObjectIsLeftOut) {
    MakeDatabase(L"People");
    Enumerate({Live(kFile, AddRecord(L"People", L"Ann", 1))});
    EXPECT_EQ(DifferenceEnumerator::kNoObject, Next());
}

TEST_F(OpenedDifferencesTest, ALiveRecordsTitleIsReadFromItsDatabase) {
    MakeDatabase(L"People");
    const CEOID ann = AddRecord(L"People", L"Ann", 1);
    Enumerate({Live(kDbRecord, ann)});
    EXPECT_EQ(u"People", NextName());
    EXPECT_EQ(u"=Ann", Property(kName));
    EXPECT_EQ(u"none", Property(kTitle));
}

TEST_F(OpenedDifferencesTest, AStoredRecordsTitleIsReadFromItsData) {
    ObjectRecord damaged = StoreRecord(u"People", 3, {{kTitle, 0, L"Cid"}});
    damaged.data_offset = 1000000;
    Enumerate({StoreRecord(u"People", 1, {{kNumber, 5}, {kTitle, 0, L"Ann"}}),
               StoreRecord(u"People", 2, {{kTitle}}), damaged});
    EXPECT_EQ(u"=Ann", NextProperty(kTitle));
    EXPECT_EQ(u"none", Property(kName));
    EXPECT_EQ(u"=", NextProperty(kTitle));
    EXPECT_EQ(u"none", NextProperty(kTitle));
}

TEST_F(OpenedDifferencesTest, OnlyTextsOfStoredValuesAreRead) {
    const Text longer(300, u'x');
    Enumerate({StoreValue(HKEY_CURRENT_USER, u"k", u"a", REG_SZ, Terminated(u"\\Program Files")),
               StoreValue(HKEY_CURRENT_USER, u"k", u"b", REG_EXPAND_SZ, Terminated(longer)),
               StoreValue(HKEY_CURRENT_USER, u"k", u"c", REG_BINARY, Terminated(u"no"))});
    EXPECT_EQ(u"=\\Program Files", NextValue());
    EXPECT_EQ(u"=" + longer.substr(0, 260), NextValue());
    EXPECT_EQ(u"none", NextValue());
}

// Blocks that stand far apart, in both directions, one of them across the views' borders.
TEST_F(OpenedDifferencesTest, BlocksAreFoundAnywhereInALargeFile) {
    std::vector<ObjectRecord> records = {StoreFile(u"\\first", "")};
    sav_.resize(0x40000 - 30);
    records.push_back(StoreFile(u"\\across the border", ""));
    sav_.resize(1500000);
    records.push_back(StoreRecord(u"People", 1, {{kTitle, 0, std::wstring(200000, L'x')}}));
    records.push_back(StoreFile(u"\\last", ""));
    records.push_back(records[0]);
    records.back().dwOID = 4711;
    Enumerate(records);
    for (const char16_t* name :
         {u"\\first", u"\\across the border", u"People", u"\\last", u"\\first"}) {
        ASSERT_EQ(DifferenceEnumerator::kObject, Next());
        EXPECT_EQ(name, Name());
        if (object_.type == kDbRecord) {
            EXPECT_EQ(u"=" + Text(260, u'x'), Property(kTitle));
        }
    }
}

}  // namespace
}  // namespace tolvenar
