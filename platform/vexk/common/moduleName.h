#pragma once

#include "vexk/loadedModule.h"

// Names the module by the `length` characters of a path: what stands behind its last separator, of
// that the last tLoadedModule::kMaxNameLength characters. An empty path changes nothing.
void setModuleName(tLoadedModule& module, char const* path, size_t length);
