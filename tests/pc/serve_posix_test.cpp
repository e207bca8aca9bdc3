// serve: what it answers over the loopback, and what it refuses.
#include <httplib.h>

#include "pc/serve/disposition.h"
#include "pc/serve/server.h"
#include "pc/serve/site.h"
#include "pc/serve/token.h"
#include "pc/text/failure.h"
#include "tests/pc/child.h"
#include "tests/pc/hostile_pair.h"
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

bool Has(const std::string& text, const std::string& part) { return text.find(part) != text.npos; }

// The storage behind a server in this process.
class ServeTest : public ThreeStatesTest {
protected:
    void Start() {
        Save();
        opened_ = std::make_unique<StoredPair>(FindPair(In("Home.sav")));
        TextOutput nothing;
        Console console{nothing, nothing};
        site_ = std::make_unique<Site>(*opened_, GatherReport(*opened_, console));
        server_ = std::make_unique<Server>(
            0, [this](const Request& request) { return site_->Answer(request); });
        const std::string& address = server_->address();
        path_ = address.substr(address.find('/', 7));
        host_ = address.substr(7, address.find('/', 7) - 7);
        port_ = std::stoi(host_.substr(host_.find(':') + 1));
    }
    httplib::Result Ask(const std::string& path, httplib::Headers headers = {}) {
        httplib::Client client("127.0.0.1", port_);
        if (headers.count("Host") == 0) {
            headers.emplace("Host", host_);
        }
        return client.Get(path, headers);
    }
    // The body of a page behind the token.
    std::string Page(const std::string& name, int expected_status = 200) {
        const httplib::Result result = Ask(path_ + name);
        EXPECT_TRUE(result && result->status == expected_status)
            << name << ": " << (result ? result->status : 0);
        return result ? result->body : std::string();
    }
    // The address of what `label` stands behind on a page, once `name` was told.
    std::string LinkBehind(const std::string& page, const std::string& name,
                           const std::string& word) {
        const std::size_t at = page.find(word, page.find(name));
        return at == page.npos ? std::string() : page.substr(at, page.find('"', at) - at);
    }

    std::unique_ptr<StoredPair> opened_;
    std::unique_ptr<Site> site_;
    std::unique_ptr<Server> server_;
    std::string path_;  // "/TOKEN/"
    std::string host_;
    int port_ = 0;
};

TEST_F(ServeTest, TheFirstPageTellsOfAllStates) {
    Start();
    const std::string page = Page("");
    EXPECT_TRUE(Has(page, "<bdi>Handheld</bdi>"));
    EXPECT_TRUE(Has(page, "href=\"state-3\""));
    EXPECT_TRUE(Has(page, "href=\"changes-2\""));
    EXPECT_TRUE(Has(page, "<option value=\"2\" selected>State 2, 2026-11-16 05:33:10"));
}

TEST_F(ServeTest, AStateIsATreeWithDownloads) {
    Start();
    const std::string page = Page("state-2");
    EXPECT_TRUE(Has(page, "<summary><bdi>My Documents</bdi></summary>"));
    EXPECT_TRUE(Has(page, "<bdi>letter.txt</bdi></a> <small>13 bytes</small>"));
    EXPECT_EQ("Dear Ann, bye", Page(LinkBehind(page, "letter.txt", "file-2-")));
    EXPECT_TRUE(Has(Page(LinkBehind(page, "Contacts Database", "database-2-")), "id,0002 i"));
}

TEST_F(ServeTest, DownloadsAreWhatExportGives) {
    Start();
    const std::string page = Page("state-2");
    const std::string key = LinkBehind(page, "<bdi>Notes</bdi>", "key-2-");
    EXPECT_EQ(Run({"export", "HOME@2", "reg", "HKCU\\Software\\Notes"}).out, Page(key));
    EXPECT_EQ(Run({"export", "HOME@2", "reg"}).out, Page("registry-2.reg"));
    EXPECT_EQ(Run({"export", "HOME@2", "json"}).out, Page("databases-2.json"));
    const std::string csv = LinkBehind(page, "Contacts Database", "database-2-");
    EXPECT_EQ(Run({"export", "HOME@2", "csv", "db:Contacts Database"}).out, Page(csv));
}

TEST_F(ServeTest, AKeyIsGivenWithWhatIsBelowItAndNothingElse) {
    pair.BeginState();
    const ObjectRecord key = pair.AddKey(u"A");
    pair.AddKey(u"A\\below");
    pair.AddKey(u"Ab");
    Start();
    const std::u16string text =
        TextIn(Page("key-4-" + std::to_string(key.propOffset) + ".reg").substr(2));
    EXPECT_EQ(
        u"Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\A]\r\n\r\n"
        u"[HKEY_CURRENT_USER\\A\\below]\r\n",
        text);
}

