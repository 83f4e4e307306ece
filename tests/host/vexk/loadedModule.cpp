// Which module an address belongs to, asked of images that the test writes byte by byte.

#include "vexk/loadedModule.h"

#include <dlfcn.h>
#include <elf.h>
#include <gtest/gtest.h>
#include <link.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr u64 kPage = 0x1000;
constexpr u64 kGap = kPage;         // nothing is mapped in this page
constexpr u64 kSecond = 2 * kPage;  // where the second part lies, behind it
constexpr u32 kUnknownPart = 0x60000123;

std::string noteOf(std::string const& name, u32 type, std::string const& content) {
  ElfW(Nhdr) const head = {static_cast<u32>(name.size()), static_cast<u32>(content.size()), type};
  std::string bytes(reinterpret_cast<char const*>(&head), sizeof(head));
  for (std::string const& part : {name, content}) {
    bytes += part;
    bytes.resize((bytes.size() + 3) / 4 * 4);
  }
  return bytes;
}

std::string const kGnu("GNU", 4);

std::string buildId(std::string const& content) {
  return noteOf(kGnu, NT_GNU_BUILD_ID, content);
}

ElfW(Phdr) partOf(u32 type, u64 place, u64 size) {
  ElfW(Phdr) part = {};
  part.p_type = type;
  part.p_flags = PF_R | PF_W;
  part.p_offset = part.p_vaddr = part.p_paddr = place;
  part.p_filesz = part.p_memsz = size;
  part.p_align = 1;
  return part;
}

// A shared object of two pages with an unmapped one between them, loaded while this lives. Its
// notes end where the first page does.
class tImage {
 public:
  explicit tImage(std::string const& notes, std::vector<ElfW(Phdr)> const& others = {},
                  bool areOthersFirst = false)
      : path(testing::TempDir() + "loadedModuleOfATest.so") {
    write(notes, others, areOthersFirst);
    library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(library, nullptr) << dlerror();
    link_map* map = nullptr;
    dlinfo(library, RTLD_DI_LINKMAP, &map);
    base = map->l_addr;
  }
  ~tImage() {
    dlclose(library);
    unlink(path.c_str());
  }
  tImage(tImage const&) = delete;
  tImage& operator=(tImage const&) = delete;

  static u64 placeOf(std::string const& notes) { return kPage - notes.size(); }

  tLoadedModule find(u64 place) const {
    tLoadedModule module;
    std::memset(&module, 0xEE, sizeof(module));
    wasFound = _vexFindModule(base + place, &module);
    return module;
  }

  mutable u32 wasFound = 0;
  u64 base = 0;

 private:
  void write(std::string const& notes, std::vector<ElfW(Phdr)> const& others, bool areOthersFirst) {
    std::vector<ElfW(Phdr)> parts = {partOf(PT_LOAD, 0, kPage)};
    parts.insert(areOthersFirst ? parts.begin() : parts.end(), others.begin(), others.end());
    parts.push_back(partOf(PT_NOTE, placeOf(notes), notes.size()));
    parts.push_back(partOf(PT_LOAD, kSecond, sizeof(ElfW(Dyn)) * 8));
    parts.push_back(partOf(PT_DYNAMIC, kSecond, sizeof(ElfW(Dyn)) * 4));
    parts.push_back(partOf(PT_GNU_STACK, 0, 0));
    for (ElfW(Phdr) & part : parts) {
      if (part.p_type == PT_LOAD) part.p_align = kPage;
    }
    ElfW(Ehdr) head = {};
    std::memcpy(head.e_ident, ELFMAG, SELFMAG);
    head.e_ident[EI_CLASS] = ELFCLASS64;
    head.e_ident[EI_DATA] = ELFDATA2LSB;
    head.e_ident[EI_VERSION] = EV_CURRENT;
    head.e_type = ET_DYN;
    head.e_machine = EM_X86_64;
    head.e_version = EV_CURRENT;
    head.e_phoff = sizeof(head);
    head.e_ehsize = sizeof(head);
    head.e_phentsize = sizeof(ElfW(Phdr));
    head.e_phnum = static_cast<ElfW(Half)>(parts.size());
    u64 const zeros = kSecond + 4 * sizeof(ElfW(Dyn));
    ElfW(Dyn) const dynamic[4] = {{DT_STRTAB, {zeros}}, {DT_SYMTAB, {zeros}}, {DT_STRSZ, {1}}, {}};
    std::string bytes(kSecond + 8 * sizeof(ElfW(Dyn)), '\0');
    std::memcpy(bytes.data(), &head, sizeof(head));
    std::memcpy(bytes.data() + sizeof(head), parts.data(), parts.size() * sizeof(ElfW(Phdr)));
    std::memcpy(bytes.data() + placeOf(notes), notes.data(), notes.size());
    std::memcpy(bytes.data() + kSecond, dynamic, sizeof(dynamic));
    std::ofstream(path, std::ios::binary) << bytes;
  }

