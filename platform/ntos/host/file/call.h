#pragma once

#include "file/filesState.h"
#include "ntos/status.h"

namespace ntoshost {

// One call while it runs: it holds the lock and its place in the log.
class Call {
 public:
  explicit Call(FileCallKind kind) : entry(&g_files.log.add(kind)) {}

  FileCall* operator->() { return entry; }
  FileCall& getEntry() { return *entry; }

  // Notes the call's result and gives it back.
  NTSTATUS finish(NTSTATUS status) {
    entry->status = status;
    return status;
  }

 private:
  FilesLock const lock;
  FileCall* const entry;
};

}  // namespace ntoshost
