// The program's log as lines without date and time. Header only and platform-free.
#pragma once

#include <string>
#include <vector>

#include "tests/support/bytes.h"
#include "tests/support/text.h"

namespace tests {

// "E DoRestoreRecord: Fail GetOIDInfo" for each line of the log's bytes.
inline std::vector<std::string> LogLinesIn(const std::string& bytes) {
    const std::string module_mark = " - Module: ";
    const std::string message_mark = "; Message: ";
    std::vector<std::string> lines;
    std::string all = Narrow(tolvenar::TextIn(bytes));
    for (std::size_t end = all.find("\r\n"); end != std::string::npos; end = all.find("\r\n")) {
        const std::string line = all.substr(0, end);
        all.erase(0, end + 2);
        const std::size_t module = line.find(module_mark) + module_mark.size();
        const std::size_t message = line.find(message_mark);
        lines.push_back(line.substr(0, 1) + " " + line.substr(module, message - module) + ": " +
                        line.substr(message + message_mark.size()));
    }
    return lines;
}

}  // namespace tests
