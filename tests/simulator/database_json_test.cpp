// Databases as JSON: in, out, and nothing of it when a part is damaged.
#include "simulator/databases/database_json.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "simulator/databases/database_store.h"
#include "tests/simulator/record_helpers.h"

namespace {

using namespace tests;
using nlohmann::json;

class DatabaseJsonTest : public RecordFixture {
protected:
    json Dump() { return sim::databases::DumpJson(device().sim()); }
    void Import(const std::string& text) {
        sim::databases::ImportJson(device().sim(), json::parse(text));
    }
    static json WithoutIds(json databases) {
        for (json& database : databases) {
            database.erase("oid");
            for (json& record : database["records"]) {
                record.erase("oid");
            }
        }
        return databases;
    }
};

TEST_F(DatabaseJsonTest, EveryTypeIsTheHexOfItsBytes) {
    Write(Open(Create(L"Typed")), EveryType());
    const json props = Dump()[0]["records"][0]["props"];
    const std::vector<std::pair<unsigned, std::string>> expected = {
        {0x00010002, "feff"},
        {0x00020003, "fdffffff"},
        {0x00030005, "000000000000f83f"},
        {0x0004000B, "01000000"},
        {0x00050012, "ffff"},
        {0x00060013, "ffffffff"},
        {0x0007001F, "61006200"},
        {0x00080040, "4433221188776655"},
        {0x00090041, "010203"},
    };
    ASSERT_EQ(expected.size(), props.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(expected[i].first, props[i]["propid"]);
        EXPECT_EQ(expected[i].second, props[i]["value"]);
        EXPECT_EQ(0, props[i]["flags"]);
    }
}

TEST_F(DatabaseJsonTest, WhatIsImportedAProgramReads) {
    Import(R"({"name": "Notes", "type": 24, "flags": 65536, "oid": 7,
               "sortOrders": [{"propid": 131075, "flags": 1}],
               "records": [{"oid": 9, "props": [
                   {"propid": 131075, "flags": 0, "value": "05000000"},
                   {"propid": 458783, "value": "48006900"},
                   {"propid": 589889, "value": "0aff"}]}]})");
    CEOID oid = 0;
    wchar_t name[] = L"Notes";
    const OpenedDatabase database(::CeOpenDatabaseEx(&store_, &oid, name, kNumberId, 0, nullptr));
    EXPECT_NE(7u, oid);
    const ReadBlock block = Read(database);
    EXPECT_NE(9u, block.oid);
    ASSERT_EQ(3, block.count);
    EXPECT_EQ(5, block[0].val.lVal);
    EXPECT_STREQ(L"Hi", block[1].val.lpwstr);
    ASSERT_EQ(2u, block[2].val.blob.dwCount);
    EXPECT_EQ(0xFF, block[2].val.blob.lpb[1]);
    CEOIDINFO info{};
    ASSERT_TRUE(::CeOidGetInfoEx(&store_, oid, &info));
    EXPECT_EQ(24u, info.infDatabase.dwDbaseType);
    EXPECT_NE(0u, info.infDatabase.dwFlags & CEDB_NOCOMPRESS);
}

TEST_F(DatabaseJsonTest, ADumpComesBackTheSame) {
    {
        const OpenedDatabase typed = Open(Create(L"Typed", {{kTextId, CEDB_SORT_DESCENDING}}));
        Write(typed, EveryType());
        Write(typed, {Text(L""), Blob(nullptr, 0)});
        const CEOID empty = Write(typed, {Number(1)});
        Write(typed, {Empty(kNumberId, CEDB_PROPDELETE)}, empty);
        Write(Open(Create(L"\x00c4nother")), {Number(1)});
    }
    const json before = Dump();
    sim::databases::DeleteByName(device().sim(), "Typed");
    sim::databases::ImportJson(device().sim(), before);
    const json after = Dump();
    EXPECT_EQ(2u, after.size());
    EXPECT_EQ(WithoutIds(before), WithoutIds(after));
    EXPECT_NE(before, after);
}

TEST_F(DatabaseJsonTest, DatabasesAndRecordsAreSorted) {
    {
        const OpenedDatabase b = Open(Create(L"b"));
        Write(b, {Number(2)});
        Write(b, {Number(1)});
        Create(L"a");
    }
    const json dump = Dump();
    EXPECT_EQ("a", dump[0]["name"]);
    EXPECT_EQ(json::array(), dump[0]["records"]);
    EXPECT_EQ("01000000", dump[1]["records"][0]["props"][0]["value"]);
    EXPECT_EQ("02000000", dump[1]["records"][1]["props"][0]["value"]);
}

TEST_F(DatabaseJsonTest, ADatabaseOfTheNameIsReplacedWhole) {
    Write(Open(Create(L"Notes", {{kNumberId, 0}})), {Number(1)});
    Import(R"([{"name": "NOTES", "records": []}])");
    const json dump = Dump();
    ASSERT_EQ(1u, dump.size());
    EXPECT_EQ("NOTES", dump[0]["name"]);
    EXPECT_EQ(json::array(), dump[0]["sortOrders"]);
    EXPECT_EQ(json::array(), dump[0]["records"]);
}

TEST_F(DatabaseJsonTest, DamagedTextChangesNothing) {
    Write(Open(Create(L"Kept")), {Number(1)});
    const json before = Dump();
    const char* const kDamaged[] = {
        R"([{"name": "New"}, {"type": 1}])",
        R"([{"name": "New"}, {"name": ""}])",
        R"([{"name": "New"}, {"name": "a name of more than thirty-one units"}])",
        R"([{"name": "New"}, {"name": "Kept", "sortOrders": [{"propid": 65}]}])",
        R"([{"name": "Kept", "records": [{"props": [{"propid": 131075, "value": "05"}]}]}])",
        R"([{"name": "Kept", "records": [{"props": [{"propid": 131075, "value": "xx"}]}]}])",
        R"([{"name": "Kept", "records": [{"props": [{"propid": 131076, "value": ""}]}]}])",
    };
    for (const char* const text : kDamaged) {
        EXPECT_ANY_THROW(Import(text)) << text;
        EXPECT_EQ(before, Dump()) << text;
    }
}

TEST_F(DatabaseJsonTest, ARecordThatBreaksARuleTakesTheWholeImportBack) {
    Write(Open(Create(L"Kept")), {Number(1)});
    const json before = Dump();
    const std::string rule = R"("sortOrders": [{"propid": 131075, "flags": 512}])";
    const std::string same = R"({"props": [{"propid": 131075, "value": "05000000"}]})";
    EXPECT_THROW(Import(R"([{"name": "New"}, {"name": "Kept", )" + rule + R"(, "records": [)" +
                        same + "," + same + "]}]"),
                 std::runtime_error);
    EXPECT_EQ(before, Dump());
    const sim::databases::DatabaseStore store(device().sim());
    EXPECT_EQ(0u, store.DeletionCount());
    // The next change of anyone carries nothing of it along.
    Create(L"Later");
    EXPECT_EQ(2u, Dump().size());
}

TEST_F(DatabaseJsonTest, AFullStoreTakesTheWholeImportBack) {
    device().Set("store.free", "2000");
    const std::string large =
        R"({"props": [{"propid": 589889, "value": ")" + std::string(6000, '0') + R"("}]})";
    EXPECT_THROW(Import(R"([{"name": "New", "records": [{}, )" + large + "]}]"),
                 std::runtime_error);
    EXPECT_EQ(json::array(), Dump());
}

}  // namespace
