#include "pc/serve/token.h"

#include <unistd.h>

#include "pc/text/failure.h"
#include "pc/text/hex.h"

namespace tolvenar::pc {
namespace {
constexpr std::size_t kTokenBytes = 32;
}

std::string NewToken() {
    char bytes[kTokenBytes];
    if (::getentropy(bytes, sizeof bytes) != 0) {
        throw Failure(ExitCode::kCannot, "the system has no random bytes");
    }
    return HexOf({bytes, sizeof bytes});
}

bool IsToken(std::string_view text, std::string_view token) {
    if (text.size() != token.size()) {
        return false;
    }
    unsigned difference = 0;
    for (std::size_t i = 0; i < token.size(); ++i) {
        difference |= static_cast<unsigned char>(text[i]) ^ static_cast<unsigned char>(token[i]);
    }
    return difference == 0;
}

}  // namespace tolvenar::pc
