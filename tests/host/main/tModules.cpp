#include "tModules.h"

#include <cstdio>

#include "ntos/irql.h"
#include "ntos/status.h"
#include "ntos/thread.h"
#include "ntoshost/executive.h"
#include "oxdiagk/module.h"
#include "oxdiagk/tStatus2Heap.h"
#include "qelmk/module.h"
#include "vexk/module.h"

namespace {

void append(std::string& lines, u64 count, char const* what) {
  if (count != 0) lines += "  left: " + std::to_string(count) + " " + what + "\n";
}

void appendBlock(void* lines, ntoshost::PoolBlock const& block) {
  char text[120];
  std::snprintf(text, sizeof(text), "    %zu bytes, tag %.4s, serial %llu\n", block.size,
                reinterpret_cast<char const*>(&block.tag), block.serial);
  *static_cast<std::string*>(lines) += text;
}

// Before the unload, which frees what the statuses have.
void judgeThread(std::string& lines) {
  append(lines, KeGetCurrentIrql(), "as the IRQL");
  if (KeGetCurrentIrql() != PASSIVE_LEVEL) KeLowerIrql(PASSIVE_LEVEL);
  if (KeAreApcsDisabled()) lines += "  left: a lock that is owned, or a region\n";
  i32 status = 0;
  nOXDIAG100::tStatus2Heap const* const heap = nOXDIAG100::tStatus2Heap::getHeap(status);
  append(lines, heap == nullptr ? 0 : heap->getAllocatedBlocks(), "blocks of the status heap");
}

}  // namespace

bool tModules::start() {
  blocks = ntoshost::outstandingBlocks();
  handles = ntoshost::outstandingHandles();
  return vexkInitialize() == STATUS_SUCCESS && qelmkInitialize() == STATUS_SUCCESS &&
         oxdiagkInitialize(nullptr) == STATUS_SUCCESS;
}

std::string tModules::stop() {
  std::string lines;
  judgeThread(lines);
  oxdiagkUnload();
  qelmkUnload();
  vexkUnload();
  ntoshost::verifyPool();
  append(lines, ntoshost::outstandingBlocks() - blocks, "blocks of the pool");
  if (ntoshost::outstandingBlocks() != blocks) ntoshost::visitOutstanding(appendBlock, &lines);
  append(lines, ntoshost::outstandingHandles() - handles, "handles");
  ntoshost::DeviceCounts const counts = ntoshost::countDevices();
  append(lines, counts.devices, "devices");
  append(lines, counts.requests, "requests");
  append(lines, counts.files, "open files");
  append(lines, counts.links, "links");
  append(lines, counts.drivers, "drivers");
  return lines;
}
