#include "conformance/harness.h"
#include "ntos/status.h"
#include "vexk/module.h"
#include "vexk/statusCodes.h"
#include "vexk/sync.h"

namespace {

constexpr char kName[] = "vexkSync::tests::_first";
constexpr char kOtherName[] = "vexkSync::tests::_second";

constexpr tSyncDescriptor withToken(u32 low, u32 high) {
  tSyncDescriptor descriptor;
  descriptor.kind = kSyncKindTokenMutex;
  descriptor.token[0] = low;
  descriptor.token[1] = high;
  return descriptor;
}

// A handle for the length of a test.
class tOpened {
 public:
  explicit tOpened(char const* name, tSyncDescriptor const& descriptor = tSyncDescriptor{})
      : sync(syncOpen(name, descriptor, status)) {}
  ~tOpened() { syncClose(sync); }
  tOpened(tOpened const&) = delete;
  tOpened& operator=(tOpened const&) = delete;

  iSync* operator->() const { return sync; }
  bool isOpen() const { return sync != nullptr && status == 0; }

  i32 status = 0;
  iSync* sync;
};

// Two handles stand for one lock when what is acquired through the one is released through the
// other.
bool isSameLock(tOpened const& one, tOpened const& other) {
  if (one->acquire(kSyncWaitForever) != 0) return false;
  bool const same = other->release() == 0;
  if (!same) one->release();
  return same;
}

i32 openStatus(char const* name, tSyncDescriptor const& descriptor) {
  i32 status = 0;
  iSync* sync = syncOpen(name, descriptor, status);
  bool const agrees = (sync == nullptr) == (status < 0);
  syncClose(sync);
  return agrees ? status : i32{1};
}

void fillName(char* name, u32 length) {
  for (u32 i = 0; i < length; ++i) name[i] = static_cast<char>('a' + i % 26);
  name[length] = '\0';
}

}  // namespace

TEST(VexkSync, APrivateLockOpensAcquiresReleasesAndCloses) {
  i32 status = 0;
  iSync* sync = syncOpen(nullptr, tSyncDescriptor{}, status);
  ASSERT_TRUE(sync != nullptr);
  EXPECT_EQ(i32{0}, status);
  EXPECT_EQ(i32{0}, sync->acquire(kSyncWaitForever));
  EXPECT_EQ(i32{0}, sync->release());
  EXPECT_EQ(i32{0}, syncClose(sync));
  EXPECT_TRUE(sync == nullptr);
}

TEST(VexkSync, AcquiresAgainInTheSameThread) {
  tOpened const lock(nullptr);
  ASSERT_TRUE(lock.isOpen());
  EXPECT_EQ(i32{0}, lock->acquire(0));
  EXPECT_EQ(i32{0}, lock->acquire(0));
  EXPECT_EQ(i32{0}, lock->acquire(kSyncWaitForever));
  EXPECT_EQ(i32{0}, lock->release());
  EXPECT_EQ(i32{0}, lock->release());
  EXPECT_EQ(i32{0}, lock->release());
  EXPECT_EQ(kStatusSyncNotOwner, lock->release());
}

TEST(VexkSync, AReleaseWithoutAcquireIsRefused) {
  tOpened const lock(nullptr);
  ASSERT_TRUE(lock.isOpen());
  EXPECT_EQ(kStatusSyncNotOwner, lock->release());
  EXPECT_EQ(i32{0}, lock->acquire(0));
  EXPECT_EQ(i32{0}, lock->release());
}

TEST(VexkSync, CanBeAcquiredAsOftenAsTheDepthAllows) {
  tOpened const lock(nullptr);
  ASSERT_TRUE(lock.isOpen());
  u32 acquired = 0;
  while (acquired < kSyncMaximumDepth && lock->acquire(0) == 0) ++acquired;
  EXPECT_EQ(kSyncMaximumDepth, acquired);
  EXPECT_EQ(kStatusSyncTooDeep, lock->acquire(0));
  u32 released = 0;
  while (released < kSyncMaximumDepth && lock->release() == 0) ++released;
  EXPECT_EQ(kSyncMaximumDepth, released);
  EXPECT_EQ(kStatusSyncNotOwner, lock->release());
}

