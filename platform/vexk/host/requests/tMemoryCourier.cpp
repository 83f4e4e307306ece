#include "host/requests/tMemoryCourier.h"

#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <new>

#include "host/requests/startThread.h"
#include "ntoshost/userMemory.h"
#include "vexkhost/requestServer.h"

namespace {

constexpr u64 kMillisecond = 1'000'000;  // in nanoseconds
constexpr u64 kSecond = 1000 * kMillisecond;
constexpr u64 kQuick = kMillisecond;  // a copy of memory that is there takes less

constinit thread_local tMemoryCourier* hired = nullptr;

// Those that were left behind, linked, and the lock of that list. It may be taken within the lock
// of a courier, not the other way round.
constinit tThreadLock awayLock;
constinit tMemoryCourier* firstAway = nullptr;

u64 now() {
  timespec moment;
  clock_gettime(CLOCK_MONOTONIC, &moment);
  return static_cast<u64>(moment.tv_sec) * kSecond + static_cast<u64>(moment.tv_nsec);
}

timespec momentOf(u64 nanoseconds) {
  return {static_cast<time_t>(nanoseconds / kSecond), static_cast<i64>(nanoseconds % kSecond)};
}

u64 smaller(u64 a, u64 b) {
  return a < b ? a : b;
}

}  // namespace

tMemoryCourier* tMemoryCourier::hire(pid_t process, uid_t user) {
  if (!mayBeHired(process, user)) return nullptr;
  void* const memory = malloc(sizeof(tMemoryCourier));
  if (memory == nullptr) return nullptr;
  auto* const courier = new (memory) tMemoryCourier(process, user);
  if (startThread(courier->thread, run, courier) != 0) {
    courier->references = 1;  // there is no thread that has the other one
    courier->release();
    return nullptr;
  }
  return hired = courier;
}

bool tMemoryCourier::mayBeHired(pid_t process, uid_t user) {
  tThreadLock::tGuard const held(awayLock);
  u32 count = 0;
  for (tMemoryCourier* away = firstAway; away != nullptr; away = away->nextAway) {
    if (away->process == process) return false;
    if (away->user == user) ++count;
  }
  return count < vexkhost::kRequestMostWithheld;
}

void tMemoryCourier::addToAway() {
  tThreadLock::tGuard const held(awayLock);
  nextAway = firstAway;
  firstAway = this;
}

// Does nothing for one that nobody has left behind.
void tMemoryCourier::removeFromAway() {
  tThreadLock::tGuard const held(awayLock);
  tMemoryCourier** link = &firstAway;
  while (*link != nullptr && *link != this) link = &(*link)->nextAway;
  if (*link != nullptr) *link = nextAway;
}

tMemoryCourier* tMemoryCourier::ofThisThread() {
  return hired;
}

// Who is still under way is not waited for.
void tMemoryCourier::dismiss() {
  if (hired == this) hired = nullptr;
  lock.take();
  bool const isAway = isUnderWay;
  isDismissed = true;
  if (isAway) addToAway();
  pthread_cond_broadcast(&changed);
  lock.giveBack();
  if (isAway) {
    pthread_detach(thread);
  } else {
    pthread_join(thread, nullptr);
  }
  release();
}

bool tMemoryCourier::reach() {
  tThreadLock::tGuard const held(lock);
  return send(kReach, 0, 1) == 1;
}

size_t tMemoryCourier::fetch(void* to, u64 userAddress, size_t length) {
  tThreadLock::tGuard const held(lock);
  for (size_t done = 0; done < length; done += carried) {
    size_t const piece = smaller(length - done, kLoadSize);
    size_t const come = send(kFetch, userAddress + done, piece);
    memcpy(static_cast<u8*>(to) + done, load, come);
    if (come < piece) return done + come;
  }
  return length;
}

size_t tMemoryCourier::bring(u64 userAddress, void const* from, size_t length) {
  tThreadLock::tGuard const held(lock);
  for (size_t done = 0; done < length; done += carried) {
    size_t const piece = smaller(length - done, kLoadSize);
    if (!isLost) memcpy(load, static_cast<u8 const*>(from) + done, piece);
    size_t const gone = send(kBring, userAddress + done, piece);
    if (gone < piece) return done + gone;
  }
  return length;
}

void tMemoryCourier::hurry() {
  tThreadLock::tGuard const held(lock);
  if (isHurried) return;
  isHurried = true;
  hurriedSince = now();
  hurriedLeft = kHurriedPatience * kMillisecond;
  pthread_cond_broadcast(&changed);
}

void tMemoryCourier::giveUp() {
  tThreadLock::tGuard const held(lock);
  isLost = true;
  pthread_cond_broadcast(&changed);
}

u32 tMemoryCourier::getWaitingTime() {
  tThreadLock::tGuard const held(lock);
  return isUnderWay ? static_cast<u32>((now() - begun) / kMillisecond) : 0;
}

tMemoryCourier::tMemoryCourier(pid_t target, uid_t owner) : process(target), user(owner) {
}

void tMemoryCourier::release() {
  if (__atomic_sub_fetch(&references, 1, __ATOMIC_ACQ_REL) != 0) return;
  free(this);
}

void* tMemoryCourier::run(void* courier) {
  static_cast<tMemoryCourier*>(courier)->work();
  return nullptr;
}

void tMemoryCourier::work() {
  lock.take();
  while (!isDismissed || isUnderWay) {
    if (!isUnderWay) {
      lock.wait(changed);
      continue;
    }
    lock.giveBack();
    size_t const length = runErrand();
    lock.take();
    carried = length;
    isUnderWay = false;
    pthread_cond_broadcast(&changed);
  }
  lock.giveBack();
  removeFromAway();
  ntoshost::setUserProcess(0);
  release();
}

size_t tMemoryCourier::runErrand() {
  switch (errand) {
    case kReach:
      return ntoshost::setUserProcess(process) ? 1 : 0;
    case kFetch:
      return ntoshost::copyFromUser(load, address, wanted);
    default:
      return ntoshost::copyToUser(address, load, wanted);
  }
}

// How many bytes were carried; 0 when it takes too long. The caller has the lock, and the load is
// its own again unless the courier is lost.
size_t tMemoryCourier::send(tErrand newErrand, u64 userAddress, size_t length) {
  isLost = isLost || isTooLate();
  if (isLost) return 0;
  errand = newErrand;
  address = userAddress;
  wanted = length;
  begun = now();
  isUnderWay = true;
  pthread_cond_broadcast(&changed);
  while (isUnderWay && !isLost) {
    u64 const deadline = getDeadline();
    isLost = now() >= deadline;
    if (!isLost) lock.wait(changed, momentOf(deadline));
  }
  if (isLost) return 0;
  countWaiting();
  return carried;
}

bool tMemoryCourier::isTooLate() const {
  return isHurried && now() >= hurriedSince + kHurriedEnd * kMillisecond;
}

u64 tMemoryCourier::getDeadline() const {
  u64 const patient = begun + vexkhost::kRequestMemoryPatience * kMillisecond;
  if (!isHurried) return patient;
  u64 const counted = begun > hurriedSince ? begun : hurriedSince;
  return smaller(patient, counted + hurriedLeft);
}

void tMemoryCourier::countWaiting() {
  if (!isHurried) return;
  u64 const taken = now() - (begun > hurriedSince ? begun : hurriedSince);
  if (taken > kQuick) hurriedLeft -= smaller(taken, hurriedLeft);
}
