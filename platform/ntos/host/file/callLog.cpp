#include "file/callLog.h"

namespace ntoshost {

FileCall& CallLog::add(FileCallKind kind) {
  FileCall& call = m_calls[m_count++ % kKept];
  call = FileCall{};
  call.kind = kind;
  return call;
}

FileCall const* CallLog::find(u64 index) const {
  bool const isKept = index < m_count && m_count - index <= kKept;
  return isKept ? &m_calls[index % kKept] : nullptr;
}

}  // namespace ntoshost
