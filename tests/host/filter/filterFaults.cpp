// The filter when memory is exhausted: the lost term is missing, the flag tells, the rest is in
// place, and nothing leaks.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>

#include "ntoshost/executive.h"
#include "oxdiagk/tTraceFilter.h"
#include "writtenFilter.h"

namespace {

using nOXDIAG100::tTraceFilter;

class FilterFaults : public testing::Test {
 protected:
  void SetUp() override { blocksBefore = ntoshost::outstandingBlocks(); }

  void TearDown() override {
    ntoshost::clearFaults();
    EXPECT_EQ(ntoshost::outstandingBlocks(), blocksBefore);
    ntoshost::verifyPool();
  }

 private:
  u64 blocksBefore = 0;
};

constexpr char kFourTerms[] = "comp==a && line>2 || thread==0x1A && verb<9";

}  // namespace

TEST_F(FilterFaults, CreateGivesNullWithoutMemoryForTheFilter) {
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  EXPECT_EQ(tTraceFilter::create(), nullptr);
}

TEST_F(FilterFaults, CreateGivesAnEmptyFilterWithoutMemoryForTheDefaultTerm) {
  ntoshost::failNth(ntoshost::kFaultMemory, 2);
  tTraceFilter* const filter = tTraceFilter::create();
  ASSERT_NE(filter, nullptr);
  EXPECT_TRUE(filter->isEmpty());
  EXPECT_TRUE(filter->hasFailed());
  for (u32 const verbosity : {0u, 5u, ~0u}) {
    EXPECT_TRUE(filter->evaluate("", "", 0, "", 0, verbosity)) << verbosity;
  }
  delete filter;
}

TEST_F(FilterFaults, ALostTermLeavesTheOthersInPlace) {
  char const* const wanted[] = {
      " --filter \"linenumber>2 || threadid==0x1A && verbosity<9\"",
      " --filter \"compname==a || threadid==0x1A && verbosity<9\"",
      " --filter \"compname==a && linenumber>2 && verbosity<9\"",
      " --filter \"compname==a && linenumber>2 || threadid==0x1A\"",
      " --filter \"compname==a && linenumber>2 || threadid==0x1A && verbosity<9\""};
  u64 runs = 0;
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64 n) {
    ntoshost::watchCalls(0);
    tTraceFilter filter;
    ntoshost::failNth(ntoshost::kFaultMemory, n);
    filter.parseExpression(kFourTerms);
    ASSERT_LE(n, 5u);
    EXPECT_EQ(writtenFilter(filter), wanted[n - 1]);
    EXPECT_EQ(filter.hasFailed(), n <= 4);
    ++runs;
  });
  EXPECT_EQ(failures, 4u);  // one block a term
  EXPECT_EQ(runs, 5u);
}

TEST_F(FilterFaults, WithoutAnyMemoryTheFilterIsEmpty) {
  tTraceFilter filter;
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  filter.parseExpression(kFourTerms);
  EXPECT_TRUE(filter.isEmpty());
  EXPECT_TRUE(filter.hasFailed());
  EXPECT_FALSE(filter.usesField(tTraceFilter::kComponentName));
  EXPECT_TRUE(filter.evaluate("", "", 0, "", 0, 0));
}

TEST_F(FilterFaults, AnExtensionThatIsLostLeavesTheFilterAsItWas) {
  tTraceFilter filter;
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  filter.parseExpression("&& comp==a");
  EXPECT_EQ(writtenFilter(filter), " --filter \"verbosity>=100\"");
  EXPECT_TRUE(filter.hasFailed());
}

TEST_F(FilterFaults, AnAddedTermThatIsLostLeavesTheFilterAsItWas) {
  for (i32 field = 0; field < tTraceFilter::kFieldCount; ++field) {
    tTraceFilter filter;
    ntoshost::failNth(ntoshost::kFaultMemory, 1);
    filter.addTerm("==1", tTraceFilter::kAnd, field);
    EXPECT_EQ(ntoshost::faultsInjected(), 1u);
    EXPECT_EQ(writtenFilter(filter), " --filter \"verbosity>=100\"");
    EXPECT_TRUE(filter.hasFailed());
  }
}

