#include "pool/answers.h"

#include "ntoshost/violation.h"
#include "pool/poolState.h"

namespace ntoshost {
namespace {

void requireAnswerBlock(Block const* block, void const* answer, char const* what) {
  if (block == nullptr || block->isFreed || block->kind != BlockKind::plain) {
    violation("The driver answered with %s at %p, which is no block of the pool.", what, answer);
  }
  if (block->type != PagedPool) {
    violation("The driver answered with %s at %p in NonPagedPool; it has to be PagedPool.", what,
              answer);
  }
}

}  // namespace

bool isPagedBlock(void const* data) {
  PoolLock const lock;
  Block const* const block = g_pool.table.find(data);
  return block != nullptr && !block->isFreed && block->type == PagedPool;
}

size_t requireAnswer(void const* answer, char const* what) {
  PoolLock const lock;
  Block const* const block = g_pool.table.find(answer);
  requireAnswerBlock(block, answer, what);
  return block->size;
}

void freeAnswer(void* answer, char const* what) {
  PoolLock const lock;
  Block* const block = g_pool.table.find(answer);
  requireAnswerBlock(block, answer, what);
  verifyBlock(*block, what);
  holdBack(*block, what);
}

}  // namespace ntoshost
