#pragma once

#include <sys/types.h>

#include <string>

// Another process that answers until the object goes.
class tAnsweringProcess {
 public:
  // Serves the library's requests at getPath().
  tAnsweringProcess();

  // Answers each message over the socket, or each pair of messages over the pipes, without looking
  // at it.
  enum class tFloor { kSocket, kPipes };
  tAnsweringProcess(tFloor kind, size_t messageSize, size_t answerSize);

  ~tAnsweringProcess();
  tAnsweringProcess(tAnsweringProcess const&) = delete;
  tAnsweringProcess& operator=(tAnsweringProcess const&) = delete;

  bool isRunning() const { return child > 0; }
  std::string const& getPath() const { return path; }

  // One message to a floor, and its answer.
  bool ask();

 private:
  void start(void (*answer)(tAnsweringProcess const& self));
  static void serveRequests(tAnsweringProcess const& self);
  static void echo(tAnsweringProcess const& self);

  static constexpr size_t kMostBytes = 1024;

  std::string path;
  size_t messageSize = 1;
  size_t answerSize = 1;
  int asking[2] = {-1, -1};     // this process reads from the first and writes to the second
  int answering[2] = {-1, -1};  // the other's ends
  pid_t child = -1;
};
