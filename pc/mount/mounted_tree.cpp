#include "pc/mount/mounted_tree.h"

#include <algorithm>
#include <cerrno>

#include "pc/command/exports.h"
#include "pc/command/object_text.h"
#include "pc/storage/object_data.h"

namespace tolvenar::pc {
namespace {

// Contents that were made of objects.
class MadeFile final : public OpenedFile {
public:
    explicit MadeFile(std::string contents) : contents_(std::move(contents)) {}
    int Read(std::uint64_t offset, std::size_t bytes, std::string& piece) override {
        piece = offset < contents_.size() ? contents_.substr(offset, bytes) : std::string();
        return 0;
    }

private:
    const std::string contents_;
};

// A stored file's, which were proved.
class StoredFile final : public OpenedFile {
public:
    StoredFile(StoredPair& pair, const StoredObject& object) : pair_(pair), object_(object) {}
    int Read(std::uint64_t offset, std::size_t bytes, std::string& piece) override {
        const std::uint64_t size = object_.has_data ? object_.data_bytes : 0;
        const std::uint64_t left = size - std::min(offset, size);
        piece.resize(std::min<std::uint64_t>(bytes, left));
        const auto wanted = static_cast<std::uint32_t>(piece.size());
        if (wanted == 0) {
            return 0;
        }
        std::uint32_t read = 0;
        const auto begin = static_cast<std::uint32_t>(object_.record.data_offset + offset);
        return pair_.reader().ReadUpTo(begin, piece.data(), wanted, read) && read == wanted ? 0
                                                                                            : EIO;
    }

private:
    StoredPair& pair_;
    const StoredObject& object_;
};

std::string NameOf(const State& state) { return "State " + std::to_string(state.number); }

std::string TextOf(StoredPair& pair, const StoredObject& object) {
    std::string text;
    for (const std::string& line : LinesOf(object, ReadData(pair, object))) {
        text += line + "\n";
    }
    return text;
}

}  // namespace

StateFiles* MountedTree::FilesOf(const std::string& name) {
    for (const State& state : pair_.states()) {
        if (name == NameOf(state)) {
            std::unique_ptr<StateFiles>& files = states_[state.number];
            if (files == nullptr) {
                files = std::make_unique<StateFiles>(pair_, state.number, state.made);
            }
            return files.get();
        }
    }
    return nullptr;
}

FileNode* MountedTree::Find(const std::string& path) {
    std::size_t end = std::min(path.find('/', 1), path.size());
    StateFiles* const files = FilesOf(path.substr(1, end - 1));
    FileNode* node = files == nullptr ? nullptr : &files->root();
    while (node != nullptr && end < path.size()) {
        const std::size_t begin = end + 1;
        end = std::min(path.find('/', begin), path.size());
        const auto below = node->below.find(path.substr(begin, end - begin));
        node = below == node->below.end() ? nullptr : &below->second;
    }
    return node;
}

int MountedTree::Look(const std::string& path, FileAttributes& attributes) {
    if (path == "/") {
        const StorageHeader& header = pair_.header();
        attributes = {true, 0, FileTime::Of(header.created_low, header.created_high)};
        return 0;
    }
    FileNode* const node = Find(path);
    if (node == nullptr) {
        return ENOENT;
    }
    attributes = {node->kind == FileKind::kFolder, 0, node->time};
    if (node->kind == FileKind::kFile) {
        const StoredObject& object = *node->objects.front();
        attributes.bytes = object.has_data ? object.data_bytes : 0;
    } else if (!attributes.is_folder) {
        if (!node->bytes) {
            std::string contents;
            node->bytes = Make(*node, contents) == 0 ? contents.size() : 0;
        }
        attributes.bytes = *node->bytes;
    }
    return 0;
}

int MountedTree::List(const std::string& path, std::vector<std::string>& names) {
    if (path == "/") {
        for (const State& state : pair_.states()) {
            names.push_back(NameOf(state));
        }
        return 0;
    }
    const FileNode* const node = Find(path);
    if (node == nullptr || node->kind != FileKind::kFolder) {
        return node == nullptr ? ENOENT : ENOTDIR;
    }
    for (const auto& [name, below] : node->below) {
        names.push_back(name);
    }
    return 0;
}

// Of a file that is not stored as it is read.
int MountedTree::Make(const FileNode& node, std::string& contents) {
    std::vector<StoredObject> objects;
    for (const StoredObject* object : node.objects) {
        if (!DataAreSound(pair_, *object)) {
            return EIO;
        }
        objects.push_back(*object);
    }
    TextOutput nothing;
    Console console{nothing, nothing};
    Omissions omissions(console);
    switch (node.kind) {
        case FileKind::kText: contents = TextOf(pair_, objects.front()); break;
        case FileKind::kRegistry: contents = ExportRegistry(pair_, objects, omissions); break;
        case FileKind::kRecord: contents = ExportDatabases(pair_, objects, omissions); break;
        default: return EIO;
    }
    return omissions.code() == ExitCode::kDone ? 0 : EIO;
}

int MountedTree::Open(const std::string& path, std::unique_ptr<OpenedFile>& file) {
    const FileNode* const node = path == "/" ? nullptr : Find(path);
    if (node == nullptr || node->kind == FileKind::kFolder) {
        return path == "/" || node != nullptr ? EISDIR : ENOENT;
    }
    if (node->kind == FileKind::kFile) {
        const StoredObject& object = *node->objects.front();
        if (object.is_in_rom()) {
            return ENODATA;
        }
        if (!DataAreSound(pair_, object)) {
            return EIO;
        }
        file = std::make_unique<StoredFile>(pair_, object);
        return 0;
    }
    std::string contents;
    const int failure = Make(*node, contents);
    if (failure == 0) {
        file = std::make_unique<MadeFile>(std::move(contents));
    }
    return failure;
}

}  // namespace tolvenar::pc
