#include "format/format.h"

#include "format/formatNumber.h"
#include "format/formatText.h"
#include "irqlCheck.h"
#include "ntos/format.h"
#include "ntoshost/violation.h"

namespace ntoshost {
namespace {

[[noreturn]] void rejectConversion(char letter, char const* call) {
  if (letter == 0) violation("%s was given a format that ends within a conversion.", call);
  violation("%s was given a format with %%%c, which the kernel does not have.", call, letter);
}

template <class Character>
void formatOne(TextSink<Character>& sink, Character const*& format, FormatArguments& arguments,
               char const* call) {
  Conversion const conversion = readConversion(format, arguments);
  if (conversion.letter == '%') {
    sink.fill('%', 1);
  } else if (!formatNumber(sink, conversion, arguments) &&
             !formatText(sink, conversion, arguments)) {
    rejectConversion(conversion.letter, call);
  }
}

}  // namespace

template <class Character>
void formatInto(TextSink<Character>& sink, Character const* format, FormatArguments& arguments,
                char const* call) {
  while (*format != 0) {
    Character const character = *format++;
    if (character == '%') {
      formatOne(sink, format, arguments, call);
    } else {
      sink.put(character);
    }
  }
}

template void formatInto(TextSink<char>& sink, char const* format, FormatArguments& arguments,
                         char const* call);
template void formatInto(TextSink<wchar_t>& sink, wchar_t const* format, FormatArguments& arguments,
                         char const* call);

namespace {

template <class Character>
i32 formatBuffer(Character* buffer, size_t count, Character const* format, va_list list,
                 char const* call) {
  FormatArguments arguments(list);
  TextSink<Character> sink(buffer, count);
  formatInto(sink, format, arguments, call);
  if (sink.isCut()) return -1;
  if (sink.getLength() < count) buffer[sink.getLength()] = 0;
  return static_cast<i32>(sink.getLength());
}

}  // namespace

}  // namespace ntoshost

i32 _vsnwprintf(wchar_t* buffer, size_t count, wchar_t const* format, va_list list) {
  ntoshost::requireIrqlAtMost(PASSIVE_LEVEL, "_vsnwprintf");
  return ntoshost::formatBuffer(buffer, count, format, list, "_vsnwprintf");
}

i32 _vsnprintf(char* buffer, size_t count, char const* format, va_list list) {
  return ntoshost::formatBuffer(buffer, count, format, list, "_vsnprintf");
}
