// The log that holds a device's state: what is published, taken back, compacted.
#include "simulator/store/log_store.h"

#include <gtest/gtest.h>
#include <stdexcept>

#include "simulator/host/attach.h"
#include "simulator/host/host_files.h"

namespace {

using sim::LogStore;

class LogStoreTest : public ::testing::Test {
protected:
    LogStoreTest()
        : folder_(sim::host::FolderFromEnvironmentOrTemp(L"TOLVENAR_TEST_DEVICES") + L"\\log-" +
                  sim::host::UniqueName()) {
        sim::host::RemoveTree(folder_);
        sim::host::MakeFolder(folder_);
        first_ = std::make_unique<LogStore>(folder_);
        second_ = std::make_unique<LogStore>(folder_);
    }
    ~LogStoreTest() override {
        first_.reset();
        second_.reset();
        sim::host::RemoveTree(folder_);
    }
    static void Set(LogStore& store, const char16_t* key, const char* value) {
        LogStore::Change change(store);
        change.Set(key, value);
    }
    static std::string Get(LogStore& store, const char16_t* key) {
        const LogStore::View view(store);
        const std::string* value = view.Find(key);
        return value != nullptr ? *value : "(none)";
    }
    using Texts = std::vector<std::string>;
    static Texts GetAll(LogStore& store, const std::vector<const char16_t*>& keys) {
        Texts texts;
        for (const char16_t* key : keys) {
            texts.push_back(Get(store, key));
        }
        return texts;
    }
    // Bytes of the log, whichever it is now.
    std::size_t LogBytes() {
        std::size_t bytes = 0;
        for (const std::wstring& name : sim::host::List(folder_).files) {
            if (name != L"state.head") {
                bytes += sim::host::ReadWhole(folder_ + L"\\" + name)->size();
            }
        }
        return bytes;
    }

