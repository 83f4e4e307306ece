#include "host/requests/tRequestServer.h"

#include <errno.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr u32 kMicrosecondsOfDistress = 10000;  // when the system is out of descriptors

bool fail(int error) {
  errno = error;
  return false;
}

void refuse(int connection) {
  vexkhost::tRequestGreeting const greeting = {vexkhost::kRequestMagic,
                                               vexkhost::kRequestTooManyCallers};
  send(connection, &greeting, sizeof(greeting), MSG_NOSIGNAL | MSG_DONTWAIT);
  close(connection);
}

}  // namespace

constinit tRequestServer requestServer;

bool tRequestServer::start(char const* path) {
  tThreadLock::tGuard const held(controls);
  if (isStarted) return fail(EALREADY);
  if (!socket.open(path)) return false;
  __atomic_store_n(&isStopping, false, __ATOMIC_RELEASE);
  isStarted = startThread();
  if (isStarted) return true;
  int const error = errno;
  socket.close();
  return fail(error);
}

// The program's signals are not for these threads; those that they start inherit that.
bool tRequestServer::startThread() {
  sigset_t all;
  sigset_t former;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &former);
  int const error = pthread_create(&thread, nullptr, run, this);
  pthread_sigmask(SIG_SETMASK, &former, nullptr);
  return error == 0 ? true : fail(error);
}

void tRequestServer::stop() {
  tThreadLock::tGuard const held(controls);
  if (!isStarted) return;
  __atomic_store_n(&isStopping, true, __ATOMIC_RELEASE);
  socket.wake();
  pthread_join(thread, nullptr);
  socket.close();
  for (tRequestCaller& caller : callers) caller.hangUp(true);
  for (tRequestCaller& caller : callers) caller.wait();
  isStarted = false;
}

void* tRequestServer::run(void* server) {
  static_cast<tRequestServer*>(server)->acceptCallers();
  return nullptr;
}

void tRequestServer::acceptCallers() {
  while (!__atomic_load_n(&isStopping, __ATOMIC_ACQUIRE)) {
    int const connection = socket.accept();
    if (connection >= 0) {
      welcome(connection);
    } else {
      usleep(kMicrosecondsOfDistress);
    }
  }
}

void tRequestServer::welcome(int connection) {
  tRequestCaller* const place = findPlace();
  bool const isServed = place != nullptr && place->start(connection);
  if (!isServed) refuse(connection);
}

tRequestCaller* tRequestServer::findPlace() {
  for (tRequestCaller& caller : callers) {
    bool const isFree = !caller.isTaken() || caller.getSilence() == 0;
    if (!isFree) continue;
    caller.wait();
    return &caller;
  }
  return takePlaceOfSilent();
}

// A caller that begins to speak meanwhile keeps its place, and the next one is asked.
tRequestCaller* tRequestServer::takePlaceOfSilent() {
  for (u32 attempt = 0; attempt < vexkhost::kRequestPlaces; ++attempt) {
    tRequestCaller* longest = &callers[0];
    for (tRequestCaller& caller : callers) {
      if (caller.getSilence() < longest->getSilence()) longest = &caller;
    }
    if (!longest->hangUp(false)) continue;
    longest->wait();
    return longest;
  }
  return nullptr;
}
