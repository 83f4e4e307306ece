#include "options/toolVersion.h"

char const* getToolVersion() {
  return OXDIAG_TOOL_VERSION;
}
