#include "slotbus/host/tModules.h"

#include "ntos/status.h"
#include "oxdiagk/module.h"
#include "qelmk/module.h"
#include "vexk/module.h"

tModules::tModules() {
  if (!NT_SUCCESS(vexkInitialize())) return;
  started = 1;
  if (!NT_SUCCESS(qelmkInitialize())) return;
  started = 2;
  if (!NT_SUCCESS(oxdiagkInitialize(nullptr))) return;
  started = kAll;
}

tModules::~tModules() {
  if (started >= kAll) oxdiagkUnload();
  if (started >= 2) qelmkUnload();
  if (started >= 1) vexkUnload();
}
