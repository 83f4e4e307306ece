#include "oxdiagctl/tTunnel.h"

#include "oxdiagctl/tFailure.h"

using namespace nOXDIAG100;

namespace {

constexpr u32 kFirstSize = 512;
constexpr u32 kLargestSize = 16 << 20;  // no settings are that long; something is wrong then

u64 addressOf(void const* object) {
  return reinterpret_cast<u64>(object);
}

}  // namespace

tTunnel::tTunnel(iRequestChannel& way, std::string_view name) : channel(way) {
  send({kTunnelAcquire, 0, addressOf(&handle), addressOf(name.data()), name.size()});
}

// A target that is gone has forgotten the handle as well.
tTunnel::~tTunnel() {
  try {
    if (isThere()) send({kTunnelRelease, 0, 0, 0, 0});
  } catch (tFailure const&) {
  }
}

bool tTunnel::isThere() const {
  return handle != 0;
}

// The text may grow between two calls, by what somebody else configures.
std::string tTunnel::inquire() {
  std::string buffer(kFirstSize, '\0');
  for (;;) {
    unsigned const needed = inquireInto(buffer);
    if (needed == 0 || needed > kLargestSize) break;
    if (needed <= buffer.size()) return buffer.substr(0, buffer.find('\0'));
    buffer.assign(needed, '\0');
  }
  throw tFailure{kExitNotTaken, "the target does not tell its settings"};
}

unsigned tTunnel::inquireInto(std::string& buffer) {
  u32 needed = 0;
  send({kTunnelInquire, 0, addressOf(buffer.data()), buffer.size(), addressOf(&needed)});
  return static_cast<unsigned>(needed);
}

void tTunnel::configure(std::string_view words) {
  send({kTunnelConfigureText, 0, addressOf(words.data()), words.size(), 0});
}

void tTunnel::push() {
  send({kTunnelPush, 0, 0, 0, 0});
}

void tTunnel::pop() {
  send({kTunnelPop, 0, 0, 0, 0});
}

void tTunnel::send(tTunnelRecord const& record) {
  struct {
    tTunnelHeader header;
    tTunnelRecord record;
  } const request = {{handle, 1}, record};
  if (channel.deliver(kTunnelName, &request)) return;
  throw tFailure{kExitNobody, "at " + channel.getPlace() + ", no diagnostics library is running"};
}
