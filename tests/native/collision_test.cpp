#include <gtest/gtest.h>

#include "snapshot/records/registry_objects.h"
#include "tests/native/recording_log.h"

namespace tolvenar {
namespace {

// A state that holds identifiers for another object.
struct HeldIdentifiers : IdentifierHolders {
    bool IsHeldByAnother(std::uint32_t TolvOID, const RegistryEntry&, HolderNames& names) override {
        names = {u"stored\\key", u"value"};
        return TolvOID == held;
    }
    std::uint32_t held = 0;
};

class CollisionTest : public testing::Test {
protected:
    CollisionTest() { ClearLog(); }
    ~CollisionTest() override { ClearLog(); }

    // Every call makes the same first identifier.
    std::uint32_t Next() {
        std::uint32_t id = 0;
        entered_ =
            table_.Generate(u"80000001k\u0041v", {false, 0x80000001, u"k", u"v", 1, "data", 4}, id);
        return id;
    }

    RegistryObjects table_;
    bool entered_ = false;
};

TEST_F(CollisionTest, CollidingObjectsGetCountersInTheOrderOfTheScan) {
    const std::uint32_t first = Next();
    EXPECT_TRUE(entered_);
    EXPECT_EQ(first + 0x01000000, Next());
    EXPECT_EQ(first + 0x02000000, Next());
    EXPECT_EQ(0u, first >> 24);
}

TEST_F(CollisionTest, EachCollisionIsLogged) {
    table_.RegObjectAdd(MakeTolvOID(u"full name", "data", 4, 0),
                        {false, 1, u"key\\path", u"value", 1, "data", 4});
    table_.RegObjectAdd(MakeTolvOID(u"full name", "data", 4, 1), {true, 1, u"key"});
    std::uint32_t id = 0;
    ASSERT_TRUE(table_.Generate(u"full name", {false, 1, u"k", u"v", 1, "data", 4}, id));
    EXPECT_EQ(MakeTolvOID(u"full name", "data", 4, 2), id);
    char digits[2][9];
    std::snprintf(digits[0], 9, "%08x", id - 0x02000000);
    std::snprintf(digits[1], 9, "%08x", id - 0x01000000);
    ASSERT_EQ(2u, LogLines().size());
    EXPECT_EQ(std::string("I OID generation: full name\r\nkey\\path!value\r\n") + digits[0],
              LogLines()[0]);
    // The name of an absent value is empty.
    EXPECT_EQ(std::string("I OID generation: full name\r\nkey!\r\n") + digits[1], LogLines()[1]);
}

TEST_F(CollisionTest, AnIdentifierThatTheStateHasForAnotherObjectIsACollision) {
    HeldIdentifiers state;
    state.held = MakeTolvOID(u"full name", "data", 4, 0);
    std::uint32_t id = 0;
    ASSERT_TRUE(table_.Generate(u"full name", {false, 1, u"k", u"v", 1, "data", 4}, id, &state));
    EXPECT_EQ(state.held + 0x01000000, id);
    char digits[9];
    std::snprintf(digits, 9, "%08x", state.held);
    ASSERT_EQ(1u, LogLines().size());
    EXPECT_EQ(std::string("I OID generation: full name\r\nstored\\key!value\r\n") + digits,
              LogLines()[0]);
}

TEST_F(CollisionTest, TheCounterHas8BitsAnd256TriesAreAll) {
    std::uint32_t first = Next();
    for (std::uint32_t i = 1; i < 256; ++i) {
        ASSERT_EQ(first + (i << 24), Next());
    }
    ClearLog();
    Next();
    EXPECT_FALSE(entered_);
    EXPECT_EQ(256u, LogLines().size());
}

TEST_F(CollisionTest, LongNamesAreCutNotOverrun) {
    const std::u16string path(300, u'k');
    const std::u16string name(800, u'v');
    const std::uint32_t taken = MakeTolvOID(path.c_str(), nullptr, 0, 0);
    const RegistryEntry value{false, 1, path.c_str(), name.c_str(), 1, nullptr, 0};
    table_.RegObjectAdd(taken, value);
    std::uint32_t id = 0;
    table_.Generate(path.c_str(), value, id);
    ASSERT_EQ(1u, LogLines().size());
    EXPECT_EQ(std::string("I OID generation: ").size() + 1023, LogLines()[0].size());
}

}  // namespace
}  // namespace tolvenar
