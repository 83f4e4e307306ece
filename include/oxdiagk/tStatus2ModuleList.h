#pragma once

// The modules on a status' call stack, to be saved with it.

#include "oxdiagk/tStatus2.h"
#include "vexk/loadedModule.h"

namespace nOXDIAG100 {

// Stack addresses mean something only while the modules are where they are. Who saves a status for
// another day saves this list with it; then "oxdiagreport --symbols" finds function, file and line
// of each frame.
//
//     tStatus2ModuleList const modules(status);
//     status.writeExternal(writer, modules, code);
//
// The list is 1.2 KiB of plain data, mostly on the stack. It allocates nothing, refers to no module
// and may be kept. Constant after it is made. A list is made at PASSIVE_LEVEL or APC_LEVEL, and
// while the modules on the stack stay loaded: that of a module that is gone has no entry, or that
// of a module that was loaded in its place. Reading and writing it: as the stream.
class OXDIAG_API tStatus2ModuleList {
 public:
  static constexpr u32 kMostModules = tStatus2::kStackTraceLength;

  // No modules.
  tStatus2ModuleList() = default;

  // Those that have the status' stack addresses in them, each once, in the order of the frames.
  explicit tStatus2ModuleList(tStatus2 const& status);

  u32 getCount() const { return count; }

  // `index` is below getCount(); the module lives as long as the list.
  tLoadedModule const& getModule(u32 index) const { return modules[index]; }

  // The characters that writeExternal writes; 0 for a list without modules.
  u32 getWrittenSize() const;

  // Writes the list, as characters. All numbers are little-endian:
  //
  //     list     mark, length, count, modules
  //     mark     4 characters 'M' 'O' 'D' 'S'
  //     length   4: how many follow, from the count to the end of the last module
  //     count    1: modules
  //     module   2 length of what follows of it, 8 base, 8 size, 1 kind of identity
  //              (tModuleIdentityKind), 1 size of identity, 1 length of name, identity, name
  //
  // Nothing is written for a list without modules, and with an error in `status` on entry.
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const;

 private:
  void add(u64 address);

  tLoadedModule modules[kMostModules] = {};
  u32 count = 0;
};
static_assert(sizeof(tStatus2ModuleList) == 1208, "crosses module borders");

}  // namespace nOXDIAG100
