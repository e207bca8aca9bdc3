// The addresses that a browser asks for: a page's name, and behind the first "?" a query. Whatever
// is asked, the answer is a page, a download or a refusal.
#include "pc/serve/site.h"
#include "tests/fuzz/fuzz_source.h"
#include "tests/support/pair_builder.h"
#include "tests/support/temporary_folder.h"

using namespace tolvenar;

namespace {

struct Served {
    Served() {
        PairBuilder builder;
        builder.BeginState(Terminated(u"first"));
        builder.AddFile(u"\\letter.txt", "Dear Ann", 0x11);
        builder.AddKey(u"Software");
        builder.AddValue(u"Software", u"Font", Terminated(u"Tahoma"), 1);
        builder.AddDatabase(u"Contacts Database", 0x20);
        builder.AddRecord(u"Contacts Database", 7, 0x21);
        builder.BeginState();
        builder.AddFile(u"\\plan.txt", "", 0x12);
        folder.Write("Home.sav", builder.sav);
        folder.Write("Home.jrn", builder.JournalBytes());
        pair = std::make_unique<pc::StoredPair>(pc::FindPair(folder.In("Home.sav")));
        pc::TextOutput nothing;
        pc::Console console{nothing, nothing};
        site = std::make_unique<pc::Site>(*pair, pc::GatherReport(*pair, console));
    }

    tests::TemporaryFolder folder;
    std::unique_ptr<pc::StoredPair> pair;
    std::unique_ptr<pc::Site> site;
};

pc::Request RequestOf(const std::string& text) {
    pc::Request request;
    std::size_t end = std::min(text.find('?'), text.size());
    request.page = text.substr(0, end);
    while (end < text.size()) {
        const std::size_t begin = end + 1;
        end = std::min(text.find('&', begin), text.size());
        const std::string word = text.substr(begin, end - begin);
        const std::size_t equals = std::min(word.find('='), word.size());
        request.words[word.substr(0, equals)] = word.substr(std::min(equals + 1, word.size()));
    }
    return request;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Served served;
    const pc::Reply reply =
        served.site->Answer(RequestOf({reinterpret_cast<const char*>(data), size}));
    Require(reply.status == 200 || reply.status == 404);
    Require(reply.status == 200 || reply.saved_as.empty());
    std::string piece;
    Require(!reply.read || reply.read_bytes == 0 || reply.read(0, reply.read_bytes, piece));
    return 0;
}
