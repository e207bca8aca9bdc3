#include "storage/objects/restore_record.h"

#include <algorithm>

#include "platform/registry_key.h"
#include "platform/text.h"
#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"
#include "storage/objects/restore_database.h"
#include "storage/objects/restore_file.h"
#include "storage/objects/restore_registry.h"
#include "storage/objects/stored_record.h"

namespace tolvenar {
namespace {

constexpr char16_t kModule[] = u"DoRestoreRecord";

// Called on the line after the failure, while the last error is still its own.
void LogMapFailure(const ObjectRecord& record) {
    const DWORD error = ::GetLastError();
    TextBuffer<96> message;
    message.Append(u"MapView..Err:")
        .AppendNumber(static_cast<std::int32_t>(error))
        .Append(u" ObjType:")
        .AppendNumber(static_cast<std::int32_t>(record.type))
        .Append(u" JrnOffs:")
        .AppendNumber(static_cast<std::int32_t>(record.propOffset));
    LogMessage(message.text(), kModule, kLogError);
}

bool ReadStoredBlock(RestoreTools& tools, const ObjectRecord& record, InfoBlock& block) {
    const std::uint32_t size = tools.storage.size();
    const std::uint32_t behind = record.propOffset < size ? size - record.propOffset : 1;
    const std::uint32_t length = std::min<std::uint32_t>(kInfoBlockBytes, behind);
    const std::uint8_t* const bytes = tools.window.At(record.propOffset, length);
    if (bytes == nullptr) {
        LogMapFailure(record);
        return false;
    }
    if (!ParseInfoBlock(bytes, length, block) || block.type() != record.type ||
        !IsKnownType(record.type)) {
        LogMessage(u"Fail GetInfoFromStorage", kModule, kLogError);
        return false;
    }
    return true;
}

// Whether the object of a record that was never stored is on the device.
bool ReadLiveBlock(LiveObjects& live, const ObjectRecord& record, InfoBlock& block) {
    return live.GetOIDInfo(record.TolvOID, record.dwOID, block) && block.type() == record.type;
}

// An object that was never stored can only be deleted. One that is to be written back is on the
// device already: it could not be deleted, and its list's sense was turned round.
RestoreOutcome WithoutStoredBlock(LiveObjects& live, const ObjectRecord& record, RestoreMode mode,
                                  InfoBlock& block, bool& decided) {
    decided = true;
    if (!ReadLiveBlock(live, record, block)) {
        if (mode == RestoreMode::kDelete) {
            return RestoreOutcome::kDone;
        }
        LogMessage(u"Fail GetOIDInfo", kModule, kLogError);
        return FailWith(ERROR_FILE_NOT_FOUND);
    }
    decided = mode == RestoreMode::kWriteBack;
    return RestoreOutcome::kDone;
}

// A key that another program has open stays, and on some systems one with subkeys: those go first,
// and the next pass meets it again (docs/oddities.md, 66).
RestoreOutcome RestoreNamed(KeptKey& kept, const StoredBytes& data, const InfoBlock& block,
                            const RegistryName& name, RestoreMode mode) {
    const RestoreOutcome outcome = RestoreRegistryObject(kept, data, block, name, mode);
    if (block.type() != ObjectType::kRegistryKey || mode != RestoreMode::kDelete ||
        outcome != RestoreOutcome::kDone) {
        return outcome;
    }
    const DWORD error = ::GetLastError();
    return error != ERROR_SUCCESS && OpenKey(RootKey(block.head().hive), Wide(name.key_path), 0)
               ? FailWith(error)
               : RestoreOutcome::kDone;
}

// A live object is named by its entry in the registry-object table, a stored one by its block.
RestoreOutcome RestoreRegistry(RestoreTools& tools, const ObjectRecord& record, InfoBlock& block,
                               const StoredBytes& data, RestoreMode mode) {
    if (const RegistryObject* live =
            record.propOffset == 0 ? tools.live.FindRegistryObject(record.TolvOID) : nullptr) {
        return RestoreNamed(tools.key, data, block, {live->key_path, live->value_name}, mode);
    }
    char16_t* const name = block.name();
    if (record.type == ObjectType::kRegistryKey) {
        return RestoreNamed(tools.key, data, block, {name, nullptr}, mode);
    }
    std::size_t separator = 0;
    if (!tools.value_names.FindSeparator(record, block, separator)) {
        return FailWith(ERROR_INVALID_DATA);
    }
    name[separator] = 0;
    return RestoreNamed(tools.key, data, block, {name, name + separator + 1}, mode);
}

// What is written back; nothing of it is there when it cannot be mapped.
StoredBytes DataOf(RestoreTools& tools, const ObjectRecord& record, const InfoBlock& block) {
    StoredBytes data;
    data.length = block.head().data_bytes;
    data.bytes = tools.window.At(record.data_offset, data.length);
    return data;
}

// The id of the device's record that a deletion or a write-back is about; 0 when there is none.
CEOID DeviceIdOf(RestoreTools& tools, const ObjectRecord& record, const InfoBlock& block) {
    const bool is_stored_id = tools.database_restore == DatabaseRestore::kByStates &&
                              record.type == ObjectType::kDatabaseRecord && record.propOffset != 0;
    return !is_stored_id || IsStoredRecord(tools.databases, block, record) ? record.dwOID : 0;
}

RestoreOutcome RestoreDescribed(RestoreTools& tools, const ObjectRecord& record, InfoBlock& block,
                                RestoreMode mode, CEOID& newOid) {
    if (record.type == ObjectType::kFile) {
        return RestoreFileObject(tools.storage, record.data_offset, block, newOid, mode);
    }
    if (record.type == ObjectType::kState) {
        return RestoreOutcome::kDone;
    }
    const bool is_registry = IsRegistryObject(record);
    if (!is_registry && tools.database_restore == DatabaseRestore::kNone) {
        return RestoreOutcome::kDone;
    }
    const StoredBytes data =
        mode == RestoreMode::kWriteBack ? DataOf(tools, record, block) : StoredBytes();
    if (is_registry) {
        return RestoreRegistry(tools, record, block, data, mode);
    }
    return RestoreDatabaseObject(tools.databases, tools.written, data, block,
                                 DeviceIdOf(tools, record, block), newOid, mode);
}

}  // namespace

RestoreOutcome DoRestoreRecord(RestoreTools& tools, const ObjectRecord& record, CEOID& newOid) {
    newOid = 0;
    const RestoreMode mode =
        (record.flags & JF_ADD) != 0 ? RestoreMode::kDelete : RestoreMode::kWriteBack;
    InfoBlock block;
    if (record.propOffset != 0) {
        if (!ReadStoredBlock(tools, record, block)) {
            return FailWith(ERROR_INVALID_DATA);
        }
    } else {
        bool decided = false;
        const RestoreOutcome outcome = WithoutStoredBlock(tools.live, record, mode, block, decided);
        if (decided) {
            return outcome;
        }
    }
    return RestoreDescribed(tools, record, block, mode, newOid);
}

}  // namespace tolvenar