TEST_F(ServeTest, AnObjectIsShownAsText) {
    Start();
    const std::string page = Page("state-3");
    EXPECT_TRUE(Has(Page(LinkBehind(page, "letter.txt", "file-3-").replace(0, 4, "object")),
                    "<pre>Dear Ann, bye\n</pre>"));
}

TEST_F(ServeTest, AnyTwoStatesAreCompared) {
    Start();
    EXPECT_TRUE(Has(Page("compare?older=1&newer=3"), "<li class=d><bdi>notes.txt (-)</bdi>"));
    EXPECT_TRUE(Has(Page("compare?older=3&newer=1"), "<li class=a><bdi>notes.txt (+)</bdi>"));
    EXPECT_TRUE(Has(Page("changes-1"), "<li class=a><bdi>notes.txt (+)</bdi>"));
    EXPECT_TRUE(Has(Page("changes-2"), "\">before</a> <a class=get href=\"object-2-"));
}

TEST_F(ServeTest, WhatIsNotThereIsNotThere) {
    Start();
    for (const char* name : {"state-4", "state-0", "state-", "state-1-1", "state-1.reg", "file-1-7",
                             "file-1-236", "object-1-99999999999", "registry-1", "compare",
                             "compare?older=1", "..", "state-65537", "compare?older=1&newer=0",
                             "compare?older=x&newer=1", "key-1-236.reg", "-", ".", "a.b.c"}) {
        EXPECT_EQ("There is no such page.\n", Page(name, 404)) << name;
    }
}

TEST_F(ServeTest, WithoutTheTokenNothingIsTold) {
    Start();
    std::string other = path_;
    other[1] = other[1] == '0' ? '1' : '0';
    for (const std::string& path :
         {std::string("/"), std::string("/favicon.ico"), other, path_.substr(0, path_.size() - 1),
          "/x" + path_, other + "style.css"}) {
        const httplib::Result result = Ask(path);
        ASSERT_TRUE(result);
        EXPECT_EQ(404, result->status) << path;
        EXPECT_EQ("Not here.\n", result->body);
    }
}

TEST_F(ServeTest, EveryStartHasATokenOf256BitsOfItsOwn) {
    const std::string token = NewToken();
    EXPECT_EQ(64u, token.size());
    EXPECT_NE(token, NewToken());
    EXPECT_TRUE(IsToken(token, token));
    EXPECT_FALSE(IsToken(token.substr(1), token));
    EXPECT_FALSE(IsToken("", token));
}

// A name that leads to this machine by another's will comes as the Host.
TEST_F(ServeTest, AnotherHostIsRefused) {
    Start();
    const std::string port = std::to_string(port_);
    for (const std::string& host :
         {"evil.example:" + port, std::string("127.0.0.1"), "localhost:" + port,
          "127.0.0.1:" + port + ".evil.example", std::string()}) {
        const httplib::Result result = Ask(path_, {{"Host", host}});
        ASSERT_TRUE(result);
        EXPECT_EQ(421, result->status) << host;
        EXPECT_EQ("Not this host.\n", result->body);
    }
}

TEST_F(ServeTest, OnlyReadingIsAnswered) {
    Start();
    httplib::Client client("127.0.0.1", port_);
    const httplib::Headers headers = {{"Host", host_}};
    EXPECT_EQ(405, client.Put(path_, headers, "", "text/plain")->status);
    EXPECT_EQ(405, client.Delete(path_, headers)->status);
    const httplib::Result head = client.Head(path_, headers);
    EXPECT_EQ(200, head->status);
    EXPECT_EQ("", head->body);
}

TEST_F(ServeTest, EveryAnswerForbidsScriptsAndGuessing) {
    Start();
    for (const std::string& path : {path_, path_ + "registry-1.reg", std::string("/")}) {
        const httplib::Result result = Ask(path);
        ASSERT_TRUE(result);
        EXPECT_EQ(0u, result->get_header_value("Content-Security-Policy")
                          .find("default-src 'none'; style-src 'self';"))
            << path;
        EXPECT_EQ("nosniff", result->get_header_value("X-Content-Type-Options"));
        EXPECT_EQ("no-referrer", result->get_header_value("Referrer-Policy"));
        EXPECT_EQ("no-store", result->get_header_value("Cache-Control"));
    }
}

TEST_F(ServeTest, ItListensOnThisMachineAlone) {
    Start();
    EXPECT_EQ(0u, server_->address().find("http://127.0.0.1:"));
    // Any other address of the loopback is one where a server on all addresses would answer.
    httplib::Client client("127.0.0.2", port_);
    EXPECT_FALSE(client.Get(path_));
}

