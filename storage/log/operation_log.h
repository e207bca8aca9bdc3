// The operation log's file: "tolvenar_log.txt" beside the storage file.
#pragma once

namespace tolvenar {

// Sends the lines of LogMessage to the log file from here on. A line that cannot be written is lost
// without a word.
void InstallOperationLog();

}  // namespace tolvenar
