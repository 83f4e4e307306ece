// What oxdiagctl says of texts that the file of the trace did not take.

#include "ntos/driveFolder.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "slotbus/demoTest.h"
#include "trace/startedModules.h"
#include "trace/tRaisedIrql.h"
#include "vexkhost/requestServer.h"

namespace {

using nOXDIAG100::tTrace;

// This program serves itself.
class LostTexts : public tDemoTest {
 protected:
  void SetUp() override {
    tDemoTest::SetUp();
    ASSERT_TRUE(vexkhost::startRequestServer(pathOf("socket").c_str()));
    trace.configure("--destination file C:/one.out overwrite");
  }
  void TearDown() override {
    trace.configure("--destination vex");
    vexkhost::stopRequestServer();
    tDemoTest::TearDown();
  }

  void lose(u32 count) {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    for (u32 text = 0; text < count; ++text) trace.put("lost").endl();
  }

  std::string told(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {kControl, "--at", pathOf("socket")});
    tRun const run = runProgram(std::move(arguments));
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    return run.output;
  }

  tDriveFolder drive;
  tTrace& trace = tTrace::getInstance();
};

}  // namespace

TEST_F(LostTexts, AreToldBehindTheSettingsOfTheTrace) {
  std::string const before = told({"trace"});
  EXPECT_EQ(before.find("lost"), std::string::npos) << before;
  lose(12);
  EXPECT_EQ(told({"trace"}), before + "lost: 12 texts that could not be written into a file\n");
  lose(1);
  EXPECT_EQ(told({"trace"}), before + "lost: 13 texts that could not be written into a file\n");
}

TEST_F(LostTexts, AreNeitherInTheOptionTextNorAmongTheAssertions) {
  lose(1);
  EXPECT_EQ(told({"trace", "--raw"}).find("lost"), std::string::npos);
  EXPECT_EQ(told({"assert"}).find("lost"), std::string::npos);
}
