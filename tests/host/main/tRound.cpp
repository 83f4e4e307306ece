#include "tRound.h"

#include <gtest/gtest.h>

#include "ntoshost/faults.h"
#include "tModules.h"
#include "tWorkers.h"

namespace {

class tSurroundings : public testing::EmptyTestEventListener {
 public:
  explicit tSurroundings(tRoundPlan const& wanted) : plan(wanted) {}

  void OnTestStart(testing::TestInfo const& test) override {
    result = {std::string(test.test_suite_name()) + "." + test.name(), false, 0, ""};
    hasStarted = modules.start();
    KIRQL former;
    KeRaiseIrql(plan.level, &former);
    plan.arm(result.test);
  }

  void OnTestEnd(testing::TestInfo const& test) override {
    ntoshost::clearFaults();
    if (KeGetCurrentIrql() == plan.level) KeLowerIrql(PASSIVE_LEVEL);
    result.hasPassed = test.result()->Passed();
    result.injected = ntoshost::faultsInjected();
    result.wrong = modules.stop();
    if (!hasStarted) result.wrong += "  the modules did not start\n";
    plan.judge(result);
  }

 private:
  tRoundPlan const& plan;
  tModules modules;
  bool hasStarted = false;
  tRoundResult result = {};
};

template <class Visit>
void visitSuites(Visit visit) {
  testing::UnitTest const& all = *testing::UnitTest::GetInstance();
  for (int i = 0; i < all.total_test_suite_count(); ++i) visit(*all.GetTestSuite(i));
}

}  // namespace

std::vector<std::string> listTests() {
  std::vector<std::string> names;
  visitSuites([&](testing::TestSuite const& suite) {
    for (int i = 0; i < suite.total_test_count(); ++i) {
      names.push_back(std::string(suite.name()) + "." + suite.GetTestInfo(i)->name());
    }
  });
  return names;
}

std::vector<std::string> listSuites() {
  std::vector<std::string> names;
  visitSuites(
      [&](testing::TestSuite const& suite) { names.push_back(std::string(suite.name()) + ".*"); });
  return names;
}

void runRounds(std::string const& filter, int times, tRoundPlan const& plan) {
  testing::TestEventListeners& listeners = testing::UnitTest::GetInstance()->listeners();
  delete listeners.Release(listeners.default_result_printer());
  tSurroundings surroundings(plan);
  listeners.Append(&surroundings);
  GTEST_FLAG_SET(filter, filter);
  GTEST_FLAG_SET(repeat, times);
  // It tells whether a test failed, which the plan was told of each.
  [[maybe_unused]] int const end = testing::UnitTest::GetInstance()->Run();
  listeners.Release(&surroundings);
}

void runEach(std::vector<std::string> const& filters, tRoundPlan const& plan,
             std::function<void(std::string const& filter, std::string const& why)> const& died) {
  tWorkers::run(
      filters.size(),
      [&](u64 i) {
        runRounds(filters[i], 1, plan);
        return true;
      },
      [&](u64 i, std::string const& why) {
        died(filters[i], why);
        return false;
      });
}
