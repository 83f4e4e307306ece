#include "host/requests/tRequestCaller.h"

#include <errno.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include "host/requests/startThread.h"
#include "vexk/iLib.h"

using vexkhost::kRequestMagic;
using vexkhost::tRequestAnswer;
using vexkhost::tRequestGreeting;
using vexkhost::tRequestMessage;
using vexkhost::tRequestReply;

namespace {

constinit u64 moments = 0;

u64 nextMoment() {
  return __atomic_add_fetch(&moments, 1, __ATOMIC_RELAXED);
}

}  // namespace

bool tRequestCaller::start(int newConnection, tRequestPeer const& newPeer) {
  connection = newConnection;
  peer = newPeer;
  silentSince = nextMoment();
  isLeaving = false;
  isReached = false;
  hasThread = startThread(thread, run, this) == 0;
  if (!hasThread) connection = kNone;
  return hasThread;
}

u64 tRequestCaller::getSilence() {
  tThreadLock::tGuard const held(lock);
  if (connection == kNone) return 0;
  return isServing ? kBusy : silentSince;
}

bool tRequestCaller::hangUp(bool isPatient) {
  tThreadLock::tGuard const held(lock);
  if (isServing && !isPatient) return false;
  isLeaving = true;
  if (connection != kNone) shutdown(connection, SHUT_RD);
  if (courier != nullptr) courier->hurry();
  return true;
}

u32 tRequestCaller::getMemoryWait() {
  tThreadLock::tGuard const held(lock);
  return courier != nullptr ? courier->getWaitingTime() : 0;
}

void tRequestCaller::giveUpMemory() {
  tThreadLock::tGuard const held(lock);
  isLeaving = true;
  if (connection != kNone) shutdown(connection, SHUT_RD);
  if (courier != nullptr) courier->giveUp();
}

void tRequestCaller::wait() {
  if (hasThread) pthread_join(thread, nullptr);
  hasThread = false;
}

void* tRequestCaller::run(void* caller) {
  static_cast<tRequestCaller*>(caller)->serve();
  return nullptr;
}

void tRequestCaller::serve() {
  greetAndServe();
  dismissCourier();
  peer.close();
  leave();
}

// The process is held on to before it is greeted, and it sends behind the greeting, so it is that
// process that sends: one that gets its number later is told from it.
void tRequestCaller::greetAndServe() {
  int const on = 1;
  if (setsockopt(connection, SOL_SOCKET, SO_PASSCRED, &on, sizeof(on)) != 0) return;
  tRequestAnswer answer = vexkhost::kRequestAccepted;
  tRequestGreeting const greeting = {kRequestMagic, answer};
  tRequestMessage message;
  bool isGoingOn = send(&greeting, sizeof(greeting));
  while (isGoingOn && receive(message, answer) && begin()) {
    tRequestReply reply = {kRequestMagic, answer, 0};
    if (answer == vexkhost::kRequestAccepted) reply.answer = answerTo(message, reply.status);
    isGoingOn = send(&reply, sizeof(reply)) && reply.answer == vexkhost::kRequestAccepted;
    end();
  }
}

// False when the caller has hung up.
bool tRequestCaller::receive(tRequestMessage& message, tRequestAnswer& answer) {
  alignas(cmsghdr) char control[CMSG_SPACE(sizeof(ucred))];
  iovec part = {&message, sizeof(message)};
  msghdr header = {};
  header.msg_iov = &part;
  header.msg_iovlen = 1;
  header.msg_control = control;
  header.msg_controllen = sizeof(control);
  ssize_t const length = recvmsg(connection, &header, MSG_CMSG_CLOEXEC);
  if (length <= 0) return false;
  bool const isWhole = static_cast<size_t>(length) == sizeof(message) &&
                       (header.msg_flags & MSG_TRUNC) == 0 && message.magic == kRequestMagic &&
                       message.nameLength != 0 && message.nameLength <= sizeof(message.name);
  answer = vexkhost::kRequestAccepted;
  if (!isFromPeer(&header)) answer = vexkhost::kRequestOtherProcess;
  if (!isWhole) answer = vexkhost::kRequestMalformed;
  return true;
}

bool tRequestCaller::isFromPeer(void const* header) const {
  cmsghdr const* const control = CMSG_FIRSTHDR(static_cast<msghdr const*>(header));
  bool const hasSender = control != nullptr && control->cmsg_level == SOL_SOCKET &&
                         control->cmsg_type == SCM_CREDENTIALS;
  if (!hasSender) return false;
  ucred sender;
  memcpy(&sender, CMSG_DATA(control), sizeof(sender));
  return sender.pid == peer.getProcess() && peer.isAlive();
}

bool tRequestCaller::begin() {
  tThreadLock::tGuard const held(lock);
  isServing = !isLeaving;
  return isServing;
}

void tRequestCaller::end() {
  tThreadLock::tGuard const held(lock);
  isServing = false;
  silentSince = nextMoment();
}

tRequestAnswer tRequestCaller::answerTo(tRequestMessage const& message, i32& status) {
  if (courier == nullptr && !hireCourier()) return vexkhost::kRequestTooManyCallers;
  if (!isReached) isReached = courier->reach() && peer.isAlive();
  if (!isReached) return vexkhost::kRequestMemoryClosed;
  iLib::deliver(message.name, message.nameLength, message.request, status);
  return vexkhost::kRequestAccepted;
}

// The executive holds on to the process with that number, which is the caller while that is alive.
bool tRequestCaller::hireCourier() {
  tMemoryCourier* const hired = tMemoryCourier::hire(peer.getProcess(), peer.getUser());
  if (hired == nullptr) return false;
  tThreadLock::tGuard const held(lock);
  courier = hired;
  if (isLeaving) courier->hurry();
  return true;
}

void tRequestCaller::dismissCourier() {
  lock.take();
  tMemoryCourier* const former = courier;
  courier = nullptr;
  lock.giveBack();
  if (former != nullptr) former->dismiss();
}

// There is room for an answer, unless the caller never takes any.
bool tRequestCaller::send(void const* bytes, size_t size) const {
  ssize_t const sent = ::send(connection, bytes, size, MSG_NOSIGNAL | MSG_DONTWAIT);
  return sent == static_cast<ssize_t>(size);
}

void tRequestCaller::leave() {
  tThreadLock::tGuard const held(lock);
  close(connection);
  connection = kNone;
}
