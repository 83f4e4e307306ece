// The modules on a status' call stack, and statuses that are written with them.

#include "oxdiagk/tStatus2ModuleList.h"

#include "conformance/harness.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/statusForms.h"
#include "support/statusOrigin.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2ModuleList;

namespace {

// A status with these addresses on its stack, and zeros behind them.
tStatus2 statusAt(u64 const* addresses, u32 count) {
  tItemStream& stream = cleanStream();
  writeKnownForm(stream);
  for (u32 i = 0; i != tStatus2::kStackTraceLength; ++i) {
    u64 const address = i < count ? addresses[i] : 0;
    stream.replace(kFormLowHalves + i, static_cast<u32>(address));
    stream.replace(kFormHighHalves + i, static_cast<u32>(address >> 32));
  }
  i32 status = 0;
  tStatus2 made;
  made.readExternal(stream, status);
  EXPECT_EQ(status, 0);
  return made;
}

u64 addressInThisModule() {
  return reinterpret_cast<u64>(&addressInThisModule) + 1;
}

tStatus2 knownStatus() {
  u64 const address = addressInThisModule();
  return statusAt(&address, 1);
}

// Reads the characters of the list as little-endian numbers.
class tListBytes {
 public:
  tListBytes(tItemStream const& items, u32 first) : stream(items), place(first) {}

  u64 take(u32 bytes) {
    u64 number = 0;
    for (u32 i = 0; i != bytes; ++i, ++place) {
      EXPECT_TRUE(stream.getItem(place).kind == tItemStream::kCharacter);
      number |= u64{stream.getItem(place).value} << (8 * i);
    }
    return number;
  }

  u32 getPlace() const { return place; }

 private:
  tItemStream const& stream;
  u32 place;
};

constexpr u64 kMark = 0x53444F4D;  // "MODS"

}  // namespace

TEST(StatusModules, ThereAreNoneWithoutDetailAndWithoutFrames) {
  EXPECT_EQ(tStatus2ModuleList().getCount(), u32{0});
  EXPECT_EQ(tStatus2ModuleList(tStatus2(-5)).getCount(), u32{0});
  EXPECT_EQ(tStatus2ModuleList(statusAt(nullptr, 0)).getCount(), u32{0});
}

TEST(StatusModules, AddressesInNoModuleHaveNone) {
  u64 const addresses[] = {1, 2, 0x10, ~u64{0}, u64{0x800000000000}};
  EXPECT_EQ(tStatus2ModuleList(statusAt(addresses, 5)).getCount(), u32{0});
}

TEST(StatusModules, OneThatSeveralFramesAreInIsThereOnce) {
  u64 const address = addressInThisModule();
  u64 const addresses[] = {address, address + 1, 0x10, address};
  tStatus2ModuleList const list(statusAt(addresses, 4));
  ASSERT_EQ(list.getCount(), u32{1});
  tLoadedModule const& module = list.getModule(0);
  EXPECT_TRUE(module.base < address);
  EXPECT_TRUE(address - module.base < module.size);
  EXPECT_NE(module.name[0], '\0');
}

TEST(StatusModules, AModuleHasTheIdentityOfItsSymbols) {
  tStatus2ModuleList const list(knownStatus());
  ASSERT_EQ(list.getCount(), u32{1});
  tLoadedModule const& module = list.getModule(0);
  // 20 bytes of a PDB's identity and of most linkers' build ids; lld makes 8.
  bool const isShort = module.identityKind == kModuleBuildId && module.identitySize == 8;
  EXPECT_TRUE(module.identitySize == 20 || isShort);
  u32 used = 0;
  for (u32 i = 0; i != module.identitySize; ++i) used += module.identity[i] != 0 ? 1 : 0;
  EXPECT_LE(u32{4}, used);
}

TEST(StatusModules, TheFramesOfAFailureAreInModules) {
  tOrigin const origin("abc", "rack.cpp");
  tStatus2 failure;
  OXDIAG_SET_STATUS(failure, kFormError);
  tStatus2ModuleList const list(failure);
  u64 addresses[tStatus2::kStackTraceLength];
  failure.getStackTrace(addresses);
  u32 found = 0;
  for (u32 i = 0; i != list.getCount(); ++i) {
    tLoadedModule const& module = list.getModule(i);
    if (addresses[1] >= module.base && addresses[1] - module.base < module.size) ++found;
  }
  EXPECT_EQ(found, u32{1});
}

TEST(StatusModules, AreWrittenBehindTheFlagAndCountedInFront) {
  tStatus2 const status = knownStatus();
  tStatus2ModuleList const list(status);
  ASSERT_EQ(list.getCount(), u32{1});
  tItemStream& stream = cleanStream();
  i32 code = 0;
  status.writeExternal(stream, list, code);
  EXPECT_EQ(code, 0);
  u32 const size = list.getWrittenSize();
  EXPECT_EQ(stream.getCount(), kFormCount + size);
  EXPECT_TRUE(stream.getItem(kFormLength) == unsignedItem(kFixedLength + size));
  EXPECT_TRUE(stream.getItem(kFormCode) == signedItem(kFormError));
  EXPECT_TRUE(stream.getItem(kFormFlag) == unsignedItem(1));
  EXPECT_TRUE(stream.getItem(kFormDetailLength + size) == unsignedItem(kDetailFixedLength));
}

