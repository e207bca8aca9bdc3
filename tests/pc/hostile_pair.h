// A state whose names try to be more than text. Header only.
#pragma once

#include "tests/support/pair_builder.h"

namespace tolvenar::pc {

inline const std::u16string kHostileName =
    u"</script><img src=x onerror=\"document.title='broken'\">'\"&amp;";

inline void AddHostileState(PairBuilder& pair) {
    const std::u16string lone = u"lone" + std::u16string(1, char16_t{0xD800});
    pair.BeginState(Terminated(kHostileName));
    pair.AddFolder(u"\\" + kHostileName, 0x61);
    pair.AddFile(u"\\" + kHostileName + u"\\" + kHostileName, "hostile", 0x62);
    pair.AddFile(u"\\" + lone, "lone", 0x63);
    pair.AddFile(u"\\turn\u202Efdp.exe", "turned", 0x64);
    pair.AddFile(u"\\..\\..\\CON.txt", "away", 0x65);
    pair.AddKey(kHostileName);
    pair.AddValue(kHostileName, kHostileName, Terminated(kHostileName), 1);
    pair.AddDatabase(kHostileName, 0x66);
    pair.AddRecord(kHostileName, 7, 0x67);
}

}  // namespace tolvenar::pc
