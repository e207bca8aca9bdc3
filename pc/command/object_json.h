// An object as every command tells it in JSON.
#pragma once

#include "pc/command/json.h"
#include "pc/storage/stored_object.h"

namespace tolvenar::pc {

Json JsonOf(const StoredObject& object);

}  // namespace tolvenar::pc
