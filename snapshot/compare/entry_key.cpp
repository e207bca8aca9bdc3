#include "snapshot/compare/entry_key.h"

#include "snapshot/compare/record_info.h"

namespace tolvenar {
namespace {

bool LeadsToAnother(const ObjectList& list, const ObjectKey& key, const ObjectRecord& record,
                    InfoSource& info) {
    const ObjectList::Node* present = list.FindByKey(key);
    return present != nullptr && IsRegistryObject(record) && IsRegistryObject(*present->record) &&
           !HaveOneBlock(record, *present->record) &&
           CompareObjects(record, *present->record, info) == Sameness::kOther;
}

}  // namespace

ObjectKey EntryKey(const ObjectList& list, const ObjectKey& key, const ObjectRecord& record,
                   InfoSource& info) {
    ObjectKey tried = key;
    for (int counter = 0; counter < kCounterValues; ++counter) {
        if (!LeadsToAnother(list, tried, record, info)) {
            return tried;
        }
        tried.TolvOID += kCounterStep;
    }
    return key;
}

}  // namespace tolvenar
