#pragma once

#include <sys/types.h>

#include "vexkhost/requestSocket.h"

// The socket that the server listens at, and the file that stands for it.
class tRequestSocket {
 public:
  constexpr tRequestSocket() = default;

  // As vexkhost::startRequestServer.
  bool open(char const* wantedPath);

  // Takes the file away, if it is still the one that `open` made.
  void close();

  // The next connection; negative once `wake` was called, or when there can be none.
  int accept() const;

  // Ends `accept`, in whatever thread it waits.
  void wake() const;

 private:
  static constexpr int kNone = -1;

  bool choosePath(char const* wantedPath);
  bool makeFolder() const;
  bool listenAtPath();
  bool bindToPath();
  bool rememberFile();
  bool isStale() const;

  int descriptor = kNone;
  dev_t device = 0;
  ino_t file = 0;
  char path[vexkhost::kRequestPathSize] = {};
};
