#include "faults/tScenario.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "ntos/irql.h"
#include "ntos/thread.h"
#include "ntoshost/executive.h"
#include "oxdiagk/statusCodes.h"
#include "oxdiagk/tStatus2Heap.h"
#include "qelmk/statusCodes.h"
#include "vexk/statusCodes.h"

namespace {

struct tCode {
  i32 code;
  char const* name;
};

constexpr tCode kCodes[] = {
    {kStatusOutOfMemory, "kStatusOutOfMemory"},
    {nQELM100::kStatusClassMismatch, "kStatusClassMismatch"},
    {nQELM100::kStatusClassUnknown, "kStatusClassUnknown"},
    {nOXDIAG100::kStatusNoImplementation, "kStatusNoImplementation"},
    {nOXDIAG100::kStatusHeapFull, "kStatusHeapFull"},
};

bool contains(std::vector<std::string> const& list, std::string const& wanted) {
  return std::find(list.begin(), list.end(), wanted) != list.end();
}

u32 usedUnits() {
  i32 status = 0;
  nOXDIAG100::tStatus2Heap const* const heap = nOXDIAG100::tStatus2Heap::getHeap(status);
  return heap == nullptr ? 0 : heap->getUsedUnits();
}

// What must be as before when everything that a run has made is gone.
struct tOutside {
  u64 blocks = ntoshost::outstandingBlocks();
  u64 handles = ntoshost::outstandingHandles();
  u32 units = usedUnits();
  u64 devices = ntoshost::countDevices().devices;

  void expectTheSame() const {
    tOutside const now;
    EXPECT_EQ(now.blocks, blocks) << "blocks are left";
    EXPECT_EQ(now.handles, handles) << "handles are left";
    EXPECT_EQ(now.units, units) << "units of the status heap are left";
    EXPECT_EQ(now.devices, devices) << "devices are left";
    EXPECT_EQ(KeGetCurrentIrql(), PASSIVE_LEVEL);
    EXPECT_FALSE(KeAreApcsDisabled()) << "a lock is owned";
  }
};

// A row on its way through the failures.
class tRun {
 public:
  explicit tRun(tScenarioRow const& row) : row(row) {}

  void go() {
    findWanted();
    u64 n = 1;
    while (failsAt(n)) ++n;
    EXPECT_GT(n, 1u) << "nothing of it can fail";
    for (std::string const& answer : row.answers) {
      EXPECT_TRUE(seen.contains(answer)) << "never answers " << answer;
    }
  }

 private:
  void findWanted() {
    std::unique_ptr<tScenario> const scenario = row.prepare();
    std::string const said = scenario->run();
    EXPECT_TRUE(said.empty() || said == kDone) << "by itself it answers " << said;
    wanted = scenario->state();
  }

  // Returns whether a call failed.
  bool failsAt(u64 n) {
    SCOPED_TRACE("call " + std::to_string(n));
    tOutside const outside;
    bool const hasFailed = runOnce(n);
    outside.expectTheSame();
    return hasFailed;
  }

  bool runOnce(u64 n) {
    std::unique_ptr<tScenario> const scenario = row.prepare();
    std::string const before = scenario->state();
    ntoshost::failNth(n);
    std::string const said = scenario->run();
    ntoshost::clearFaults();
    bool const hasFailed = ntoshost::faultsInjected() != 0;
    judge(said, before, scenario->state(), hasFailed);
    if (hasFailed && row.isRepeated) repeat(*scenario);
    return hasFailed;
  }

  void judge(std::string const& said, std::string const& before, std::string const& after,
             bool hasFailed) {
    std::string const answer = !said.empty() ? said : after == wanted ? kDone : kNothing;
    if (!hasFailed) {
      EXPECT_EQ(answer, kDone);
    } else {
      seen.insert(answer);
      EXPECT_TRUE(contains(row.answers, answer)) << "answers " << answer;
    }
    if (contains(row.changing, answer)) return;
    EXPECT_EQ(after, answer == kDone ? wanted : before) << "behind the answer " << answer;
  }

  void repeat(tScenario& scenario) {
    std::string const said = scenario.run();
    EXPECT_TRUE(said.empty() || said == kDone) << "done again it answers " << said;
    EXPECT_EQ(scenario.state(), wanted) << "done again";
  }

  tScenarioRow const& row;
  std::string wanted;  // the state behind a success
  std::set<std::string> seen;
};

std::string textOf(char const* header) {
  for (char const* const folder :
       {"include", "platform/vexk/include", "platform/qelmk/include", "platform/stl/include"}) {
    std::ifstream file(std::filesystem::path(OXDIAG_SOURCE_DIR) / folder / header);
    std::string const text{std::istreambuf_iterator<char>(file), {}};
    if (!text.empty()) return text;
  }
  return "";
}

void expectDocumented(tScenarioRow const& row) {
  std::string const header = textOf(row.header);
  EXPECT_NE(header, "") << row.header;
  for (std::string const& answer : row.answers) {
    if (answer[0] != 'k') continue;  // kStatus..., kNoHandle
    std::string const code = answer.substr(0, answer.find(' '));
    EXPECT_NE(header.find(code), std::string::npos) << row.header << " does not say " << code;
  }
}

}  // namespace

std::ostream& operator<<(std::ostream& out, tScenarioRow const& row) {
  return out << row.name;
}

std::string nameOfRow(testing::TestParamInfo<tScenarioRow> const& info) {
  return info.param.name;
}

void runScenario(tScenarioRow const& row) {
  SCOPED_TRACE(row.name);
  tRun(row).go();
  expectDocumented(row);
}

std::string nameOfCode(i32 code) {
  for (tCode const& each : kCodes) {
    if (each.code == code) return each.name;
  }
  return code == 0 ? kDone : std::to_string(code);
}