TEST_F(ServeTest, TwoDoNotShareAPort) {
    Start();
    EXPECT_THROW(Server(port_, [](const Request&) { return Reply(); }), Failure);
}

TEST_F(ServeTest, NamesAreSafe) {
    AddHostileState(pair);
    Start();
    for (const char* name : {"", "state-4", "changes-4"}) {
        const std::string page = Page(name);
        EXPECT_FALSE(Has(page, "<img")) << name;
        EXPECT_FALSE(Has(page, "<script")) << name;
        EXPECT_TRUE(Has(page, "&lt;/script&gt;&lt;img src=x onerror=")) << name;
    }
    const std::string link = LinkBehind(Page("state-4"), "<bdi>CON.txt</bdi>", "file-4-");
    const httplib::Result result = Ask(path_ + link);
    ASSERT_TRUE(result);
    EXPECT_EQ("attachment; filename=\"_CON.txt\"; filename*=UTF-8''_CON.txt",
              result->get_header_value("Content-Disposition"));
    EXPECT_EQ("application/octet-stream", result->get_header_value("Content-Type"));
    EXPECT_EQ("away", result->body);
}

TEST_F(ServeTest, ANameOfOtherLettersIsGivenBothWays) {
    EXPECT_EQ("attachment; filename=\"Bj__rk _.txt\"; filename*=UTF-8''Bj%C3%B6rk%20%22.txt",
              DispositionOf("Bj\xC3\xB6rk \".txt"));
}

TEST_F(ServeTest, ALongFileComesInPieces) {
    Bytes contents;
    for (int i = 0; i < 300000; ++i) {
        contents += static_cast<char>(i * 7 % 251);
    }
    pair.BeginState();
    const ObjectRecord file = pair.AddFile(u"\\long", contents, 0x50);
    Start();
    EXPECT_EQ(contents, Page("file-4-" + std::to_string(file.propOffset)));
}

// The library takes minutes to compress what a browser would take compressed.
TEST_F(ServeTest, ALongPageIsNotCompressed) {
    Start();
    const httplib::Result result = Ask(path_, {{"Accept-Encoding", "gzip, deflate, br"}});
    ASSERT_TRUE(result);
    EXPECT_FALSE(result->has_header("Content-Encoding"));
    EXPECT_EQ(Page("").size(), result->body.size());
}

TEST_F(ServeTest, DamagedContentsAreNotGiven) {
    pair.sav[pair.sav.find("Dear Ann, bye")] ^= 1;
    Start();
    std::string link = LinkBehind(Page("state-2"), "letter.txt", "file-2-");
    EXPECT_EQ("Its contents are damaged.\n", Page(link, 500));
    EXPECT_TRUE(Has(Page(link.replace(0, 4, "object")), "Its contents are damaged."));
    EXPECT_TRUE(Has(Page(""), "<a href=\"#failures\">"));
}

TEST_F(ServeTest, WhatIsMissingInADownloadIsToldFirst) {
    pair.sav[pair.sav.find(Units(u"Courier"))] ^= 1;
    Start();
    const std::string page = Page("registry-2.reg");
    EXPECT_TRUE(Has(page, "not exported: HKCU\\Software\\Notes\\\\Font: its data are damaged"));
    const std::string link = LinkBehind(page, "<main>", "registry-2.reg?");
    EXPECT_EQ(Run({"export", "HOME@2", "reg"}).out, Page(link));
}

// The program as a process, ended as Ctrl-C ends it.
TEST_F(ServeTest, AnInterruptIsAClearEnd) {
    const Child child({"serve", In("Home.sav"), "--json"}, In("told"));
    const std::string address = nlohmann::json::parse(child.ReadLine())["address"];
    httplib::Client client(address.substr(0, address.find('/', 7)));
    const httplib::Result result = client.Get(address.substr(address.find('/', 7)));
    EXPECT_TRUE(result && result->status == 200);
    child.Interrupt();
    EXPECT_EQ(0, child.End());
    EXPECT_EQ("tolvenar: closed\n", Read("told"));
    EXPECT_FALSE(client.Get("/"));
}

TEST_F(ServeTest, TheStorageStaysAsItIs) {
    Start();
    for (const char* name : {"", "state-1", "changes-2", "registry-3.reg"}) {
        Page(name);
    }
    EXPECT_EQ(pair.sav, Read("Home.sav"));
    EXPECT_EQ(pair.JournalBytes(), Read("Home.jrn"));
}

}  // namespace
}  // namespace tolvenar::pc
