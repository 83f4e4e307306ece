// Lists of many modules, and of modules that are gone.

#include <dlfcn.h>
#include <errno.h>
#include <gtest/gtest.h>
#include <link.h>

#include <string>
#include <vector>

#include "oxdiagk/tStatus2ModuleList.h"
#include "qelmk/tBinaryObjectReader.h"
#include "qelmk/tBinaryObjectWriter.h"
#include "status/startedHeap.h"

#define OXDIAG_COMPONENT "moduleLists"
#include "oxdiagk/statusMacros.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2ModuleList;

namespace {

// Libraries that every system with this C library has, and that nobody else loads here.
char const* const kLibraries[] = {"libanl.so.1", "libnss_compat.so.2", "libnss_hesiod.so.2",
                                  "librt.so.1", "libresolv.so.2"};

class tLibrary {
 public:
  explicit tLibrary(char const* name) : handle(dlopen(name, RTLD_NOW | RTLD_LOCAL)) {
    EXPECT_NE(handle, nullptr) << dlerror();
  }
  ~tLibrary() { close(); }
  tLibrary(tLibrary const&) = delete;
  tLibrary& operator=(tLibrary const&) = delete;

  void close() {
    if (handle != nullptr) dlclose(handle);
    handle = nullptr;
  }

  // An address in it.
  u64 inside() const {
    link_map* map = nullptr;
    EXPECT_EQ(dlinfo(handle, RTLD_DI_LINKMAP, &map), 0);
    return map == nullptr ? 0 : reinterpret_cast<u64>(map->l_ld) + 1;
  }

 private:
  void* handle;
};

template <class Write>
std::string streamBy(Write write) {
  std::string bytes(4096, '#');
  i32 code = 0;
  nQELM100::tBinaryObjectWriter writer(bytes.data(), bytes.size());
  write(writer, code);
  writer.finish(code);
  EXPECT_EQ(code, 0);
  return bytes.substr(0, writer.getSize());
}

constexpr i32 kKeptError = -5;

// A status with these addresses on its stack.
tStatus2 statusAt(std::vector<u64> addresses) {
  addresses.resize(tStatus2::kStackTraceLength);
  std::string const bytes = streamBy([&](auto& writer, i32& code) {
    writer.writeU32(8, code);
    writer.writeI32(kKeptError, code);
    writer.writeU32(1, code);
    writer.writeU32(181, code);
    for (u32 i = 0; i != 24 + 101; ++i) writer.writeCharacter('\0', code);
    writer.writeU32(77, code);
    for (u64 address : addresses) writer.writeU32(static_cast<u32>(address), code);
    writer.writeI32(kKeptError, code);
    writer.writeU32(0, code);
    writer.writeU32(1, code);
    for (u64 address : addresses) writer.writeU32(static_cast<u32>(address >> 32), code);
  });
  i32 code = 0;
  nQELM100::tBinaryObjectReader reader(bytes.data(), bytes.size(), code);
  tStatus2 status;
  status.readExternal(reader, code);
  EXPECT_EQ(code, 0);
  return status;
}

std::vector<std::string> namesIn(tStatus2ModuleList const& list) {
  std::vector<std::string> names;
  for (u32 i = 0; i != list.getCount(); ++i) names.emplace_back(list.getModule(i).name);
  return names;
}

u64 addressOf(void const* pointer) {
  return reinterpret_cast<u64>(pointer) + 1;
}

}  // namespace

