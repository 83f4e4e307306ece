#include "config/instanceNames.h"

namespace nOXDIAG100 {
namespace {

bool takeWord(char const*& text, char const* word) {
  char const* behind = text;
  for (; *word != 0; ++word, ++behind) {
    if (*behind != *word) return false;
  }
  text = behind;
  return true;
}

}  // namespace

tConfigurable* findNamedInstance(tNamedInstances const& instances, char const* name) {
  if (name != nullptr && takeWord(name, "kernel")) takeWord(name, "/");
  for (u32 index = 0; index < instances.count; ++index) {
    tNamedInstance const& instance = instances.first[index];
    if (name == nullptr || takeWord(name, instance.name)) return &instance.getInstance();
  }
  return nullptr;
}

}  // namespace nOXDIAG100
