// Lists of modules, as they were saved with a status, that nobody wrote: the characters as they
// are, and behind the head of a status. What is made of them is not more than they are.

#include "oxdiagreport/savedModules.h"

#include "qelmk/binaryStream.h"
#include "support/fuzzing.h"
#include "support/tExactText.h"

namespace {

constexpr size_t kMostModules = 255;  // what the list's count can say

u64 bytesOf(std::vector<tSavedModule> const& modules) {
  u64 bytes = 0;
  for (tSavedModule const& module : modules) bytes += module.name.size() + module.identity.size();
  return bytes;
}

void demandBounded(std::vector<tSavedModule> const& modules, size_t size) {
  demand(modules.size() <= kMostModules && bytesOf(modules) <= size,
         "modules are not more than the list",
         [&] { return std::to_string(modules.size()) + " modules"; });
}

// An address is in the first module that has it, and in none that has not.
void demandPlaces(std::vector<tSavedModule> const& modules) {
  for (tSavedModule const& module : modules) {
    tSavedModule const* const found = findModule(modules, module.base);
    demand(module.size == 0 || (found != nullptr && found <= &module),
           "the base of a module is in it", [] { return "it is not"; });
  }
}

std::string asStatus(std::string const& list) {
  std::string bytes(nQELM100::kBinaryStreamMagic, sizeof(nQELM100::kBinaryStreamMagic));
  u32 const numbers[] = {nQELM100::kBinaryStreamVersion, static_cast<u32>(8 + list.size()), 1, 0};
  bytes.append(reinterpret_cast<char const*>(numbers), sizeof(numbers));
  return bytes + list;
}

}  // namespace

void fuzzInput(std::string const& input) {
  tExactText exact(input, false);
  auto const modules = modulesIn(std::string_view(exact.get(), input.size()));
  demandBounded(modules, input.size());
  demandPlaces(modules);
  std::string const status = asStatus(input);
  tExactText exactStatus(status, false);
  auto const again = modulesOfStatus(std::string_view(exactStatus.get(), status.size()));
  demand(again.size() == modules.size() && bytesOf(again) == bytesOf(modules),
         "a list in a status is the list", [&] { return std::to_string(again.size()); });
  demandBounded(modulesOfStatus(std::string_view(exact.get(), input.size())), input.size());
}
