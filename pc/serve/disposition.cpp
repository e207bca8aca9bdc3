#include "pc/serve/disposition.h"

#include <fmt/format.h>

namespace tolvenar::pc {
namespace {

bool IsPlain(char letter) {
    return (letter >= '0' && letter <= '9') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= 'a' && letter <= 'z') || letter == '.' || letter == '-' || letter == '_';
}

}  // namespace

std::string DispositionOf(const std::string& name) {
    std::string plain;
    std::string exact;
    for (const char letter : name) {
        plain += IsPlain(letter) || letter == ' ' ? letter : '_';
        exact += IsPlain(letter) ? std::string(1, letter)
                                 : fmt::format("%{:02X}", static_cast<unsigned char>(letter));
    }
    return "attachment; filename=\"" + plain + "\"; filename*=UTF-8''" + exact;
}

}  // namespace tolvenar::pc
