#pragma once

// A list of devices in a request for device relations that fails: nobody above looks at it.

#include "ntos/io.h"
#include "ntos/pnp.h"
#include "ntos/pool.h"

// Gives the list of the request back, if it has one, with the reference on each of its devices,
// whoever put it there. IRQL <= APC_LEVEL.
inline void vexDropRelations(IRP& request) {
  auto* const relations = reinterpret_cast<DEVICE_RELATIONS*>(request.IoStatus.Information);
  request.IoStatus.Information = 0;
  if (relations == nullptr) return;
  for (u32 index = 0; index < relations->Count; ++index) {
    ObfDereferenceObject(relations->Objects[index]);
  }
  ExFreePoolWithTag(relations, 0);
}