TEST(ModuleLists, TenFramesOfTenModulesAreWrittenAndPassedOver) {
  tStartedHeap const heap;
  tLibrary const libraries[] = {tLibrary(kLibraries[0]), tLibrary(kLibraries[1]),
                                tLibrary(kLibraries[2]), tLibrary(kLibraries[3]),
                                tLibrary(kLibraries[4])};
  tLibrary const system[] = {tLibrary("libc.so.6"), tLibrary("libm.so.6"),
                             tLibrary("libstdc++.so.6"), tLibrary("ld-linux-x86-64.so.2")};
  std::vector<u64> addresses = {addressOf(&kLibraries)};
  for (tLibrary const& library : libraries) addresses.push_back(library.inside());
  for (tLibrary const& library : system) addresses.push_back(library.inside());
  tStatus2 const status = statusAt(addresses);
  tStatus2ModuleList const list(status);
  EXPECT_EQ(namesIn(list),
            (std::vector<std::string>{program_invocation_short_name, kLibraries[0], kLibraries[1],
                                      kLibraries[2], kLibraries[3], kLibraries[4], "libc.so.6",
                                      "libm.so.6", "libstdc++.so.6", "ld-linux-x86-64.so.2"}));
  std::string const plain =
      streamBy([&](auto& writer, i32& code) { status.writeExternal(writer, code); });
  std::string const listed =
      streamBy([&](auto& writer, i32& code) { status.writeExternal(writer, list, code); });
  EXPECT_EQ(listed.size(), plain.size() + list.getWrittenSize());
  i32 code = 0;
  nQELM100::tBinaryObjectReader reader(listed.data(), listed.size(), code);
  tStatus2 again;
  again.readExternal(reader, code);
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(reader.isAtEnd());
  EXPECT_EQ(streamBy([&](auto& writer, i32& own) { again.writeExternal(writer, own); }), plain);
}

TEST(ModuleLists, AModuleThatWentAwayIsNotInIt) {
  tStartedHeap const heap;
  tLibrary library(kLibraries[0]);
  tStatus2 const status = statusAt({library.inside(), addressOf(&kLibraries)});
  tStatus2ModuleList const before(status);
  library.close();
  tStatus2ModuleList const after(status);
  EXPECT_EQ(namesIn(before),
            (std::vector<std::string>{kLibraries[0], program_invocation_short_name}));
  EXPECT_EQ(namesIn(after), std::vector<std::string>{program_invocation_short_name});
}

TEST(ModuleLists, AReturnAddressBehindTheLastByteBelongsToTheModule) {
  tStartedHeap const heap;
  tStatus2ModuleList const list(statusAt({addressOf(&kLibraries)}));
  ASSERT_EQ(list.getCount(), 1U);
  u64 const base = list.getModule(0).base;
  EXPECT_EQ(namesIn(tStatus2ModuleList(statusAt({base + list.getModule(0).size}))),
            std::vector<std::string>{program_invocation_short_name});
  EXPECT_EQ(tStatus2ModuleList(statusAt({base})).getCount(), 0U);
  EXPECT_EQ(tStatus2ModuleList(statusAt({base + 1})).getCount(), 1U);
}

TEST(ModuleLists, TakeNoMemory) {
  tStartedHeap const heap;
  tStatus2 const status = statusAt({addressOf(&kLibraries)});
  u64 const calls = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64) {
    tStatus2ModuleList const list(status);
    EXPECT_EQ(list.getCount(), 1U);
    streamBy([&](auto& writer, i32& code) { status.writeExternal(writer, list, code); });
  });
  EXPECT_EQ(calls, 0U);
}

TEST(ModuleLists, AFullStatusHeapLeavesNoFramesAndNoList) {
  tStartedHeap const heap;
  std::vector<tStatus2> kept;
  while (kept.empty() || kept.back().hasDetail()) {
    kept.emplace_back();
    OXDIAG_SET_STATUS(kept.back(), kKeptError);
  }
  EXPECT_EQ(kept.back().getCode(), kKeptError);
  EXPECT_EQ(tStatus2ModuleList(kept.back()).getCount(), 0U);
}

TEST(ModuleLists, AreWrittenBesideAStatusWithoutDetailToo) {
  tStartedHeap const heap;
  tStatus2ModuleList const list(statusAt({addressOf(&kLibraries)}));
  tStatus2 const status;
  std::string const plain =
      streamBy([&](auto& writer, i32& code) { status.writeExternal(writer, code); });
  std::string const listed =
      streamBy([&](auto& writer, i32& code) { status.writeExternal(writer, list, code); });
  EXPECT_EQ(listed.size(), plain.size() + list.getWrittenSize());
}
