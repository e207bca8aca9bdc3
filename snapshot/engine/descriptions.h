// The open storage file and what describes objects while it is open. Header only.
#pragma once

#include "platform/unique_resource.h"
#include "snapshot/compare/info_source.h"
#include "snapshot/engine/proved_blocks.h"
#include "storage/files/handle_bytes.h"
#include "storage/format/storage_reader.h"
#include "storage/opened/engine.h"

namespace tolvenar {

struct Descriptions {
    explicit Descriptions(Engine& engine)
        : sav_file(OpenSavFile(engine.storage.names)),
          bytes(sav_file.get()),
          stored(bytes),
          blocks(stored),
          source(blocks, engine.info) {}

    UniqueHandle sav_file;  // empty when the file could not be opened
    HandleBytes bytes;
    StorageReader stored;
    ProvedBlocks blocks;
    InfoSource source;
};

}  // namespace tolvenar
