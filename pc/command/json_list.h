// A JSON object whose last member is a long array, written as it comes: the whole need not be held
// in memory. Header only.
#pragma once

#include <string>

#include "pc/command/console.h"
#include "pc/command/json.h"

namespace tolvenar::pc {

class JsonList {
public:
    // `head` are the members before the array.
    JsonList(Output& out, const Json& head, const std::string& name) : out_(out) {
        std::string text = head.dump();
        text.pop_back();
        out_.Write(text + (head.empty() ? "" : ",") + "\"" + name + "\":[");
    }
    void Add(const Json& item) {
        out_.Write(is_first_ ? "\n" : ",\n");
        out_.Write(item.dump());
        is_first_ = false;
    }
    void Finish() { out_.Write("\n]}\n"); }

private:
    Output& out_;
    bool is_first_ = true;
};

}  // namespace tolvenar::pc
