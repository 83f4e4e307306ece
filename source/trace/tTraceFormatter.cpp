#include "trace/tTraceFormatter.h"

#include "oxdiagk/tTrace.h"
#include "trace/tFormatConversion.h"
#include "trace/tFormatNumber.h"

namespace nOXDIAG100 {
namespace {

// The length of a terminated text, or `most` if it is longer.
template <class tUnit>
u32 measure(tUnit const* text, u32 most) {
  u32 length = 0;
  while (length < most && text[length] != 0) ++length;
  return length;
}

}  // namespace

i32 tTraceFormatter::format(char* buffer, u32 size, char const* format, va_list arguments) {
  if (buffer == nullptr || size == 0) return -1;
  u32 const used = size < tTrace::kMaxTraceLine ? size : tTrace::kMaxTraceLine;
  return tTraceFormatter(buffer, used, arguments).run(format == nullptr ? "" : format);
}

i32 tTraceFormatter::run(char const* format) {
  format = putPlainText(format);
  while (*format != 0 && !output.isCut()) {
    ++format;
    if (!convert(tFormatConversion(format, arguments))) break;
    format = putPlainText(format);
  }
  return output.finish();
}

// Returns where the next conversion or the format's end is.
char const* tTraceFormatter::putPlainText(char const* format) {
  char const* const begin = format;
  while (*format != '%' && *format != 0) ++format;
  output.put(begin, static_cast<u64>(format - begin));
  return format;
}

// False when the rest of the format is not to be looked at.
bool tTraceFormatter::convert(tFormatConversion const& conversion) {
  switch (conversion.letter) {
    case '%':
      output.put('%');
      return true;
    case 'd':
    case 'i':
    case 'u':
    case 'o':
    case 'x':
    case 'X':
      tFormatNumber(conversion, arguments.takeNumber()).write(output);
      return true;
    case 's':
      if (conversion.length == 'l') {
        putText(static_cast<wchar_t const*>(arguments.takePointer()), conversion);
      } else {
        putText(static_cast<char const*>(arguments.takePointer()), conversion);
      }
      return true;
    case 'c':
      arguments.takeNumber();
      return true;
    case 'p':
      arguments.takePointer();
      return true;
    case 'e':
    case 'E':
    case 'f':
    case 'F':
    case 'g':
    case 'G':
      putUnsupported(conversion.letter);
      return true;
    case 0:
      return false;
    default:
      putInvalid(conversion.letter);
      return false;
  }
}

template <class tUnit>
void tTraceFormatter::putText(tUnit const* text, tFormatConversion const& conversion) {
  u32 const most =
      conversion.precision < tTrace::kMaxTraceLine ? conversion.precision : tTrace::kMaxTraceLine;
  constexpr tUnit kEmpty[] = {0};
  if (text == nullptr) text = kEmpty;
  u32 const length = measure(text, most);
  u32 const blanks = conversion.width > length ? conversion.width - length : 0;
  if (!conversion.isLeft) output.fill(' ', blanks);
  output.put(text, length);
  if (conversion.isLeft) output.fill(' ', blanks);
}

void tTraceFormatter::putUnsupported(char letter) {
  constexpr char kBegin[] = "<<'";
  constexpr char kEnd[] = "' not supported>>";
  output.put(kBegin, sizeof(kBegin) - 1);
  output.put(letter);
  output.put(kEnd, sizeof(kEnd) - 1);
}

void tTraceFormatter::putInvalid(char letter) {
  constexpr char kBegin[] = "<<invalid conversion specifier '";
  constexpr char kEnd[] = "'>>";
  output.put(kBegin, sizeof(kBegin) - 1);
  output.put(letter);
  output.put(kEnd, sizeof(kEnd) - 1);
}

}  // namespace nOXDIAG100
