#include "package/windows/wdm/handlerSlot.h"

#include "ntos/status.h"
#include "package/windows/wdm/tSpinLock.h"
#include "vexk/iChildHandler.h"
#include "vexkntos/handlerOf.h"

namespace nOXDIAG100 {
namespace {

class tRetiredHandler final : public iChildHandler {
 public:
  void handleDeviceControl(u32 /*code*/, void* /*input*/, u32 /*inputLength*/, void* /*output*/,
                           u32 /*outputLength*/, u64* /*information*/, i32* status) override {
    *status = STATUS_DELETE_PENDING;
  }
};

constinit tRetiredHandler retired;
constinit tSpinLock lock;

}  // namespace

bool isChildDevice(DEVICE_OBJECT const& device) {
  tSpinLock::tGuard const guard(lock);
  return vexHandlerOf(device).isChildDevice();
}

iDeviceHandler& retireHandler(tDeviceExtension& slot) {
  tSpinLock::tGuard const guard(lock);
  iDeviceHandler& former = *slot.handler;
  slot.handler = &retired;
  return former;
}

}  // namespace nOXDIAG100
