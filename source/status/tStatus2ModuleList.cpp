#include "oxdiagk/tStatus2ModuleList.h"

#include "qelmk/iObjectWriter.h"

namespace nOXDIAG100 {
namespace {

constexpr char kMark[] = {'M', 'O', 'D', 'S'};
constexpr u32 kListHead = sizeof kMark + sizeof(u32);

// What an entry has between its length and its identity.
constexpr u32 kEntryFixed = 2 * sizeof(u64) + 3;
constexpr u32 kEntryLength = sizeof(u16);

u32 nameLengthOf(tLoadedModule const& module) {
  return static_cast<u32>(__builtin_strlen(module.name));
}

u32 entryLengthOf(tLoadedModule const& module) {
  return kEntryFixed + module.identitySize + nameLengthOf(module);
}

// The target is little-endian, as the form is.
template <class tNumber>
void writeNumber(nQELM100::iObjectWriter& writer, tNumber number, i32& status) {
  char bytes[sizeof number];
  __builtin_memcpy(bytes, &number, sizeof number);
  writer.writeCharacters(bytes, sizeof number, status);
}

void writeModule(nQELM100::iObjectWriter& writer, tLoadedModule const& module, i32& status) {
  writeNumber(writer, static_cast<u16>(entryLengthOf(module)), status);
  writeNumber(writer, module.base, status);
  writeNumber(writer, module.size, status);
  writeNumber(writer, module.identityKind, status);
  writeNumber(writer, module.identitySize, status);
  writeNumber(writer, static_cast<u8>(nameLengthOf(module)), status);
  writer.writeCharacters(reinterpret_cast<char const*>(module.identity), module.identitySize,
                         status);
  writer.writeCharacters(module.name, nameLengthOf(module), status);
}

}  // namespace

tStatus2ModuleList::tStatus2ModuleList(tStatus2 const& status) {
  u64 addresses[tStatus2::kStackTraceLength];
  status.getStackTrace(addresses);
  for (u64 address : addresses) {
    if (address != 0) add(address);
  }
}

// A return address may lie behind the last byte of a module that ends with a call.
void tStatus2ModuleList::add(u64 address) {
  tLoadedModule& module = modules[count];
  if (_vexFindModule(address - 1, &module) == 0) return;
  for (u32 i = 0; i != count; ++i) {
    if (modules[i].base == module.base) return;
  }
  ++count;
}

u32 tStatus2ModuleList::getWrittenSize() const {
  if (count == 0) return 0;
  u32 size = kListHead + sizeof(u8);
  for (u32 i = 0; i != count; ++i) size += kEntryLength + entryLengthOf(modules[i]);
  return size;
}

void tStatus2ModuleList::writeExternal(nQELM100::iObjectWriter& writer, i32& status) const {
  if (status < 0 || count == 0) return;
  writer.writeCharacters(kMark, sizeof kMark, status);
  writeNumber(writer, getWrittenSize() - kListHead, status);
  writeNumber(writer, static_cast<u8>(count), status);
  for (u32 i = 0; i != count; ++i) writeModule(writer, modules[i], status);
}

}  // namespace nOXDIAG100
