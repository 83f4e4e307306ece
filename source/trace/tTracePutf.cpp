#include "oxdiagk/tTrace.h"
#include "trace/tTraceFormatter.h"

namespace nOXDIAG100 {
namespace {

constexpr char kTooLong[] = "!!!Formatted string exceeds kMaxTraceLine characters!!!!";

}  // namespace

tTrace& tTrace::putf(char const* format, ...) {
  if (!isWriting()) return *this;
  char text[kMaxTraceLine];
  va_list arguments;
  va_start(arguments, format);
  i32 const length = tTraceFormatter::format(text, sizeof(text), format, arguments);
  va_end(arguments);
  if (length < 0) append(kTooLong, sizeof(kTooLong) - 1);
  // Not by its length: a wide text may have brought NUL characters, and the text ends at the first.
  append(text, __builtin_strlen(text));
  return *this;
}

}  // namespace nOXDIAG100