TEST(StatusModules, HaveTheDocumentedForm) {
  tStatus2 const status = knownStatus();
  tStatus2ModuleList const list(status);
  ASSERT_EQ(list.getCount(), u32{1});
  tLoadedModule const& module = list.getModule(0);
  u32 const nameLength = static_cast<u32>(__builtin_strlen(module.name));
  tItemStream& stream = cleanStream();
  i32 code = 0;
  list.writeExternal(stream, code);
  tListBytes bytes(stream, 0);
  EXPECT_EQ(bytes.take(4), kMark);
  EXPECT_EQ(bytes.take(4), u64{stream.getCount() - 8});
  EXPECT_EQ(bytes.take(1), u64{1});
  EXPECT_EQ(bytes.take(2), u64{19 + module.identitySize + nameLength});
  EXPECT_EQ(bytes.take(8), module.base);
  EXPECT_EQ(bytes.take(8), module.size);
  EXPECT_EQ(bytes.take(1), u64{module.identityKind});
  EXPECT_EQ(bytes.take(1), u64{module.identitySize});
  EXPECT_EQ(bytes.take(1), u64{nameLength});
  for (u32 i = 0; i != module.identitySize; ++i) EXPECT_EQ(bytes.take(1), u64{module.identity[i]});
  for (u32 i = 0; i != nameLength; ++i)
    EXPECT_EQ(bytes.take(1), u64{static_cast<u8>(module.name[i])});
  EXPECT_EQ(bytes.getPlace(), stream.getCount());
}

TEST(StatusModules, AReaderPassesOverThem) {
  tStatus2 const status = knownStatus();
  tStatus2ModuleList const list(status);
  tItemStream& stream = cleanStream();
  i32 code = 0;
  status.writeExternal(stream, list, code);
  tStatus2 target;
  stream.rewind();
  target.readExternal(stream, code);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(stream.getPosition(), stream.getCount());
  EXPECT_EQ(target.getCode(), kFormError);
  EXPECT_TRUE(hasKnownOrigin(target));
  u64 addresses[tStatus2::kStackTraceLength];
  target.getStackTrace(addresses);
  EXPECT_EQ(addresses[0], addressInThisModule());
}

TEST(StatusModules, AListWithoutModulesChangesNoItem) {
  static constinit tItemStream::tItem items[kFormCount] = {};
  tStatus2 const status = statusAt(nullptr, 0);
  tItemStream& plain = cleanStream();
  i32 code = 0;
  status.writeExternal(plain, code);
  ASSERT_EQ(plain.getCount(), u32{kFormCount});
  for (u32 i = 0; i != kFormCount; ++i) items[i] = plain.getItem(i);
  tItemStream& stream = cleanStream();
  status.writeExternal(stream, tStatus2ModuleList(status), code);
  ASSERT_EQ(stream.getCount(), u32{kFormCount});
  u32 different = 0;
  for (u32 i = 0; i != kFormCount; ++i) different += stream.getItem(i) == items[i] ? 0 : 1;
  EXPECT_EQ(different, u32{0});
}

TEST(StatusModules, AStatusWithoutDetailIsWrittenAsWithoutTheList) {
  tStatus2 const status(kFormError);
  tItemStream& stream = cleanStream();
  i32 code = 0;
  status.writeExternal(stream, tStatus2ModuleList(status), code);
  EXPECT_EQ(code, 0);
  ASSERT_EQ(stream.getCount(), u32{3});
  EXPECT_EQ(stream.getItem(2).value, u32{0});
}

TEST(StatusModules, NothingIsWrittenWithAnErrorOnEntry) {
  tStatus2 const status = knownStatus();
  tStatus2ModuleList const list(status);
  tItemStream& stream = cleanStream();
  i32 code = kEarlierError;
  list.writeExternal(stream, code);
  status.writeExternal(stream, list, code);
  EXPECT_EQ(stream.getCount(), u32{0});
  EXPECT_EQ(code, kEarlierError);
}

TEST(StatusModules, TheStreamsEndIsReportedAtEveryPosition) {
  tStatus2 const status = knownStatus();
  tStatus2ModuleList const list(status);
  u32 const whole = kFormCount + list.getWrittenSize();
  for (u32 end = 0; end != whole; ++end) {
    tItemStream& stream = cleanStream();
    stream.endAt(end);
    i32 code = 0;
    status.writeExternal(stream, list, code);
    EXPECT_EQ(code, tItemStream::kStatusEnded);
    EXPECT_EQ(stream.getCount(), end);
  }
}
