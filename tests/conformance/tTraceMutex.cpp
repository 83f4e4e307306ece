// The line mutex, as far as one thread sees it.

#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"
#include "support/recordingDestination.h"
#include "vexk/sync.h"

namespace {

using nOXDIAG100::tTrace;

constexpr char kMutexName[] = "nOXDIAG100::tTrace::_mutex";

void openLine(tTrace& trace) {
  trace.setMinPrefixWidth(0);
  trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine);
}

// Whether the calling thread owns the lock behind this handle: only an owner can release it.
bool isOwner(iSync& lock) {
  if (lock.release() < 0) return false;
  return lock.acquire(kSyncWaitForever) == 0;
}

class TraceMutex : public tRecordedStream {};

}  // namespace

TEST_F(TraceMutex, LineHoldsTheNamedLockFromItsPrefixToItsEnd) {
  trace.enableMutex();
  i32 status = 0;
  iSync* lock = syncOpen(kMutexName, tSyncDescriptor{}, status);
  ASSERT_TRUE(lock != nullptr);
  EXPECT_FALSE(isOwner(*lock));
  openLine(trace);
  EXPECT_TRUE(isOwner(*lock));
  trace.put("text");
  EXPECT_TRUE(isOwner(*lock));
  trace.endl();
  EXPECT_FALSE(isOwner(*lock));
  EXPECT_EQ(syncClose(lock), i32{0});
}

TEST_F(TraceMutex, SwitchingLeavesTheLockFree) {
  i32 status = 0;
  iSync* lock = syncOpen(kMutexName, tSyncDescriptor{}, status);
  ASSERT_TRUE(lock != nullptr);
  trace.enableMutex();
  EXPECT_FALSE(isOwner(*lock));
  trace.disableMutex();
  EXPECT_FALSE(isOwner(*lock));
  EXPECT_EQ(syncClose(lock), i32{0});
}

TEST_F(TraceMutex, LineIsNotLockedWhileTheSwitchIsOff) {
  trace.enableMutex();
  trace.disableMutex();
  i32 status = 0;
  iSync* lock = syncOpen(kMutexName, tSyncDescriptor{}, status);
  ASSERT_TRUE(lock != nullptr);
  openLine(trace);
  EXPECT_FALSE(isOwner(*lock));
  trace.endl();
  EXPECT_EQ(syncClose(lock), i32{0});
}

TEST_F(TraceMutex, RejectedLineHoldsTheLockToo) {
  trace.enableMutex();
  i32 status = 0;
  iSync* lock = syncOpen(kMutexName, tSyncDescriptor{}, status);
  ASSERT_TRUE(lock != nullptr);
  trace.putPrefix("test", tSSVersion(), 1, "file", 1, tTrace::kTraceLine);
  EXPECT_TRUE(isOwner(*lock));
  trace.endl();
  EXPECT_FALSE(isOwner(*lock));
  EXPECT_EQ(syncClose(lock), i32{0});
}

TEST_F(TraceMutex, LineOfADisabledStreamHoldsTheLockToo) {
  trace.enableMutex();
  trace.disable();
  i32 status = 0;
  iSync* lock = syncOpen(kMutexName, tSyncDescriptor{}, status);
  ASSERT_TRUE(lock != nullptr);
  openLine(trace);
  EXPECT_TRUE(isOwner(*lock));
  trace.endl();
  EXPECT_FALSE(isOwner(*lock));
  EXPECT_EQ(syncClose(lock), i32{0});
}

TEST_F(TraceMutex, EndWithoutPrefixReleasesNothing) {
  trace.enableMutex();
  trace.put("no prefix").endl();
  trace.endl();
  EXPECT_STREQ(recorder.text(), "no prefix\n\n");
  openLine(trace);
  trace.endl();
  trace.disableMutex();
  EXPECT_EQ(trace.mutexIsEnabled(), u32{0});
}

TEST_F(TraceMutex, LineOpenedBeforeSwitchingOnEndsWithoutALock) {
  openLine(trace);
  trace.enableMutex();
  trace.put("line").endl();
  EXPECT_STREQ(recorder.text(), "line\n");
  EXPECT_EQ(trace.mutexIsEnabled(), u32{1});
}

