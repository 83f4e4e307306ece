// The time deltas of the demo's lines, which follow each other as a component's lines do.

#include "demoTest.h"

namespace {

constexpr int kRuns = 20;
constexpr size_t kMostDigits = 18;  // of a delta that is not below zero, for years to come

constexpr char kDeltasAlone[] =
    "--timedelta on --calibrate --compname off --linenumber off --filename off";

// The numbers behind the brackets that lines begin with.
std::vector<std::string> findDeltas(std::string const& output) {
  std::vector<std::string> deltas;
  for (size_t at = 0; at < output.size(); at = output.find('\n', at) + 1) {
    size_t const end = output.find_first_not_of("0123456789", at + 1);
    if (output[at] == '[') deltas.push_back(output.substr(at + 1, end - at - 1));
    if (output.find('\n', at) == std::string::npos) break;
  }
  return deltas;
}

class SlotbusDemoDeltas : public tDemoTest {};

}  // namespace

TEST_F(SlotbusDemoDeltas, WithEverythingShownNoneIsBelowZeroInTwentyRuns) {
  for (int count = 0; count < kRuns; ++count) {
    tRun const done = run({"--filter", "verbosity>=0", "--trace", kDeltasAlone});
    std::vector<std::string> const deltas = findDeltas(done.output);
    EXPECT_GT(deltas.size(), 20U);
    for (std::string const& delta : deltas) {
      EXPECT_FALSE(delta.empty());
      EXPECT_LE(delta.size(), kMostDigits) << delta;
    }
  }
}
