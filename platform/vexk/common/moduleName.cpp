#include "common/moduleName.h"

void setModuleName(tLoadedModule& module, char const* path, size_t length) {
  size_t start = length;
  while (start != 0 && path[start - 1] != '/' && path[start - 1] != '\\') --start;
  size_t const most = tLoadedModule::kMaxNameLength;
  if (length - start > most) start = length - most;
  if (start == length) return;
  __builtin_memset(module.name, 0, sizeof module.name);
  __builtin_memcpy(module.name, path + start, length - start);
}
