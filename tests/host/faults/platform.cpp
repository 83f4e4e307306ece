// The platform layer and the framework: locks, memory, ports, modules, classes, devices.

#include <gtest/gtest.h>

#include <optional>

#include "faults/tScenario.h"
#include "oxdiagk/tTitleReportable.h"
#include "qelmk/ownedObjects.h"
#include "qelmk/tClass.h"
#include "support/tChildStack.h"
#include "support/tFunctionStack.h"
#include "trace/capturedPrint.h"
#include "trace/startedModules.h"
#include "vexk/iBus.h"
#include "vexk/memory.h"
#include "vexk/moduleInfo.h"
#include "vexk/sync.h"
#include "vexk/tMemBlockReferenceBase.h"
#include "vexk/userMemory.h"

namespace {

using namespace nOXDIAG100;

char const* const kLockName = "nFAULTS::_lock";

// Somebody's handle of a lock, and another one of it.
struct tLocks {
  tLocks() : first(syncOpen(kLockName, tSyncDescriptor{}, status)) {}
  ~tLocks() {
    syncClose(second);
    syncClose(first);
  }

  i32 status = 0;
  iSync* first;
  iSync* second = nullptr;
};

// The first handle works, whether there is a second one or not.
std::string stateOf(tLocks& on) {
  EXPECT_EQ(on.first->acquire(0), 0);
  EXPECT_EQ(on.first->release(), 0);
  return on.second != nullptr ? "two" : "one";
}

std::string openLock(tLocks& on) {
  i32 code = 0;
  on.second = syncOpen(kLockName, tSyncDescriptor{}, code);
  return nameOfCode(code);
}

// A lock that nobody has opened before.
std::string openPrivateLock(tLocks& on) {
  i32 code = 0;
  on.second = syncOpen(nullptr, tSyncDescriptor{}, code);
  return nameOfCode(code);
}

struct tBlock {
  tBlock() {
    i32 code = 0;
    block.allocate(16, kMemLongLived, code);
    EXPECT_EQ(code, 0);
  }

  tMemBlockReferenceBase block;
};

std::string stateOf(tBlock& on) {
  return std::to_string(on.block.getSize());
}

std::string allocate(tBlock& on) {
  i32 code = 0;
  on.block.allocate(100, kMemScratch, code);
  return nameOfCode(code);
}

std::string takeMemory(tBlock&) {
  i32 code = 0;
  void* const memory = _memNewUsingCRT(100, kMemLongLived, code);
  EXPECT_EQ(memory == nullptr, code < 0);
  _memDelete(memory);
  return nameOfCode(code);
}

std::string copyFromUser(tBlock& on) {
  u64 const source = 5;
  u64 copy = 0;
  size_t const count = vexCopyFromUser(&copy, reinterpret_cast<u64>(&source), sizeof(copy));
  EXPECT_EQ(copy, count == 0 ? 0 : source);
  EXPECT_NE(on.block.getAddress(), nullptr);
  return count == sizeof(copy) ? kDone : "short count";
}

struct tPorts {
  ~tPorts() { close(); }
  void close() {
    if (bus != nullptr) bus->releaseHandle(&handle);
    busDeleteBusObject(bus);
  }

  iBus* bus = nullptr;
  u32 handle = 0;
};

std::string stateOf(tPorts& on) {
  return on.handle != 0 ? "open" : "closed";
}

std::string openPorts(tPorts& on) {
  on.close();
  on.bus = busNewBusObject(kBusSystemIo);
  if (on.bus == nullptr) return "null";
  on.handle = on.bus->openRange(0, 0, 0);
  return on.handle != 0 ? kDone : "0";
}

// A module that is registered for the length of a run.
struct tRegistered {
  ~tRegistered() {
    if (!isRegistered) return;
    i32 code = 0;
    libUnregisterModuleWithVEX(module, code);
    EXPECT_EQ(code, 0);
  }

  static i32 enter(u32) { return 0; }

  tModulePackage package = {};
  tCapturedPrint print;  // which says that a module was not registered
  _tLibModuleInfo module = {&package, "faults", &enter, 0};
  bool isRegistered = false;
};

std::string stateOf(tRegistered& on) {
  return on.isRegistered ? "registered" : "unknown";
}

std::string registerModule(tRegistered& on) {
  i32 code = 0;
  libRegisterModuleWithVEX(on.module, code);
  on.isRegistered = code >= 0;
  return nameOfCode(code);
}

struct tTitle {
  tTitleReportable title;
};

std::string stateOf(tTitle&) {
  return "";
}

std::string makeInstance(tTitle& on) {
  i32 code = 0;
  nQELM100::tObject* const object = on.title.getClass(code).newInstance(code);
  EXPECT_EQ(object == nullptr, code < 0);
  nQELM100::destroyThroughClass(object);
  return nameOfCode(code);
}

// A started bus with one child.
struct tBus {
  tChildStack stack;
};

std::string stateOf(tBus& on) {
  return std::to_string(on.stack.countRelations()) + " children";
}

std::string createChild(tBus& on) {
  tTestChild const child(on.stack.handler, 2, 8);
  return nameOfCode(on.stack.create(child.description));
}

// A device of the platform's upon a floor of the test's.
struct tDevices {
  std::optional<tFunctionStack> stack;
};

std::string stateOf(tDevices& on) {
  return on.stack.has_value() && on.stack->getDevice() != nullptr ? "a device" : "none";
}

std::string addDevice(tDevices& on) {
  on.stack.emplace();
  if (on.stack->getFloor() == nullptr) return "no floor";
  return on.stack->getDevice() != nullptr ? kDone : "no device";
}

template <class tSubject, class Run>
tScenarioRow row(char const* name, char const* header, std::vector<std::string> answers, Run run) {
  return rowOf<tSubject>(name, header, std::move(answers), run,
                         [](tSubject& subject) { return stateOf(subject); });
}

std::vector<tScenarioRow> rowsOfPlatform() {
  return {
      row<tLocks>("OpenLock", "vexk/sync.h", {"kStatusOutOfMemory"}, openLock),
      row<tLocks>("OpenPrivateLock", "vexk/sync.h", {"kStatusOutOfMemory"}, openPrivateLock),
      row<tBlock>("Allocate", "vexk/tMemBlockReferenceBase.h", {"kStatusOutOfMemory"}, allocate),
      row<tBlock>("TakeMemory", "vexk/memory.h", {"kStatusOutOfMemory"}, takeMemory),
      row<tBlock>("CopyFromUser", "vexk/userMemory.h", {"short count"}, copyFromUser),
      row<tPorts>("OpenPorts", "vexk/iBus.h", {"null", "0"}, openPorts),
      row<tRegistered>("RegisterModule", "vexk/moduleInfo.h", {"kStatusOutOfMemory"},
                       registerModule),
      row<tTitle>("MakeInstance", "qelmk/tClass.h", {"kStatusOutOfMemory"}, makeInstance),
      row<tDevices>("AddFunctionDevice", "vexk/functionDevice.h", {"no floor", "no device"},
                    addDevice),
      row<tBus>("CreateChild", "vexk/iChildBus.h", {"kStatusOutOfMemory"}, createChild),
  };
}

}  // namespace

class PlatformThatFails : public testing::TestWithParam<tScenarioRow> {};

TEST_P(PlatformThatFails, KeepsWhatWasThere) {
  runScenario(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Platform, PlatformThatFails, testing::ValuesIn(rowsOfPlatform()),
                         nameOfRow);
