#include "config/tUserText.h"

#include "oxdiagk/tunnelRequest.h"
#include "vexk/memory.h"
#include "vexk/userMemory.h"

namespace nOXDIAG100 {

tUserText::tUserText(u64 userAddress, u32 length) {
  i32 status = length > kTunnelMostBytes ? kStatusOutOfMemory : 0;
  text = static_cast<char*>(_memNewUsingCRT(size_t{length} + 1, kMemLongLived, status));
  if (text != nullptr) text[vexCopyFromUser(text, userAddress, length)] = 0;
}

tUserText::~tUserText() {
  _memDelete(text);
}

}  // namespace nOXDIAG100
