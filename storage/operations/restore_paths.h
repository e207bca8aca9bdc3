// Files of a difference list that a restore has no business with.
#pragma once

#include "snapshot/compare/info_source.h"
#include "snapshot/records/failure_reasons.h"
#include "snapshot/records/object_list.h"
#include "storage/format/storage_names.h"

namespace tolvenar {

// Takes the storage's own files and its log out of the list: states of before hold them, and a
// restore would delete or overwrite the storage that it reads. The log names them.
void TakeOutOwnFiles(ObjectList& difference, const StorageNames& names, InfoSource& info);

// Holds back what would land on a mounted card, which is no part of any state: a card may hang
// where a folder of the device was. The log names each.
void HoldBackOnCards(ObjectList& difference, FailureTable& failures, InfoSource& info);

}  // namespace tolvenar
