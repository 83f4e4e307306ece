// The slots of the tunnel's virtual operations, which the platform calls by position.

#include "conformance/harness.h"
#include "support/tRecordingConfigurable.h"
#include "support/tunnelRecords.h"
#include "vexk/placementNew.h"

namespace {

using nOXDIAG100::tConfigTunnel;

// The operation in a slot, counted from 1 as the interface counts them.
template <class Function>
Function* getSlot(void* object, u32 slot) {
  return reinterpret_cast<Function*>((*static_cast<void***>(object))[slot - 1]);
}

using tDestroy = void*(void* object, u32 flags);  // flags 0: destroy without freeing
using tDispatch = void(void* object, u64 request);

bool isDestroyed = false;

class tWatchedTunnel : public tConfigTunnel {
 public:
  ~tWatchedTunnel() override { isDestroyed = true; }
};

}  // namespace

TEST(TunnelSlots, SecondDispatches) {
  tRegisteredRecorder recorder;
  tTestRequest const request(recorder.handle, makeRecord(6));
  void* const tunnel = &tConfigTunnel::getInstance();
  getSlot<tDispatch>(tunnel, 2)(tunnel, addressOf(&request));
  EXPECT_STREQ(recorder.calls(), "push ");
}

TEST(TunnelSlots, FirstDestroys) {
  alignas(tWatchedTunnel) static constinit u8 storage[sizeof(tWatchedTunnel)] = {};
  void* const tunnel = new (storage) tWatchedTunnel;
  isDestroyed = false;
  getSlot<tDestroy>(tunnel, 1)(tunnel, 0);
  EXPECT_TRUE(isDestroyed);
}
