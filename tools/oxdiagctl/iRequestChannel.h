#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

// The way of requests to the dispatchers of another program, or of the kernel.
class iRequestChannel {
 public:
  virtual ~iRequestChannel() = default;
  iRequestChannel(iRequestChannel const&) = delete;
  iRequestChannel& operator=(iRequestChannel const&) = delete;

  // Carries the request at `request`, in this program's memory, to a dispatcher, and returns when
  // it is served; false when there is no such dispatcher. Throws tFailure.
  virtual bool deliver(std::string_view dispatcher, void const* request) = 0;

  // Where it leads.
  virtual std::string const& getPlace() const = 0;

 protected:
  iRequestChannel() = default;
};

// Opens the channel to `place`, or to where it is by default; each system has its own. Throws
// tFailure.
std::unique_ptr<iRequestChannel> openRequestChannel(std::optional<std::string> const& place);

// For the help: what a place is on this system, and which it is by default.
extern char const* const kPlaceHelp;
