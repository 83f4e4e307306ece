#include "common/systemBus.h"
#include "vexk/iBus.h"

namespace {
constinit tBusFactory* busFactory = nullptr;
}

iBus::~iBus() = default;

iBus* busNewBusObject(u32 busType) {
  if (busFactory != nullptr) return busFactory(busType);
  return busType == kBusSystemIo ? newSystemBus() : nullptr;
}

void busDeleteBusObject(iBus*& bus) {
  delete bus;
  bus = nullptr;
}

void busSetFactory(tBusFactory* factory) {
  busFactory = factory;
}
