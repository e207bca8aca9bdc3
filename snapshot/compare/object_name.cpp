#include "snapshot/compare/object_name.h"

#include "snapshot/records/name_hash.h"
#include "snapshot/text/letter_case.h"

namespace tolvenar {
namespace {

std::uint32_t HiveOf(const InfoBlock& block) {
    return IsRegistryType(block.type()) ? block.head().hive : 0;
}

}  // namespace

std::uint32_t HashOfObject(const InfoBlock& block) {
    return HashOfName(MixBits(HiveOf(block), static_cast<std::uint32_t>(block.type())),
                      block.name());
}

bool IsOneObject(const InfoBlock& a, const InfoBlock& b) {
    return a.type() == b.type() && HiveOf(a) == HiveOf(b) && EqualIgnoringCase(a.name(), b.name());
}

}  // namespace tolvenar
