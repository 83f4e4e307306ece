// File calls that return some time after their work is done.

#include <atomic>
#include <chrono>
#include <thread>

#include "ntoshost/thread.h"
#include "openedFile.h"

namespace {

using namespace std::chrono;

constexpr u32 kDelay = 40;  // milliseconds

class LateFileCalls : public testing::Test {
 protected:
  LateFileCalls() { ntoshost::delayFileCalls(kDelay); }
  ~LateFileCalls() override { ntoshost::delayFileCalls(0); }

  NTSTATUS write(char const* text) {
    return ZwWriteFile(file.handle, nullptr, nullptr, nullptr, &file.result, text,
                       static_cast<u32>(__builtin_strlen(text)), nullptr, nullptr);
  }

  tDriveFolder drive;
  tOpenedFile file{kFileName};
};

template <class Work>
milliseconds timeOf(Work work) {
  auto const start = steady_clock::now();
  work();
  return duration_cast<milliseconds>(steady_clock::now() - start);
}

}  // namespace

TEST_F(LateFileCalls, ReturnLaterWithWhatTheyDid) {
  EXPECT_GE(timeOf([&] { EXPECT_EQ(write("late"), STATUS_SUCCESS); }), milliseconds(kDelay));
  EXPECT_EQ(file.result.Information, 4u);
  EXPECT_EQ(drive.read("one"), "late");
  ntoshost::delayFileCalls(0);
  EXPECT_EQ(write("r"), STATUS_SUCCESS);
}

TEST_F(LateFileCalls, AreDoneBeforeTheyReturn) {
  ntoshost::delayFileCalls(500);
  std::atomic<bool> isBack = false;
  std::thread writer([&] {
    write("done");
    isBack = true;
  });
  while (drive.read("one") != "done") std::this_thread::yield();
  EXPECT_FALSE(isBack);
  writer.join();
}

TEST_F(LateFileCalls, AThreadIsSuspendedWithinOne) {
  std::thread writer([&] {
    ntoshost::suspendAtCall(2);  // the wait within the first
    write("done");
  });
  EXPECT_TRUE(ntoshost::awaitSuspended(20'000));
  EXPECT_EQ(drive.read("one"), "done");
  ntoshost::resumeThreads();
  writer.join();
}
