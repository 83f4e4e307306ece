// That the addresses of programs are looked at before they are used. The kernel at hand takes any
// address for a program's, so the tests take the place of its probes.

#include "vexk/userMemory.h"

#include "conformance/harness.h"
#include "guards/tWatchedImport.h"

namespace {

constexpr u64 kPage = 4096;
constexpr u32 kMostProbes = 8;

struct tProbe {
  u64 address;
  u64 length;
  u32 alignment;
};

constinit tProbe probes[kMostProbes] = {};
constinit u32 count = 0;
constinit u32 refused = kMostProbes;  // the probe from which on none succeeds

void probe(void const volatile* address, size_t length, u32 alignment) {
  if (count < kMostProbes) probes[count] = {reinterpret_cast<u64>(address), length, alignment};
  if (count++ >= refused) __builtin_trap();
}

// Counts the probes of one kind while it is there.
class tProbed {
 public:
  explicit tProbed(char const* name, u32 firstRefused = kMostProbes)
      : import(name, reinterpret_cast<void*>(&probe)) {
    count = 0;
    refused = firstRefused;
  }

  u32 countModules() const { return import.countModules(); }

 private:
  tWatchedImport import;
};

// Three pages of memory and a start near the end of the first.
struct tPages {
  alignas(kPage) char bytes[3 * kPage];

  u64 start() const { return reinterpret_cast<u64>(bytes) + kPage - 96; }
};

constinit tPages user = {};
constinit tPages kernel = {};
constexpr u64 kLength = 96 + kPage + 7;

void fill(tPages& pages, char byte) {
  __builtin_memset(pages.bytes, byte, sizeof(pages.bytes));
}

u64 countBytes(tPages const& pages, char byte) {
  u64 found = 0;
  for (char each : pages.bytes) found += each == byte;
  return found;
}

void expectProbe(u32 index, u64 address, u64 length) {
  EXPECT_EQ(probes[index].address, address);
  EXPECT_EQ(probes[index].length, length);
  EXPECT_EQ(probes[index].alignment, u32{1});
}

void expectEachPageProbed() {
  ASSERT_EQ(count, u32{3});
  expectProbe(0, user.start(), 96);
  expectProbe(1, user.start() + 96, kPage);
  expectProbe(2, user.start() + 96 + kPage, 7);
}

}  // namespace

TEST(UserMemoryGuards, WhatIsReadIsProbedPageByPage) {
  tProbed const watch("ProbeForRead");
  tProbed const other("ProbeForWrite");
  ASSERT_TRUE(watch.countModules() > 0 && other.countModules() > 0);
  EXPECT_EQ(vexCopyFromUser(kernel.bytes, user.start(), kLength), kLength);
  expectEachPageProbed();
}

TEST(UserMemoryGuards, WhatIsWrittenIsProbedPageByPage) {
  tProbed const watch("ProbeForWrite");
  ASSERT_TRUE(watch.countModules() > 0);
  EXPECT_EQ(vexCopyToUser(user.start(), kernel.bytes, kLength), kLength);
  expectEachPageProbed();
}

TEST(UserMemoryGuards, NothingIsReadThatIsNotTheProgramsOwn) {
  constexpr u64 kReadable[] = {0, 96, 96 + kPage};
  for (u32 first = 0; first < 3; ++first) {
    tProbed const watch("ProbeForRead", first);
    fill(user, 'u');
    fill(kernel, 'k');
    EXPECT_EQ(vexCopyFromUser(kernel.bytes, user.start(), kLength), kReadable[first]);
    EXPECT_EQ(countBytes(kernel, 'u'), kReadable[first]);
  }
}

TEST(UserMemoryGuards, NothingIsWrittenThatIsNotTheProgramsOwn) {
  constexpr u64 kWritable[] = {0, 96, 96 + kPage};
  for (u32 first = 0; first < 3; ++first) {
    tProbed const watch("ProbeForWrite", first);
    fill(user, 'u');
    fill(kernel, 'k');
    EXPECT_EQ(vexCopyToUser(user.start(), kernel.bytes, kLength), kWritable[first]);
    EXPECT_EQ(countBytes(user, 'k'), kWritable[first]);
  }
}
