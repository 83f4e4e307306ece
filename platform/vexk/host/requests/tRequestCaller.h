#pragma once

#include "host/requests/tMemoryCourier.h"
#include "host/requests/tRequestPeer.h"
#include "host/requests/tThreadLock.h"
#include "vexkhost/requestSocket.h"

// A place for one caller: its connection and the thread that serves it. The server's own thread
// calls the public functions.
class tRequestCaller {
 public:
  constexpr tRequestCaller() = default;

  bool isTaken() const { return hasThread; }

  // Serves what this peer sends over the connection; the connection and the peer are closed at the
  // end. False, and both stay the server's, when there is no thread for it.
  bool start(int newConnection, tRequestPeer const& newPeer);

  // Whose place it is.
  uid_t getUser() const { return peer.getUser(); }

  // The moment from which on the caller has been silent; kBusy while a request is served, 0 when
  // the caller is gone. Later moments are larger numbers.
  u64 getSilence();
  static constexpr u64 kBusy = ~u64{0};

  // Ends the service: at once when the caller is silent, otherwise when the request that runs is
  // answered. `isPatient` false leaves a caller alone whose request runs, and gives false.
  bool hangUp(bool isPatient);

  // For how many milliseconds the request that runs has waited for memory of the caller.
  u32 getMemoryWait();

  // Lets the caller go whose request waits for memory: there is none for it from now on, and when
  // the request is through with that the service ends.
  void giveUpMemory();

  // Waits for the end and makes the place free.
  void wait();

 private:
  static constexpr int kNone = -1;

  static void* run(void* caller);
  void serve();
  void greetAndServe();
  bool receive(vexkhost::tRequestMessage& message, vexkhost::tRequestAnswer& answer);
  bool isFromPeer(void const* header) const;
  bool begin();
  void end();
  vexkhost::tRequestAnswer answerTo(vexkhost::tRequestMessage const& message, i32& status);
  bool send(void const* bytes, size_t size) const;
  void leave();

  bool hireCourier();
  void dismissCourier();

  tThreadLock lock;  // of the five below
  int connection = kNone;
  u64 silentSince = 0;
  bool isServing = false;
  bool isLeaving = false;
  tMemoryCourier* courier = nullptr;  // to the caller's memory, from its first request on

  tRequestPeer peer;
  pthread_t thread = {};
  bool hasThread = false;
  bool isReached = false;  // the caller's memory, by the courier
};
