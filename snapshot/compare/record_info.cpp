#include "snapshot/compare/record_info.h"

#include <string_view>

#include "snapshot/text/log.h"

namespace tolvenar {
namespace {

bool FetchOrLog(const ObjectRecord& record, InfoSource& info, InfoBlock& block) {
    if (FetchInfo(record, info, block)) {
        return true;
    }
    const bool stored = record.propOffset != 0;
    LogMessage(stored ? u"Fail GetInfoFromStorage" : u"Fail GetOIDInfo", u"IsEqualRegs", kLogError);
    return false;
}

}  // namespace

bool FetchInfo(const ObjectRecord& record, InfoSource& info, InfoBlock& block) {
    if (record.propOffset != 0) {
        return info.GetInfoFromStorage(record.propOffset, block);
    }
    return info.GetOIDInfo(record.TolvOID, record.dwOID, block);
}

bool HaveOneName(const InfoBlock& a, const InfoBlock& b) {
    return a.head().hive == b.head().hive &&
           std::u16string_view(a.name()) == std::u16string_view(b.name());
}

Sameness CompareObjects(const ObjectRecord& a, const ObjectRecord& b, InfoSource& info) {
    if (a.type != b.type) {
        return Sameness::kOther;
    }
    InfoBlock block_a;
    InfoBlock block_b;
    if (!FetchOrLog(a, info, block_a) || !FetchOrLog(b, info, block_b)) {
        return Sameness::kUnknown;
    }
    return HaveOneName(block_a, block_b) ? Sameness::kSame : Sameness::kOther;
}

bool IsEqualRegs(const ObjectRecord& a, const ObjectRecord& b, InfoSource& info) {
    InfoBlock block_a;
    if (!FetchOrLog(a, info, block_a)) {
        return false;
    }
    InfoBlock block_b;
    if (!FetchOrLog(b, info, block_b)) {
        return false;
    }
    return std::u16string_view(block_a.name()) == std::u16string_view(block_b.name());
}

}  // namespace tolvenar
