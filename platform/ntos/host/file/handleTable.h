#pragma once

#include "file/driveMap.h"
#include "ntos/file.h"
#include "ntos/io.h"

namespace ntoshost {

// What a handle stands for.
struct OpenFile {
  OpenFile* newer;
  HANDLE handle;
  int descriptor;
  u64 device;  // with `inode`: which file it is
  u64 inode;
  ACCESS_MASK access;  // without the generic rights
  u32 share;
  bool isDirectory;
  bool isInvalidated;
  u64 position;
  Drive* drive;
  DEVICE_OBJECT* object;  // a device instead of a file, for its security only; or null

  bool mayRead() const { return (access & FILE_READ_DATA) != 0; }
  bool mayWrite() const { return (access & (FILE_WRITE_DATA | FILE_APPEND_DATA)) != 0; }
  bool appendsOnly() const { return mayWrite() && (access & FILE_WRITE_DATA) == 0; }
};

// All open handles. A handle's value is not used again, so that one used after its close is found.
class HandleTable {
 public:
  // Copies `file` and gives it its handle; null when memory is exhausted.
  HANDLE add(OpenFile const& file);

  // Null when there is no such handle.
  OpenFile* find(HANDLE handle) const;

  // Forgets the file, which must be in the table; its descriptor stays open.
  void remove(OpenFile* file);

  // Whether everyone who has the same file open puts up with what `file` is opened for, and `file`
  // with what they have opened it for.
  bool isShared(OpenFile const& file) const;

  // Whether someone has the same file open to read or write it.
  bool isInUse(OpenFile const& file) const;

  OpenFile const* getOldest() const { return m_oldest; }
  u64 getCount() const { return m_count; }

 private:
  OpenFile* m_oldest = nullptr;
  OpenFile* m_newest = nullptr;
  u64 m_count = 0;
  u64 m_lastSerial = 0;
};

}  // namespace ntoshost
