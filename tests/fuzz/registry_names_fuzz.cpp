// Names and data of a registry as a walk meets them, with separators anywhere: what they are
// identified by, and how the stored names are told apart again.
#include <string_view>

#include "snapshot/compare/exclusion.h"
#include "snapshot/compare/record_info.h"
#include "snapshot/compare/state_identifiers.h"
#include "snapshot/compare/value_names.h"
#include "snapshot/records/registry_objects.h"
#include "snapshot/text/text_buffer.h"
#include "tests/fuzz/fuzz_source.h"
#include "tests/native/recording_log.h"
#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

using namespace tolvenar;

namespace {

struct Named {
    bool is_key;
    std::uint32_t hive;
    std::u16string key_path;
    std::u16string value_name;
    Bytes data;
    bool is_readable;           // its stored block
    std::uint32_t TolvOID = 0;  // 0 when it got none

    RegistryEntry entry() const {
        if (is_key) {
            return {true, hive, key_path.c_str()};
        }
        return {false,
                hive,
                key_path.c_str(),
                value_name.c_str(),
                4,
                data.data(),
                static_cast<std::uint32_t>(data.size())};
    }
    std::u16string joined() const {
        return is_key ? key_path : key_path + kNameSeparator + value_name;
    }
    ObjectType type() const {
        return is_key ? ObjectType::kRegistryKey : ObjectType::kRegistryValue;
    }
    bool IsSameObject(const Named& other) const {
        return is_key == other.is_key && hive == other.hive && joined() == other.joined();
    }
};
using Registry = std::vector<Named>;
constexpr std::size_t kMostEntries = 24;  // each is held against each

Registry TakeRegistry(FuzzInput& input) {
    Registry registry;
    while (!input.empty() && registry.size() < kMostEntries) {
        const std::uint32_t bits = input.Byte();
        const std::uint32_t lengths = input.Byte();
        Named named{
            (bits & 1) != 0, kHiveClassesRoot + (bits >> 1 & 3), input.Text(lengths & 15), {}, {},
            (bits & 8) == 0};
        if (!named.is_key) {
            named.value_name = input.Text(lengths >> 4);
            named.data = input.TakeBytes(bits >> 4);
        }
        registry.push_back(named);
    }
    return registry;
}

std::uint32_t Identify(const Named& named, RegistryObjects& table, IdentifierHolders* holders) {
    TextBuffer<100> full_name;
    full_name.AppendHex(named.hive).Append(named.joined().c_str());
    const RegistryEntry entry = named.entry();
    std::uint32_t TolvOID = 0;
    if (!table.Generate(full_name.text(), entry, TolvOID, holders)) {
        return 0;
    }
    const RegistryObject* object = table.RegObjectFind(TolvOID);
    Require(object != nullptr && object->is_key == named.is_key && object->hive == named.hive);
    Require(named.key_path == object->key_path && object->data_bytes == entry.data_bytes);
    Require(named.is_key ? object->value_name == nullptr : named.value_name == object->value_name);
    Require(!named.is_key ||
            (TolvOID & kTolvOidMask) == MakeKeyTolvOID(named.hive, named.key_path));
    return TolvOID;
}

// The first scan, which no state holds against: no two objects get one identifier.
void IdentifyAll(Registry& registry) {
    RegistryObjects table;
    for (std::size_t i = 0; i < registry.size(); ++i) {
        registry[i].TolvOID = Identify(registry[i], table, nullptr);
        for (std::size_t j = 0; j < i && registry[i].TolvOID != 0; ++j) {
            Require(registry[i].TolvOID != registry[j].TolvOID);
        }
    }
}

// The scan's objects as a state, the block of each under its number.
std::unique_ptr<ObjectList> Store(const Registry& registry, FakeInfoSource& info) {
    info.keep_asked = false;
    auto list = ObjectList::CreateList();
    std::uint32_t offset = 0;
    for (const Named& named : registry) {
        ++offset;
        if (named.TolvOID == 0) {
            continue;
        }
        if (named.is_readable) {
            info.stored[offset] = {named.joined(), named.type(), named.hive};
        }
        list->AddObject(
            JournalRecord(MakeRecord(named.type(), 0, named.TolvOID), 1, JF_ADD, offset));
    }
    return list;
}

// A later scan in another order: no object gets an identifier that another one has in the state.
// In the same order each gets its own again.
void CheckLaterScan(const Registry& registry, const ObjectList& state, FakeInfoSource& info,
                    bool same_order) {
    StateIdentifiers holders(info);
    Require(holders.Build(state));
    RegistryObjects table;
    bool all_readable = true;
    for (std::size_t i = 0; i < registry.size(); ++i) {
        const Named& named = registry[same_order ? i : registry.size() - 1 - i];
        all_readable = all_readable && named.is_readable;
        const std::uint32_t TolvOID = Identify(named, table, &holders);
        Require(!same_order || !all_readable || TolvOID == named.TolvOID);
        for (const Named& stored : registry) {
            Require(TolvOID == 0 || stored.TolvOID != TolvOID ||
                    (stored.is_readable && stored.IsSameObject(named)));
        }
    }
}

// Behind the longest key of the state, or the first separator.
std::size_t SeparatorOf(const Named& value, const Registry& registry) {
    const std::u16string name = value.joined();
    std::size_t place = name.find(kNameSeparator);
    for (const Named& key : registry) {
        const std::size_t end = key.key_path.size();
        if (key.is_key && key.is_readable && key.TolvOID != 0 && key.hive == value.hive &&
            name.compare(0, end, key.key_path) == 0 && name[end] == kNameSeparator) {
            place = std::max(place, end);
        }
    }
    return place;
}

void CheckValueNames(const Registry& registry, const ObjectList& journal, FakeInfoSource& info) {
    ValueNames names(&journal, info, info);
    ValueNames names_without_keys(nullptr, info, info);
    for (const Named& named : registry) {
        InfoBlock block;
        block.head().hive = named.hive;
        block.head().type = static_cast<std::uint16_t>(named.type());
        const std::u16string name = named.joined();
        Require(block.SetName(name.c_str(), name.size()));
        const ObjectRecord record = JournalRecord(MakeRecord(named.type(), 0, 0), 1, JF_ADD, 0);
        std::size_t place = 0;
        const bool has_separator = name.find(kNameSeparator) != name.npos;
        Require(names.FindSeparator(record, block, place) == has_separator);
        Require(!has_separator || place == SeparatorOf(named, registry));
        Require(names_without_keys.FindSeparator(record, block, place) == has_separator);
        Require(!has_separator || place == name.find(kNameSeparator));
    }
}

// Being the same object does not depend on which of two is asked first.
void CheckSameness(const ObjectList& state, FakeInfoSource& info) {
    std::vector<ObjectRecord> records = RecordsOf(state);
    records.resize(std::min<std::size_t>(records.size(), 8));
    for (const ObjectRecord& a : records) {
        for (const ObjectRecord& b : records) {
            const Sameness sameness = CompareObjects(a, b, info);
            Require(sameness == CompareObjects(b, a, info));
            Require(IsEqualRegs(a, b, info) == IsEqualRegs(b, a, info));
            Require(sameness != Sameness::kSame || IsEqualRegs(a, b, info));
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    Registry registry = TakeRegistry(input);
    IdentifyAll(registry);
    FakeInfoSource info;
    const auto state = Store(registry, info);
    CheckLaterScan(registry, *state, info, true);
    CheckLaterScan(registry, *state, info, false);
    CheckValueNames(registry, *state, info);
    CheckSameness(*state, info);
    ClearLog();
    return 0;
}
