// The table of a device's files and folders: names, attributes and object ids in the device's log,
// sizes and times in the slot file, contents as host files `content\<number / 64>\<number>`. A
// node's number is the simulator's own; an object-store node has an object id beside it, a node on
// the card has none.
//   f/n/<number>           parent, attributes, object id, name
//   f/c/<parent>/<folded>  number of the child of that name
//   f/o/<object id>        number
//   f/l/<number>           "none", "read" or "write": held open by the tester, sharing this
//   f/next                 next number
//   f/u/...                what was not flushed yet: see unsynced.h
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/files/path.h"
#include "simulator/files/size_sums.h"
#include "simulator/files/slots.h"
#include "simulator/store/device.h"

namespace sim::files {

// The platform's attribute bits; the host gives some of them another meaning.
enum Attribute : std::uint32_t {
    kReadOnly = 0x1,
    kHidden = 0x2,
    kSystem = 0x4,
    kFolder = 0x10,
    kArchive = 0x20,
    kInRom = 0x40,
    kNormal = 0x80,
    kTemporary = 0x100,
    kRomModule = 0x2000,
};
// What a program may set.
constexpr std::uint32_t kSettable = kReadOnly | kHidden | kSystem | kArchive;

constexpr std::uint32_t kRoot = 0;

struct Node {
    std::uint32_t number = kRoot;
    std::uint32_t parent = kRoot;
    std::uint32_t stored_attributes = kFolder;
    std::uint32_t oid = 0;
    bool on_card = false;
    bool is_card = false;  // the folder that the card hangs in
    std::wstring name;

    bool is_folder() const { return (stored_attributes & kFolder) != 0; }
    bool is_rom() const { return (stored_attributes & (kInRom | kRomModule)) != 0; }
};

// Where a path leads. `error` is 0 when the node is there, ERROR_FILE_NOT_FOUND when only the last
// name is missing (then `parent` and `name` tell where it would be), else another platform error.
struct Found {
    std::uint32_t error = 0;
    Node node;
    Node parent;
    std::wstring name;
};

struct Times {
    std::uint64_t created = 0;
    std::uint64_t accessed = 0;
    std::uint64_t modified = 0;
};

class FileTable {
public:
    explicit FileTable(Device& device) : device_(device), slots_(device.folder()), sizes_(*this) {}
    static FileTable& Of(Device& device) { return device.Part<FileTable>(); }

    Device& device() { return device_; }
    LogStore& store() { return device_.store(); }

    Found Find(const wchar_t* path);
    Found Find(const Path& path);
    std::optional<Node> Get(std::uint32_t number);
    std::optional<Node> Child(std::uint32_t parent, const std::wstring& name);
    std::optional<Node> ByOid(std::uint32_t oid);
    // What programs are told: that of a file on a card is 0, all ones or one of its own (setting
    // "card.oid").
    std::uint32_t ToldOid(const Node& node);
    std::optional<Node> ByToldOid(std::uint32_t oid);
    // True for what lies on a card whose switch keeps it from being written (setting
    // "card.protected").
    bool IsProtected(const Node& node);
    // The children's numbers in the order that the setting "order" tells: "stored" (as they came),
    // "reversed" or "shuffled:<seed>".
    std::vector<std::uint32_t> Children(std::uint32_t parent);
    bool HasChildren(std::uint32_t parent);
    // Every number, in no particular order.
    std::vector<std::uint32_t> All();
    std::wstring PathOf(const Node& node);

    // A new child, with the times set to now and no content. `on_card` follows the parent unless
    // `is_card`.
    Node Add(const Node& parent, const std::wstring& name, std::uint32_t attributes,
             bool is_card = false);
    void Remove(const Node& node);
    void Move(Node& node, const Node& parent, const std::wstring& name);
    void SetStoredAttributes(Node& node, std::uint32_t attributes);

    // What the platform shows: TEMPORARY on the card's folders, NORMAL where nothing else is set.
    std::uint32_t AttributesOf(const Node& node);
    std::uint32_t SizeOf(const Node& node);
    // The same without trusting the slot: the content's own size.
    std::uint32_t ContentSize(std::uint32_t number);
    Times TimesOf(const Node& node);
    void SetModified(const Node& node, std::uint64_t time);
    // Zero leaves a time as it is. Created and accessed are kept only when the setting "file.times"
    // is "separate"; else they show the time of the last change.
    void SetTimes(const Node& node, const Times& times);

    Slot& slot(std::uint32_t number) { return slots_.At(number); }
    // What all files take together.
    SizeSums& sizes() { return sizes_; }
    // The host file that holds a file's content. It need not exist: then the content is empty.
    std::wstring ContentFile(std::uint32_t number) const;

    // A lock set from outside. Empty: none.
    std::string LockOf(std::uint32_t number);
    void SetLock(std::uint32_t number, const std::string& mode);

private:
    void Write(const Node& node);
    // Times as the medium keeps them: a card's may be local ones of two seconds (setting
    // "card.times").
    std::uint64_t OnMedium(const Node& node, std::uint64_t utc);
    std::uint64_t FromMedium(const Node& node, std::uint64_t kept);

    Device& device_;
    SlotFile slots_;
    SizeSums sizes_;
};

// A node as its entry `f/n/<number>` tells it.
Node NodeOfEntry(std::uint32_t number, const std::string& value);

}  // namespace sim::files
