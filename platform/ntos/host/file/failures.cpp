#include "file/failures.h"

#include "ntos/status.h"
#include "ntoshost/faults.h"

namespace ntoshost {
namespace {

u32 faultOf(FileCallKind kind) {
  switch (kind) {
    case FileCallKind::Create:
      return kFaultFileOpen;
    case FileCallKind::Write:
      return kFaultFileWrite;
    default:
      return kFaultFileRead;
  }
}

}  // namespace

void FileFailures::set(FileCallKind kind, u64 first, u64 count, NTSTATUS status) {
  m_rules[static_cast<u32>(kind)] = Rule{0, first, count, status};
}

NTSTATUS FileFailures::take(FileCallKind kind) {
  if (injectFault(faultOf(kind))) return STATUS_INSUFFICIENT_RESOURCES;
  Rule& rule = m_rules[static_cast<u32>(kind)];
  u64 const number = ++rule.seen;
  bool const fails = number >= rule.first && number - rule.first < rule.count;
  return fails ? rule.status : STATUS_SUCCESS;
}

}  // namespace ntoshost