    std::wstring folder_;
    std::unique_ptr<LogStore> first_;
    std::unique_ptr<LogStore> second_;
};

TEST_F(LogStoreTest, AChangeIsSeenByOthersWhenItEnds) {
    {
        LogStore::Change change(*first_);
        change.Set(u"a", "1");
        EXPECT_EQ("1", Get(*first_, u"a"));
        EXPECT_EQ("(none)", Get(*second_, u"a"));
    }
    EXPECT_EQ("1", Get(*second_, u"a"));
}

TEST_F(LogStoreTest, AnExceptionTakesAChangeBackInMemoryAndInTheFile) {
    Set(*first_, u"kept", "old");
    Set(*first_, u"erased", "old");
    const std::size_t bytes = LogBytes();
    EXPECT_THROW(
        {
            LogStore::Change change(*first_);
            change.Set(u"kept", "new");
            change.Set(u"kept", "newer");
            change.Set(u"added", "new");
            change.Erase(u"added");
            change.Set(u"added", "again");
            change.Erase(u"erased");
            throw std::runtime_error("halfway");
        },
        std::runtime_error);
    for (LogStore* store : {first_.get(), second_.get()}) {
        EXPECT_EQ((Texts{"old", "old", "(none)"}), GetAll(*store, {u"kept", u"erased", u"added"}));
    }
    EXPECT_EQ(bytes, LogBytes());
    Set(*second_, u"kept", "later");
    EXPECT_EQ("later", Get(*first_, u"kept"));
}

TEST_F(LogStoreTest, AnInnerChangeIsTakenBackAlone) {
    {
        LogStore::Change outer(*first_);
        outer.Set(u"a", "outer");
        try {
            LogStore::Change inner(*first_);
            inner.Set(u"a", "inner");
            inner.Set(u"b", "inner");
            throw std::runtime_error("inner");
        } catch (const std::runtime_error&) {
        }
        EXPECT_EQ("outer", Get(*first_, u"a"));
        outer.Set(u"c", "outer");
    }
    EXPECT_EQ((Texts{"outer", "(none)", "outer"}), GetAll(*second_, {u"a", u"b", u"c"}));
}

TEST_F(LogStoreTest, AnOuterExceptionTakesInnerChangesBackToo) {
    Set(*first_, u"a", "old");
    EXPECT_THROW(
        {
            LogStore::Change outer(*first_);
            Set(*first_, u"a", "inner");
            Set(*first_, u"b", "inner");
            throw std::runtime_error("outer");
        },
        std::runtime_error);
    EXPECT_EQ("old", Get(*first_, u"a"));
    EXPECT_EQ("(none)", Get(*first_, u"b"));
}

TEST_F(LogStoreTest, AChangeMadeWhileAnExceptionPassesIsKept) {
    struct Closer {
        LogStore& store;
        ~Closer() { Set(store, u"closed", "yes"); }
    };
    try {
        const Closer closer{*first_};
        throw std::runtime_error("on its way");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ("yes", Get(*second_, u"closed"));
}

TEST_F(LogStoreTest, AKeySetOftenInOneChangeIsWrittenOnce) {
    Set(*first_, u"k", "0000000000");
    const std::size_t one = LogBytes();
    {
        LogStore::Change change(*first_);
        for (int i = 0; i < 1000; ++i) {
            change.Set(u"k", "1111111111");
        }
    }
    EXPECT_EQ(2 * one, LogBytes());
}

TEST_F(LogStoreTest, CompactingKeepsTheStateForEveryoneWhoHasItOpen) {
    for (int i = 0; i < 100; ++i) {
        Set(*first_, u"often", "value");
    }
    Set(*first_, u"gone", "value");
    {
        LogStore::Change change(*first_);
        change.Erase(u"gone");
    }
    const std::size_t before = LogBytes();
    first_->Compact();
    EXPECT_EQ("value", Get(*second_, u"often"));
    // The old log went with the last who had it open.
    EXPECT_GT(before / 40, LogBytes());
    EXPECT_EQ("(none)", Get(*second_, u"gone"));
    Set(*second_, u"often", "second");
    EXPECT_EQ("second", Get(*first_, u"often"));
}

// Knows the keys that begin with "a" from what it is told alone.
class Copy final : public LogStore::Watcher {
public:
    void Changed(const std::u16string& key, const std::string* before,
                 const std::string* now) override {
        const auto known = map_.find(key);
        EXPECT_EQ(before != nullptr, known != map_.end());
        EXPECT_TRUE(before == nullptr || *before == known->second);
        if (now != nullptr) {
            map_[key] = *now;
        } else {
            map_.erase(key);
        }
    }
    const LogStore::Map& map() const { return map_; }

private:
    LogStore::Map map_;
};

TEST_F(LogStoreTest, AWatcherIsToldOfEveryChangeUnderItsPrefix) {
    Set(*first_, u"a0", "before");
    Copy copies[2];
    LogStore* const stores[] = {first_.get(), second_.get()};
    for (int i = 0; i < 2; ++i) {
        LogStore::View(*stores[i]).Watch(u"a", copies[i]);
    }
    Set(*first_, u"a1", "1");
    Set(*second_, u"a1", "2");
    Set(*first_, u"b", "another prefix");
    EXPECT_THROW(
        {
            LogStore::Change change(*first_);
            change.Set(u"a2", "taken back");
            change.Erase(u"a1");
            throw std::runtime_error("halfway");
        },
        std::runtime_error);
    {
        LogStore::Change change(*second_);
        change.Erase(u"a0");
        change.Erase(u"a0");
        change.Set(u"a3", "3");
    }
    first_->Compact();
    Set(*first_, u"a4", "4");
    for (int i = 0; i < 2; ++i) {
        const LogStore::View catches_up(*stores[i]);
        EXPECT_EQ((LogStore::Map{{u"a1", "2"}, {u"a3", "3"}, {u"a4", "4"}}), copies[i].map());
    }
}

TEST_F(LogStoreTest, LoadingTakesOneStepForEachEntryOfTheLog) {
    constexpr char16_t kKeys[] = u"abcdefghij";
    for (int i = 0; i < 200; ++i) {
        const char16_t key[] = {kKeys[i % 10], kKeys[i / 20], u'\0'};
        Set(*first_, key, "value");
    }
    EXPECT_EQ(200u, LogStore(folder_).steps());
    first_->Compact();
    EXPECT_EQ(100u, LogStore(folder_).steps());
}

TEST_F(LogStoreTest, AReaderThatLagsBehindFindsTheCompactedLog) {
    Set(*first_, u"a", "1");
    EXPECT_EQ("1", Get(*second_, u"a"));
    // Longer than what the second has read, twice.
    for (int round = 0; round < 2; ++round) {
        for (const char16_t* key : {u"b", u"c", u"d"}) {
            Set(*first_, key, round == 0 ? "first" : "second");
        }
        first_->Compact();
    }
    EXPECT_EQ("second", Get(*second_, u"d"));
    EXPECT_EQ("second", Get(*std::make_unique<LogStore>(folder_), u"b"));
}

}  // namespace
