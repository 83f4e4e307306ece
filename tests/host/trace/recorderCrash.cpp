// What the flight recorder leaves in a crash dump.

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "ntos/bugCheck.h"
#include "ntoshost/bugCheck.h"
#include "ntoshost/faults.h"
#include "oxdiagk/tRecorderTraceDestination.h"
#include "startedModules.h"
#include "support/recordingDestination.h"

namespace {

using nOXDIAG100::tRecorderRing;
using nOXDIAG100::tRecorderTraceDestination;

constexpr u32 kCode = 0xDEADDEAD;
constexpr size_t kDumpHead = 16 + 8;  // GUID and length in front of the data

void stop() {
  KeBugCheckEx(kCode, 1, 2, 3, 4);
}

class RecorderCrash : public ::testing::Test {
 protected:
  void SetUp() override {
    dump = std::filesystem::path(::testing::TempDir()) / ("recorder." + std::to_string(getpid()));
    char word[] = "1";
    char* words[] = {word};
    recorder.configure(1, words);
  }
  void TearDown() override { std::filesystem::remove(dump); }

  // Within `work`, which ends with stop(), in a child.
  template <class tWork>
  void crash(tWork work) {
    EXPECT_DEATH(
        {
          ntoshost::setDumpFile(dump.c_str());
          work();
        },
        "ntos: bug check 0xDEADDEAD \\(0x1, 0x2, 0x3, 0x4\\)");
    std::ifstream file(dump, std::ios::binary);
    std::stringstream bytes;
    bytes << file.rdbuf();
    content = bytes.str();
  }

  // The text of the ring in the dump, oldest first.
  std::string text() const {
    size_t const begin = content.find(std::string_view(tRecorderRing::kSignature, 16));
    if (begin == std::string::npos) return "(no ring)";
    tRecorderRing ring;
    memcpy(&ring, content.data() + begin, sizeof(ring));
    std::string const bytes = content.substr(begin + ring.headSize, ring.capacity);
    EXPECT_EQ(bytes.size(), ring.capacity);
    if (ring.written <= ring.capacity) return bytes.substr(0, ring.written);
    size_t const end = ring.written % ring.capacity;
    return bytes.substr(end) + bytes.substr(0, end);
  }

  std::filesystem::path dump;
  std::string content;
  tRecorderTraceDestination recorder;
};

}  // namespace

TEST_F(RecorderCrash, DumpHasTheLastLinesAndTheOneThatWasNotEnded) {
  crash([&] {
    tRecordingDestination other;
    tPrivateTrace elsewhere(other);
    tPrivateTrace trace(recorder);
    ASSERT_EQ(recorder.open(), 1u);
    for (int line = 0; line < 500; ++line) trace.put("line ").put(line, 10).endl();
    elsewhere.put("not recorded");
    trace.put("unfinished");
    stop();
  });
  EXPECT_EQ(content.substr(0, 16),
            std::string(reinterpret_cast<char const*>(tRecorderTraceDestination::kDumpGuid), 16));
  EXPECT_EQ(content.size(), kDumpHead + sizeof(tRecorderRing) + 1024);
  EXPECT_TRUE(text().ends_with("line 498\nline 499\nunfinished\n")) << text();
  EXPECT_EQ(text().find("not recorded"), std::string::npos);
}

TEST_F(RecorderCrash, WithoutAnOpenedRecorderTheDumpIsEmpty) {
  crash([] { stop(); });
  EXPECT_EQ(content, "");
}

TEST_F(RecorderCrash, DestroyedRecorderIsAskedNoMore) {
  crash([] {
    {
      tRecorderTraceDestination gone;
      ASSERT_EQ(gone.open(), 1u);
      gone.put("gone");
    }
    stop();
  });
  EXPECT_EQ(content, "");
}

TEST_F(RecorderCrash, SmallDumpHasTheNewestPart) {
  crash([&] {
    ntoshost::limitDump(1000);
    ASSERT_EQ(recorder.open(), 1u);
    for (int line = 0; line < 500; ++line) recorder.put("0123456789");
    recorder.put("the end");
    stop();
  });
  EXPECT_EQ(content.size(), kDumpHead + 1000);
  EXPECT_EQ(text().size(), 1000 - sizeof(tRecorderRing));
  EXPECT_TRUE(text().ends_with("01234567890123456789the end")) << text();
}

