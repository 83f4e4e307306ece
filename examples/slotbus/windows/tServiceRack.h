#pragma once

#include "oxdiagk/tTrace.h"
#include "slotbus/component/iRackSource.h"
#include "slotbus/component/tKernelPath.h"
#include "slotbus/component/tStatusRecord.h"
#include "slotbus/windows/tRegistryKey.h"
#include "vexk/memory.h"

// The rack that the driver's service key names, read as that key says. It is told at every read, so
// that a bus which comes back has the new rack. IRQL: PASSIVE_LEVEL.
class tServiceRack final : public nSLOTBUS100::iRackSource {
 public:
  VEX_MODULE_MEMORY

  explicit tServiceRack(UNICODE_STRING* registryPath);

  tRegistryKey const& getKey() const { return key; }

  void read(nSLOTBUS100::iRackTaker& taker) override;

 private:
  void readAndSave(wchar_t const* file, nSLOTBUS100::iRackTaker& taker);
  void readAsAsked(nSLOTBUS100::tStatusRecord* record, nSLOTBUS100::iRackTaker& taker);
  void readCaptured(nSLOTBUS100::tStatusRecord* record, nSLOTBUS100::iRackTaker& taker);
  void find(nSLOTBUS100::tStatusRecord* record, nSLOTBUS100::iRackTaker& taker);
  void readFile(nSLOTBUS100::tKernelPath const& path, nSLOTBUS100::tStatusRecord* record,
                nSLOTBUS100::iRackTaker& taker);

  tRegistryKey key;
  nOXDIAG100::tTrace& trace;
};
