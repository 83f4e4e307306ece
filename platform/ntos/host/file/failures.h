#pragma once

#include "ntoshost/files.h"

namespace ntoshost {

// Which calls are made to fail, and with what.
class FileFailures {
 public:
  void set(FileCallKind kind, u64 first, u64 count, NTSTATUS status);

  // Counts a call. What it is to fail with, or STATUS_SUCCESS when it is not.
  NTSTATUS take(FileCallKind kind);

 private:
  struct Rule {
    u64 seen;
    u64 first;
    u64 count;
    NTSTATUS status;
  };

  Rule m_rules[kFileCallKinds];
};

}  // namespace ntoshost
