// How much of a kernel thread's stack the library takes from a driver that calls it, as this
// compiler builds it: measured on the stack that the driver's dispatch routine runs on.

#include <cstdio>
#include <string>

#include "ntos/driveFolder.h"
#include "ntos/testDriver.h"
#include "ntoshost/debugPrint.h"
#include "ntoshost/stack.h"
#include "oxdiagk/module.h"
#include "oxdiagk/tStatus2Description.h"
#include "oxdiagk/tTrace.h"
#include "qelmk/module.h"
#include "qelmk/qelmk.h"
#include "support/callerCodes.h"
#include "vexk/module.h"

#define OXDIAG_COMPONENT "stackDepth"
#define OXDIAG_COMPONENT_VERSION tSSVersion()

#include "oxdiagk/contractMacros.h"
#include "oxdiagk/statusMacros.h"
#include "oxdiagk/traceMacros.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tTrace;

namespace {

void swallow(void*, char const*, size_t) {
}

// A driver that works with the library in a dispatch routine.
class StackDepth : public DriverTest {
 protected:
  StackDepth() {
    vexkInitialize();
    qelmkInitialize();
    EXPECT_EQ(oxdiagkInitialize(nullptr), STATUS_SUCCESS);
    ntoshost::setDebugPrintSink(&swallow, nullptr);
  }
  ~StackDepth() override {
    ntoshost::setDebugPrintSink(nullptr, nullptr);
    oxdiagkUnload();
    qelmkUnload();
    vexkUnload();
  }

  void SetUp() override {
    if (!ntoshost::hasKernelStacks()) GTEST_SKIP() << "a sanitizer has the stacks";
  }

  // That half of the stack is enough for a dispatch routine that does this.
  template <class Work>
  void expectDepth(char const* what, Work work) {
    DEVICE_OBJECT* const device = makeDevice([&work](DEVICE_OBJECT*, IRP* request) {
      work();
      return complete(request, STATUS_SUCCESS);
    });
    ntoshost::forgetStackDepth();
    EXPECT_EQ(send(device), STATUS_SUCCESS);
    u64 const depth = ntoshost::deepestKernelStack();
    std::printf("%s: %llu bytes of stack\n", what, depth);
    EXPECT_GT(depth, 0u);
    EXPECT_LT(depth, ntoshost::kKernelStackSize / 2);
    IoDeleteDevice(device);
  }
};

// A stream of so many descriptions, each within the one before it.
std::string nestedStream(u32 depth) {
  std::string const name = "nOXDIAG100::tStatus2Description";
  std::string inner;
  for (u32 level = 0; level < depth; ++level) {
    std::string content("\1\0\0\0\1\0\0\0\1\0\0\0", inner.empty() ? 4 : 12);
    if (inner.empty()) content[0] = 0;
    content += inner;
    u16 const nameSize = static_cast<u16>(name.size());
    u32 const size = static_cast<u32>(content.size());
    inner = std::string(reinterpret_cast<char const*>(&nameSize), sizeof nameSize) + name +
            std::string(reinterpret_cast<char const*>(&size), sizeof size) + content;
  }
  return std::string("QELM\1\0\0\0", 8) + inner;
}

}  // namespace

TEST_F(StackDepth, OfALine) {
  tTrace& trace = tTrace::getInstance();
  trace.configure("--compver on --threadid on --timestamp on --timedelta on --verbosity on");
  std::string const text(3000, 'x');
  expectDepth("a line", [&] {
    trace.putf("%s %d %#x", text.c_str(), 5, 7).endl();
    OXDIAG_TRACE(100, put("text").put(5, 10).put(&text, 64, 4).put(text.c_str()));
  });
}

TEST_F(StackDepth, OfALineToAFile) {
  tDriveFolder const drive;
  tTrace& trace = tTrace::getInstance();
  trace.configure("--destination file C:/one.out overwrite --mutex on");
  expectDepth("a line to a file", [] { OXDIAG_TRACE(100, put("text").put(5, 10)); });
  trace.configure("--destination vex --mutex off");
  EXPECT_NE(drive.read("one.out").find("text5"), std::string::npos);
}

TEST_F(StackDepth, OfAContractThatDoesNotHold) {
  expectDepth("a contract", [] { OXDIAG_REQUIRE_IN("warning", 1 == 2, "too hot"); });
}

TEST_F(StackDepth, OfAStatus) {
  expectDepth("a status", [] {
    tStatus2 status;
    OXDIAG_SET_STATUS(status, kError);
    EXPECT_TRUE(status.hasDetail());
    tTrace::getInstance().put(status).endl();
  });
}

TEST_F(StackDepth, OfAConfiguration) {
  tDriveFolder const drive;
  expectDepth("a configuration", [] {
    tTrace& trace = tTrace::getInstance();
    trace.pushConfiguration();
    trace.configure("--filter \"verbosity>=50 && component!=rack\" --destination recorder 64");
    trace.configure("--destination file C:/one.out --mutex on");
    trace.popConfiguration();
  });
  EXPECT_NE(drive.read("one.out").find("Switching"), std::string::npos);
}

TEST_F(StackDepth, OfAStreamOfAnyDepth) {
  std::string const bytes = nestedStream(100);
  i32 status = 0;
  expectDepth("a stream", [&] {
    nQELM100::tBinaryObjectReader reader(bytes.data(), bytes.size(), status);
    EXPECT_EQ(reader.readObject(status), nullptr);
  });
  EXPECT_EQ(status, nQELM100::kStatusStreamTooDeep);
}
