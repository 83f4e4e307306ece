#include "io/residue.h"

#include <stdio.h>

#include "io/requestTable.h"
#include "ntoshost/devices.h"
#include "ntoshost/violation.h"
#include "pool/poolState.h"
#include "standardError.h"
#include "wait/heldLocks.h"

namespace ntoshost {
namespace {

bool isOf(Block const& block, DRIVER_OBJECT const* driver) {
  return block.driver == driver && block.kind == BlockKind::plain;
}

// Not a reason to stop: a library that the driver calls may keep what it took for itself meanwhile.
void tell(DRIVER_OBJECT const* driver, DriverResidue const& residue, Block const& oldest) {
  char line[240];
  int const length = snprintf(
      line, sizeof(line),
      "ntos: The driver %s has unloaded; %llu pool blocks of together %llu bytes that were taken "
      "within it are left, the oldest with %zu bytes and tag '%s'.\n",
      DriverText(driver).text, residue.blocks, residue.bytes, oldest.size,
      TagText(oldest.tag).text);
  writeStandardError(line, static_cast<size_t>(length));
}

// A later driver may get the address of this one. The caller has the pool's lock.
Block const* disownBlocks(DRIVER_OBJECT const* driver) {
  Block const* oldest = nullptr;
  for (Block* block = g_pool.taken.oldest; block != nullptr; block = block->newer) {
    if (block->driver != driver) continue;
    if (oldest == nullptr && isOf(*block, driver)) oldest = block;
    block->driver = nullptr;
  }
  return oldest;
}

void releaseBlocks(DRIVER_OBJECT const* driver) {
  DriverResidue const residue = residueOf(driver);
  PoolLock const lock;
  Block const* const oldest = disownBlocks(driver);
  if (oldest != nullptr) tell(driver, residue, *oldest);
}

void requireNoLock(DRIVER_OBJECT const* driver) {
  void const* const lock = lockTakenWithin(driver);
  if (lock == nullptr) return;
  violation("The driver %s has unloaded while a thread owns the mutex at %p that it took in it.",
            DriverText(driver).text, lock);
}

void requireNoRequest(DRIVER_OBJECT const* driver) {
  IRP const* const request = requestMadeBy(driver);
  if (request == nullptr) return;
  violation("The driver %s has unloaded without freeing the request at %p that it made.",
            DriverText(driver).text, static_cast<void const*>(request));
}

}  // namespace

DriverResidue residueOf(DRIVER_OBJECT const* driver) {
  PoolLock const lock;
  DriverResidue residue = {};
  for (Block const* block = g_pool.taken.oldest; block != nullptr; block = block->newer) {
    if (!isOf(*block, driver)) continue;
    ++residue.blocks;
    residue.bytes += block->size;
  }
  return residue;
}

void requireNoResidue(DRIVER_OBJECT* driver) {
  requireNoLock(driver);
  requireNoRequest(driver);
  releaseBlocks(driver);
}

}  // namespace ntoshost
