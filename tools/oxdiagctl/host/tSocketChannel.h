#pragma once

#include "oxdiagctl/iRequestChannel.h"

// A connection to the request server of a program on this machine.
class tSocketChannel : public iRequestChannel {
 public:
  // Throws tFailure.
  explicit tSocketChannel(std::string path);
  ~tSocketChannel() override;

  bool deliver(std::string_view dispatcher, void const* request) override;
  std::string const& getPlace() const override { return path; }

 private:
  void open();
  void letServerIn();
  void greet();
  template <class tMessage>
  tMessage receive();
  void demandAccepted(unsigned answer) const;
  [[noreturn]] void fail(int error) const;

  std::string const path;
  int descriptor = -1;
};
