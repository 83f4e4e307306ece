#pragma once

#include <string>

#include "oxdiagk/tTrace.h"
#include "slotbus/component/iRackSource.h"
#include "slotbus/component/tStatusRecord.h"
#include "slotbus/host/demoOptions.h"
#include "slotbus/host/tRackFile.h"

// The rack of the file that the command line names, read as the command line says.
class tProgramRack final : public nSLOTBUS100::iRackSource {
 public:
  // All of them outlive the object.
  tProgramRack(tDemoOptions const& demoOptions, tRackFile const& rackFile,
               nOXDIAG100::tTrace& stream);

  void read(nSLOTBUS100::iRackTaker& taker) override;

  // What the last reading gave: kExitGood, kExitBadRack, or kExitNoOutput and getProblem(), one
  // sentence for the user. kExitNoModule when nobody has read.
  int getResult() const { return result; }
  std::string const& getProblem() const { return problem; }

 private:
  void readAndSave(nSLOTBUS100::iRackTaker& taker);
  void readAsAsked(nSLOTBUS100::tStatusRecord* record, nSLOTBUS100::iRackTaker& taker);
  void readCaptured(nSLOTBUS100::tStatusRecord* record, nSLOTBUS100::iRackTaker& taker);
  void readText(nSLOTBUS100::tStatusRecord* record, nSLOTBUS100::iRackTaker& taker);
  void fail(std::string const& sentence);

  tDemoOptions const& options;
  tRackFile const& file;
  nOXDIAG100::tTrace& trace;
  int result = kExitNoModule;
  std::string problem;
};
