// The chosen storage, opened when the program starts and looked for again when it was not there: a
// card is taken out, an automatic backup holds its files.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

enum class StorageLoad {
    kNone,            // none is chosen, or it cannot be opened
    kListUnreadable,  // it can, but its journal cannot be read
    kLoaded,
};
// Opens and loads the storage that the settings name, under the popup; storageStatus tells whether
// it is open. A storage that is not compatible is told of once.
StorageLoad LoadChosenStorage(Application& app);

// An operation could not read the journal: that was a failed load, too.
void NoteFailedLoad(Application& app);

enum class SearchReason {
    kActivated,  // the user came back from another program, perhaps from putting the card in
    kButton,     // a button needs the storage
};
enum class SearchResult {
    kNothing,  // as before: there is one already, there is still none, or this is not the time
    kSame,     // the one that was open is back, as it was
    kOther,    // a storage is open now; what the pages showed was not of it
};
// On the main thread. Never while an operation is asked for or runs, in this program or in another
// copy, and after a failed load only when the files have changed or a button asks.
SearchResult LookForStorage(Application& app, SearchReason reason);

}  // namespace tolvenar
