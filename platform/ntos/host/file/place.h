#pragma once

#include "file/narrowName.h"
#include "ntos/file.h"

namespace ntoshost {

// A place in a tree of folders: a folder, and the name of something in it that need not be there.
// Without a name it is the folder itself.
class Place {
 public:
  // A copy of the descriptor is kept.
  explicit Place(int folder);
  ~Place();

  Place(Place const&) = delete;
  Place& operator=(Place const&) = delete;

  // Goes along a path of names and separators that begins with a name; an empty path stays. All but
  // the last name must be folders. With `ignoresCase` a name that is not there as written stands
  // for one that differs in case only.
  NTSTATUS walk(wchar_t const* path, size_t length, bool ignoresCase);

  int getFolder() const { return m_folder; }
  char const* getName() const { return m_name.get(); }
  bool isFolderItself() const { return *m_name.get() == 0; }

 private:
  NTSTATUS enter();
  void matchCase();

  int m_folder;
  NarrowName m_name;
};

}  // namespace ntoshost
