// What a browser asks for and gets. Header only.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace tolvenar::pc {

struct Request {
    std::string page;                          // behind the token; empty for the first one
    std::map<std::string, std::string> words;  // of its query
};

struct Reply {
    int status = 200;
    std::string type = "text/html; charset=utf-8";
    std::string body;
    std::string saved_as;  // a download's safe name; empty for what is shown

    // Contents that are read piece by piece instead of `body`: appends up to so many bytes from an
    // offset on. False when they cannot be read.
    using Read = std::function<bool(std::uint32_t offset, std::uint32_t bytes, std::string& piece)>;
    Read read;
    std::uint32_t read_bytes = 0;
};

}  // namespace tolvenar::pc