TEST(VexkSync, PrivateLocksAreApart) {
  tOpened const one(nullptr);
  tOpened const other(nullptr);
  ASSERT_TRUE(one.isOpen() && other.isOpen());
  EXPECT_FALSE(isSameLock(one, other));
}

TEST(VexkSync, TheSameNameIsTheSameLock) {
  tOpened const one(kName);
  tOpened const other(kName);
  ASSERT_TRUE(one.isOpen() && other.isOpen());
  EXPECT_TRUE(one.sync != other.sync);
  EXPECT_TRUE(isSameLock(one, other));
  EXPECT_TRUE(isSameLock(other, one));
}

TEST(VexkSync, TheSameNameInAnotherBufferIsTheSameLock) {
  char copy[sizeof kName];
  __builtin_memcpy(copy, kName, sizeof kName);
  tOpened const one(copy);
  copy[0] = '?';
  tOpened const other(kName);
  ASSERT_TRUE(one.isOpen() && other.isOpen());
  EXPECT_TRUE(isSameLock(one, other));
}

TEST(VexkSync, DifferentNamesAreDifferentLocks) {
  tOpened const one(kName);
  tOpened const other(kOtherName);
  tOpened const prefix("vexkSync::tests::_fir");
  tOpened const upperCase("VEXKSYNC::TESTS::_FIRST");
  ASSERT_TRUE(one.isOpen() && other.isOpen() && prefix.isOpen() && upperCase.isOpen());
  EXPECT_FALSE(isSameLock(one, other));
  EXPECT_FALSE(isSameLock(one, prefix));
  EXPECT_FALSE(isSameLock(prefix, one));
  EXPECT_FALSE(isSameLock(one, upperCase));
}

TEST(VexkSync, ALockWithoutNameIsNotFoundByAnyName) {
  tOpened const unnamed(nullptr);
  tOpened const named(kName);
  ASSERT_TRUE(unnamed.isOpen() && named.isOpen());
  EXPECT_FALSE(isSameLock(unnamed, named));
}

TEST(VexkSync, TheSameNameAndTokenIsTheSameLock) {
  tOpened const one(kName, withToken(1, 2));
  tOpened const other(kName, withToken(1, 2));
  ASSERT_TRUE(one.isOpen() && other.isOpen());
  EXPECT_TRUE(isSameLock(one, other));
}

TEST(VexkSync, EitherHalfOfTheTokenMakesADifferentLock) {
  tOpened const one(kName, withToken(1, 2));
  tOpened const otherLow(kName, withToken(3, 2));
  tOpened const otherHigh(kName, withToken(1, 3));
  tOpened const otherName(kOtherName, withToken(1, 2));
  ASSERT_TRUE(one.isOpen() && otherLow.isOpen() && otherHigh.isOpen() && otherName.isOpen());
  EXPECT_FALSE(isSameLock(one, otherLow));
  EXPECT_FALSE(isSameLock(one, otherHigh));
  EXPECT_FALSE(isSameLock(one, otherName));
}

TEST(VexkSync, TheKindsDoNotMeet) {
  tOpened const plain(kName);
  tOpened const withZeroToken(kName, withToken(0, 0));
  ASSERT_TRUE(plain.isOpen() && withZeroToken.isOpen());
  EXPECT_FALSE(isSameLock(plain, withZeroToken));
}

TEST(VexkSync, KindOneIgnoresTheToken) {
  tSyncDescriptor descriptor = withToken(1, 2);
  descriptor.kind = kSyncKindMutex;
  tOpened const one(kName, descriptor);
  tOpened const other(kName);
  ASSERT_TRUE(one.isOpen() && other.isOpen());
  EXPECT_TRUE(isSameLock(one, other));
}