TEST_F(FilterFaults, TheFlagStaysWhenLaterTermsAreAdded) {
  tTraceFilter filter;
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  filter.addTerm("==1", tTraceFilter::kAnd, tTraceFilter::kLineNumber);
  ntoshost::clearFaults();
  filter.parseExpression(kFourTerms);
  EXPECT_EQ(writtenExpression(filter),
            "compname==a && linenumber>2 || threadid==0x1A && verbosity<9");
  filter.removeAll();
  EXPECT_TRUE(filter.hasFailed());
}

TEST_F(FilterFaults, AFailedFilterIsStillUsable) {
  tTraceFilter filter;
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  filter.parseExpression("comp==a && line>2");
  filter.removeField(tTraceFilter::kComponentName);
  filter.removeAll();
  ntoshost::clearFaults();
  filter.parseExpression("|| line>2");
  EXPECT_EQ(writtenFilter(filter), " --filter \"linenumber>2\"");
  EXPECT_FALSE(filter.evaluate("", "", 2, "", 0, 0));
}

TEST_F(FilterFaults, ADroppedTermAllocatesNothing) {
  tTraceFilter filter;
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  filter.parseExpression("&& colour==1");
  filter.addTerm("==1", tTraceFilter::kAnd, tTraceFilter::kNoField);
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
  EXPECT_FALSE(filter.hasFailed());
}

TEST_F(FilterFaults, EvaluatingAndWritingAllocateNothing) {
  tTraceFilter filter;
  filter.parseExpression(kFourTerms);
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  char buffer[200];
  filter.write(buffer, sizeof(buffer), nullptr);
  filter.evaluate("a", "1.0.0f7", 3, "file", 26, 100);
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
}

TEST_F(FilterFaults, ARemovedTermIsReleasedAtOnce) {
  tTraceFilter filter;
  filter.removeAll();
  u64 const empty = ntoshost::outstandingBlocks();
  filter.parseExpression(kFourTerms);
  EXPECT_EQ(ntoshost::outstandingBlocks(), empty + 4);
  filter.removeField(tTraceFilter::kThreadId);
  EXPECT_EQ(ntoshost::outstandingBlocks(), empty + 3);
  filter.removeAll();
  EXPECT_EQ(ntoshost::outstandingBlocks(), empty);
}

namespace {

// A component's name that calls `work` when it is read first, within an evaluation.
class tNameThatIsRead {
 public:
  explicit tNameThatIsRead(void (*work)()) {
    atRead = work;
    page = mmap(nullptr, kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    struct sigaction action = {};
    action.sa_handler = [](int) {
      mprotect(page, kPage, PROT_READ);
      atRead();
    };
    sigaction(SIGSEGV, &action, &former);
  }
  ~tNameThatIsRead() {
    sigaction(SIGSEGV, &former, nullptr);
    munmap(page, kPage);
  }
  tNameThatIsRead(tNameThatIsRead const&) = delete;
  tNameThatIsRead& operator=(tNameThatIsRead const&) = delete;

  char const* text() const { return static_cast<char const*>(page); }

 private:
  static constexpr size_t kPage = 4096;
  static inline void* page = nullptr;
  static inline void (*atRead)() = nullptr;
  struct sigaction former = {};
};

tTraceFilter* evaluated = nullptr;
u64 blocksWithin = 0;

}  // namespace

TEST_F(FilterFaults, ATermThatIsRemovedWithinAnEvaluationIsReleasedAtTheNextChange) {
  tTraceFilter filter;
  filter.parseExpression("comp!=a && comp!=b");
  evaluated = &filter;
  u64 const before = ntoshost::outstandingBlocks();
  tNameThatIsRead const name([] {
    evaluated->removeAll();
    evaluated->addTerm(">=1", tTraceFilter::kFirst, tTraceFilter::kVerbosity);
    blocksWithin = ntoshost::outstandingBlocks();
  });
  EXPECT_TRUE(filter.evaluate(name.text(), "", 0, "", 0, 0));
  EXPECT_EQ(blocksWithin, before + 1);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before + 1);
  filter.addTerm("<500", tTraceFilter::kAnd, tTraceFilter::kVerbosity);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
  EXPECT_EQ(writtenExpression(filter), "verbosity>=1 && verbosity<500");
}

TEST_F(FilterFaults, TermsLieInMemoryThatAnyIrqlMayRead) {
  tTraceFilter filter;
  filter.parseExpression(kFourTerms);
  ntoshost::visitOutstanding(
      [](void*, ntoshost::PoolBlock const& block) { EXPECT_NE(block.type, PagedPool); }, nullptr);
}
