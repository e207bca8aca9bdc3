// The secret in an address: who does not know it gets nothing.
#pragma once

#include <string>
#include <string_view>

namespace tolvenar::pc {

// 256 bits of the system's, in hexadecimal. A Failure when it has none.
std::string NewToken();

// Takes as long for any text of that length: the time tells nothing of the secret.
bool IsToken(std::string_view text, std::string_view token);

}  // namespace tolvenar::pc
