#pragma once

#include <pthread.h>

#include "file/callLog.h"
#include "file/driveMap.h"
#include "file/failures.h"
#include "file/handleTable.h"

namespace ntoshost {

// The one set of drives and open files of the program.
struct Files {
  pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
  DriveMap drives;
  HandleTable handles;
  FileFailures failures = {};
  CallLog log = {};
  FailedWrites failedWrites = {};
};

extern constinit Files g_files;

class FilesLock {
 public:
  FilesLock() { pthread_mutex_lock(&g_files.lock); }
  ~FilesLock() { pthread_mutex_unlock(&g_files.lock); }
  FilesLock(FilesLock const&) = delete;
  FilesLock& operator=(FilesLock const&) = delete;
};

}  // namespace ntoshost
