// Reads anywhere in a storage file that cannot be read everywhere, and an appender whose card may
// be full: what is read and written is what the bytes themselves say.
#include "storage/format/storage_appender.h"
#include "storage/format/storage_reader.h"
#include "tests/fuzz/fuzz_source.h"

using namespace tolvenar;

namespace {

// Larger than the pages that are kept, from time to time.
Bytes Repeated(const Bytes& pattern, std::size_t times) {
    Bytes content;
    for (std::size_t i = 0; i < times; ++i) {
        content += pattern;
    }
    return content;
}

class CheckedFile {
public:
    CheckedFile(const Bytes& content, std::uint32_t bad_begin, std::uint32_t bad_bytes)
        : content_(content), file_(content), bad_end_(bad_begin + bad_bytes) {
        if (bad_bytes != 0) {
            file_.bad_begin = bad_begin;
            file_.bad_end = bad_end_;
        }
    }

    void Read(std::uint32_t offset, std::uint32_t bytes) {
        std::vector<char> buffer(bytes);
        std::uint32_t read = 0xFFFFFFFF;
        const bool was_read = storage_.ReadUpTo(offset, buffer.data(), bytes, read);
        Require(was_read || Touches(offset, bytes));
        if (was_read) {
            Require(content_.substr(From(offset), bytes) == Bytes(buffer.data(), read));
        }
    }
    void ReadData(std::uint32_t offset, std::uint32_t bytes) {
        const auto data = storage_.ReadData(offset, bytes);
        const bool is_inside = offset <= content_.size() && bytes <= content_.size() - offset;
        Require(data != nullptr ? is_inside : !is_inside || Touches(offset, bytes));
        if (data != nullptr) {
            Require(content_.compare(offset, bytes, reinterpret_cast<char*>(data.get()), bytes) ==
                    0);
        }
    }
    void ReadBlock(std::uint32_t offset) {
        const std::vector<char> there = Exactly(content_.substr(From(offset), kInfoBlockBytes));
        InfoBlock block;
        InfoBlock expected;
        const bool was_read = storage_.GetInfoFromStorage(offset, block);
        const bool is_whole = ParseInfoBlock(there.data(), there.size(), expected);
        Require(was_read == is_whole || (is_whole && Touches(offset, kInfoBlockBytes)));
        Require(!was_read || std::memcmp(block.bytes(), expected.bytes(), block.size()) == 0);
    }
    void ReadHead() {
        StorageHeader header{};
        const bool was_read = storage_.ReadHead(header);
        Require(!was_read || content_.size() >= kDescriptionOffset);
        Require(was_read || header.descriptionBytes == 0 || Touches(0, sizeof header));
        Require(header.description[kMaxDescriptionUnits - 1] == 0);
    }

private:
    std::size_t From(std::uint32_t offset) const {
        return std::min<std::size_t>(offset, content_.size());
    }
    bool Touches(std::uint32_t offset, std::uint32_t bytes) const {
        return file_.bad_end != 0 && offset < bad_end_ &&
               std::uint64_t{offset} + bytes > file_.bad_begin;
    }

    const Bytes& content_;
    MemoryBytes file_;
    const std::uint32_t bad_end_;
    StorageReader storage_{file_};
};

// Every block or piece of data that is refused is taken back; the next one stands in its place.
void CheckAppending(const Bytes& commands, std::uint32_t room) {
    MemoryBytes file(Bytes(3, 'e'));
    file.room = room;
    StorageAppender appender(file, 3);
    Bytes expected(3, 'e');
    for (const char command : commands) {
        const std::uint32_t bytes = static_cast<std::uint8_t>(command) * 37u;
        const Bytes part(bytes, command);
        const std::uint32_t before = appender.position();
        Require(before == expected.size());
        if (!appender.Write(part.data(), bytes) || (bytes % 2 != 0 && !appender.Flush())) {
            break;  // what waited is lost with the card
        }
        if (bytes % 8 == 0) {
            appender.TakeBack(before);
            continue;
        }
        expected += part;
    }
    file.room = 0xFFFFFFFF;
    appender.TakeBack(3);
    std::uint32_t offset = 0;
    const Bytes block = Block(0, 0, 1, 0, ObjectType::kFile, u"\\a");
    Require(appender.WriteBlock(block.data(), kInfoHeadBytes, offset, true) && offset == 3);
    Require(appender.Flush() && file.content().compare(3, block.size(), block) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::uint32_t bad_begin = input.Word() % 0x60000;
    const std::uint32_t bad_bytes = input.Half();
    const std::size_t times = 1u + input.Half() % 0x400u;
    const Bytes reads = input.TakeBytes(input.Byte() % 16u * 6u);
    const Bytes content = Repeated(input.Rest(), times);
    CheckedFile file(content, bad_begin, bad_bytes);
    file.ReadHead();
    FuzzInput places(reinterpret_cast<const std::uint8_t*>(reads.data()), reads.size());
    while (!places.empty()) {
        const std::uint32_t offset = places.Word();
        const std::uint32_t bytes = places.Half();
        file.Read(offset, bytes);
        file.ReadData(offset, bytes);
        file.ReadBlock(offset);
    }
    // One piece behind the other, which reads ahead.
    for (std::uint32_t offset = 0; bad_begin % 4 == 0 && offset < content.size(); offset += 4099) {
        file.Read(offset, 4099);
    }
    CheckAppending(reads, bad_bytes * 4u);
    return 0;
}
