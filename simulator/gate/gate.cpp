#include "simulator/gate/gate.h"

#include <windows.h>

namespace sim {

std::string Describe(const wchar_t*) { return {}; }
std::string Describe(const void*) { return {}; }
std::string DescribeNumber(long long number) { return std::to_string(number); }

GateEntry::GateEntry(Call call) : call_(call) {}
void GateEntry::AddArgument(const std::string& text) { arguments_ += text; }
std::uint32_t GateEntry::Decide() { return 0; }
void GateEntry::Finish(const std::string&) {}

void SetHostError(std::uint32_t error) { ::SetLastError(error); }

}  // namespace sim
