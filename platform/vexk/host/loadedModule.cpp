#include "vexk/loadedModule.h"

#include <elf.h>
#include <link.h>
#include <sys/auxv.h>

#include <cstring>

#include "common/moduleName.h"

namespace {

struct tSearch {
  u64 address;
  tLoadedModule* module;
};

constexpr u64 kNoteAlignment = 4;
constexpr char kNoteName[] = "GNU";

u64 aligned(u64 size) {
  return (size + kNoteAlignment - 1) & ~(kNoteAlignment - 1);
}

bool isBuildId(ElfW(Nhdr) const& head, char const* name) {
  return head.n_type == NT_GNU_BUILD_ID && head.n_namesz == sizeof kNoteName &&
         head.n_descsz <= tLoadedModule::kMaxIdentitySize &&
         std::memcmp(name, kNoteName, sizeof kNoteName) == 0;
}

void readNotes(char const* notes, u64 left, tLoadedModule& module) {
  ElfW(Nhdr) head;
  while (left > sizeof head) {
    std::memcpy(&head, notes, sizeof head);
    u64 const size = sizeof head + aligned(head.n_namesz) + aligned(head.n_descsz);
    if (size > left) return;
    char const* const name = notes + sizeof head;
    if (isBuildId(head, name)) {
      module.identityKind = kModuleBuildId;
      module.identitySize = static_cast<u8>(head.n_descsz);
      std::memcpy(module.identity, name + aligned(head.n_namesz), head.n_descsz);
      return;
    }
    notes += size;
    left -= size;
  }
}

// The program itself has no name in the list.
void setName(char const* path, tLoadedModule& module) {
  auto const* const program = reinterpret_cast<char const*>(getauxval(AT_EXECFN));
  if (*path == '\0' && program != nullptr) path = program;
  setModuleName(module, path, std::strlen(path));
}

// The base is what the addresses in the file are counted from, so that it can be subtracted. The
// loader takes files alone whose parts ascend: the last one ends the module.
bool hasAddress(dl_phdr_info const& info, u64 address, u64& size) {
  bool hasIt = false;
  for (unsigned i = 0; i != info.dlpi_phnum; ++i) {
    auto const& part = info.dlpi_phdr[i];
    if (part.p_type != PT_LOAD) continue;
    u64 const start = info.dlpi_addr + part.p_vaddr;
    hasIt = hasIt || address - start < part.p_memsz;
    size = part.p_vaddr + part.p_memsz;
  }
  return hasIt;
}

int lookAt(dl_phdr_info* info, size_t, void* context) {
  auto const& search = *static_cast<tSearch*>(context);
  u64 size = 0;
  if (!hasAddress(*info, search.address, size)) return 0;
  tLoadedModule& module = *search.module;
  module.base = info->dlpi_addr;
  module.size = size;
  setName(info->dlpi_name, module);
  for (unsigned i = 0; i != info->dlpi_phnum; ++i) {
    auto const& part = info->dlpi_phdr[i];
    auto const* const notes = reinterpret_cast<char const*>(info->dlpi_addr + part.p_vaddr);
    if (part.p_type == PT_NOTE && module.identitySize == 0) readNotes(notes, part.p_memsz, module);
  }
  return 1;
}

}  // namespace

u32 _vexFindModule(u64 address, tLoadedModule* module) {
  *module = tLoadedModule();
  tSearch search = {address, module};
  return dl_iterate_phdr(lookAt, &search) != 0 ? 1 : 0;
}
