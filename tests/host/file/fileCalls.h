#pragma once

// A file destination over a fresh drive C, and what it asked the kernel for.

#include <string>
#include <vector>

#include "ntos/driveFolder.h"
#include "ntos/file.h"
#include "ntos/narrowText.h"
#include "ntoshost/executive.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "trace/tRaisedIrql.h"

using nOXDIAG100::tFileTraceDestination;
using ntoshost::FileCall;
using ntoshost::FileCallKind;

// Each test begins without calls and faults, and must leave no handle open.
class tFileTest : public testing::Test {
 protected:
  tFileTest() { ntoshost::forgetFileCalls(); }
  ~tFileTest() override {
    ntoshost::clearFaults();
    stopFailing(FileCallKind::Create);
    stopFailing(FileCallKind::Write);
    EXPECT_EQ(ntoshost::outstandingHandles(), 0u);
  }

  static void stopFailing(FileCallKind kind) {
    ntoshost::failFileCalls(kind, 1, 0, STATUS_SUCCESS);
  }

  tDriveFolder drive;
};

template <class... Words>
void configureWith(tFileTraceDestination& file, Words... words) {
  std::vector<std::string> texts = {words...};
  std::vector<char*> list;
  for (std::string& text : texts) list.push_back(text.data());
  file.configure(static_cast<int>(list.size()), list.data());
}

inline std::string settingsOf(tFileTraceDestination& file) {
  char text[320];
  file.inquire(text, sizeof(text), nullptr);
  return text;
}

// The calls of a kind since the last forgetFileCalls, oldest first.
inline std::vector<FileCall> callsOf(FileCallKind kind) {
  std::vector<FileCall> calls;
  for (u64 index = 0; index < ntoshost::fileCallsSeen(); ++index) {
    FileCall const call = ntoshost::fileCall(index);
    if (call.kind == kind) calls.push_back(call);
  }
  return calls;
}

// All of them in short: "create write close ".
inline std::string callText() {
  constexpr char const* kNames[] = {"create ", "read ", "write ", "query ", "close "};
  std::string text;
  for (u64 index = 0; index < ntoshost::fileCallsSeen(); ++index) {
    text += kNames[static_cast<u32>(ntoshost::fileCall(index).kind)];
  }
  return text;
}

inline std::string bytesOf(FileCall const& write) {
  return std::string(reinterpret_cast<char const*>(write.bytes), write.length);
}

// The lengths of all writes.
inline std::vector<u32> writtenLengths() {
  std::vector<u32> lengths;
  for (FileCall const& write : callsOf(FileCallKind::Write)) lengths.push_back(write.length);
  return lengths;
}
