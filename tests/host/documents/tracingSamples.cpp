// The code in the document on tracing, as it stands there, writes the lines that it shows.

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "documents/tDocument.h"
#include "ntoshost/time.h"
#include "trace/capturedPrint.h"
#include "trace/startedModules.h"
#include "tracing.samples"

namespace {

constexpr i64 kHourOfCounter = i64{3600} * 10'000'000;  // the host's counts 10 MHz

// Whether the document shows what was printed, its lines behind each other in a block.
bool isShown(std::string const& printed) {
  std::string block;
  std::istringstream lines(printed);
  for (std::string line; std::getline(lines, line);) block += "\n    " + line;
  return tDocument("docs/tracing.md").getText().find(block + "\n") != std::string::npos;
}

}  // namespace

TEST(TracingSamples, TheFirstLineIsTheOneInTheDocument) {
  tCapturedPrint print;
  u8 const reply[64] = {};
  reportReply(3, reply, sizeof(reply));
  EXPECT_TRUE(isShown(print.text())) << print.text();
}

TEST(TracingSamples, ALineWithinALineLooksAsInTheDocument) {
  tCapturedPrint print;
  report(3);
  EXPECT_TRUE(isShown(print.text())) << print.text();
}

TEST(TracingSamples, AValueReadFirstLeavesBothLinesWhole) {
  tCapturedPrint print;
  reportWhole(3);
  EXPECT_EQ(print.prints.size(), 2u) << print.text();
  EXPECT_NE(print.text().find("] reading slot 3\n["), std::string::npos) << print.text();
  EXPECT_NE(print.text().find("] slot 3: 64 bytes\n"), std::string::npos) << print.text();
}

TEST(TracingSamples, TheBlockIsTheOneInTheDocument) {
  tCapturedPrint print;
  tStatus2 status;
  powerUp(3, status);
  EXPECT_TRUE(isShown(print.text())) << print.text();
}

TEST(TracingSamples, ValuesOfTheKernelLookAsInTheDocument) {
  tCapturedPrint print;
  reportRequest(0x1B, 0, static_cast<i32>(0xC0000008));
  EXPECT_TRUE(isShown(print.text())) << print.text();
}

TEST(TracingSamples, LinesThatWereLeftOutAreToldAsInTheDocument) {
  tCapturedPrint print;
  ntoshost::setCounterRate(0);
  for (u32 slot = 1; slot <= 14; ++slot) reportSilence(slot);
  ntoshost::moveTime(kHourOfCounter);
  ntoshost::setTimeRate(1);
  reportSilence(15);
  EXPECT_TRUE(isShown(print.text())) << print.text();
}

TEST(TracingSamples, OnceAndEveryThousandthAreAsInTheDocument) {
  tCapturedPrint print;
  for (u32 number = 1; number <= 2001; ++number) reportPacket(number);
  EXPECT_EQ(print.prints.size(), 4u) << print.text();
  EXPECT_NE(print.text().find("] packet 1001\n"), std::string::npos) << print.text();
}

TEST(TracingSamples, APrefixIsOneCharacterWiderThanItsWidth) {
  tCapturedPrint print;
  reportTemperature(tTrace::getInstance(), 5);
  EXPECT_EQ(print.text().find("temperature"), 51u) << print.text();
}

TEST(TracingSamples, AFilterOfOneTermWithoutAnOperatorHidesEveryLine) {
  tTrace& trace = tTrace::getInstance();
  tCapturedPrint print;
  trace.configure("--filter verbosity=60");
  OXDIAG_TRACE(0xFFFFFFFF, put("hidden"));
  trace.configure("--filter verbosity>=100");
  EXPECT_EQ(print.text(), "");
}

TEST(TracingSamples, TheFirstAddressesOfAStatusAreInTheLibraryAndThenComesTheFunction) {
  tCapturedPrint print;
  tStatus2 status;
  probe(0, status);
  u64 addresses[tStatus2::kStackTraceLength];
  status.getStackTrace(addresses);
  u64 const begin = reinterpret_cast<u64>(&probe);
  constexpr u64 kMostSize = 4096;
  u32 frame = 0;
  while (frame < tStatus2::kStackTraceLength && addresses[frame] - begin >= kMostSize) ++frame;
  EXPECT_GT(frame, 0u);
  EXPECT_LT(frame, tStatus2::kStackTraceLength);
}
