// The contracts of the component, as a caller meets them who does not keep to one.

#include <csignal>

#include "oxdiagk/tAssertConfiguration.h"
#include "slotbus/component/slotbus.h"
#include "slotbusSupport.h"
#include "trace/capturedPrint.h"

using namespace nSLOTBUS100;
using nOXDIAG100::tAssertConfiguration;
using nOXDIAG100::tTrace;

namespace {

// What the trace has after `action`, which must not break into the debugger.
template <class T>
std::string traceOf(T action) {
  tAssertConfiguration& contracts = tAssertConfiguration::getInstance();
  contracts.pushConfiguration();
  contracts.configure("--category default --break off");
  tCapturedPrint print;
  action();
  contracts.popConfiguration();
  return print.text();
}

bool endsWith(std::string const& text, std::string const& end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

void readTwice() {
  tRack rack;
  tRackReader reader(rack, tTrace::getInstance());
  reader.read(tTextSpan("1 | 1 | A | a\n", 14));
  reader.read(tTextSpan("2 | 2 | A | a\n", 14));
}

}  // namespace

TEST(SlotbusContracts, ADeviceThatIsNotThereIsReportedAtItsSource) {
  tRack const rack;
  std::string const traced = traceOf([&] { rack.getDevice(0); });
  EXPECT_EQ(traced.substr(0, 10), "[slotbus--");
  EXPECT_NE(traced.find("--tRack.cpp-"), std::string::npos) << traced;
  EXPECT_TRUE(endsWith(traced, "] ASSERTION FAILED: index < count\n")) << traced;
}

TEST(SlotbusContracts, ADeviceThatIsNotThereBreaksIntoTheDebugger) {
  tRack const rack;
  EXPECT_EXIT(rack.getDevice(0), testing::KilledBySignal(SIGTRAP), "ASSERTION FAILED: index");
}

TEST(SlotbusContracts, APieceBehindTheEndOfATextIsReported) {
  tTextSpan const text("abc", 3);
  EXPECT_EQ(traceOf([&] { static_cast<void>(text.getBehind(3)); }), "");
  EXPECT_TRUE(endsWith(traceOf([&] { static_cast<void>(text.getBehind(4)); }),
                       "] ASSERTION FAILED: count <= length\n"));
}

TEST(SlotbusContracts, AReaderThatReadsTwiceIsReported) {
  EXPECT_NE(traceOf(&readTwice).find("] ASSERTION FAILED: a reader reads once\n"),
            std::string::npos);
}

TEST(SlotbusContracts, ANullTextWithoutLengthIsAnEmptyRack) {
  std::string const traced = traceOf([] { readRackText(nullptr, 0, tTrace::getInstance()); });
  EXPECT_EQ(traced.find("ASSERTION"), std::string::npos) << traced;
  EXPECT_NE(traced.find("the rack is empty"), std::string::npos) << traced;
}

TEST(SlotbusContracts, WithItsSwitchOffAPreconditionIsNotLookedAt) {
  tRack const rack;
  EXPECT_EQ(traceOf([&] {
              tAssertConfiguration::getInstance().configure("--preconditions off");
              rack.getDevice(0);
            }),
            "");
}

TEST(SlotbusContracts, ARackOfGoodAndBadLinesKeepsToAllOfThem) {
  std::string rack;
  for (int line = 0; line < 300; ++line) {
    rack += std::to_string(line % 110) + " | " + std::to_string(line / 2) + " | A\\1 | d\n";
  }
  std::string const traced =
      traceOf([&] { readRackText(rack.data(), rack.size(), tTrace::getInstance()); });
  EXPECT_EQ(traced.find("ASSERTION"), std::string::npos);
  EXPECT_NE(traced.find("devices: "), std::string::npos);
}
