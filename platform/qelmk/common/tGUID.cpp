#include "qelmk/tGUID.h"

#include "qelmk/iObjectReader.h"
#include "qelmk/iObjectWriter.h"

namespace nQELM100 {
namespace {

constexpr u32 kWordCount = 4;
static_assert(sizeof(tGUID) == kWordCount * sizeof(u32));

}  // namespace

void tGUID::writeExternal(iObjectWriter& writer, i32& status) const {
  u32 words[kWordCount];
  __builtin_memcpy(words, this, sizeof(words));
  for (u32 const word : words) writer.writeU32(word, status);
}

void tGUID::readExternal(iObjectReader& reader, i32& status) {
  u32 words[kWordCount] = {};
  for (u32& word : words) reader.readU32(word, status);
  if (status >= 0) __builtin_memcpy(static_cast<void*>(this), words, sizeof(words));
}

}  // namespace nQELM100
