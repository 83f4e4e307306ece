#pragma once

#include "ntos/irql.h"

// Raises the IRQL of the thread while it lives.
class tRaisedIrql {
 public:
  explicit tRaisedIrql(KIRQL irql) { KeRaiseIrql(irql, &former); }
  ~tRaisedIrql() { KeLowerIrql(former); }
  tRaisedIrql(tRaisedIrql const&) = delete;
  tRaisedIrql& operator=(tRaisedIrql const&) = delete;

 private:
  KIRQL former = PASSIVE_LEVEL;
};
