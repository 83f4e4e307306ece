#include "oxdiagreport/savedModules.h"

#include <cstring>

#include "qelmk/tBinaryObjectReader.h"

namespace {

constexpr std::string_view kMark = "MODS";
constexpr u32 kFixedLength = 8;  // of a status without modules: code and flag
constexpr size_t kFixedStart = nQELM100::kBinaryStreamHeaderSize + sizeof(u32) + kFixedLength;

// Takes fields from the front of the bytes. What is not there is none, and all that follows.
class tFields {
 public:
  explicit tFields(std::string_view content) : rest(content) {}

  std::string_view takeBytes(size_t size) {
    if (size > rest.size()) isCut = true;
    if (isCut) return {};
    std::string_view const taken = rest.substr(0, size);
    rest.remove_prefix(size);
    return taken;
  }

  template <class tNumber>
  tNumber take() {
    tNumber number = 0;
    std::string_view const taken = takeBytes(sizeof(number));
    if (!isCut) std::memcpy(&number, taken.data(), sizeof(number));
    return number;
  }

  bool isGood() const { return !isCut; }

 private:
  std::string_view rest;
  bool isCut = false;
};

std::optional<tSavedModule> readModule(std::string_view entry) {
  tFields fields(entry);
  tSavedModule module = {};
  module.base = fields.take<u64>();
  module.size = fields.take<u64>();
  module.identityKind = fields.take<u8>();
  u8 const identitySize = fields.take<u8>();
  u8 const nameLength = fields.take<u8>();
  module.identity = fields.takeBytes(identitySize);
  module.name = fields.takeBytes(nameLength);
  if (!fields.isGood()) return std::nullopt;
  return module;
}

}  // namespace

std::vector<tSavedModule> modulesIn(std::string_view characters) {
  tFields outer(characters);
  if (outer.takeBytes(kMark.size()) != kMark) return {};
  u32 const length = outer.take<u32>();
  tFields list(outer.takeBytes(length));
  std::vector<tSavedModule> modules;
  for (u8 left = list.take<u8>(); left != 0; --left) {
    u16 const size = list.take<u16>();
    auto module = readModule(list.takeBytes(size));
    if (!module || !list.isGood()) return {};
    modules.push_back(std::move(*module));
  }
  return modules;
}

std::vector<tSavedModule> modulesOfStatus(std::string_view stream) {
  i32 code = 0;
  u32 length = 0;
  nQELM100::tBinaryObjectReader reader(stream.data(), stream.size(), code);
  reader.readU32(length, code);
  if (code < 0 || length <= kFixedLength || stream.size() < kFixedStart) return {};
  return modulesIn(stream.substr(kFixedStart, length - kFixedLength));
}

tSavedModule const* findModule(std::vector<tSavedModule> const& modules, u64 address) {
  for (tSavedModule const& module : modules) {
    if (address >= module.base && address - module.base < module.size) return &module;
  }
  return nullptr;
}
