#include "oxdiagk/instanceRegistry.h"

#include "config/tInstanceRegistry.h"

namespace nOXDIAG100 {
namespace {

template <class Operation>
void callInstance(u32 handle, Operation operation) {
  i32 status = 0;
  tConfigurable* const instance = tInstanceRegistry::getInstance().find(handle, status);
  if (instance != nullptr) operation(*instance);
}

}  // namespace

u32 acquireInstance(char* name) {
  tInstanceRegistry& registry = tInstanceRegistry::getInstance();
  tConfigurable* const instance = registry.findNamed(name);
  if (instance == nullptr) return kNoHandle;
  i32 status = 0;
  return registry.acquire(*instance, status);
}

void releaseInstance(u32 handle) {
  tInstanceRegistry::getInstance().release(handle);
}

void configure(u32 handle) {
  callInstance(handle, [](tConfigurable& instance) { instance.configure(); });
}

void configure(u32 handle, char const* options) {
  callInstance(handle, [&](tConfigurable& instance) { instance.configure(options); });
}

void configure(u32 handle, int argc, char** argv) {
  callInstance(handle, [&](tConfigurable& instance) { instance.configure(argc, argv); });
}

void inquire(u32 handle, char* buffer, unsigned int size, unsigned int* needed) {
  callInstance(handle, [&](tConfigurable& instance) { instance.inquire(buffer, size, needed); });
}

void pushConfiguration(u32 handle) {
  callInstance(handle, [](tConfigurable& instance) { instance.pushConfiguration(); });
}

void popConfiguration(u32 handle) {
  callInstance(handle, [](tConfigurable& instance) { instance.popConfiguration(); });
}

}  // namespace nOXDIAG100
