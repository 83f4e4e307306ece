// What a driver finds set in the library, and gives back.

#include "slotbus/component/tFoundSettings.h"

#include "ntos/driveFolder.h"
#include "ntoshost/faults.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "slotbusSupport.h"

namespace {

using nOXDIAG100::tAssertConfiguration;
using nOXDIAG100::tConfigurable;
using nOXDIAG100::tTrace;
using nSLOTBUS100::tFoundSettings;

std::string settingsOf(tConfigurable& object) {
  char text[1024];
  object.inquire(text, sizeof(text), nullptr);
  return text;
}

// Without what each calibration measures anew.
std::string traceSettings() {
  std::string const text = settingsOf(tTrace::getInstance());
  return text.substr(0, text.find(" --calibrate"));
}

// Its settings are longer at each inquiry, as if others set more between two of them.
class tGrowing : public tConfigurable {
 public:
  u32 timesConfigured = 0;

  void configure() override {}
  void configure(int, char**) override { ++timesConfigured; }
  void inquire(char* buffer, unsigned int size, unsigned int* needed) override {
    text += text;
    if (size != 0) buffer[text.copy(buffer, size - 1)] = '\0';
    *needed = static_cast<unsigned int>(text.size() + 1);
  }
  void pushConfiguration() override {}
  void popConfiguration() override {}

 private:
  std::string text = "--on ";
};

class FoundSettings : public testing::Test {
 protected:
  void TearDown() override { tTrace::getInstance().popConfiguration(); }

  tTrace& trace = tTrace::getInstance();
  tDriveFolder drive;

 private:
  bool const isPushed = (tTrace::getInstance().pushConfiguration(), true);
};

}  // namespace

TEST_F(FoundSettings, OfTheTraceComeBack) {
  trace.configure(
      "--threadid on --filter \"verbosity>=140 && compname!=a\" --destination file C:/a");
  std::string const before = traceSettings();
  tFoundSettings found(trace);
  ASSERT_TRUE(found.keep());
  trace.configure("--off --threadid off --prefixwidth 70 --filter verbosity>=60 --mutex on");
  trace.configure("--destination file C:/b");
  EXPECT_NE(traceSettings(), before);
  found.giveBack();
  EXPECT_EQ(traceSettings(), before);
}

TEST_F(FoundSettings, OfTheAssertionsComeBack) {
  tAssertConfiguration& assertions = tAssertConfiguration::getInstance();
  std::string const before = settingsOf(assertions);
  tFoundSettings found(assertions);
  ASSERT_TRUE(found.keep());
  assertions.configure("--category default --break off --checks off");
  EXPECT_NE(settingsOf(assertions), before);
  found.giveBack();
  EXPECT_EQ(settingsOf(assertions), before);
}

TEST_F(FoundSettings, AreNotSetAnewWhenTheyAreThere) {
  trace.configure("--destination file C:/a overwrite");
  tFoundSettings found(trace);
  ASSERT_TRUE(found.keep());
  trace.put("kept").endl();
  trace.calibrate();
  found.giveBack();
  EXPECT_EQ(drive.read("a"), "kept\r\n");  // a switch would write a line about itself
}

TEST_F(FoundSettings, LeaveWhatOthersHavePushedAlone) {
  std::string const before = traceSettings();
  tFoundSettings found(trace);
  ASSERT_TRUE(found.keep());
  trace.configure("--threadid on");
  u32 const saved = trace.countSavedConfigurations();
  trace.pushConfiguration();
  found.giveBack();
  EXPECT_EQ(traceSettings(), before);
  EXPECT_EQ(trace.countSavedConfigurations(), saved + 1);
  trace.popConfiguration();
  EXPECT_EQ(trace.threadIdIsEnabled(), 1u);
}

TEST_F(FoundSettings, OfTwoDriversInReverseOrderComeBack) {
  std::string const before = traceSettings();
  tFoundSettings first(trace);
  ASSERT_TRUE(first.keep());
  trace.configure("--threadid on");
  std::string const between = traceSettings();
  tFoundSettings second(trace);
  ASSERT_TRUE(second.keep());
  trace.configure("--timestamp on --filter \"\"");
  second.giveBack();
  EXPECT_EQ(traceSettings(), between);
  first.giveBack();
  EXPECT_EQ(traceSettings(), before);
}

TEST_F(FoundSettings, ThatWereNotKeptAreNotGivenBack) {
  tFoundSettings found(trace);
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  EXPECT_FALSE(found.keep());
  ntoshost::clearFaults();
  trace.configure("--threadid on");
  found.giveBack();
  EXPECT_EQ(trace.threadIdIsEnabled(), 1u);
}

TEST_F(FoundSettings, ThatWereKeptInPartAreNotGivenBack) {
  tGrowing growing;
  tFoundSettings found(growing);
  ntoshost::failNth(ntoshost::kFaultMemory, 2);
  EXPECT_FALSE(found.keep());
  ntoshost::clearFaults();
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  found.giveBack();
  ntoshost::clearFaults();
  EXPECT_EQ(growing.timesConfigured, 0u);
}
