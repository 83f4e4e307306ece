// The flight recorder asked for its part of a crash dump, as the kernel asks.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "ntos/bugCheck.h"
#include "ntoshost/faults.h"
#include "oxdiagk/tRecorderTraceDestination.h"
#include "startedModules.h"
#include "support/recordingDestination.h"

namespace {

using nOXDIAG100::tRecorderRing;
using nOXDIAG100::tRecorderTraceDestination;

constexpr u32 kWhole = sizeof(tRecorderRing) + 1024;
constexpr u8 kFiller = 0x5A;

// What the kernel comes with, and what it has then.
struct tAsked {
  tAsked(u32 room, u32 most) {
    std::memset(this, kFiller, sizeof(*this));
    data.InBuffer = memory;
    data.InBufferLength = room;
    data.MaximumAllowed = most;
  }

  bool isGiven() const { return data.OutBuffer != nullptr || data.OutBufferLength != 0; }

  // The part of the ring that was put into the memory.
  tRecorderRing& ring() { return *reinterpret_cast<tRecorderRing*>(memory); }
  std::string text() { return {ring().getText(), ring().capacity}; }
  bool isUntouchedFrom(size_t place) const {
    while (place < sizeof(memory) && memory[place] == kFiller) ++place;
    return place == sizeof(memory);
  }

  KBUGCHECK_SECONDARY_DUMP_DATA data;
  alignas(16) u8 memory[4096];
};

class RecorderDump : public ::testing::Test {
 protected:
  void SetUp() override {
    setSize("1");
    ASSERT_EQ(recorder.open(), 1u);
  }

  void setSize(char const* kiB) {
    std::string word = kiB;
    char* words[] = {word.data()};
    recorder.configure(1, words);
  }

  // The record that was registered last stands behind one that is registered now.
  static void ask(tAsked& asked, KBUGCHECK_CALLBACK_REASON reason = KbCallbackSecondaryDumpData,
                  u32 size = sizeof(KBUGCHECK_SECONDARY_DUMP_DATA)) {
    KBUGCHECK_REASON_CALLBACK_RECORD mine = {};
    u8 name[] = "test";
    ASSERT_EQ(KeRegisterBugCheckReasonCallback(&mine, nullptr, KbCallbackInvalid, name), 1);
    auto* const its = reinterpret_cast<KBUGCHECK_REASON_CALLBACK_RECORD*>(mine.Entry.Flink);
    KeDeregisterBugCheckReasonCallback(&mine);
    ASSERT_NE(its, nullptr);
    its->CallbackRoutine(reason, its, &asked.data, size);
  }

  tRecorderTraceDestination recorder;
};

}  // namespace

TEST_F(RecorderDump, IsTheRingItselfWhereThatIsAllowed) {
  recorder.put("text");
  for (u32 const most : {kWhole, kWhole + 1}) {
    tAsked asked(0, most);
    ask(asked);
    EXPECT_EQ(asked.data.OutBuffer, recorder.getRing());
    EXPECT_EQ(asked.data.OutBufferLength, kWhole);
    EXPECT_EQ(std::memcmp(&asked.data.Guid, tRecorderTraceDestination::kDumpGuid, 16), 0);
    EXPECT_TRUE(asked.isUntouchedFrom(0));
  }
}

TEST_F(RecorderDump, IsTheNewestPartInMemoryOfTheKernelsWhereItIsNot) {
  std::string all;
  for (int line = 0; line < 200; ++line) all += "0123456789";
  all += "the end";
  recorder.put(all.c_str());
  for (u32 const room : {57u, 100u, 4096u}) {
    tAsked asked(room, kWhole - 1);
    ask(asked);
    u32 const given = room < kWhole ? room : kWhole - 1;
    EXPECT_EQ(asked.data.OutBuffer, asked.memory);
    EXPECT_EQ(asked.data.OutBufferLength, given);
    EXPECT_TRUE(asked.isUntouchedFrom(given));
    EXPECT_EQ(asked.ring().address, recorder.getRing()->address);
    EXPECT_EQ(asked.ring().written, asked.ring().capacity);
    EXPECT_EQ(asked.text().size(), given - sizeof(tRecorderRing));
    EXPECT_TRUE(all.ends_with(asked.text())) << asked.text();
  }
}

TEST_F(RecorderDump, HasNoMoreTextThanTheRing) {
  recorder.put("few");
  tAsked asked(4096, kWhole - 1);
  ask(asked);
  EXPECT_EQ(asked.text(), "few");
  EXPECT_TRUE(asked.isUntouchedFrom(sizeof(tRecorderRing) + 3));
}

TEST_F(RecorderDump, IsNothingWhereNoTextHasRoom) {
  for (bool const isWritten : {false, true}) {
    if (isWritten) recorder.put("text");
    for (u32 const room : {0u, 1u, 55u, 56u, 4096u}) {
      tAsked asked(room, 200);
      if (room > 56) asked.data.InBuffer = isWritten ? nullptr : asked.memory;
      ask(asked);
      EXPECT_FALSE(asked.isGiven());
      EXPECT_TRUE(asked.isUntouchedFrom(0));
    }
  }
}

TEST_F(RecorderDump, IsNothingForAnotherReasonOrAnotherSize) {
  tAsked const before(4096, 4096);
  tAsked asked(4096, 4096);
  asked.data.InBuffer = before.data.InBuffer;
  ask(asked, KbCallbackInvalid);
  EXPECT_EQ(std::memcmp(&asked, &before, sizeof(asked)), 0);
  ask(asked, KbCallbackSecondaryDumpData, sizeof(KBUGCHECK_SECONDARY_DUMP_DATA) - 1);
  EXPECT_EQ(std::memcmp(&asked, &before, sizeof(asked)), 0);
}

TEST_F(RecorderDump, IsNothingOfARecorderWithoutMemory) {
  tRecorderTraceDestination poor;
  ntoshost::failNth(ntoshost::kFaultMemory, 2);
  EXPECT_EQ(poor.open(), 0u);
  ntoshost::clearFaults();
  tAsked asked(4096, 4096);
  ask(asked);
  EXPECT_FALSE(asked.isGiven());
}

TEST_F(RecorderDump, HasTheUnfinishedLineOnceHoweverOftenTheKernelAsks) {
  tPrivateTrace trace(recorder);
  tPrivateTrace silent(recorder);
  trace.put("unfinished");
  for (u32 count = 0; count < 3; ++count) {
    tAsked asked(4096, kWhole - 1);
    ask(asked);
    EXPECT_EQ(asked.text(), "unfinished\n");
  }
  trace.endl();
}

TEST_F(RecorderDump, TextLongerThanTheRingLeavesItsEnd) {
  recorder.put((std::string(3000, 'x') + std::string(1023, 'y') + "z").c_str());
  tAsked asked(4096, kWhole - 1);
  ask(asked);
  EXPECT_EQ(asked.text(), std::string(1022, 'y') + "z");
}

TEST_F(RecorderDump, ALargerRingBeginsWithTheTextOfTheFormer) {
  recorder.put("kept");
  setSize("2");
  ASSERT_EQ(recorder.open(), 1u);
  EXPECT_EQ(recorder.getRing()->written, 4u);
  tAsked asked(4096, kWhole - 1);
  ask(asked);
  EXPECT_EQ(asked.text(), "kept");
}
