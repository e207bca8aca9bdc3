#include "simulator/files/unsynced.h"

#include <cstring>
#include <stdexcept>
#include <windows.h>

#include "simulator/files/key_number.h"
#include "simulator/host/host_files.h"
#include "simulator/store/byte_stream.h"

namespace sim::files {
namespace {

const std::u16string kBases = u"f/u/b/";
const std::u16string kChanges = u"f/u/c/";
const std::u16string kChangesByNode = u"f/u/n/";

std::u16string BaseKey(std::uint32_t number) { return kBases + KeyNumber(number); }

std::u16string ChangesOf(std::uint32_t number) { return kChangesByNode + KeyNumber(number) + u"/"; }

bool StartsWith(const std::u16string& key, const std::u16string& prefix) {
    return key.compare(0, prefix.size(), prefix) == 0;
}

// Calls `visit` with the number behind `prefix` of each key that begins with it, and the value.
template <typename Visit>
void ForEach(FileTable& table, const std::u16string& prefix, Visit&& visit) {
    const LogStore::View view(table.store());
    view.ForEach(prefix, [&](const std::u16string& key, const std::string& value) {
        visit(NumberOfKey(key.substr(prefix.size())), value);
    });
}

void WriteBase(FileTable& table, std::uint32_t number, const CardBase& base) {
    std::string value;
    PutNumbers(value, {base.exists ? 1u : 0u, base.parent, base.attributes});
    for (const std::uint64_t time :
         {base.times.created, base.times.accessed, base.times.modified}) {
        PutLong(value, time);
    }
    PutBytes(value, NameBytes(base.name));
    PutBytes(value, base.content);
    LogStore::Change change(table.store());
    change.Set(BaseKey(number), std::move(value));
}

CardBase BaseOf(const std::string& value) {
    ByteReader bytes(value);
    CardBase base;
    base.exists = bytes.Number() != 0;
    base.parent = bytes.Number();
    base.attributes = bytes.Number();
    base.times.created = bytes.Long();
    base.times.accessed = bytes.Long();
    base.times.modified = bytes.Long();
    base.name = NameOfBytes(bytes.Bytes());
    base.content = bytes.Bytes();
    return base;
}

bool HasBase(FileTable& table, std::uint32_t number) {
    const LogStore::View view(table.store());
    return view.Find(BaseKey(number)) != nullptr;
}

CardBase DescribedBase(FileTable& table, const Node& node) {
    CardBase base;
    base.parent = node.parent;
    base.attributes = node.stored_attributes;
    base.times = table.TimesOf(node);
    base.name = node.name;
    return base;
}

// Adds a change of a node whose base is kept.
void Append(FileTable& table, std::uint32_t number, const CardChange& added) {
    std::string value;
    PutNumbers(value, {number, static_cast<std::uint32_t>(added.kind), added.value});
    PutBytes(value, added.bytes);
    LogStore::Change change(table.store());
    const std::u16string at = KeyNumber(CountChanges(table));
    change.Set(kChanges + at, std::move(value));
    change.Set(ChangesOf(number) + at, "");
}

}  // namespace

std::string NameBytes(const std::wstring& name) {
    return {reinterpret_cast<const char*>(name.data()), name.size() * sizeof(wchar_t)};
}

std::wstring NameOfBytes(const std::string& bytes) {
    std::wstring name(bytes.size() / sizeof(wchar_t), L' ');
    std::memcpy(&name[0], bytes.data(), bytes.size());
    return name;
}

bool IsUnsynced(FileTable& table, const Node& node) {
    return node.on_card && table.device().Setting("card.unsynced", "no") != "no";
}

void KeepBase(FileTable& table, const Node& node) {
    if (!IsUnsynced(table, node)) {
        return;
    }
    LogStore::Change change(table.store());
    if (HasBase(table, node.number)) {
        return;
    }
    CardBase base = DescribedBase(table, node);
    base.exists = true;
    if (!node.is_folder()) {
        const auto content = host::ReadWhole(table.ContentFile(node.number));
        if (!content && ::GetLastError() == ERROR_SHARING_VIOLATION) {
            throw std::runtime_error("card.unsynced was set while a program held a file");
        }
        base.content = content.value_or("");
    }
    WriteBase(table, node.number, base);
}

void NoteNew(FileTable& table, const Node& node) {
    if (!IsUnsynced(table, node)) {
        return;
    }
    LogStore::Change change(table.store());
    WriteBase(table, node.number, DescribedBase(table, node));
    Append(table, node.number, {ChangeKind::kPlace, node.parent, NameBytes(node.name)});
}

void NoteChange(FileTable& table, const Node& node, const CardChange& change) {
    if (!IsUnsynced(table, node)) {
        return;
    }
    LogStore::Change kept_together(table.store());
    KeepBase(table, node);
    Append(table, node.number, change);
}

void NoteFlush(FileTable& table, const Node& node) {
    if (!IsUnsynced(table, node) || table.device().Setting("card.unsynced", "no") == "always") {
        return;
    }
    LogStore::Change kept_together(table.store());
    std::optional<Node> at = table.Get(node.number);
    while (at && at->number != kRoot) {
        if (HasBase(table, at->number)) {
            Append(table, at->number, {ChangeKind::kFlush, 0, {}});
        }
        at = table.Get(at->parent);
    }
}

// The places of the changes that are forgotten stay, empty, so that the others keep their numbers.
void Forget(FileTable& table, std::uint32_t number) {
    LogStore::Change change(table.store());
    if (!HasBase(table, number)) {
        return;
    }
    change.Erase(BaseKey(number));
    std::vector<std::uint32_t> forgotten;
    ForEach(table, ChangesOf(number),
            [&](std::uint32_t at, const std::string&) { forgotten.push_back(at); });
    for (const std::uint32_t at : forgotten) {
        change.Set(kChanges + KeyNumber(at), "");
        change.Erase(ChangesOf(number) + KeyNumber(at));
    }
}

void ForgetAll(FileTable& table) {
    LogStore::Change change(table.store());
    for (const std::u16string& prefix : {kBases, kChanges, kChangesByNode}) {
        std::vector<std::u16string> keys;
        change.ForEach(prefix,
                       [&](const std::u16string& key, const std::string&) { keys.push_back(key); });
        for (const std::u16string& key : keys) {
            change.Erase(key);
        }
    }
}

std::map<std::uint32_t, CardHistory> CardHistories(FileTable& table) {
    const LogStore::View view(table.store());
    std::map<std::uint32_t, CardHistory> histories;
    ForEach(table, kBases, [&](std::uint32_t number, const std::string& value) {
        histories[number].base = BaseOf(value);
    });
    ForEach(table, kChanges, [&](std::uint32_t at, const std::string& value) {
        if (value.empty()) {
            return;
        }
        ByteReader bytes(value);
        CardHistory& history = histories[bytes.Number()];
        NumberedChange numbered;
        numbered.number = at;
        numbered.change.kind = static_cast<ChangeKind>(bytes.Number());
        numbered.change.value = bytes.Number();
        numbered.change.bytes = bytes.Bytes();
        history.changes.push_back(std::move(numbered));
    });
    return histories;
}

std::uint32_t CountChanges(FileTable& table) {
    const LogStore::View view(table.store());
    auto at = view.map().lower_bound(kChanges + u"g");  // behind every number
    if (at == view.map().begin() || !StartsWith((--at)->first, kChanges)) {
        return 0;
    }
    return NumberOfKey(at->first.substr(kChanges.size())) + 1;
}

}  // namespace sim::files
