#pragma once

#include <string>

#include "vexkhost/requestSocket.h"

// The caller's end of a connection to the request server, for well-behaved and other callers.
class tConnection {
 public:
  // Connects; the greeting is not waited for.
  explicit tConnection(std::string const& path);
  ~tConnection();
  tConnection(tConnection const&) = delete;
  tConnection& operator=(tConnection const&) = delete;

  static constexpr int kNothing = -1;  // the server has hung up, or says nothing for 20 s

  bool isConnected() const { return descriptor >= 0; }

  // The answer in the greeting, or kNothing.
  int awaitGreeting();

  // Sends so many bytes as they are, or a message that is as it should be.
  bool send(void const* bytes, size_t size) const;
  bool send(std::string const& name, void const* request) const;

  // The answer to a message, or kNothing; `status` is its status.
  int awaitReply(i32& status);
  int awaitReply();

  // Whether the server hangs up, within 20 s, without a word more.
  bool isHungUpOn() const;

  // All of it: greeting, message, reply.
  int call(std::string const& name, void const* request, i32& status);
  int call(std::string const& name, void const* request);

  void close();

 private:
  template <class tMessage>
  bool await(tMessage& message) const;

  int descriptor;
};

vexkhost::tRequestMessage makeMessage(std::string const& name, void const* request);
