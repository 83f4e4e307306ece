#include "slotbus/host/traceFile.h"

#include "ntos/status.h"
#include "ntoshost/files.h"

std::optional<std::string> findTraceFileProblem() {
  auto const failed = ntoshost::failedWrites();
  if (failed.count == 0) return std::nullopt;
  return std::string("not all of the trace is in its file: ") +
         (failed.first == STATUS_DISK_FULL ? "the disk is full" : "it cannot be written");
}
