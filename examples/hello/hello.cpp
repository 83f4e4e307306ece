// The least client of the library: a program on Linux that traces one line.

#define OXDIAG_COMPONENT "hello"
#define OXDIAG_COMPONENT_VERSION tSSVersion(1, 0, 0, tSSVersion::kPhaseReleased, 1, 0)

#include "ntos/status.h"
#include "oxdiagk/module.h"
#include "oxdiagk/traceMacros.h"
#include "qelmk/module.h"
#include "vexk/module.h"

int main() {
  vexkInitialize();
  qelmkInitialize();
  if (oxdiagkInitialize(nullptr) != STATUS_SUCCESS) return 1;
  OXDIAG_TRACE(120, put("hello from ").put("a program").put(", slot ").put(7, 10));
  oxdiagkUnload();
  qelmkUnload();
  vexkUnload();
}
