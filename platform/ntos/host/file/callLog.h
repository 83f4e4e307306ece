#pragma once

#include "ntoshost/files.h"

namespace ntoshost {

// The last calls.
class CallLog {
 public:
  // The place of a new call, all zero but for its kind. It is good until the next add().
  FileCall& add(FileCallKind kind);

  void clear() { m_count = 0; }
  u64 getCount() const { return m_count; }

  // Null when the call is not kept.
  FileCall const* find(u64 index) const;

 private:
  static constexpr u64 kKept = 64;

  FileCall m_calls[kKept];
  u64 m_count;
};

}  // namespace ntoshost
