#include "snapshot/compare/findings.h"

#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

constexpr char16_t kModule[] = u"CheckPair";
// A list of rubbish would fill the card with lines that tell the same.
constexpr std::size_t kMostLines = 50;

}  // namespace

void Findings::Add(const char16_t* what, std::uint32_t state, std::uint32_t offset) {
    if (++count_ > kMostLines) {
        return;
    }
    TextBuffer<128> text;
    text.Append(kind_).Append(u": ").Append(what);
    text.Append(u", state ").AppendUnsigned(state);
    if (offset != 0) {
        text.Append(u", offset ").AppendUnsigned(offset);
    }
    LogMessage(text.text(), kModule, kLogError);
}

void Findings::Finish() const {
    if (count_ > kMostLines) {
        TextBuffer<64> text;
        text.Append(kind_).Append(u": ").AppendUnsigned(static_cast<std::uint32_t>(count_));
        LogMessage(text.Append(u" findings in all").text(), kModule, kLogError);
    }
}

}  // namespace tolvenar
