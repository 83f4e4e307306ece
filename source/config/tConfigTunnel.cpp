#include "config/tConfigTunnel.h"

#include "config/tInquiryCopy.h"
#include "config/tInstancePlace.h"
#include "config/tUserText.h"
#include "oxdiagk/instanceRegistry.h"
#include "oxdiagk/tunnelRequest.h"
#include "vexk/placementNew.h"
#include "vexk/userMemory.h"

// The requesting program may change a request at any moment: what was copied is never read again.

namespace nOXDIAG100 {
namespace {

class tRestingTunnel final : public tConfigTunnel {
 public:
  tRestingTunnel() : tConfigTunnel(tAtRest()) {}
  void dispatch(u64 /*request*/) override {}
};

constinit tInstancePlace<tConfigTunnel, tRestingTunnel> instance;

template <class T>
bool copyIn(T& to, u64 userAddress) {
  return vexCopyFromUser(&to, userAddress, sizeof(T)) == sizeof(T);
}

u32 lowHalf(u64 field) {
  return static_cast<u32>(field);
}

void acquireNamed(tTunnelRecord const& record) {
  tUserText const name(record.source, lowHalf(record.extra));
  u32 const handle = acquireInstance(name.getText());
  size_t const written = vexCopyToUser(record.address, &handle, sizeof(handle));
  if (written != sizeof(handle)) releaseInstance(handle);
}

void configureWithText(u32 handle, tTunnelRecord const& record) {
  tUserText const options(record.address, lowHalf(record.source));
  if (options.getText() != nullptr) configure(handle, options.getText());
}

void inquireText(u32 handle, tTunnelRecord const& record) {
  tInquiryCopy const copy(handle, record.address != 0 ? lowHalf(record.source) : 0);
  u32 const needed = copy.getNeeded();
  if (copy.getSize() != 0) vexCopyToUser(record.address, copy.getText(), copy.getSize());
  if (record.extra != 0) vexCopyToUser(record.extra, &needed, sizeof(needed));
}

void serve(u32 handle, tTunnelRecord const& record) {
  switch (record.operation) {
    case kTunnelAcquire:
      return acquireNamed(record);
    case kTunnelRelease:
      return releaseInstance(handle);
    case kTunnelConfigure:
      return configure(handle);
    case kTunnelConfigureText:
      return configureWithText(handle, record);
    case kTunnelInquire:
      return inquireText(handle, record);
    case kTunnelPush:
      return pushConfiguration(handle);
    case kTunnelPop:
      return popConfiguration(handle);
    default:
      return;
  }
}

}  // namespace

tConfigTunnel& tConfigTunnel::getInstance() {
  return instance.get();
}

void tConfigTunnel::constructInstance() {
  new (instance.take()) tConfigTunnel;
}

void tConfigTunnel::destroyInstance() {
  instance.destroy();
}

void tConfigTunnel::endRequests() {
  __atomic_store_n(&isEnding, true, __ATOMIC_RELAXED);
}

tConfigTunnel::tConfigTunnel() : iDispatcher(kTunnelName) {
  i32 status = 0;
  iLib::exportDispatcher(*this, status);
}

tConfigTunnel::~tConfigTunnel() {
  i32 status = 0;
  iLib::unexportDispatcher(*this, status);
}

void tConfigTunnel::dispatch(u64 request) {
  tTunnelHeader header;
  if (!copyIn(header, request)) return;
  u64 at = request + sizeof(header);
  for (u32 index = 0; index < header.count; ++index, at += sizeof(tTunnelRecord)) {
    tTunnelRecord record;
    if (__atomic_load_n(&isEnding, __ATOMIC_RELAXED) || !copyIn(record, at)) return;
    serve(header.handle, record);
  }
}

}  // namespace nOXDIAG100
