#include "package/windows/wdm/deviceRelations.h"

#include "ntos/io.h"
#include "package/windows/wdm/wrapperMemory.h"

namespace nOXDIAG100 {
namespace {

constexpr size_t kEntrySize = sizeof(void*);

}  // namespace

DEVICE_RELATIONS* makeRelations(size_t capacity) {
  size_t const further = capacity > 1 ? capacity - 1 : 0;  // the first is in the structure
  void* const block = allocateAnswer(sizeof(DEVICE_RELATIONS) + further * kEntrySize);
  auto* const relations = static_cast<DEVICE_RELATIONS*>(block);
  if (relations != nullptr) relations->Count = 0;
  return relations;
}

void appendRelation(DEVICE_RELATIONS& relations, DEVICE_OBJECT& device) {
  ObfReferenceObject(&device);
  relations.Objects[relations.Count++] = &device;
}

void moveRelations(DEVICE_RELATIONS& relations, DEVICE_RELATIONS* from) {
  if (from == nullptr) return;
  for (u32 index = 0; index < from->Count; ++index) {
    relations.Objects[relations.Count++] = from->Objects[index];
  }
  ExFreePoolWithTag(from, kAnyTag);
}

}  // namespace nOXDIAG100
