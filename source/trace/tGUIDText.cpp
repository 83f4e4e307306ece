#include "oxdiagk/tGUIDText.h"

#include "ntos/guid.h"
#include "oxdiagk/tTrace.h"
#include "trace/fixedDigits.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kTextLength = 38;  // 32 digits, 4 dashes, 2 braces

char* writePart(u64 value, u32 digits, char last, char* to) {
  to = writeFixedDigits(value, 16, digits, to);
  *to = last;
  return to + 1;
}

}  // namespace

tGUIDText::tGUIDText(void const* guid) : guid(guid) {
}

void tGUIDText::put(tTrace& trace) const {
  if (!trace.isLineShown()) return;
  if (guid == nullptr) {
    trace.put("(null)");
    return;
  }
  GUID value;
  __builtin_memcpy(&value, guid, sizeof(value));
  char text[kTextLength] = {'{'};
  char* to = writePart(value.Data1, 8, '-', text + 1);
  to = writePart(value.Data2, 4, '-', to);
  to = writePart(value.Data3, 4, '-', to);
  to = writePart(u64{value.Data4[0]} << 8 | value.Data4[1], 4, '-', to);
  for (u32 index = 2; index < sizeof(value.Data4); ++index) {
    to = writeFixedDigits(value.Data4[index], 16, 2, to);
  }
  *to = '}';
  trace.put(text, kTextLength);
}

}  // namespace nOXDIAG100
