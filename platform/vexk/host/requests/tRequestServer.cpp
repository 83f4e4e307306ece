#include "host/requests/tRequestServer.h"

#include <errno.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include "host/requests/startThread.h"

namespace {

constexpr u32 kMicrosecondsOfDistress = 10000;  // when the system is out of descriptors
constexpr u32 kStuckMilliseconds = 100;         // memory that is there comes sooner
constexpr u32 kMicrosecondsBetweenLooks = 1000;
constexpr u32 kLooksAtTheEnd = 500;  // one suffices, but on a machine that is busy

bool fail(int error) {
  errno = error;
  return false;
}

void refuse(int connection, vexkhost::tRequestAnswer why) {
  vexkhost::tRequestGreeting const greeting = {vexkhost::kRequestMagic, why};
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
  int const error = ::startThread(thread, run, this);
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

// Who may not be served takes no place.
void tRequestServer::welcome(int connection) {
  tRequestPeer peer;
  if (!peer.identify(connection)) {
    close(connection);
  } else if (!peer.isServed()) {
    refuse(connection, vexkhost::kRequestOtherUser);
    peer.close();
  } else {
    giveAPlace(connection, peer);
  }
}

void tRequestServer::giveAPlace(int connection, tRequestPeer& peer) {
  tRequestCaller* const place = findPlace(peer.getUser());
  if (place != nullptr && place->start(connection, peer)) return;
  refuse(connection, vexkhost::kRequestTooManyCallers);
  peer.close();
}

// Who has as many places as one user may have gets the next one from its own.
tRequestCaller* tRequestServer::findPlace(uid_t user) {
  bool const isAtLimit = countPlacesOf(user) >= vexkhost::kRequestPlacesOfOneUser;
  tRequestCaller* const free = isAtLimit ? nullptr : findFreePlace();
  if (free != nullptr) return free;
  auto const isFit = [=](tRequestCaller const& caller) {
    return !isAtLimit || caller.getUser() == user;
  };
  tRequestCaller* const place = takePlaceOfSilent(isFit);
  return place != nullptr ? place : takePlaceOfStuck(isFit);
}

tRequestCaller* tRequestServer::findFreePlace() {
  for (tRequestCaller& caller : callers) {
    if (caller.getSilence() != 0) continue;
    caller.wait();
    return &caller;
  }
  return nullptr;
}

u32 tRequestServer::countPlacesOf(uid_t user) {
  u32 count = 0;
  for (tRequestCaller& caller : callers) {
    if (caller.getSilence() != 0 && caller.getUser() == user) ++count;
  }
  return count;
}

// A caller that begins to speak meanwhile keeps its place, and the next one is asked.
template <class tIsFit>
tRequestCaller* tRequestServer::takePlaceOfSilent(tIsFit isFit) {
  for (u32 attempt = 0; attempt < vexkhost::kRequestPlaces; ++attempt) {
    tRequestCaller* longest = nullptr;
    for (tRequestCaller& caller : callers) {
      if (!caller.isTaken() || !isFit(caller)) continue;
      if (longest == nullptr || caller.getSilence() < longest->getSilence()) longest = &caller;
    }
    if (longest == nullptr || !longest->hangUp(false)) continue;
    longest->wait();
    return longest;
  }
  return nullptr;
}

// The request that has waited longest for memory of its caller ends without. It has a little time
// for that: this thread has others to welcome.
template <class tIsFit>
tRequestCaller* tRequestServer::takePlaceOfStuck(tIsFit isFit) {
  tRequestCaller* longest = nullptr;
  u32 longestWait = kStuckMilliseconds;
  for (tRequestCaller& caller : callers) {
    u32 const wait = caller.isTaken() && isFit(caller) ? caller.getMemoryWait() : 0;
    if (wait < longestWait) continue;
    longest = &caller;
    longestWait = wait;
  }
  if (longest == nullptr) return nullptr;
  longest->giveUpMemory();
  for (u32 look = 0; look < kLooksAtTheEnd && longest->getSilence() != 0; ++look) {
    usleep(kMicrosecondsBetweenLooks);
  }
  if (longest->getSilence() != 0) return nullptr;
  longest->wait();
  return longest;
}
