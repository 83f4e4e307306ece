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
  tTraceFormatter::tText const formatted =
      tTraceFormatter::formatLine(text, sizeof(text), format, arguments);
  va_end(arguments);
  if (formatted.isCut) append(kTooLong, sizeof(kTooLong) - 1);
  u64 const length = formatted.mayHoldNul ? __builtin_strlen(text) : formatted.length;
  parts.buffer.append(text, length, parts.slot);
  return *this;
}

}  // namespace nOXDIAG100
