#pragma once

#include "oxdiagctl/iRequestChannel.h"

// The device of the platform layer in this machine's kernel.
class tDeviceChannel : public iRequestChannel {
 public:
  // Throws tFailure.
  explicit tDeviceChannel(std::string devicePath);
  ~tDeviceChannel() override;

  bool deliver(std::string_view dispatcher, void const* request) override;
  std::string const& getPlace() const override { return path; }

 private:
  [[noreturn]] void fail(unsigned long error) const;

  std::string const path;
  void* device;
};
