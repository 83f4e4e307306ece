#pragma once

#include "host/requests/tRequestCaller.h"
#include "host/requests/tRequestSocket.h"
#include "vexkhost/requestServer.h"

// Listens, and gives every caller a place. See "vexkhost/requestServer.h".
class tRequestServer {
 public:
  constexpr tRequestServer() = default;

  bool start(char const* path);
  void stop();

 private:
  static void* run(void* server);
  bool startThread();
  void acceptCallers();
  void welcome(int connection);
  void giveAPlace(int connection, tRequestPeer& peer);
  tRequestCaller* findPlace(uid_t user);
  tRequestCaller* findFreePlace();
  u32 countPlacesOf(uid_t user);
  template <class tIsFit>
  tRequestCaller* takePlaceOfSilent(tIsFit isFit);
  template <class tIsFit>
  tRequestCaller* takePlaceOfStuck(tIsFit isFit);

  tThreadLock controls;  // start and stop, one at a time
  bool isStarted = false;
  bool isStopping = false;  // atomic
  pthread_t thread = {};

  tRequestSocket socket;
  tRequestCaller callers[vexkhost::kRequestPlaces];
};

// The one server of this program.
extern constinit tRequestServer requestServer;
