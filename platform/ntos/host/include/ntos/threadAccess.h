#pragma once

#include "ntos/threadWords.h"

extern "C" {

inline HANDLE PsGetCurrentThreadId() {
  u64 const known = ntoshost::g_words.id;
  return reinterpret_cast<HANDLE>(known != 0 ? known : ntoshost::findThreadId());
}

inline void KeEnterCriticalRegion() {
  ++ntoshost::g_words.regions;
  if (ntoshost::g_words.isWatched()) ntoshost::enterWatchedRegion();
}

inline void KeLeaveCriticalRegion() {
  --ntoshost::g_words.regions;
  if (ntoshost::g_words.isWatched()) ntoshost::leaveWatchedRegion();
}
}
