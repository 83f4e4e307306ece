#pragma once

// The module's own stream and assertion configuration, for tests of what contracts do with them:
// lines are recorded, no category breaks or terminates, and everything is restored at the end.

#include "support/assertSwitches.h"
#include "support/recordingDestination.h"

struct tContractStream {
  tContractStream() {
    contracts.pushConfiguration();
    for (char const* category : kBuiltInNames) {
      contracts.disableBreakOnViolation(category);
      contracts.disableTerminateOnViolation(category);
    }
    trace.pushConfiguration();
    trace.setDestination(record);
    trace.configure("--compname off --linenumber off --filename off --prefixwidth 0");
    record.clear();
  }

  ~tContractStream() {
    trace.popConfiguration();
    contracts.popConfiguration();
  }

  tContractStream(tContractStream const&) = delete;
  tContractStream& operator=(tContractStream const&) = delete;

  char const* text() const { return record.text(); }

  nOXDIAG100::tAssertConfiguration& contracts = nOXDIAG100::tAssertConfiguration::getInstance();
  nOXDIAG100::tTrace& trace = nOXDIAG100::tTrace::getInstance();
  tRecordingDestination record;
};