TEST_F(TraceMutex, LineOpenedBeforeSwitchingOffGivesTheLockBack) {
  trace.enableMutex();
  i32 status = 0;
  iSync* lock = syncOpen(kMutexName, tSyncDescriptor{}, status);
  ASSERT_TRUE(lock != nullptr);
  openLine(trace);
  trace.disableMutex();
  EXPECT_TRUE(isOwner(*lock));
  trace.endl();
  EXPECT_FALSE(isOwner(*lock));
  EXPECT_EQ(syncClose(lock), i32{0});
}

TEST_F(TraceMutex, LinesOpenedWithinALineAreReleasedOneByOne) {
  trace.enableMutex();
  i32 status = 0;
  iSync* lock = syncOpen(kMutexName, tSyncDescriptor{}, status);
  ASSERT_TRUE(lock != nullptr);
  openLine(trace);
  openLine(trace);
  trace.endl();
  EXPECT_TRUE(isOwner(*lock));
  trace.endl();
  EXPECT_FALSE(isOwner(*lock));
  EXPECT_EQ(syncClose(lock), i32{0});
}

TEST(TraceMutexAtTheEnd, StreamDestroyedWithinALineGivesTheLockBack) {
  tRecordingDestination recorder;
  i32 status = 0;
  iSync* lock = syncOpen(kMutexName, tSyncDescriptor{}, status);
  ASSERT_TRUE(lock != nullptr);
  {
    tPrivateTrace trace(recorder);
    trace.enableMutex();
    openLine(trace);
    EXPECT_TRUE(isOwner(*lock));
  }
  EXPECT_FALSE(isOwner(*lock));
  EXPECT_EQ(syncClose(lock), i32{0});
}

TEST_F(TraceMutex, KernelTokenOpensALockOfItsOwn) {
  trace.configure("--mutex-kernel-token 7:0");
  trace.enableMutex();
  tSyncDescriptor descriptor;
  descriptor.kind = kSyncKindTokenMutex;
  descriptor.token[0] = 7;
  i32 status = 0;
  iSync* withToken = syncOpen(kMutexName, descriptor, status);
  iSync* withoutToken = syncOpen(kMutexName, tSyncDescriptor{}, status);
  EXPECT_TRUE(withToken != nullptr && withoutToken != nullptr);
  if (withToken == nullptr || withoutToken == nullptr) {
    syncClose(withToken);
    syncClose(withoutToken);
    return;
  }
  openLine(trace);
  EXPECT_TRUE(isOwner(*withToken));
  EXPECT_FALSE(isOwner(*withoutToken));
  trace.endl();
  EXPECT_EQ(syncClose(withToken), i32{0});
  EXPECT_EQ(syncClose(withoutToken), i32{0});
}

TEST_F(TraceMutex, TokenSetAfterTheLockWasOpenedHasNoEffect) {
  trace.enableMutex();
  trace.disableMutex();
  trace.configure("--mutex on --mutex-kernel-token 7:0");
  i32 status = 0;
  iSync* withoutToken = syncOpen(kMutexName, tSyncDescriptor{}, status);
  ASSERT_TRUE(withoutToken != nullptr);
  openLine(trace);
  EXPECT_TRUE(isOwner(*withoutToken));
  trace.endl();
  EXPECT_EQ(syncClose(withoutToken), i32{0});
}

TEST_F(TraceMutex, TokenAndSwitchInOneListOpenTheLockWithTheToken) {
  trace.configure("--mutex on --mutex-kernel-token 9:0");
  tSyncDescriptor descriptor;
  descriptor.kind = kSyncKindTokenMutex;
  descriptor.token[0] = 9;
  i32 status = 0;
  iSync* withToken = syncOpen(kMutexName, descriptor, status);
  ASSERT_TRUE(withToken != nullptr);
  openLine(trace);
  EXPECT_TRUE(isOwner(*withToken));
  trace.endl();
  EXPECT_EQ(syncClose(withToken), i32{0});
}
