#include "trace/tTraceFormatter.h"

#include "oxdiagk/tTrace.h"
#include "trace/tFormatConversion.h"
#include "trace/tFormatNumber.h"

namespace nOXDIAG100 {
namespace {

u32 smaller(u32 left, u32 right) {
  return left < right ? left : right;
}

// The length of a terminated text, or `most` if it is longer.
template <class tUnit>
u32 measure(tUnit const* text, u32 most) {
  u32 length = 0;
  while (length < most && text[length] != 0) ++length;
  return length;
}

template <class tUnit>
void putText(tFormatOutput& output, tFormatConversion const& conversion, void const* argument) {
  if (argument == nullptr) argument = L"";
  tUnit const* const text = static_cast<tUnit const*>(argument);
  u32 const most = conversion.precision;
  u32 const width = conversion.width;
  bool const isLeft = conversion.has(tFormatConversion::kLeft);
  if (!isLeft) output.fill(' ', width - measure(text, smaller(most, width)));
  u64 const length = output.putText(text, most);
  if (isLeft && length < width) output.fill(' ', width - length);
}

void putUnsupported(tFormatOutput& output, char letter) {
  constexpr char kBegin[] = "<<'";
  constexpr char kEnd[] = "' not supported>>";
  output.put(kBegin, sizeof(kBegin) - 1);
  output.put(letter);
  output.put(kEnd, sizeof(kEnd) - 1);
}

void putInvalid(tFormatOutput& output, char letter) {
  constexpr char kBegin[] = "<<invalid conversion specifier '";
  constexpr char kEnd[] = "'>>";
  output.put(kBegin, sizeof(kBegin) - 1);
  output.put(letter);
  output.put(kEnd, sizeof(kEnd) - 1);
}

// Conversions of a letter alone, the ones that are written most; false for all others.
bool convertLetter(tFormatOutput& output, char letter, tFormatArguments& arguments) {
  switch (letter) {
    case 'd':
      tFormatNumber::writeSigned(output, arguments.takeNumber());
      return true;
    case 'u':
      tFormatNumber::writeUnsigned(output, static_cast<u32>(arguments.takeNumber()));
      return true;
    case 's': {
      void const* const text = arguments.takePointer();
      u32 const most = tFormatConversion::kNoPrecision;
      if (text != nullptr) output.putText(static_cast<char const*>(text), most);
      return true;
    }
    default:
      return false;
  }
}

// False when the rest of the format is not to be looked at.
bool convert(tFormatOutput& output, tFormatConversion const& conversion,
             tFormatArguments& arguments) {
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
      tFormatNumber::write(output, conversion, arguments.takeNumber());
      return true;
    case 's':
      if (conversion.length == 'l') {
        putText<wchar_t>(output, conversion, arguments.takePointer());
      } else {
        putText<char>(output, conversion, arguments.takePointer());
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
      putUnsupported(output, conversion.letter);
      return true;
    case 0:
      return false;
    default:
      putInvalid(output, conversion.letter);
      return false;
  }
}

}  // namespace

i32 tTraceFormatter::format(char* buffer, u32 size, char const* format, va_list list) {
  if (buffer == nullptr || size == 0) return -1;
  tText const text = formatLine(buffer, smaller(size, tTrace::kMaxTraceLine), format, list);
  return text.isCut ? -1 : static_cast<i32>(text.length);
}

tTraceFormatter::tText tTraceFormatter::formatLine(char* buffer, u32 size, char const* format,
                                                   va_list list) {
  if (format == nullptr) format = "";
  tFormatOutput output(buffer, size);
  tFormatArguments arguments(list);
  while (output.putPlain(format) != 0 && !output.isCut()) {
    if (convertLetter(output, *++format, arguments)) {
      ++format;
      continue;
    }
    if (!convert(output, tFormatConversion(format, arguments), arguments)) break;
  }
  return {output.finish(), output.isCut(), output.mayHoldNul()};
}

}  // namespace nOXDIAG100
