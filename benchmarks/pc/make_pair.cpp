// make_pair STEM FILES VALUES STATES: a storage of so many files and registry values, and a
// database, in STEM.sav and STEM.jrn. The first state holds all of them; each further one changes
// one object of fifty.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>

#include "tests/support/pair_builder.h"

namespace tolvenar {
namespace {

constexpr std::size_t kFileBytes = 12000;
constexpr std::size_t kFilesOfAFolder = 50;
constexpr std::size_t kValuesOfAKey = 20;
constexpr std::size_t kChangedOneOf = 50;
constexpr std::uint64_t kBegin = 0x01DD7583957AC700;  // 16 November 2026, 04:33:10 UTC
constexpr std::uint64_t kDay = 864000000000;
constexpr const char16_t* kDatabaseName = u"Contacts Database";

std::u16string Numbered(const char16_t* name, std::size_t number) {
    const std::string digits = std::to_string(1000000 + number);
    return name + std::u16string(digits.begin(), digits.end());
}

class Maker {
public:
    Maker(std::size_t files, std::size_t values) {
        pair_.time = kBegin;
        pair_.BeginState(Terminated(u"State 1"));
        for (std::size_t i = 0; i < files; ++i) {
            if (i % kFilesOfAFolder == 0) {
                pair_.AddFolder(FolderOf(i), next_oid_++);
            }
            files_.push_back(AddFile(i));
        }
        for (std::size_t i = 0; i < values; ++i) {
            if (i % kValuesOfAKey == 0) {
                AddKey(i);
            }
            values_.push_back(AddValue(i));
        }
        pair_.AddDatabase(kDatabaseName, next_oid_++);
        for (std::size_t i = 0; i < values / kChangedOneOf; ++i) {
            records_.push_back(AddRecord());
        }
    }

    void Change(std::size_t state) {
        pair_.time += kDay;
        pair_.BeginState(Terminated(Numbered(u"State ", state)));
        const auto again = [state](std::vector<ObjectRecord>& stored, PairBuilder& pair, auto add) {
            for (std::size_t i = state; i < stored.size(); i += kChangedOneOf) {
                const ObjectRecord before = stored[i];
                stored[i] = add(i);
                pair.Delete(before);
            }
        };
        again(files_, pair_, [this](std::size_t i) { return AddFile(i); });
        again(values_, pair_, [this](std::size_t i) { return AddValue(i); });
        again(records_, pair_, [this](std::size_t) { return AddRecord(); });
    }

    bool Save(const std::string& stem) const {
        std::ofstream sav(stem + ".sav", std::ios::binary);
        std::ofstream journal(stem + ".jrn", std::ios::binary);
        sav << pair_.sav << std::flush;
        journal << pair_.JournalBytes() << std::flush;
        return sav && journal;
    }

private:
    std::uint32_t Random() { return static_cast<std::uint32_t>(random_()); }
    static std::u16string FolderOf(std::size_t file) {
        return Numbered(u"\\Folder ", file / kFilesOfAFolder);
    }
    ObjectRecord AddFile(std::size_t i) {
        return pair_.AddFile(FolderOf(i) + Numbered(u"\\file ", i) + u".dat",
                             RandomBytes(kFileBytes, Random()), next_oid_++);
    }
    // One identifier has one object of a device: another name is taken where it is not free.
    void AddKey(std::size_t i) {
        const auto identifier = [this] {
            return MakeTolvOID((u"80000001" + key_).c_str(), key_.data(), 2 * key_.size(), 0);
        };
        for (key_ = Numbered(u"Software\\Bench\\Key ", i); !taken_.insert(identifier()).second;) {
            key_ += static_cast<char16_t>(u'a' + Random() % 26);
        }
        pair_.AddKey(key_);
        keys_.push_back(key_);
    }
    ObjectRecord AddValue(std::size_t i) {
        const std::u16string& key = keys_[i / kValuesOfAKey];
        const std::u16string name = Numbered(u"Value ", i);
        const std::u16string path = u"80000001" + key + kNameSeparator + name;
        Bytes data;
        do {
            data = Terminated(Numbered(u"", Random()));
        } while (!taken_.insert(MakeTolvOID(path.c_str(), data.data(), data.size(), 0)).second);
        return pair_.AddValue(key, name, data, 1);
    }
    ObjectRecord AddRecord() { return pair_.AddRecord(kDatabaseName, Random(), next_oid_++); }

    PairBuilder pair_;
    std::mt19937 random_{1};
    std::uint32_t next_oid_ = 0x1000001;
    std::u16string key_;
    std::vector<std::u16string> keys_;
    std::set<std::uint32_t> taken_;
    std::vector<ObjectRecord> files_;
    std::vector<ObjectRecord> values_;
    std::vector<ObjectRecord> records_;
};

}  // namespace
}  // namespace tolvenar

int main(int count, char** arguments) {
    if (count != 5) {
        std::fputs("make_pair STEM FILES VALUES STATES\n", stderr);
        return 2;
    }
    const auto number = [arguments](int i) { return std::strtoul(arguments[i], nullptr, 10); };
    tolvenar::Maker maker(number(2), number(3));
    for (std::size_t state = 2; state <= number(4); ++state) {
        maker.Change(state);
    }
    return maker.Save(arguments[1]) ? 0 : 1;
}