  std::string path;
  void* library = nullptr;
};

std::string identityOf(tLoadedModule const& module) {
  return {reinterpret_cast<char const*>(module.identity), module.identitySize};
}

std::string const kTwenty = "twenty bytes of name";

void expectIdentity(std::string const& notes, std::string const& identity) {
  tImage const image(notes);
  tLoadedModule const module = image.find(0);
  EXPECT_EQ(identityOf(module), identity);
  EXPECT_EQ(module.identityKind, identity.empty() ? kModuleUnidentified : kModuleBuildId);
}

}  // namespace

TEST(LoadedModule, AnImageIsToldFromItsFirstByteToItsLast) {
  tImage const image(buildId(kTwenty));
  for (u64 const place : {u64{0}, kPage - 1, kSecond, kSecond + 8 * sizeof(ElfW(Dyn)) - 1}) {
    tLoadedModule const module = image.find(place);
    EXPECT_EQ(image.wasFound, 1u);
    EXPECT_EQ(module.base, image.base);
    EXPECT_EQ(module.size, kSecond + 8 * sizeof(ElfW(Dyn)));
    EXPECT_STREQ(module.name, "loadedModuleOfATest.so");
    EXPECT_EQ(module.identityKind, kModuleBuildId);
    EXPECT_EQ(identityOf(module), kTwenty);
  }
}

TEST(LoadedModule, OfWhatIsNoModulesEverythingIsZero) {
  tImage const image(buildId(kTwenty), {partOf(kUnknownPart, kGap, kPage)});
  tLoadedModule const none = {};
  for (u64 const place : {kGap, kSecond - 1}) {
    tLoadedModule const module = image.find(place);
    EXPECT_EQ(image.wasFound, 0u);
    EXPECT_EQ(std::memcmp(&module, &none, sizeof(none)), 0);
  }
}

TEST(LoadedModule, PartsOfOtherKindsAreNoneOfIt) {
  tImage const image(buildId(kTwenty), {partOf(kUnknownPart, 0, 8 * kPage)});
  EXPECT_EQ(image.find(0).size, kSecond + 8 * sizeof(ElfW(Dyn)));
}

TEST(LoadedModule, TheProgramHasTheNameOfItsFile) {
  tLoadedModule module;
  ASSERT_EQ(_vexFindModule(reinterpret_cast<u64>(&noteOf), &module), 1u);
  EXPECT_EQ(module.name, std::filesystem::read_symlink("/proc/self/exe").filename().string());
}

TEST(LoadedModule, AnIdentityHasAtMost32Bytes) {
  expectIdentity(buildId(std::string(1, 'x')), "x");
  expectIdentity(buildId(std::string(32, 'x')), std::string(32, 'x'));
  expectIdentity(buildId(std::string(33, 'x')), "");
}

TEST(LoadedModule, AnIdentityStandsBehindOtherNotes) {
  std::string const others = noteOf("somebody", NT_GNU_BUILD_ID, "his") + noteOf("", 7, "") +
                             noteOf(kGnu, NT_GNU_ABI_TAG, "tag");
  expectIdentity(others + buildId(kTwenty), kTwenty);
  expectIdentity(others, "");
}

TEST(LoadedModule, AnIdentityIsThatOfItsNameAlone) {
  expectIdentity(noteOf({"GNX", 4}, NT_GNU_BUILD_ID, kTwenty), "");
  expectIdentity(noteOf({"GNU\0\0\0\0", 8}, NT_GNU_BUILD_ID, kTwenty), "");
}

TEST(LoadedModule, ANoteThatIsCutOffIsNone) {
  std::string const whole = buildId(kTwenty);
  for (size_t length = 0; length < whole.size(); length += 4) {
    expectIdentity(whole.substr(0, length), "");
    expectIdentity(noteOf("other", 1, "") + whole.substr(0, length), "");
  }
}

TEST(LoadedModule, TheFirstIdentityCountsAndNotesAlone) {
  std::string const ours = buildId(kTwenty);
  std::string const notes = buildId("another") + ours;
  ElfW(Phdr) const another = partOf(kUnknownPart, tImage::placeOf(notes), notes.size());
  ElfW(Phdr) const first = partOf(PT_NOTE, tImage::placeOf(ours), ours.size());
  EXPECT_EQ(identityOf(tImage(notes, {another, first}, true).find(0)), kTwenty);
  EXPECT_EQ(identityOf(tImage(notes, {first}, true).find(0)), kTwenty);
}