TEST(VexkSync, ANameIsFreeAgainAfterTheLastClose) {
  for (u32 i = 0; i < 3; ++i) {
    tOpened const lock(kName);
    ASSERT_TRUE(lock.isOpen());
    EXPECT_EQ(i32{0}, lock->acquire(0));
    EXPECT_EQ(i32{0}, lock->release());
  }
}

TEST(VexkSync, ALockLivesUntilItsLastHandleIsClosed) {
  i32 status = 0;
  iSync* first = syncOpen(kName, tSyncDescriptor{}, status);
  tOpened const second(kName);
  EXPECT_EQ(i32{0}, syncClose(first));
  tOpened const third(kName);
  ASSERT_TRUE(second.isOpen() && third.isOpen());
  EXPECT_TRUE(isSameLock(second, third));
}

TEST(VexkSync, UnknownKindsAreRefused) {
  u32 const kinds[] = {0, 2, 4, 5, 0xFFFFFFFF};
  for (u32 kind : kinds) {
    tSyncDescriptor descriptor;
    descriptor.kind = kind;
    EXPECT_EQ(kStatusBadArgument, openStatus(kName, descriptor));
    EXPECT_EQ(kStatusBadArgument, openStatus(nullptr, descriptor));
  }
}

TEST(VexkSync, FlagsAreNoneOrLongLived) {
  tSyncDescriptor descriptor;
  descriptor.flags = 0;
  EXPECT_EQ(i32{0}, openStatus(nullptr, descriptor));
  descriptor.flags = kSyncFlagLongLived;
  EXPECT_EQ(i32{0}, openStatus(nullptr, descriptor));
  u32 const refused[] = {1, 2, 5, 8, 0xFFFFFFFF};
  for (u32 flags : refused) {
    descriptor.flags = flags;
    EXPECT_EQ(kStatusBadArgument, openStatus(nullptr, descriptor));
  }
}

TEST(VexkSync, AccessNeedsTheRightToSynchronize) {
  tSyncDescriptor descriptor;
  descriptor.access = 0;
  EXPECT_EQ(kStatusBadArgument, openStatus(nullptr, descriptor));
  descriptor.access = 0xFFFFFFFF & ~kSyncAccessSynchronize;
  EXPECT_EQ(kStatusBadArgument, openStatus(nullptr, descriptor));
  descriptor.access = 0xFFFFFFFF;
  EXPECT_EQ(i32{0}, openStatus(nullptr, descriptor));
}

TEST(VexkSync, NamesHaveOneToTheMaximumOfCharacters) {
  char name[kSyncMaximumNameLength + 2];
  EXPECT_EQ(kStatusBadArgument, openStatus("", tSyncDescriptor{}));
  fillName(name, 1);
  EXPECT_EQ(i32{0}, openStatus(name, tSyncDescriptor{}));
  fillName(name, kSyncMaximumNameLength - 1);
  EXPECT_EQ(i32{0}, openStatus(name, tSyncDescriptor{}));
  fillName(name, kSyncMaximumNameLength);
  EXPECT_EQ(i32{0}, openStatus(name, tSyncDescriptor{}));
  fillName(name, kSyncMaximumNameLength + 1);
  EXPECT_EQ(kStatusBadArgument, openStatus(name, tSyncDescriptor{}));
}

TEST(VexkSync, TheLongestNamesAreToldApartByTheirLastCharacter) {
  char name[kSyncMaximumNameLength + 1];
  fillName(name, kSyncMaximumNameLength);
  tOpened const one(name);
  tOpened const same(name);
  name[kSyncMaximumNameLength - 1] = '!';
  tOpened const other(name);
  ASSERT_TRUE(one.isOpen() && same.isOpen() && other.isOpen());
  EXPECT_TRUE(isSameLock(one, same));
  EXPECT_FALSE(isSameLock(one, other));
}

TEST(VexkSync, ATokenWithoutNameIsRefused) {
  EXPECT_EQ(kStatusBadArgument, openStatus(nullptr, withToken(1, 2)));
}

