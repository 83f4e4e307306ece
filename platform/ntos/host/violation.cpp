#include "ntoshost/violation.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>

#include "standardError.h"

namespace ntoshost {

void violation(char const* format, ...) {
  char sentence[512] = "ntos: ";
  constexpr size_t kHead = 6;
  constexpr size_t kRoom = sizeof(sentence) - kHead - 1;
  va_list arguments;
  va_start(arguments, format);
  int const wanted = vsnprintf(sentence + kHead, kRoom, format, arguments);
  va_end(arguments);
  size_t length = static_cast<size_t>(wanted);
  if (length > kRoom - 1) length = kRoom - 1;
  sentence[kHead + length] = '\n';
  writeStandardError(sentence, kHead + length + 1);
  abort();
}

}  // namespace ntoshost
