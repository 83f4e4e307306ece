// The slots of a device's handler and of the place where children are made.

#include "conformance/harness.h"
#include "support/tChildStack.h"

using namespace nOXDIAG100;

namespace {

using tControl = void(void* object, u32 code, void* input, u32 inputLength, void* output,
                      u32 outputLength, u64* information, i32* status);
using tAsk = bool(void* object);
using tCreate = void(void* object, tChildDescription const& description, i32& status);
using tRemove = void(void* object, u32 slot, i32& status);

constexpr u32 kSlots = 10;
constexpr u32 kControlSlot = 1;
constexpr u32 kChildSlot = 10;

template <class Function>
Function* getSlot(void* object, u32 slot) {
  return reinterpret_cast<Function*>((*static_cast<void***>(object))[slot - 1]);
}

u32 seenCode = 0;

void serve(void* /*object*/, u32 code, void* /*input*/, u32 /*inputLength*/, void* /*output*/,
           u32 /*outputLength*/, u64* information, i32* /*status*/) {
  seenCode = code;
  *information = 77;
}

bool sayChild(void* /*object*/) {
  return true;
}

// A handler by hand, with nothing in the slots that no request to a child calls.
struct tRawHandler {
  tRawHandler() {
    slots[kControlSlot - 1] = reinterpret_cast<void*>(&serve);
    slots[kChildSlot - 1] = reinterpret_cast<void*>(&sayChild);
  }

  void** table = slots;
  void* slots[kSlots] = {};
};

}  // namespace

TEST(DeviceSlots, ControlsAreTheFirstAndTheChildTheTenth) {
  tChildStack stack;
  tRawHandler raw;
  auto* const extension = static_cast<tDeviceExtension*>(stack.child->DeviceExtension);
  iDeviceHandler* const before = extension->handler;
  extension->handler = reinterpret_cast<iDeviceHandler*>(&raw);
  tDeviceRequest request(stack.child, IRP_MJ_DEVICE_CONTROL);
  request.location().Parameters.DeviceIoControl.IoControlCode = 0x1234;
  EXPECT_EQ(request.send(), STATUS_SUCCESS);
  EXPECT_EQ(request.ioStatus().Information, 77u);
  EXPECT_EQ(seenCode, 0x1234u);
  extension->handler = before;
}

TEST(DeviceSlots, AChildsOwnHandlerHasThem) {
  tChildHandler handler;
  EXPECT_TRUE(getSlot<tAsk>(&handler, kChildSlot)(&handler));
  u64 information = 0;
  i32 status = 0;
  handler.information = 5;
  getSlot<tControl>(&handler, kControlSlot)(&handler, 1, nullptr, 2, nullptr, 3, &information,
                                            &status);
  EXPECT_EQ(handler.code, 1u);
  EXPECT_EQ(handler.outputLength, 3u);
  EXPECT_EQ(information, 5u);
}

TEST(DeviceSlots, ChildrenAreMadeByTheFirstAndTakenByTheSecond) {
  tBusStack stack;
  stack.startBus();
  tTestChild const child(stack.handler, 1, 9);
  i32 status = 0;
  getSlot<tCreate>(stack.children, 1)(stack.children, child.description, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(stack.countRelations(), 1u);
  getSlot<tRemove>(stack.children, 2)(stack.children, 9, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(stack.countRelations(), 0u);
}
