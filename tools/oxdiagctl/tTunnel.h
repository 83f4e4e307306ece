#pragma once

#include <string>
#include <string_view>

#include "oxdiagctl/iRequestChannel.h"
#include "oxdiagk/tunnelRequest.h"

// One of the library's configurable objects, reached through its configuration tunnel. Everything
// throws tFailure when the channel does.
class tTunnel {
 public:
  // Acquires the object of this name; `isThere` tells whether the library has it.
  tTunnel(iRequestChannel& channel, std::string_view name);
  ~tTunnel();
  tTunnel(tTunnel const&) = delete;
  tTunnel& operator=(tTunnel const&) = delete;

  bool isThere() const;

  // The settings of the object, as words that `configure` takes.
  std::string inquire();

  void configure(std::string_view words);
  void push();
  void pop();

 private:
  void send(nOXDIAG100::tTunnelRecord const& record);
  unsigned inquireInto(std::string& buffer);

  iRequestChannel& channel;
  u32 handle = 0;
};
