#include "simulator/files/file_table.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <windows.h>

#include "simulator/files/key_number.h"

namespace sim::files {
namespace {

constexpr std::uint32_t kOnCardFlag = 1;
constexpr std::uint32_t kIsCardFlag = 2;
constexpr std::uint32_t kFirstNumber = 2;  // places 0 and 1 of the slot file hold the counters
constexpr std::size_t kMaxPathUnits = 259;

// A node's value in the log; the name's UTF-16 units follow.
struct NodeHead {
    std::uint32_t parent;
    std::uint32_t attributes;
    std::uint32_t oid;
    std::uint32_t flags;
};

const std::u16string kNodes = u"f/n/";
const std::u16string kNextNumber = u"f/next";

std::u16string NodeKey(std::uint32_t number) { return kNodes + KeyNumber(number); }
std::u16string OidKey(std::uint32_t oid) { return u"f/o/" + KeyNumber(oid); }
std::u16string LockKey(std::uint32_t number) { return u"f/l/" + KeyNumber(number); }
std::u16string ChildrenKey(std::uint32_t parent) { return u"f/c/" + KeyNumber(parent) + u"/"; }
std::u16string ChildKey(std::uint32_t parent, const std::wstring& name) {
    const std::wstring folded = Fold(name);
    return ChildrenKey(parent) + std::u16string(folded.begin(), folded.end());
}

bool StartsWith(const std::u16string& key, const std::u16string& prefix) {
    return key.compare(0, prefix.size(), prefix) == 0;
}

// A name that is not there costs the host a walk over its folder: the folders are kept small.
constexpr std::uint32_t kContentsInFolder = 64;
std::wstring ContentFolder(const Device& device, std::uint32_t number) {
    return device.folder() + L"\\content\\" + std::to_wstring(number / kContentsInFolder);
}

std::uint32_t Stored(const std::string& number) {
    return static_cast<std::uint32_t>(std::strtoul(number.c_str(), nullptr, 10));
}

void Order(std::vector<std::uint32_t>& numbers, const std::string& order) {
    std::sort(numbers.begin(), numbers.end());
    if (order == "reversed") {
        std::reverse(numbers.begin(), numbers.end());
    }
    if (order.rfind("shuffled:", 0) == 0) {
        std::mt19937 random(Stored(order.substr(9)));
        for (std::size_t i = numbers.size(); i > 1; --i) {
            std::swap(numbers[i - 1], numbers[random() % i]);
        }
    }
}

}  // namespace

Node NodeOfEntry(std::uint32_t number, const std::string& value) {
    NodeHead head;
    std::memcpy(&head, value.data(), sizeof head);
    Node node;
    node.number = number;
    node.parent = head.parent;
    node.stored_attributes = head.attributes;
    node.oid = head.oid;
    node.on_card = (head.flags & kOnCardFlag) != 0;
    node.is_card = (head.flags & kIsCardFlag) != 0;
    node.name.resize((value.size() - sizeof head) / sizeof(wchar_t));
    std::memcpy(&node.name[0], value.data() + sizeof head, node.name.size() * sizeof(wchar_t));
    return node;
}

Found FileTable::Find(const wchar_t* path) { return Find(ParsePath(path)); }

Found FileTable::Find(const Path& path) {
    Found found;
    found.error = path.error;
    if (path.error != 0) {
        return found;
    }
    LogStore::View view(store());
    for (std::size_t i = 0; i < path.names.size(); ++i) {
        const bool last = i + 1 == path.names.size();
        found.parent = found.node;
        found.name = path.names[i];
        std::optional<Node> child = Child(found.node.number, path.names[i]);
        if (!child) {
            found.error = last ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
            return found;
        }
        found.node = std::move(*child);
        if (!last && !found.node.is_folder()) {
            found.error = ERROR_PATH_NOT_FOUND;
            return found;
        }
    }
    return found;
}

std::optional<Node> FileTable::Get(std::uint32_t number) {
    if (number == kRoot) {
        return Node();
    }
    LogStore::View view(store());
    const std::string* value = view.Find(NodeKey(number));
    if (value == nullptr) {
        return std::nullopt;
    }
    return NodeOfEntry(number, *value);
}

std::optional<Node> FileTable::Child(std::uint32_t parent, const std::wstring& name) {
    LogStore::View view(store());
    const std::string* number = view.Find(ChildKey(parent, name));
    return number != nullptr ? Get(Stored(*number)) : std::nullopt;
}

std::optional<Node> FileTable::ByOid(std::uint32_t oid) {
    LogStore::View view(store());
    const std::string* number = view.Find(OidKey(oid));
    return number != nullptr ? Get(Stored(*number)) : std::nullopt;
}

bool FileTable::IsProtected(const Node& node) {
    return node.on_card && device_.Setting("card.protected", "no") == "yes";
}

std::vector<std::uint32_t> FileTable::Children(std::uint32_t parent) {
    LogStore::View view(store());
    std::vector<std::uint32_t> numbers;
    view.ForEach(ChildrenKey(parent), [&](const std::u16string&, const std::string& number) {
        numbers.push_back(Stored(number));
    });
    Order(numbers, device_.Setting("order", "stored"));
    return numbers;
}

bool FileTable::HasChildren(std::uint32_t parent) {
    LogStore::View view(store());
    const std::u16string prefix = ChildrenKey(parent);
    const auto at = view.map().lower_bound(prefix);
    return at != view.map().end() && StartsWith(at->first, prefix);
}

std::vector<std::uint32_t> FileTable::All() {
    LogStore::View view(store());
    std::vector<std::uint32_t> numbers;
    view.ForEach(kNodes, [&](const std::u16string& key, const std::string&) {
        numbers.push_back(NumberOfKey(key.substr(kNodes.size())));
    });
    return numbers;
}

std::wstring FileTable::PathOf(const Node& node) {
    LogStore::View view(store());
    if (node.number == kRoot) {
        return L"\\";
    }
    std::wstring path = L"\\" + node.name;
    for (std::uint32_t up = node.parent; up != kRoot;) {
        const std::optional<Node> folder = Get(up);
        if (!folder) {
            break;
        }
        path = L"\\" + folder->name + path;
        up = folder->parent;
    }
    return path;
}

Node FileTable::Add(const Node& parent, const std::wstring& name, std::uint32_t attributes,
                    bool is_card) {
    LogStore::Change change(store());
    const std::string* next = change.Find(kNextNumber);
    Node node;
    node.number = next != nullptr ? Stored(*next) : kFirstNumber;
    node.parent = parent.number;
    node.stored_attributes = attributes;
    node.on_card = parent.on_card || is_card;
    node.is_card = is_card;
    node.oid = node.on_card ? 0 : device_.TakeObjectId();
    node.name = name;
    if (node.number == kFirstNumber || node.number % kContentsInFolder == 0) {
        ::CreateDirectoryW(ContentFolder(device_, node.number).c_str(), nullptr);
    }
    ::DeleteFileW(ContentFile(node.number).c_str());  // left by a process that was killed here
    Slot& place = slot(node.number);
    place.size = 0;
    place.writers = 0;
    const std::uint64_t now = OnMedium(node, device_.WriteTimeUtc());
    StoreTime(place.created, now);
    StoreTime(place.accessed, now);
    StoreTime(place.modified, now);
    change.Set(kNextNumber, std::to_string(node.number + 1));
    change.Set(ChildKey(node.parent, name), std::to_string(node.number));
    if (node.oid != 0) {
        change.Set(OidKey(node.oid), std::to_string(node.number));
    }
    Write(node);
    return node;
}

void FileTable::Write(const Node& node) {
    const NodeHead head{node.parent, node.stored_attributes, node.oid,
                        (node.on_card ? kOnCardFlag : 0) | (node.is_card ? kIsCardFlag : 0)};
    std::string value(reinterpret_cast<const char*>(&head), sizeof head);
    value.append(reinterpret_cast<const char*>(node.name.data()),
                 node.name.size() * sizeof(wchar_t));
    LogStore::Change change(store());
    change.Set(NodeKey(node.number), std::move(value));
}

void FileTable::Remove(const Node& node) {
    {
        LogStore::Change change(store());
        change.Erase(ChildKey(node.parent, node.name));
        change.Erase(NodeKey(node.number));
        change.Erase(LockKey(node.number));
        if (node.oid != 0) {
            change.Erase(OidKey(node.oid));
        }
    }
    // After the log: a kill in between leaves a host file that nothing refers to.
    if (!node.is_folder()) {
        ::DeleteFileW(ContentFile(node.number).c_str());
    }
}

void FileTable::Move(Node& node, const Node& parent, const std::wstring& name) {
    LogStore::Change change(store());
    change.Erase(ChildKey(node.parent, node.name));
    node.parent = parent.number;
    node.name = name;
    change.Set(ChildKey(node.parent, name), std::to_string(node.number));
    Write(node);
}

void FileTable::SetStoredAttributes(Node& node, std::uint32_t attributes) {
    if (node.stored_attributes == attributes) {
        return;
    }
    node.stored_attributes = attributes;
    Write(node);
}

std::wstring FileTable::ContentFile(std::uint32_t number) const {
    return ContentFolder(device_, number) + L"\\" + std::to_wstring(number);
}

std::string FileTable::LockOf(std::uint32_t number) {
    LogStore::View view(store());
    const std::string* mode = view.Find(LockKey(number));
    return mode != nullptr ? *mode : std::string();
}

void FileTable::SetLock(std::uint32_t number, const std::string& mode) {
    LogStore::Change change(store());
    if (mode.empty()) {
        change.Erase(LockKey(number));
    } else {
        change.Set(LockKey(number), mode);
    }
}

}  // namespace sim::files
