// The code in the document on options, as it stands there.

#include <gtest/gtest.h>

#include <string>

#include "documents/tDocument.h"
#include "options.samples"
#include "trace/capturedPrint.h"
#include "trace/startedModules.h"

namespace {

void traceProgress() {
  OXDIAG_TRACE(100, put("progress"));
}

}  // namespace

TEST(OptionCode, TheReportOfTheContractIsTheLineInTheDocument) {
  tCapturedPrint print;
  EXPECT_EQ(getPower(98), 980U);
  EXPECT_EQ(print.text(), "");
  EXPECT_EQ(getPower(99), 990U);
  EXPECT_NE(tDocument("docs/options.md").getText().find("\n    " + print.text()), std::string::npos)
      << print.text();
}

TEST(OptionCode, ANoisyFunctionIsQuietAndTheFilterIsRestored) {
  tCapturedPrint print;
  runQuietly(&traceProgress);
  EXPECT_EQ(print.text().find("progress"), std::string::npos);
  traceProgress();
  EXPECT_NE(print.text().find("progress"), std::string::npos);
}

TEST(OptionCode, TimesAreWatchedWithoutTheChecksOfWarnings) {
  tTrace& trace = tTrace::getInstance();
  tAssertConfiguration& contracts = tAssertConfiguration::getInstance();
  trace.pushConfiguration();
  contracts.pushConfiguration();
  watchTimes();
  EXPECT_EQ(trace.timeStampIsEnabled(), 1U);
  EXPECT_EQ(trace.timeDeltaIsEnabled(), 1U);
  EXPECT_EQ(trace.getMinPrefixWidth(), 70U);
  char warning[] = "warning";
  EXPECT_FALSE(contracts.checksAreEnabled(warning));
  contracts.popConfiguration();
  trace.popConfiguration();
}