TEST(VexkSync, AnErrorOnEntryIsKeptAndNothingIsOpened) {
  i32 status = kStatusSyncTimeout;
  EXPECT_TRUE(syncOpen(kName, tSyncDescriptor{}, status) == nullptr);
  EXPECT_EQ(kStatusSyncTimeout, status);
}

TEST(VexkSync, AWarningOnEntrySurvivesASuccess) {
  i32 status = 12345;
  iSync* sync = syncOpen(kName, tSyncDescriptor{}, status);
  EXPECT_TRUE(sync != nullptr);
  EXPECT_EQ(i32{12345}, status);
  syncClose(sync);
}

TEST(VexkSync, ClosingNullDoesNothing) {
  iSync* none = nullptr;
  EXPECT_EQ(i32{0}, syncClose(none));
  EXPECT_TRUE(none == nullptr);
}

TEST(VexkSync, ClosingThroughACopyOfAClosedPointerIsRefused) {
  tOpened const survivor(kName);
  ASSERT_TRUE(survivor.isOpen());
  i32 status = 0;
  iSync* sync = syncOpen(kName, tSyncDescriptor{}, status);
  iSync* copy = sync;
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(i32{0}, syncClose(sync));
  EXPECT_EQ(kStatusBadArgument, syncClose(copy));
  EXPECT_TRUE(copy == nullptr);
  EXPECT_EQ(i32{0}, survivor->acquire(0));
  EXPECT_EQ(i32{0}, survivor->release());
}

TEST(VexkSync, ClosingWhatIsNoLockIsRefused) {
  class tStranger final : public iSync {
   public:
    i32 acquire(u32) override { return 0; }
    i32 release() override { return 0; }
  };
  tStranger stranger;
  iSync* sync = &stranger;
  EXPECT_EQ(kStatusBadArgument, syncClose(sync));
  EXPECT_TRUE(sync == nullptr);
}

TEST(VexkSync, ALockThatIsOwnedIsNotClosed) {
  tOpened lock(nullptr);
  ASSERT_TRUE(lock.isOpen());
  iSync* const before = lock.sync;
  EXPECT_EQ(i32{0}, lock->acquire(0));
  EXPECT_EQ(kStatusSyncInUse, syncClose(lock.sync));
  EXPECT_TRUE(lock.sync == before);
  EXPECT_EQ(i32{0}, lock->release());
  EXPECT_EQ(i32{0}, syncClose(lock.sync));
}

TEST(VexkSync, TheOwnerClosesNoHandleOfItsLock) {
  tOpened one(kName);
  tOpened const other(kName);
  ASSERT_TRUE(one.isOpen() && other.isOpen());
  EXPECT_EQ(i32{0}, one->acquire(0));
  EXPECT_EQ(kStatusSyncInUse, syncClose(one.sync));
  EXPECT_EQ(i32{0}, one->release());
}

TEST(VexkSyncLock, HoldsTheLockForItsScope) {
  tOpened const lock(nullptr);
  ASSERT_TRUE(lock.isOpen());
  {
    tSyncLock const held(lock.sync);
    EXPECT_EQ(i32{0}, held.getStatus());
    EXPECT_EQ(i32{0}, lock->release());
    EXPECT_EQ(i32{0}, lock->acquire(0));
  }
  EXPECT_EQ(kStatusSyncNotOwner, lock->release());
}

TEST(VexkSyncLock, HoldsNothingWithoutALock) {
  tSyncLock const held(nullptr);
  EXPECT_EQ(i32{0}, held.getStatus());
}

TEST(VexkModule, RunsUntilEveryStartHasMetItsStop) {
  EXPECT_EQ(u32{1}, pkgIsVexkInitialized());
  EXPECT_EQ(NTSTATUS{0}, vexkInitialize());
  EXPECT_EQ(u32{1}, pkgIsVexkInitialized());
  EXPECT_EQ(NTSTATUS{0}, vexkUnload());
  EXPECT_EQ(u32{1}, pkgIsVexkInitialized());
}