TEST_F(RecorderCrash, DumpWithoutRoomForTextHasNone) {
  for (u32 most : {0u, 1u, 55u, 56u}) {
    crash([&] {
      ntoshost::limitDump(most);
      ASSERT_EQ(recorder.open(), 1u);
      recorder.put("text");
      stop();
    });
    EXPECT_EQ(content, "") << most;
  }
}

TEST_F(RecorderCrash, OpenIsWholeOrNothingWhateverAllocationFails) {
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64 n) {
    tRecorderTraceDestination fresh;
    bool const isOpen = fresh.open() == 1;
    EXPECT_EQ(isOpen, ntoshost::faultsInjected() == 0) << n;
    EXPECT_EQ(fresh.getRing() != nullptr, isOpen);
    ntoshost::clearFaults();
    EXPECT_EQ(fresh.open(), 1u);
  });
  EXPECT_EQ(failures, 2u);
}

TEST_F(RecorderCrash, TextStaysWhenThereIsNoMemoryForAnotherSize) {
  ASSERT_EQ(recorder.open(), 1u);
  recorder.put("kept");
  char word[] = "2";
  char* words[] = {word};
  recorder.configure(1, words);
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  EXPECT_EQ(recorder.open(), 0u);
  ntoshost::clearFaults();
  EXPECT_EQ(recorder.getRing()->capacity, 1024u);
  EXPECT_EQ(recorder.getRing()->written, 4u);
}

TEST_F(RecorderCrash, SmallDumpOfAnEmptyRingIsEmpty) {
  crash([&] {
    ntoshost::limitDump(1000);
    ASSERT_EQ(recorder.open(), 1u);
    stop();
  });
  EXPECT_EQ(content, "");
}

// The records are linked, the newest first: the test stands in for the system.
TEST_F(RecorderCrash, WhateverTheSystemAsksForIsAnswered) {
  ASSERT_EQ(recorder.open(), 1u);
  recorder.put("text");
  KBUGCHECK_REASON_CALLBACK_RECORD own = {};
  u8 name[] = "test";
  ASSERT_TRUE(KeRegisterBugCheckReasonCallback(
      &own, [](KBUGCHECK_CALLBACK_REASON, KBUGCHECK_REASON_CALLBACK_RECORD*, void*, u32) {},
      KbCallbackSecondaryDumpData, name));
  auto* const record = reinterpret_cast<KBUGCHECK_REASON_CALLBACK_RECORD*>(own.Entry.Flink);
  ASSERT_TRUE(KeDeregisterBugCheckReasonCallback(&own));
  ASSERT_NE(record, nullptr);
  KBUGCHECK_SECONDARY_DUMP_DATA data = {};
  data.MaximumAllowed = 1 << 20;
  record->CallbackRoutine(KbCallbackInvalid, record, &data, sizeof(data));
  record->CallbackRoutine(KbCallbackSecondaryDumpData, record, &data, sizeof(data) - 1);
  EXPECT_EQ(data.OutBuffer, nullptr);
  for (int time = 0; time < 2; ++time) {
    record->CallbackRoutine(KbCallbackSecondaryDumpData, record, &data, sizeof(data));
    EXPECT_EQ(data.OutBuffer, recorder.getRing());
    EXPECT_EQ(data.OutBufferLength, sizeof(tRecorderRing) + 1024);
    EXPECT_EQ(recorder.getRing()->written, 4u);
  }
  data.MaximumAllowed = 1000;
  record->CallbackRoutine(KbCallbackSecondaryDumpData, record, &data, sizeof(data));
  EXPECT_EQ(data.OutBuffer, nullptr);
}

// A stream may be built upon a recorder that could not be opened.
TEST_F(RecorderCrash, WithoutARingALineThatWasNotEndedIsInNoDump) {
  crash([&] {
    tPrivateTrace trace(recorder);
    ntoshost::failNth(ntoshost::kFaultMemory, 2);
    ASSERT_EQ(recorder.open(), 0u);
    trace.put("unfinished");
    stop();
  });
  EXPECT_EQ(content, "");
}

TEST_F(RecorderCrash, WithoutMemoryForTheRingTheDumpIsEmpty) {
  crash([&] {
    ntoshost::failNth(ntoshost::kFaultMemory, 2);
    ASSERT_EQ(recorder.open(), 0u);
    ASSERT_EQ(recorder.getRing(), nullptr);
    stop();
  });
  EXPECT_EQ(content, "");
}
