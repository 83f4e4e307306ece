#pragma once

// The end of the module while a put does not come out, in an image with one life.

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "hurriedTime.h"
#include "keptLines.h"
#include "ntos/status.h"
#include "ntos/time.h"
#include "oxdiagk/module.h"
#include "qelmk/module.h"
#include "vexk/eventLog.h"
#include "vexk/module.h"
#include "vexk/threadUtility.h"

class tStickyDestination : public tKeptLines {
 public:
  nOXDIAG100::iTraceDestination& put(char const*) override { return stick(); }
  nOXDIAG100::iTraceDestination& put(char const*, unsigned int) override { return stick(); }

  std::atomic<u32> thread = 0;
  std::atomic<bool> mayGo = false;

 private:
  nOXDIAG100::iTraceDestination& stick() {
    if (isSticky) {
      thread = tThreadUtility::getCurrentThreadId();
      while (!mayGo) std::this_thread::yield();
    }
    return *this;
  }

 public:
  std::atomic<bool> isSticky = false;
};

inline void startModules() {
  ASSERT_EQ(vexkInitialize(), STATUS_SUCCESS);
  ASSERT_EQ(qelmkInitialize(), STATUS_SUCCESS);
  ASSERT_EQ(oxdiagkInitialize(nullptr), STATUS_SUCCESS);
}

// In the hurried time.
inline u64 getSeconds() {
  LARGE_INTEGER countsPerSecond;
  u64 const count = static_cast<u64>(KeQueryPerformanceCounter(&countsPerSecond).QuadPart);
  return count / static_cast<u64>(countsPerSecond.QuadPart);
}

inline bool isLogged(std::string const& text) {
  tVexEvent event;
  for (u64 next = 1; vexReadEvent(next, event); next = event.number + 1) {
    if (std::string(event.text).find(text) != std::string::npos) return true;
  }
  return false;
}

// Unloads the library beside the put: that takes ten seconds, and less than `most`.
inline void unloadBeside(u64 most) {
  u64 const start = getSeconds();
  EXPECT_EQ(oxdiagkUnload(), STATUS_SUCCESS);
  EXPECT_GE(getSeconds() - start, 10u);
  EXPECT_LT(getSeconds() - start, most);
}

// Lets the put come out, and unloads what is left.
inline void endModules(tStickyDestination& sticky, std::thread& writer) {
  sticky.mayGo = true;
  writer.join();
  qelmkUnload();
  vexkUnload();
}
