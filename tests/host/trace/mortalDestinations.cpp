// Destinations that are destroyed while a switch is about them.

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "capturedPrint.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "startedModules.h"
#include "support/recordingDestination.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tVEXTraceDestination;

// Does something while it is opened or closed, and leaves its streams at its end.
class tMortalDestination : public tRecordingDestination {
 public:
  explicit tMortalDestination(u32 slot) : tRecordingDestination(slot) {}
  ~tMortalDestination() override { leaveStream(); }

  u32 open() override {
    if (atOpen) atOpen();
    return opens ? 1 : 0;
  }
  void close() override {
    if (atClose) atClose();
  }

  using tRecordingDestination::leaveStream;

  std::function<void()> atOpen;
  std::function<void()> atClose;
  bool opens = true;
};

class MortalDestinations : public testing::Test {
 protected:
  MortalDestinations() { trace.setDestination(*former); }

  // As setDestination says; what the closing of the last destination does is over then.
  iTraceDestination* switchToNext() { return trace.setDestination(*next); }

  static iTraceDestination* debugger() { return &tVEXTraceDestination::getInstance(); }

  tCapturedPrint print;
  tRecordingDestination first{0};
  std::unique_ptr<tMortalDestination> former = std::make_unique<tMortalDestination>(1);
  std::unique_ptr<tMortalDestination> next = std::make_unique<tMortalDestination>(2);
  tPrivateTrace trace{first};
};

}  // namespace

TEST_F(MortalDestinations, AFormerOneThatEndsWhileTheNextOpensIsNotGivenBack) {
  next->atOpen = [&] { former.reset(); };
  EXPECT_EQ(switchToNext(), debugger());
  EXPECT_EQ(trace.getDestination(), next.get());
}

TEST_F(MortalDestinations, AFormerOneThatHasEndedIsNotGoneBackTo) {
  next->atOpen = [&] { former.reset(); };
  next->opens = false;
  EXPECT_EQ(switchToNext(), debugger());
  EXPECT_EQ(trace.getDestination(), debugger());
  EXPECT_NE(print.text().find("previous destination couldn't be restored"), std::string::npos);
}

TEST_F(MortalDestinations, ANextOneThatEndsWhileTheFormerClosesIsNotSwitchedTo) {
  former->atClose = [&] { next.reset(); };
  EXPECT_EQ(switchToNext(), former.get());
  EXPECT_EQ(trace.getDestination(), former.get());
  EXPECT_NE(std::string(former->text()).find("remains unchanged"), std::string::npos);
}

TEST_F(MortalDestinations, ANextOneThatLeavesItsStreamsWhileItOpensIsNotSwitchedTo) {
  next->atOpen = [&] { next->leaveStream(); };
  EXPECT_EQ(switchToNext(), former.get());
  EXPECT_EQ(trace.getDestination(), former.get());
}

// The switch within has the last word; the one around it is about the one that ends as well.
TEST_F(MortalDestinations, ASwitchWithinASwitchIsForgottenByBoth) {
  tMortalDestination other(3);
  other.atOpen = [&] { former.reset(); };
  next->atOpen = [&] { trace.setDestination(other); };
  EXPECT_EQ(switchToNext(), debugger());
  EXPECT_EQ(trace.getDestination(), &other);
}
