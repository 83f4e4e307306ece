// The check that the driver saves what the host program saves can fail: it is given files of the
// host program, one of them changed as a fault in the driver would change it.

#include "demoTest.h"

namespace {

char const* const kCheck = OXDIAG_SOURCE_DIR "/tests/kernel/checkStatuses.py";
constexpr size_t kLine = 8 + 3 * 4 + 4 + 24 + 101;
constexpr size_t kAddresses = kLine + 4;

class SlotbusSavedComparison : public tDemoTest {
 protected:
  void SetUp() override {
    tDemoTest::SetUp();
    saved = save("host");
  }

  std::string save(std::string const& name) const {
    run({kFaultyRack, "--save", pathOf(name)});
    return readFile(name);
  }

  int compareWith(std::string const& other) const {
    return runProgram({"python3", kCheck, pathOf("host"), write("kernel", other)}).exitCode;
  }

  std::string changed(size_t place) const {
    std::string other = saved;
    other[place] = static_cast<char>(other[place] ^ 0x10);
    return other;
  }

  std::string saved;
};

}  // namespace

TEST_F(SlotbusSavedComparison, AnotherRunPasses) {
  EXPECT_NE(save("second"), saved);
  EXPECT_EQ(compareWith(readFile("second")), 0);
}

TEST_F(SlotbusSavedComparison, OtherAddressesPass) {
  EXPECT_EQ(compareWith(changed(kAddresses)), 0);
  EXPECT_EQ(compareWith(changed(kAddresses + 39)), 0);
  EXPECT_EQ(compareWith(changed(saved.size() - 1)), 0);
}

TEST_F(SlotbusSavedComparison, AMissingAddressFails) {
  std::string other = saved;
  other.replace(kAddresses, 4, 4, '\0');
  EXPECT_EQ(compareWith(other), 1);
}

TEST_F(SlotbusSavedComparison, AnotherTimePassesAndAMissingOneFails) {
  std::string const timeClass = "nOXDIAG100::tSSTimeAbsoluteReportable";
  size_t const time = saved.find(timeClass) + timeClass.size();
  EXPECT_EQ(compareWith(changed(time + 8)), 0);
  EXPECT_EQ(compareWith(changed(time + 7)), 1);
  std::string other = saved;
  other.replace(time - 1, 1, "x");
  EXPECT_EQ(compareWith(other), 1);
}

TEST_F(SlotbusSavedComparison, AnyOtherByteFails) {
  for (size_t place :
       {size_t{4}, size_t{12}, kLine - 60, kLine, kAddresses + 40, saved.find("bus")}) {
    EXPECT_EQ(compareWith(changed(place)), 1) << place;
  }
}

TEST_F(SlotbusSavedComparison, FewerStatusesFail) {
  size_t const last = saved.rfind("QELM");
  EXPECT_EQ(compareWith(saved.substr(0, last)), 1);
  EXPECT_EQ(compareWith(saved.substr(0, saved.size() - 1)), 1);
  EXPECT_EQ(compareWith(""), 1);
}
