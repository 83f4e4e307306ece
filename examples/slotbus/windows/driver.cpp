// The driver around the component: reads from its service key how to trace and where the racks are,
// and makes the component's bus of every rack device that the system gives it. What it finds set in
// the library, which other drivers share, it gives back when it is unloaded.

#include "ntos/driver.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "slotbus/component/busDriver.h"
#include "slotbus/component/component.h"
#include "slotbus/component/tFoundSettings.h"
#include "slotbus/component/tNarrowText.h"
#include "slotbus/windows/tServiceRack.h"

using nOXDIAG100::tAssertConfiguration;
using nOXDIAG100::tConfigurable;
using nOXDIAG100::tTrace;
using namespace nSLOTBUS100;

namespace {

struct tFound {
  VEX_MODULE_MEMORY

  tFoundSettings assertions{tAssertConfiguration::getInstance()};
  tFoundSettings trace{tTrace::getInstance()};

  bool keep() { return assertions.keep() && trace.keep(); }
  void giveBack() {
    trace.giveBack();
    assertions.giveBack();
  }
};

constinit tServiceRack* serviceRack = nullptr;
constinit tFound* found = nullptr;

// A value holds option words of the library as they are; unknown ones are ignored.
void applyOptions(tRegistryKey const& key, wchar_t const* name, tConfigurable& target) {
  tRegistryText value;
  if (!NT_SUCCESS(key.readText(name, value))) return;
  tNarrowText options(value.get());
  target.configure(options.get());
}

void applyFilter(tRegistryKey const& key, tTrace& trace) {
  tRegistryText filter;
  if (!NT_SUCCESS(key.readText(L"Filter", filter))) return;
  tNarrowText expression(filter.get());
  char option[] = "--filter";
  char* words[] = {option, expression.get()};
  trace.configure(2, words);
}

bool prepare(UNICODE_STRING* registryPath) {
  found = new tFound;
  serviceRack = new tServiceRack(registryPath);
  return found != nullptr && serviceRack != nullptr && found->keep();
}

void forget() {
  delete serviceRack;
  serviceRack = nullptr;
  delete found;
  found = nullptr;
}

void stop(DRIVER_OBJECT*) {
  tTrace& trace = tTrace::getInstance();
  OXDIAG_TRACE(kTraceProgress, put("the driver stops"));
  ceaseBusDriver();
  found->giveBack();
  forget();
}

}  // namespace

extern "C" NTSTATUS DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath) {
  tTrace& trace = tTrace::getInstance();
  if (!prepare(registryPath)) {
    forget();
    return STATUS_INSUFFICIENT_RESOURCES;
  }
  applyOptions(serviceRack->getKey(), L"Assert", tAssertConfiguration::getInstance());
  applyOptions(serviceRack->getKey(), L"Trace", trace);
  applyFilter(serviceRack->getKey(), trace);
  OXDIAG_TRACE(kTraceProgress, put("the driver starts, version ").put(kVersion));
  becomeBusDriver(*driver, *serviceRack);
  driver->DriverUnload = stop;
  return STATUS_SUCCESS;
}
